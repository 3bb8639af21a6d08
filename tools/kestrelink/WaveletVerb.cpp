// kestrelink wavelet encode|decode: raw grey frames through the block wavelet
// codec of CIppWavletCompression, and the demo's round trip. A frame file is
// the library's frame as it stands; it records neither size, depth nor
// levels, so decode is told all three as encode was.
#include <kestrelink/CIppWavletCompression.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "Args.h"
#include "FrameFile.h"
#include "ToolError.h"
#include "WaveletVerb.h"

namespace kestrelink::tool {

namespace {

struct Request {
  bool encode = true;
  std::optional<FrameSize> size;
  int bits = 8;
  int levels = 3;
  std::string in, out;
};

uint64_t FrameBytes(const FrameSize& size, int bits) {
  return uint64_t(size.width) * size.height * (bits == 8 ? 1 : 2);
}

void SetUp(CIppWavletCompression& codec, const FrameSize& size, int bits, int levels) {
  if (!codec.Initialize(100, int(size.width), int(size.height), bits, bits, levels, 1, 1, 0))
    throw RunError("the wavelet codec refused its set-up");
}

uint32_t FrameTotal(const std::vector<uint8_t>& f) {
  return uint32_t(f[0]) | uint32_t(f[1]) << 8 | uint32_t(f[2]) << 16 | uint32_t(f[3]) << 24;
}

bool ParseRequest(std::span<const std::string_view> args, Request& r) {
  if (args.empty()) throw UsageError("missing encode or decode");
  if (args[0] == "-h" || args[0] == "--help") return false;
  if (args[0] != "encode" && args[0] != "decode")
    throw UsageError("unknown wavelet command '" + std::string(args[0]) + "' (encode, decode)");
  r.encode = args[0] == "encode";
  const OptionSpec options[] = {
      {"--size", "WxH", [&](std::string_view v) { r.size = ParseSize("--size", v); }},
      {"--bits", "B", [&](std::string_view v) { r.bits = int(ParseInteger("--bits", v, 8, 16)); }},
      {"--levels", "L", [&](std::string_view v) { r.levels = int(ParseInteger("--levels", v, 1, 4)); }},
  };
  std::vector<std::string_view> files;
  if (!ParseOptions(args.subspan(1), options, files)) return false;
  if (!r.size) throw UsageError("missing --size WxH");
  if (files.size() != 2)
    throw UsageError(std::string(files.size() < 2 ? "missing file names: " : "too many file names: ") +
                     "wavelet " + std::string(args[0]) + " takes IN and OUT");
  r.in = std::string(files[0]);
  r.out = std::string(files[1]);
  return true;
}

std::vector<uint8_t> ReadStream(const std::string& path) {
  std::error_code error;
  const uint64_t size = std::filesystem::file_size(path, error);
  if (error) throw RunError("cannot open '" + path + "': " + error.message());
  if (size < 4 || size > (uint64_t(1) << 31)) throw RunError("'" + path + "' is no wavelet frame: wrong size");
  return ReadFrameFile(path, size, "the whole file");
}

}  // namespace

void PrintWaveletUsage(std::ostream& out) {
  out << "usage: kestrelink wavelet encode|decode --size WxH [--bits B] [--levels L] IN OUT\n"
         "\n"
         "encode compresses one raw grey frame (one byte a pixel at 8 bits, else\n"
         "little-endian 16-bit words) into a wavelet frame: 32 x 32 blocks, L levels of\n"
         "5/3 lifting, all bit planes coded. Close to lossless: prints the size and the\n"
         "largest difference of the decoded frame. decode turns a wavelet frame back into\n"
         "the raw frame; give it the size, bits and levels that encode was given.\n"
         "\n"
         "options:\n"
         "  --size WxH    frame size in pixels\n"
         "  --bits B      bits per pixel, 8 to 16 (default 8)\n"
         "  --levels L    lifting levels of a block, 1 to 4 (default 3)\n"
         "  -h, --help    show this help\n"
         "\n"
         "example:\n"
         "  kestrelink wavelet encode --size 1920x1080 --bits 12 frame.raw frame.wvl\n"
         "  kestrelink wavelet decode --size 1920x1080 --bits 12 frame.wvl frame.raw\n";
}

WaveletTrip WaveletRoundTrip(const FrameSize& size, int bits, int levels, const std::vector<uint8_t>& raw,
                             std::vector<uint8_t>& stream) {
  CIppWavletCompression codec;
  SetUp(codec, size, bits, levels);
  stream.assign(codec.MaxEncodedBytes(), 0);
  std::vector<uint8_t> frame = raw;
  if (!codec.Encode(nullptr, nullptr, frame.data(), stream.data())) throw RunError("the wavelet encoder failed");
  stream.resize(FrameTotal(stream));
  std::vector<uint8_t> back(raw.size());
  if (!codec.Decode(stream.data(), uint32_t(stream.size()), back.data()))
    throw RunError("the wavelet frame did not decode");
  WaveletTrip trip{uint32_t(stream.size()), 0};
  const bool words = bits != 8;
  for (size_t i = 0; i < raw.size(); i += words ? 2 : 1) {
    const int a = words ? raw[i] | raw[i + 1] << 8 : raw[i];
    const int b = words ? back[i] | back[i + 1] << 8 : back[i];
    trip.largestDifference = std::max(trip.largestDifference, std::abs(a - b));
  }
  return trip;
}

int RunWavelet(std::span<const std::string_view> args) {
  Request r;
  if (!ParseRequest(args, r)) {
    PrintWaveletUsage(std::cout);
    return 0;
  }
  const uint64_t rawBytes = FrameBytes(*r.size, r.bits);
  if (r.encode) {
    const std::vector<uint8_t> raw =
        ReadFrameFile(r.in, rawBytes, "a " + std::to_string(r.size->width) + "x" + std::to_string(r.size->height) +
                                          " frame of " + std::to_string(r.bits) + " bits");
    std::vector<uint8_t> stream;
    const WaveletTrip trip = WaveletRoundTrip(*r.size, r.bits, r.levels, raw, stream);
    WriteRawFile(r.out, stream);
    std::cout << r.in << ": " << raw.size() << " bytes -> " << trip.bytes << " bytes (ratio " << std::fixed
              << std::setprecision(3) << double(raw.size()) / double(trip.bytes) << ", largest difference "
              << trip.largestDifference << ")\n";
    return 0;
  }
  std::vector<uint8_t> stream = ReadStream(r.in);
  CIppWavletCompression codec;
  SetUp(codec, *r.size, r.bits, r.levels);
  std::vector<uint8_t> raw(rawBytes);
  if (!codec.Decode(stream.data(), uint32_t(stream.size()), raw.data()))
    throw RunError("'" + r.in + "' is too short for a " + std::to_string(r.size->width) + "x" +
                   std::to_string(r.size->height) + " wavelet frame");
  WriteRawFile(r.out, raw);
  return 0;
}

}  // namespace kestrelink::tool
