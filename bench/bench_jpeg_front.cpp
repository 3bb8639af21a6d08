// CJpegConversion::EncodeJpeg (normalisation and encoding in one call) for
// format 100 at 16 bits, 200 at 48 bits, 700 and 500, next to the same
// normalising conversion (CIppImageConverter) followed by the bare engine
// that the front drives with the front's settings, and followed by
// libjpeg-turbo's TurboJPEG with the nearest settings. None of the four
// frames has 8 or 24 bits a pixel, so the front codes them all with its
// libjpeg back-end, mono included; a frame it can borrow (500 at 32 bits)
// goes to the engine as it is, with no copy on either side. The front's overhead is its
// time over "convert+engine". Conversions use the library's team; both JPEG
// engines code on one thread.
#include <kestrelink/CIppImageConverter.h>
#include <kestrelink/CJpegConversion.h>
#include <turbojpeg.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"
#include "jpeg/front/IjlCore.h"

namespace kestrelink::bench {
namespace {

using namespace kestrelink::jpegfront;

constexpr int kQuality = 85;

// A smooth camera-like value at (x, y) for channel c, 0 .. top, with a little noise.
uint32_t SceneValue(uint32_t x, uint32_t y, int c, uint32_t w, uint32_t h, uint32_t top, uint8_t noise) {
  double v = 0.15 + 0.55 * x / w + (0.2 + 0.05 * c) * y / h + 0.1 * std::sin(x * 0.01 * (c + 1));
  v += ((noise & 7) - 3.5) / 255.0;
  v = v < 0 ? 0 : v > 1 ? 1 : v;
  return uint32_t(v * top);
}

// Camera frames of the four formats, filled from the scene.
std::vector<uint8_t> Frame(uint32_t format, uint32_t w, uint32_t h) {
  std::vector<uint8_t> noise(size_t(w) * h);
  FillBytes(noise.data(), noise.size(), 0x5EED);
  std::vector<uint8_t> out;
  auto put16 = [&](size_t i, uint32_t v) { out[2 * i] = uint8_t(v), out[2 * i + 1] = uint8_t(v >> 8); };
  for (uint32_t y = 0; y < h; ++y)
    for (uint32_t x = 0; x < w; ++x) {
      const size_t p = size_t(y) * w + x;
      const uint8_t n = noise[p];
      switch (format) {
        case 100:
          out.resize(size_t(w) * h * 2);
          put16(p, SceneValue(x, y, 0, w, h, 4095, n));
          break;
        case 200:
          out.resize(size_t(w) * h * 6);
          for (int c = 0; c < 3; ++c) put16(p * 3 + c, SceneValue(x, y, c, w, h, 4095, n));
          break;
        case 700:  // U Y0 V Y1
          out.resize(size_t(w) * h * 2);
          out[2 * p] = uint8_t((x & 1) ? SceneValue(x, y, 2, w, h, 255, n) : SceneValue(x, y, 1, w, h, 255, n));
          out[2 * p + 1] = uint8_t(SceneValue(x, y, 0, w, h, 255, n));
          break;
        default:  // 500, BGRx
          out.resize(size_t(w) * h * 4);
          for (int c = 0; c < 3; ++c) out[p * 4 + c] = uint8_t(SceneValue(x, y, c, w, h, 255, n));
          out[p * 4 + 3] = 0;
          break;
      }
    }
  return out;
}

struct Format {
  std::string name;
  uint32_t format, bits, sampleBits;
  int channels;      // of the normalised frame
  int tjPixel, tjSampling;
};

// The normalising conversion the front makes for each format; the frame the
// engine reads, or null on failure.
const uint8_t* Normalise(CIppImageConverter& c, const Format& f, uint32_t w, uint32_t h, uint8_t* src, uint8_t* dst) {
  bool ok = true;
  switch (f.format) {
    case 100: ok = c.Mono16ToMono8(w, h, f.sampleBits, src, dst, false); break;
    case 200: ok = c.BGR48ToBGR24(w, h, f.sampleBits, src, dst, false); break;
    case 700: ok = c.UVY422ToBGR24(w, h, src, dst, false); break;
    default: return src;  // borrowed as it is
  }
  return ok ? dst : nullptr;
}

// The engine the front drives, on the normalised frame, set up as the front
// sets it up, room included (a byte a JPEG channel a pixel).
size_t Engine(const Format& f, const uint8_t* frame, uint32_t w, uint32_t h, uint8_t* out) {
  if (frame == nullptr) return 0;
  IjlProperties p;
  p.dibBytes = const_cast<uint8_t*>(frame);
  p.dibWidth = int(w), p.dibHeight = int(h), p.quality = kQuality;
  if (f.format == 100) {
    p.dibChannels = 1, p.dibColour = kIjlGray, p.jpgChannels = 1, p.jpgColour = kIjlGray;
    p.jpgSampling = kIjlSamplingNone;
  } else if (f.format == 500) {
    p.dibChannels = 4, p.dibColour = kIjlRgba, p.jpgChannels = 4, p.jpgColour = kIjlYcbcra, p.jpgSampling = kIjl411;
  } else {
    p.dibChannels = 3, p.dibColour = kIjlBgr, p.jpgChannels = 3, p.jpgColour = kIjlYcbcr, p.jpgSampling = kIjl444;
  }
  p.jpgBytes = out;
  p.jpgSizeBytes = uint32_t(p.jpgChannels) * w * h;
  return IjlWrite(p, kIjlWriteBuffer) == kIjlOk ? p.jpgSizeBytes : 0;
}

size_t Turbo(const Format& f, const uint8_t* frame, uint32_t w, uint32_t h, uint8_t* out, size_t room) {
  static thread_local tjhandle handle = tjInitCompress();
  unsigned char* dst = out;
  unsigned long size = room;
  if (tjCompress2(handle, frame, int(w), 0, int(h), f.tjPixel, &dst, &size, f.tjSampling, kQuality,
                  TJFLAG_NOREALLOC) != 0)
    return 0;
  return size;
}

struct Buffers {
  std::vector<uint8_t> frame;
  CJpegConversion jpeg;
  CIppImageConverter converter;
  FrameBuffer normalised, out;
};

void Fail(const std::string& what) {
  std::fprintf(stderr, "bench_jpeg_front: %s failed\n", what.c_str());
  std::exit(1);
}

void RegisterFormat(const Format& f) {
  const FrameSize size;
  const uint32_t w = size.w, h = size.h;
  auto b = std::make_shared<Buffers>();
  b->frame = Frame(f.format, w, h);
  const size_t normalisedBytes = size_t(w) * h * f.channels, room = normalisedBytes + (1 << 20);
  b->normalised = FrameBuffer(normalisedBytes);
  b->out = FrameBuffer(room);
  if (b->jpeg.InitConverter(w, h, f.bits, f.sampleBits, f.format, kQuality, true) != 1) Fail("InitConverter " + f.name);
  const std::string op = "EncodeJpeg:" + f.name;
  const size_t raw = b->frame.size(), jpegBytes = normalisedBytes / 8;  // written bytes: a rough stream size
  auto front = [b](int) {
    int unused = 0;
    return b->jpeg.EncodeJpeg(nullptr, nullptr, b->frame.data(), b->out.data(), &unused, nullptr);
  };
  if (!front(1)) Fail("EncodeJpeg " + f.name);
  Register(Case{op, kOurs, raw, jpegBytes, LibraryTeam(), front});
  // Both write behind a 4-byte word, as the front does.
  Register(Case{op, "convert+engine", raw, jpegBytes, LibraryTeam(), [b, f, w, h](int) {
                  return Engine(f, Normalise(b->converter, f, w, h, b->frame.data(), b->normalised.data()), w, h,
                                b->out.data() + 4) > 0;
                }});
  Register(Case{op, "convert+TurboJPEG", raw, jpegBytes, LibraryTeam(), [b, f, w, h, room](int) {
                  const uint8_t* frame = Normalise(b->converter, f, w, h, b->frame.data(), b->normalised.data());
                  return frame != nullptr && Turbo(f, frame, w, h, b->out.data() + 4, room - 4) > 0;
                }});
}

}  // namespace

void RegisterCases() {
  const Format formats[] = {
      {"100-mono16", 100, 16, 12, 1, TJPF_GRAY, TJSAMP_GRAY},
      {"200-bgr48", 200, 48, 12, 3, TJPF_BGR, TJSAMP_444},
      {"700-uvy422", 700, 16, 8, 3, TJPF_BGR, TJSAMP_444},
      // TurboJPEG has no four-component YCbCrA: its row codes BGRx as YCbCr 2 x 2.
      {"500-bgrx32", 500, 32, 8, 4, TJPF_BGRX, TJSAMP_420},
  };
  RegisterMemcpy(1);
  for (const Format& f : formats) RegisterFormat(f);
}

}  // namespace kestrelink::bench
