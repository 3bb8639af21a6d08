// kestrelink j2k encode: one 8-bit frame to a lossless JP2 file, and
// optionally to the header-less packet record that EncodeJpeg2K gives.
#include <kestrelink/CIppImageWrapper.h>

#include <filesystem>
#include <iomanip>
#include <iostream>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "FrameFile.h"
#include "Jpeg2kVerb.h"
#include "ToolError.h"

namespace kestrelink::tool {

namespace {

// The layouts the verb takes, as the converter's format codes.
struct Layout {
  std::string_view name;
  uint32_t format;
  uint32_t bytesPerPixel;  // in the input file
};
constexpr Layout kLayouts[] = {{"gray", 100, 1}, {"bgr24", 200, 3}, {"planar", 300, 3}};

struct Request {
  const Layout* layout = &kLayouts[0];
  std::optional<FrameSize> size;
  std::string in, out, record;
};

bool ParseRequest(std::span<const std::string_view> args, Request& r) {
  if (args.empty()) throw UsageError("missing encode");
  if (args[0] == "-h" || args[0] == "--help") return false;
  if (args[0] != "encode") throw UsageError("unknown j2k command '" + std::string(args[0]) + "' (encode)");
  const OptionSpec options[] = {
      {"--layout", "gray|bgr24|planar",
       [&](std::string_view v) {
         r.layout = nullptr;
         for (const Layout& l : kLayouts)
           if (l.name == v) r.layout = &l;
         if (!r.layout) throw UsageError("unknown --layout '" + std::string(v) + "' (gray, bgr24, planar)");
       }},
      {"--size", "WxH", [&](std::string_view v) { r.size = ParseSize("--size", v); }},
      {"--record", "FILE", [&](std::string_view v) { r.record = std::string(v); }},
  };
  std::vector<std::string_view> files;
  if (!ParseOptions(args.subspan(1), options, files)) return false;
  if (!r.size) throw UsageError("missing --size WxH");
  if (r.size->width > 32768 || r.size->height > 32768) throw UsageError("--size: at most 32768 on a side");
  if (files.size() != 2)
    throw UsageError(std::string(files.size() < 2 ? "missing file names: " : "too many file names: ") +
                     "j2k encode takes IN and OUT.jp2");
  r.in = std::string(files[0]);
  r.out = std::string(files[1]);
  return true;
}

uint64_t FileSize(const std::string& path) {
  std::error_code error;
  const uint64_t size = std::filesystem::file_size(path, error);
  if (error) throw RunError("'" + path + "' was not written: " + error.message());
  return size;
}

// The three pointers of a layout's frame: planar files hold red, green and
// blue planes, which are the third, second and first pointers.
void Pointers(const Request& r, std::vector<uint8_t>& frame, void* (&planes)[3]) {
  planes[0] = planes[1] = planes[2] = frame.data();
  if (r.layout->format != 300) return;
  const size_t plane = size_t(r.size->width) * r.size->height;
  planes[2] = frame.data();
  planes[1] = frame.data() + plane;
  planes[0] = frame.data() + 2 * plane;
}

}  // namespace

void PrintJpeg2kUsage(std::ostream& out) {
  out << "usage: kestrelink j2k encode --layout gray|bgr24|planar --size WxH [--record FILE] IN OUT.jp2\n"
         "\n"
         "encode compresses one raw 8-bit frame without loss into a JP2 file: one tile,\n"
         "five levels of the reversible 5-3 wavelet, the reversible colour transform on\n"
         "colour frames, 64x64 code-blocks, one layer. Prints the sizes.\n"
         "\n"
         "options:\n"
         "  --layout L    gray: one byte a pixel; bgr24: blue, green, red bytes a pixel;\n"
         "                planar: a red, a green and a blue plane one after another\n"
         "                (default gray)\n"
         "  --size WxH    frame size in pixels, at most 32768 on a side\n"
         "  --record FILE also write the packet record: a 32-bit little-endian count,\n"
         "                then the packets, with no headers (the reader must know the\n"
         "                size and layout)\n"
         "  -h, --help    show this help\n"
         "\n"
         "The file's image header box gives the width first and the height second, as\n"
         "this library's files always have; a strict reader wants them the other way\n"
         "round for frames that are not square, and reads the codestream box alike.\n"
         "\n"
         "example:\n"
         "  kestrelink j2k encode --layout bgr24 --size 1920x1080 frame.raw frame.jp2\n"
         "  kestrelink j2k encode --size 640x480 --record frame.bin grey.raw grey.jp2\n";
}

int RunJpeg2k(std::span<const std::string_view> args) {
  Request r;
  if (!ParseRequest(args, r)) {
    PrintJpeg2kUsage(std::cout);
    return 0;
  }
  const uint64_t bytes = uint64_t(r.size->width) * r.size->height * r.layout->bytesPerPixel;
  std::vector<uint8_t> frame =
      ReadFrameFile(r.in, bytes, "a " + std::to_string(r.size->width) + "x" + std::to_string(r.size->height) + " " +
                                     std::string(r.layout->name) + " frame");
  void* planes[3];
  Pointers(r, frame, planes);
  CIppImageWrapper wrapper;
  wrapper.InitJPeg2KConverter(r.size->width, r.size->height, 0, 0, r.layout->format);
  if (!wrapper.WriteJpeg2KToFile(r.out.c_str(), planes[0], planes[1], planes[2]))
    throw RunError("the JPEG 2000 encoder refused the frame");
  const uint64_t fileSize = FileSize(r.out);  // the converter tells a failed write only to the debug output
  std::cout << r.in << ": " << bytes << " bytes -> " << r.out << " " << fileSize << " bytes (ratio " << std::fixed
            << std::setprecision(3) << double(bytes) / double(fileSize) << ")\n";
  if (!r.record.empty()) {
    // Packets never outgrow the samples by much; twice the frame and a margin hold them.
    std::vector<uint8_t> record(2 * bytes + 65536);
    if (!wrapper.EncodeJpeg2K(planes[0], planes[1], planes[2], record.data()))
      throw RunError("the JPEG 2000 encoder refused the frame");
    const uint32_t count = uint32_t(record[0]) | uint32_t(record[1]) << 8 | uint32_t(record[2]) << 16 |
                           uint32_t(record[3]) << 24;
    record.resize(size_t(count) + 4);
    WriteRawFile(r.record, record);
    std::cout << r.record << ": packet record of " << count << " bytes\n";
  }
  return 0;
}

uint64_t WriteBgrxJp2(const std::string& path, const FrameSize& size, std::vector<uint8_t> bgrx) {
  CIppImageWrapper wrapper;
  wrapper.InitJPeg2KConverter(size.width, size.height, 0, 0, 500);
  if (!wrapper.WriteJpeg2KToFile(path.c_str(), nullptr, nullptr, bgrx.data()))
    throw RunError("the JPEG 2000 encoder refused the frame");
  return FileSize(path);
}

}  // namespace kestrelink::tool
