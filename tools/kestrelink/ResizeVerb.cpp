// kestrelink resize: one raw frame through CIppImageResize to another size,
// as a PNG where the layout has one, else raw bytes.
#include <kestrelink/CIppImageResize.h>

#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "FrameFile.h"
#include "LayoutPng.h"
#include "ResizeVerb.h"
#include "ToolError.h"

namespace kestrelink::tool {

namespace {

struct ModeName {
  std::string_view name;
  int mode;  // the class's mode number
};
constexpr ModeName kModes[] = {{"nearest", 0}, {"linear", 1}, {"cubic", 2}, {"lanczos", 3}, {"super", 4}};

constexpr LayoutId kResizeLayouts[] = {LayoutId::Mono8, LayoutId::Mono16, LayoutId::Bgr24, LayoutId::Bgr48,
                                       LayoutId::Bgrx,  LayoutId::Bgr64,  LayoutId::Yuv422};

struct Request {
  std::optional<FrameSize> size, to;
  const Layout* layout = nullptr;
  int mode = 1;
  uint32_t depth = 16;
  std::string in, out;
};

int ParseMode(std::string_view text) {
  for (const ModeName& m : kModes)
    if (m.name == text) return m.mode;
  throw UsageError("--mode wants nearest, linear, cubic, lanczos or super, not '" + std::string(text) + "'");
}

const Layout* ParseResizeLayout(std::string_view text) {
  const Layout* layout = FindLayout(text);
  for (LayoutId id : kResizeLayouts)
    if (layout && layout->id == id) return layout;
  throw UsageError("--layout wants mono8, mono16, bgr24, bgr48, bgrx, bgrx64 or yuv422, not '" + std::string(text) +
                   "'");
}

bool ParseRequest(std::span<const std::string_view> args, Request& r) {
  const OptionSpec options[] = {
      {"--size", "WxH", [&](std::string_view v) { r.size = ParseSize("--size", v); }},
      {"--to", "WxH", [&](std::string_view v) { r.to = ParseSize("--to", v); }},
      {"--layout", "NAME", [&](std::string_view v) { r.layout = ParseResizeLayout(v); }},
      {"--mode", "MODE", [&](std::string_view v) { r.mode = ParseMode(v); }},
      {"--depth", "D", [&](std::string_view v) { r.depth = uint32_t(ParseInteger("--depth", v, 8, 16)); }},
  };
  std::vector<std::string_view> files;
  if (!ParseOptions(args, options, files)) return false;
  if (!r.size) throw UsageError("missing --size WxH");
  if (!r.to) throw UsageError("missing --to WxH");
  if (!r.layout) throw UsageError("missing --layout NAME");
  if (files.size() != 2)
    throw UsageError(std::string(files.size() < 2 ? "missing file names: " : "too many file names: ") +
                     "resize takes IN and OUT");
  r.in = std::string(files[0]);
  r.out = std::string(files[1]);
  return true;
}

// BGR64 pixels without their fourth word, for a 16-bit RGB picture.
std::vector<uint8_t> DropFourthWord(const std::vector<uint8_t>& frame) {
  std::vector<uint8_t> out;
  out.reserve(frame.size() / 8 * 6);
  for (size_t i = 0; i + 8 <= frame.size(); i += 8) out.insert(out.end(), frame.begin() + long(i), frame.begin() + long(i + 6));
  return out;
}

}  // namespace

void PrintResizeUsage(std::ostream& out) {
  out << "usage: kestrelink resize --size WxH --layout NAME --to WxH [--mode MODE] [--depth D] IN OUT\n"
         "\n"
         "Scales one raw frame (the first frame of IN) to another size through\n"
         "CIppImageResize. Pixel centres map onto pixel centres. OUT ending in .png gets a\n"
         "picture (not for yuv422); any other name gets the raw frame of the same layout.\n"
         "The fourth sample of bgrx and bgrx64 output is 0.\n"
         "\n"
         "options:\n"
         "  --size WxH      size of the input frame\n"
         "  --layout NAME   mono8, mono16, bgr24, bgr48, bgrx, bgrx64 or yuv422\n"
         "  --to WxH        size of the output frame\n"
         "  --mode MODE     nearest, linear (default), cubic (Catmull-Rom), lanczos (3 lobes)\n"
         "                  or super (area average; nearest where an axis grows, but not for yuv422)\n"
         "  --depth D       bits a 16-bit sample carries, 8 to 16, for the PNG (default 16)\n"
         "  -h, --help      show this help\n"
         "\n"
         "example:\n"
         "  kestrelink resize --size 1920x1080 --layout bgr24 --to 1280x720 --mode cubic frame.raw small.png\n";
}

std::vector<uint8_t> ResizeFrame(LayoutId layout, const FrameSize& from, const FrameSize& to, int mode,
                                 const std::vector<uint8_t>& frame) {
  CIppImageResize resize;
  const uint32_t w = from.width, h = from.height, dw = to.width, dh = to.height;
  std::vector<uint8_t> out(uint64_t(dw) * dh * LayoutOf(layout).bytesPerPixel, 0);
  void* src = const_cast<uint8_t*>(frame.data());
  const int rw = int(w), rh = int(h);
  bool ok = false;
  switch (layout) {
    case LayoutId::Mono8: ok = resize.Mono8ippiResize(mode, w, h, 0, 0, rw, rh, src, dw, dh, out.data()); break;
    case LayoutId::Mono16: ok = resize.Mono16ippiResize(mode, w, h, 0, 0, rw, rh, src, dw, dh, out.data()); break;
    case LayoutId::Bgr24: ok = resize.BGR24ippiResize(mode, w, h, 0, 0, rw, rh, src, dw, dh, out.data()); break;
    case LayoutId::Bgr48: ok = resize.BGR48ippiResize(mode, w, h, 0, 0, rw, rh, src, dw, dh, out.data()); break;
    case LayoutId::Bgrx: ok = resize.BGRx32ippiResize(mode, w, h, 0, 0, rw, rh, src, dw, dh, out.data()); break;
    case LayoutId::Bgr64: ok = resize.BGRx64ippiResize(mode, w, h, 0, 0, rw, rh, src, dw, dh, out.data()); break;
    case LayoutId::Yuv422: ok = resize.YUV422ippiResize(mode, w, h, 0, 0, rw, rh, src, dw, dh, out.data()); break;
    default: break;
  }
  if (!ok) throw RunError("the resize refused the frame");
  return out;
}

int RunResize(std::span<const std::string_view> args) {
  Request r;
  if (!ParseRequest(args, r)) {
    PrintResizeUsage(std::cout);
    return 0;
  }
  const LayoutId id = r.layout->id;
  if (id == LayoutId::Yuv422 && (r.size->width < 2 || r.to->width < 2))
    throw UsageError("yuv422 frames are at least 2 pixels wide");
  const std::string frameName =
      "a " + std::to_string(r.size->width) + "x" + std::to_string(r.size->height) + " " + std::string(r.layout->name) +
      " frame";
  const std::vector<uint8_t> src = ReadFrameFile(r.in, FrameBytes(*r.layout, r.size->width, r.size->height), frameName);
  const std::vector<uint8_t> dst = ResizeFrame(id, *r.size, *r.to, r.mode, src);
  if (IsPngPath(r.out)) {
    if (id == LayoutId::Bgr64)
      WritePng(r.out, LayoutToPng(LayoutId::Bgr48, r.to->width, r.to->height, r.depth, DropFourthWord(dst)));
    else
      WritePng(r.out, LayoutToPng(id, r.to->width, r.to->height, r.depth, dst));
  } else {
    WriteRawFile(r.out, dst);
  }
  std::cout << r.in << ": " << r.size->width << "x" << r.size->height << " " << r.layout->name << " -> "
            << r.to->width << "x" << r.to->height << " (" << kModes[r.mode].name << ") " << r.out << '\n';
  return 0;
}

}  // namespace kestrelink::tool
