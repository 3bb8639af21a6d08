// The block wavelet codec of CIppWavletCompression, encode and decode of
// whole frames, against CharLS (JPEG-LS) lossless on the same frames: the
// near-lossless codec a user would otherwise pick. Two frames of one
// camera-like scene: 8 bits in bytes, and 12 bits in 16-bit words. Ours
// runs over the library's team, in parallel over blocks; CharLS codes one
// stream per thread, the frame cut into one band of rows each. Sizes and
// ratios are printed after the summary.
#include <kestrelink/CIppWavletCompression.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"

#ifdef KESTRELINK_HAVE_CHARLS
#include <charls/charls.h>
#endif

namespace kestrelink::bench {
namespace {

// Vignetted gradient with a bright window, dark stripes and sensor noise
// (about 0.6 % of full scale), `bits` deep.
std::vector<uint16_t> Scene(uint32_t w, uint32_t h, unsigned bits) {
  std::vector<uint8_t> noise(2 * size_t(w) * h);
  FillBytes(noise.data(), noise.size(), 0x57A7E1ull);
  const double full = double((1u << bits) - 1);
  std::vector<uint16_t> out(size_t(w) * h);
  for (uint32_t y = 0; y < h; ++y)
    for (uint32_t x = 0; x < w; ++x) {
      const size_t i = size_t(y) * w + x;
      const double u = double(x) / w - 0.5, v = double(y) / h - 0.5;
      double level = 0.25 + 0.4 * double(x) / w + 0.2 * double(y) / h - 0.5 * (u * u + v * v);
      if (u > 0.05 && u < 0.3 && v > -0.3 && v < 0.1) level += 0.25;
      if ((y / 48) % 6 == 0 && x < w / 3) level -= 0.15;
      level += (int(noise[2 * i]) + int(noise[2 * i + 1]) - 255) * 0.006 / 104.0;
      out[i] = uint16_t(std::clamp(level, 0.0, 1.0) * full + 0.5);
    }
  return out;
}

struct Frame {
  std::string name;
  unsigned bits;
  FrameBuffer raw;
};

struct Size {
  std::string frame, coder;
  size_t raw, packed;
  int largestDifference;
};
std::vector<Size>& Sizes() {
  static std::vector<Size> sizes;
  return sizes;
}

void PrintSizes() {
  std::printf("\nCompressed sizes (ratio = raw / compressed; largest difference of the decoded frame):\n");
  std::printf("  %-12s %-14s %12s %12s %7s %9s\n", "frame", "coder", "raw bytes", "compressed", "ratio", "largest");
  for (const Size& s : Sizes())
    std::printf("  %-12s %-14s %12zu %12zu %7.3f %9d\n", s.frame.c_str(), s.coder.c_str(), s.raw, s.packed,
                double(s.raw) / double(s.packed), s.largestDifference);
}

int LargestDifference(const Frame& f, const uint8_t* back) {
  int worst = 0;
  const size_t n = f.bits == 8 ? f.raw.size() : f.raw.size() / 2;
  for (size_t i = 0; i < n; ++i) {
    const uint8_t* a = f.raw.data();
    const int x = f.bits == 8 ? a[i] : a[2 * i] | a[2 * i + 1] << 8;
    const int y = f.bits == 8 ? back[i] : back[2 * i] | back[2 * i + 1] << 8;
    worst = std::max(worst, std::abs(x - y));
  }
  return worst;
}

uint32_t Total(const uint8_t* f) { return uint32_t(f[0] | f[1] << 8 | f[2] << 16) | uint32_t(f[3]) << 24; }

void Ours(Frame& f, int levels) {
  const Settings& s = BenchSettings();
  auto codec = std::make_shared<CIppWavletCompression>();
  if (!codec->Initialize(100, int(s.width), int(s.height), int(f.bits), int(f.bits), levels, 1, 1, 0)) std::exit(1);
  auto stream = std::make_shared<FrameBuffer>(codec->MaxEncodedBytes());
  auto back = std::make_shared<FrameBuffer>(f.raw.size());
  uint8_t* raw = f.raw.data();
  codec->Encode(nullptr, nullptr, raw, stream->data());
  const uint32_t size = Total(stream->data());
  codec->Decode(stream->data(), nullptr, nullptr, back->data());
  const std::string coder = "wavelet L" + std::to_string(levels);
  Sizes().push_back({f.name, coder, f.raw.size(), size, LargestDifference(f, back->data())});
  const std::string suffix = ":" + f.name + ".L" + std::to_string(levels);
  Register(Case{"encode" + suffix, kOurs, f.raw.size(), size, LibraryTeam(),
                [codec, stream, raw](int) { return codec->Encode(nullptr, nullptr, raw, stream->data()); }});
  Register(Case{"decode" + suffix, kOurs, size, f.raw.size(), LibraryTeam(),
                [codec, stream, back](int) { return codec->Decode(stream->data(), nullptr, nullptr, back->data()); }});
}

#ifdef KESTRELINK_HAVE_CHARLS
// CharLS lossless, one JPEG-LS stream per band of rows: a stream set for
// each team size, since the bands differ.
struct Bands {
  std::vector<FrameBuffer> streams[3];
  std::vector<size_t> sizes[3];
};

size_t EncodeBand(const Frame& f, uint32_t first, uint32_t rows, FrameBuffer& out) {
  const Settings& s = BenchSettings();
  const size_t pixelBytes = f.bits == 8 ? 1 : 2;
  charls::jpegls_encoder encoder;
  encoder.frame_info({s.width, rows, int32_t(f.bits), 1});
  encoder.destination(out.data(), out.size());
  return encoder.encode(f.raw.data() + size_t(first) * s.width * pixelBytes, size_t(rows) * s.width * pixelBytes);
}

void DecodeBand(const Frame& f, uint32_t first, uint32_t rows, const FrameBuffer& in, size_t size, uint8_t* back) {
  const Settings& s = BenchSettings();
  const size_t pixelBytes = f.bits == 8 ? 1 : 2;
  charls::jpegls_decoder decoder(in.data(), size, true);
  decoder.decode(back + size_t(first) * s.width * pixelBytes, size_t(rows) * s.width * pixelBytes);
}

// The band that begins at `first` when `team` bands cover the frame.
size_t BandIndex(uint32_t first, int team) {
  return team <= 1 ? 0 : size_t(uint64_t(first) * uint64_t(team) / BenchSettings().height);
}

void CharLS(Frame& f, int levels) {
  const std::string suffix = ":" + f.name + ".L" + std::to_string(levels);
  auto back = std::make_shared<FrameBuffer>(f.raw.size());
  auto bands = std::make_shared<Bands>();
  const Frame* frame = &f;
  auto encode = [bands, frame](int n) {
    const int team = std::clamp(n, 1, 2);
    SplitRows(BenchSettings().height, team, [&](uint32_t first, uint32_t rows) {
      const size_t t = BandIndex(first, team);
      bands->sizes[team][t] = EncodeBand(*frame, first, rows, bands->streams[team][t]);
    });
    return true;
  };
  auto decode = [bands, frame, back](int n) {
    const int team = std::clamp(n, 1, 2);
    SplitRows(BenchSettings().height, team, [&](uint32_t first, uint32_t rows) {
      const size_t t = BandIndex(first, team);
      DecodeBand(*frame, first, rows, bands->streams[team][t], bands->sizes[team][t], back->data());
    });
    return true;
  };
  for (int team : {1, 2}) {
    for (int t = 0; t < team; ++t) bands->streams[team].emplace_back(f.raw.size() + 4096);
    bands->sizes[team].assign(size_t(team), 0);
    encode(team);
    decode(team);
  }
  size_t total = 0;
  for (size_t b : bands->sizes[1]) total += b;
  Sizes().push_back({f.name, "charls lossless", f.raw.size(), total, LargestDifference(f, back->data())});
  const Team team{"JPEG-LS, one stream per band of rows", {}};
  Register(Case{"encode" + suffix, "charls", f.raw.size(), total, team, encode});
  Register(Case{"decode" + suffix, "charls", total, f.raw.size(), team, decode});
}
#endif

std::vector<std::unique_ptr<Frame>>& Frames() { return Shared<std::vector<std::unique_ptr<Frame>>>(); }

}  // namespace

void RegisterCases() {
  const Settings& s = BenchSettings();
  const size_t pixels = size_t(s.width) * s.height;
  const std::vector<uint16_t> scene12 = Scene(s.width, s.height, 12);
  const std::vector<uint16_t> scene8 = Scene(s.width, s.height, 8);
  auto narrow = std::make_unique<Frame>(Frame{"mono8", 8, FrameBuffer(pixels)});
  for (size_t i = 0; i < pixels; ++i) narrow->raw.data()[i] = uint8_t(scene8[i]);
  auto wide = std::make_unique<Frame>(Frame{"mono12in16", 12, FrameBuffer(2 * pixels)});
  for (size_t i = 0; i < pixels; ++i) {  // little-endian words
    wide->raw.data()[2 * i] = uint8_t(scene12[i]);
    wide->raw.data()[2 * i + 1] = uint8_t(scene12[i] >> 8);
  }
  Frames().push_back(std::move(narrow));
  Frames().push_back(std::move(wide));
  RegisterMemcpy(1);
  RegisterMemcpy(2);
  for (auto& frame : Frames()) {
    Ours(*frame, 3);
#ifdef KESTRELINK_HAVE_CHARLS
    CharLS(*frame, 3);
#endif
  }
  std::atexit(PrintSizes);
}

}  // namespace kestrelink::bench
