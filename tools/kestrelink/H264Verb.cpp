// kestrelink h264: planar frames to encoded frame records, and records back to pictures.
#include <kestrelink/CH264Conversion.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "Args.h"
#include "FrameFile.h"
#include "H264Files.h"
#include "PngFile.h"
#include "ToolError.h"
#include "Verbs.h"

namespace kestrelink::tool {

namespace {

namespace fs = std::filesystem;

constexpr double kFrameRate = 30.0;  // the rate the encoder's rate control assumes

struct H264Request {
  std::optional<FrameSize> size;
  bool mono = false;
  int gop = 0, bitRate = 0;
  std::vector<std::string_view> files;
};

bool ParseH264(std::span<const std::string_view> args, H264Request& r) {
  const OptionSpec options[] = {
      {"--size", "WxH", [&](std::string_view v) { r.size = ParseSize("--size", v); }},
      {"--mono", "", [&](std::string_view) { r.mono = true; }},
      {"--gop", "N", [&](std::string_view v) { r.gop = int(ParseInteger("--gop", v, 0, 65535)); }},
      {"--bitrate", "B", [&](std::string_view v) { r.bitRate = int(ParseInteger("--bitrate", v, 0, 2147483647)); }},
  };
  return ParseOptions(args, options, r.files);
}

FrameSize RequireSize(const H264Request& r, bool evenSides) {
  if (!r.size) throw UsageError("--size WxH is required");
  if (evenSides && (r.size->width % 2 || r.size->height % 2))
    throw UsageError("planar 4:2:0 frames need an even width and height");
  return *r.size;
}

int Encode(const H264Request& r) {
  if (r.files.size() != 2) throw UsageError("h264 encode takes IN.yuv and OUT.records");
  const FrameSize size = RequireSize(r, !r.mono);
  const size_t luma = size_t(size.width) * size.height, frameBytes = r.mono ? luma : luma * 3 / 2;
  const std::string in(r.files[0]), out(r.files[1]);
  std::ifstream source(in, std::ios::binary);
  if (!source) throw RunError("cannot open '" + in + "'");
  const uint64_t fileBytes = fs::file_size(in);
  if (fileBytes % frameBytes != 0 || fileBytes == 0)
    throw RunError("'" + in + "' holds " + std::to_string(fileBytes) + " bytes, not a whole number of " +
                   std::to_string(frameBytes) + "-byte frames");
  const uint64_t frames = fileBytes / frameBytes;

  CH264Conversion codec;
  if (!codec.Initialize(true, size.width, size.height, r.mono ? H264_SOURCE_MONO : H264_SOURCE_YUV_PLANAR, r.gop,
                        r.bitRate, 8, 0))
    throw RunError("the encoder refused the set-up");
  std::ofstream target(out, std::ios::binary | std::ios::trunc);
  if (!target) throw RunError("cannot write '" + out + "'");
  std::vector<uint8_t> frame(frameBytes), record(luma * 2 + 8);
  uint64_t payload = 0;
  h264::Progress progress("encoding", frames);
  for (uint64_t i = 0; i < frames; ++i) {
    source.read(reinterpret_cast<char*>(frame.data()), std::streamsize(frameBytes));
    uint8_t* u = frame.data() + luma;
    if (!codec.EncodeImage(record.data(), frame.data(), u, u + luma / 4)) throw RunError("frame " + std::to_string(i + 1) + " did not encode");
    const uint32_t recordSize = uint32_t(record[0]) | uint32_t(record[1]) << 8 | uint32_t(record[2]) << 16 | uint32_t(record[3]) << 24;
    target.write(reinterpret_cast<const char*>(record.data()), recordSize);
    payload += recordSize - 8;
    progress.Step(i + 1);
  }
  target.close();
  if (!target) {
    RemovePartialOutput(out);
    throw RunError("writing '" + out + "' failed");
  }
  std::cout << frames << " frames, " << payload << " bytes of stream, "
            << uint64_t(double(payload) * 8 * kFrameRate / double(frames)) << " bit/s at 30 frames a second\n";
  return 0;
}

int Decode(const H264Request& r) {
  if (r.files.size() != 2) throw UsageError("h264 decode takes IN.records and OUTDIR (or OUT.bgr)");
  const FrameSize size = RequireSize(r, false);
  const std::string in(r.files[0]), out(r.files[1]);
  const bool oneFile = out.size() > 4 && out.substr(out.size() - 4) == ".bgr";
  const auto records = h264::ReadRecords(in);
  CH264Conversion codec;
  codec.Initialize(false, size.width, size.height, H264_SOURCE_YUV_PLANAR, 0, 0, 8, 0);
  const size_t pitch = (size_t(size.width) * 3 + 3) & ~size_t(3);
  std::vector<uint8_t> image(size_t((size.height + 15) & ~15u) * size.width * 3 + pitch);
  if (!oneFile) fs::create_directories(out);
  std::ofstream bgr;
  if (oneFile) bgr.open(out, std::ios::binary | std::ios::trunc);
  uint64_t failed = 0;
  h264::Progress progress("decoding", records.size());
  for (size_t i = 0; i < records.size(); ++i) {
    if (!codec.DecodeImage(uint32_t(i + 1), const_cast<uint8_t*>(records[i].data()), image.data())) {
      ++failed;
      std::cerr << "record " << i + 1 << " did not decode\n";
      continue;
    }
    PngImage png{size.width, size.height, PngPixel::Rgb8, std::vector<uint8_t>(size_t(size.width) * size.height * 3)};
    for (uint32_t y = 0; y < size.height; ++y)
      for (uint32_t x = 0; x < size.width; ++x)
        for (int c = 0; c < 3; ++c) {  // B, G, R rows padded to 4 bytes; R, G, B packed for PNG
          const uint8_t value = image[y * pitch + x * 3 + c];
          if (oneFile) png.bytes[(size_t(y) * size.width + x) * 3 + c] = value;
          else png.bytes[(size_t(y) * size.width + x) * 3 + (2 - c)] = value;
        }
    if (oneFile) {
      bgr.write(reinterpret_cast<const char*>(png.bytes.data()), std::streamsize(png.bytes.size()));
    } else {
      char name[32];
      std::snprintf(name, sizeof name, "frame-%05zu.png", i + 1);
      WritePng((fs::path(out) / name).string(), png);
    }
    progress.Step(i + 1);
  }
  std::cout << records.size() - failed << " of " << records.size() << " records decoded to " << out << '\n';
  return failed ? kExitFailed : 0;
}

}  // namespace

void PrintH264Usage(std::ostream& out) {
  out << "usage: kestrelink h264 encode --size WxH [--mono] [--gop N] [--bitrate B] IN.yuv OUT.records\n"
         "       kestrelink h264 decode --size WxH IN.records OUTDIR|OUT.bgr\n"
         "\n"
         "encode reads planar 4:2:0 frames (Y, U, V; luma alone with --mono) and writes one\n"
         "encoded frame record a frame: 4:2:2 streams from planar frames, 4:0:0 from mono.\n"
         "decode writes a PNG a frame into OUTDIR, or every frame as packed B, G, R bytes\n"
         "into one file whose name ends in .bgr. Records do not carry the picture size, so\n"
         "decode takes it as encode did.\n"
         "\n"
         "options:\n"
         "  --size WxH     frame size\n"
         "  --mono         frames are 8-bit luma alone\n"
         "  --gop N        key-frame interval (default 0: every 30 frames)\n"
         "  --bitrate B    target in bits per second (default 0: 5000000)\n"
         "  -h, --help     show this help\n";
}

int RunH264(std::span<const std::string_view> args) {
  if (args.empty()) throw UsageError("h264 wants 'encode' or 'decode'");
  H264Request request;
  if (!ParseH264(args.subspan(1), request)) {
    PrintH264Usage(std::cout);
    return 0;
  }
  if (args[0] == "encode") return Encode(request);
  if (args[0] == "decode") return Decode(request);
  if (args[0] == "-h" || args[0] == "--help") {
    PrintH264Usage(std::cout);
    return 0;
  }
  throw UsageError("h264 wants 'encode' or 'decode', not '" + std::string(args[0]) + "'");
}

}  // namespace kestrelink::tool
