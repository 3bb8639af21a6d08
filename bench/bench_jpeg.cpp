// The JPEG codec (CJPEGEncoder, CJPEGDecoder) against libjpeg-turbo's
// TurboJPEG on the same frame and settings: encode and decode of BGR24 at
// 2 x 2 and 4:4:4 sampling and of grey, baseline at quality 85, and
// progressive BGR24 at 2 x 2. TurboJPEG codes one image on one thread; its
// team-of-2 rows code the frame as two half-height images side by side, one
// per thread. Sizes and PSNR of both codecs are printed after the summary.
#include <turbojpeg.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"
#include "jpeg/CJPEGDecoder.h"
#include "jpeg/CJPEGEncoder.h"
#include "jpeg/JpegStreams.h"

namespace kestrelink::bench {
namespace {

using namespace kestrelink::jpeg;

// A camera-like colour scene: gradients, a disc, bars and a little noise.
std::vector<uint8_t> Scene(uint32_t w, uint32_t h, int channels) {
  std::vector<uint8_t> noise(size_t(w) * h);
  FillBytes(noise.data(), noise.size(), 0x5EED);
  std::vector<uint8_t> out(size_t(w) * h * channels);
  for (uint32_t y = 0; y < h; ++y)
    for (uint32_t x = 0; x < w; ++x) {
      const double dx = x - 0.6 * w, dy = y - 0.4 * h;
      const bool disc = dx * dx + dy * dy < 0.02 * w * h, bar = (x / 64) % 5 == 0 && y > h / 2;
      for (int c = 0; c < channels; ++c) {
        double v = 40 + 150.0 * x / w + (60.0 + 20 * c) * y / h + 30 * std::sin(x * 0.01 * (c + 1));
        if (disc) v += 60 - 40 * c;
        if (bar) v -= 50;
        v += (noise[size_t(y) * w + x] & 7) - 3.5;
        out[(size_t(y) * w + x) * channels + c] = uint8_t(v < 0 ? 0 : v > 255 ? 255 : v);
      }
    }
  return out;
}

double Psnr(const std::vector<uint8_t>& a, const uint8_t* b) {
  double se = 0;
  for (size_t i = 0; i < a.size(); ++i) se += double(a[i] - b[i]) * (a[i] - b[i]);
  return se == 0 ? 99.0 : 10 * std::log10(255.0 * 255.0 * double(a.size()) / se);
}

struct Setting {
  std::string name;
  int channels;
  JSS sampling;
  bool progressive;
  int tjSampling;
  int index;  // TurboJPEG keeps a handle per setting: a handle that once wrote progressive stays so
};

struct Row {
  std::string setting, codec;
  size_t bytes;
  double psnr;
};
std::vector<Row>& Rows() {
  static std::vector<Row> rows;
  return rows;
}

void Fail(const std::string& what) {
  std::fprintf(stderr, "bench_jpeg: %s failed\n", what.c_str());
  std::exit(1);
}

// Our encoder over a frame; answers the stream's length, 0 on failure.
size_t OursEncode(const Setting& s, const uint8_t* src, uint32_t w, uint32_t h, uint8_t* out, size_t room) {
  CMemBuffOutput stream;
  stream.Open(out, uint32_t(room));
  CJPEGEncoder enc;
  if (enc.SetSource(src, int(w) * s.channels, {int(w), int(h)}, s.channels, s.channels == 1 ? JC_GRAY : JC_BGR,
                    JS_444, 8) != JPEG_OK ||
      enc.SetDestination(&stream) != JPEG_OK ||
      enc.SetParams(s.progressive ? JPEG_PROGRESSIVE : JPEG_BASELINE, s.channels == 1 ? JC_GRAY : JC_YCBCR,
                    s.sampling, 0, false, 85) != JPEG_OK ||
      enc.WriteHeader() != JPEG_OK || enc.WriteData() != JPEG_OK)
    return 0;
  return stream.m_position;
}

bool OursDecode(const Setting& s, const uint8_t* in, size_t n, uint8_t* dst, uint32_t w, uint32_t h) {
  CMemBuffInput stream;
  stream.Open(in, uint32_t(n));
  CJPEGDecoder dec;
  int fw, fh, ch, p;
  JCOLOR colour;
  JSS sampling;
  return dec.SetSource(&stream) == JPEG_OK && dec.ReadHeader(&fw, &fh, &ch, &colour, &sampling, &p) == JPEG_OK &&
         dec.SetDestination(dst, int(w) * s.channels, {int(w), int(h)}, s.channels,
                            s.channels == 1 ? JC_GRAY : JC_BGR, JS_444, 8, 1) == JPEG_OK &&
         dec.ReadData() == JPEG_OK;
}

int TjFormat(const Setting& s) { return s.channels == 1 ? TJPF_GRAY : TJPF_BGR; }
int TjFlags(const Setting& s) { return s.progressive ? TJFLAG_PROGRESSIVE : 0; }

// TurboJPEG on rows first .. first + rows of a frame; one handle per thread.
size_t TjEncode(const Setting& s, const uint8_t* src, uint32_t w, uint32_t rows, uint8_t* out, size_t room) {
  static thread_local tjhandle handles[4] = {};
  tjhandle& handle = handles[s.index];
  if (!handle) handle = tjInitCompress();
  unsigned char* dst = out;
  unsigned long size = room;
  if (tjCompress2(handle, src, int(w), 0, int(rows), TjFormat(s), &dst, &size, s.tjSampling, 85,
                  TjFlags(s) | TJFLAG_NOREALLOC) != 0)
    return 0;
  return size;
}

bool TjDecode(const Setting& s, const uint8_t* in, size_t n, uint8_t* dst, uint32_t w, uint32_t rows) {
  static thread_local tjhandle handles[4] = {};
  tjhandle& handle = handles[s.index];
  if (!handle) handle = tjInitDecompress();
  if (tjDecompress2(handle, in, n, dst, int(w), 0, int(rows), TjFormat(s), 0) == 0) return true;
  std::fprintf(stderr, "tj: %s\n", tjGetErrorStr2(handle));
  return false;
}

Team HalvesTeam() { return {"two half-height images side by side, one per thread", {}}; }

struct Buffers {
  std::vector<uint8_t> frame;
  FrameBuffer ours, peer, peerHalves[2], back;
  size_t oursBytes = 0, peerBytes = 0, halfBytes[2] = {};
};

void RegisterSetting(const Setting& s) {
  const FrameSize size;
  const uint32_t w = size.w, h = size.h;
  auto b = std::make_shared<Buffers>();
  b->frame = Scene(w, h, s.channels);
  const size_t raw = b->frame.size(), room = raw + (1 << 20);
  b->ours = FrameBuffer(room);
  b->peer = FrameBuffer(room);
  b->back = FrameBuffer(raw);
  b->oursBytes = OursEncode(s, b->frame.data(), w, h, b->ours.data(), room);
  b->peerBytes = TjEncode(s, b->frame.data(), w, h, b->peer.data(), room);
  if (!b->oursBytes || !b->peerBytes) Fail("first encode of " + s.name);
  const uint32_t half = h / 2;
  for (int i = 0; i < 2; ++i) {
    b->peerHalves[i] = FrameBuffer(room);
    const uint32_t first = i ? half : 0, rows = i ? h - half : half;
    b->halfBytes[i] = TjEncode(s, b->frame.data() + size_t(first) * w * s.channels, w, rows,
                               b->peerHalves[i].data(), room);
  }
  if (!OursDecode(s, b->ours.data(), b->oursBytes, b->back.data(), w, h)) Fail("our decode of " + s.name);
  Rows().push_back({s.name, "ours", b->oursBytes, Psnr(b->frame, b->back.data())});
  if (!TjDecode(s, b->peer.data(), b->peerBytes, b->back.data(), w, h)) Fail("TurboJPEG decode of " + s.name);
  Rows().push_back({s.name, "TurboJPEG", b->peerBytes, Psnr(b->frame, b->back.data())});

  Register(Case{"encode:" + s.name, kOurs, raw, b->oursBytes, LibraryTeam(), [s, b, w, h, room](int) {
                  return OursEncode(s, b->frame.data(), w, h, b->ours.data(), room) > 0;
                }});
  Register(Case{"decode:" + s.name, kOurs, b->oursBytes, raw, LibraryTeam(),
                [s, b, w, h](int) { return OursDecode(s, b->ours.data(), b->oursBytes, b->back.data(), w, h); }});
  Register(Case{"encode:" + s.name, "TurboJPEG", raw, b->peerBytes, HalvesTeam(), [s, b, w, h, room](int threads) {
                  if (threads <= 1) return TjEncode(s, b->frame.data(), w, h, b->peer.data(), room) > 0;
                  bool ok[2] = {false, false};
#pragma omp parallel for num_threads(2)
                  for (int i = 0; i < 2; ++i) {
                    const uint32_t first = i ? h / 2 : 0, rows = i ? h - h / 2 : h / 2;
                    ok[i] = TjEncode(s, b->frame.data() + size_t(first) * w * s.channels, w, rows,
                                     b->peerHalves[i].data(), room) > 0;
                  }
                  return ok[0] && ok[1];
                }});
  Register(Case{"decode:" + s.name, "TurboJPEG", b->peerBytes, raw, HalvesTeam(), [s, b, w, h](int threads) {
                  if (threads <= 1) return TjDecode(s, b->peer.data(), b->peerBytes, b->back.data(), w, h);
                  bool ok[2] = {false, false};
#pragma omp parallel for num_threads(2)
                  for (int i = 0; i < 2; ++i) {
                    const uint32_t first = i ? h / 2 : 0, rows = i ? h - h / 2 : h / 2;
                    ok[i] = TjDecode(s, b->peerHalves[i].data(), b->halfBytes[i],
                                     b->back.data() + size_t(first) * w * s.channels, w, rows);
                  }
                  return ok[0] && ok[1];
                }});
}

void PrintSizes() {
  std::printf("\nStreams of one frame at quality 85 (PSNR over all samples of the frame):\n");
  std::printf("  %-18s %-10s %12s %8s\n", "setting", "codec", "bytes", "PSNR dB");
  for (const Row& r : Rows())
    std::printf("  %-18s %-10s %12zu %8.2f\n", r.setting.c_str(), r.codec.c_str(), r.bytes, r.psnr);
}

}  // namespace

void RegisterCases() {
  const Setting settings[] = {{"bgr24-2x2", 3, JS_411, false, TJSAMP_420, 0},
                              {"bgr24-444", 3, JS_444, false, TJSAMP_444, 1},
                              {"gray", 1, JS_444, false, TJSAMP_GRAY, 2},
                              {"bgr24-2x2-progr", 3, JS_411, true, TJSAMP_420, 3}};
  RegisterMemcpy(3);
  RegisterMemcpy(1);
  for (const Setting& s : settings) RegisterSetting(s);
  std::atexit(PrintSizes);
}

}  // namespace kestrelink::bench
