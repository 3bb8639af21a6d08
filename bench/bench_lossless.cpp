// The lossless coder of CIppImageCompress (Huffman, LZSS, RLE), encode and
// decode of whole frames, against zstd level 1 and lz4 on the same bytes:
// what a user would otherwise pick. Two frames: a 12-bit camera-like frame
// stored as 16-bit words, and an 8-bit one of the same scene. The stream
// formats are sequential, so every coder runs on one thread whatever the
// team; the team-of-2 rows show that. The sizes and ratios are printed at
// the end, after the summary.
#include <kestrelink/CIppImageCompress.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"

#ifdef KESTRELINK_HAVE_ZSTD
#include <zstd.h>
#endif
#ifdef KESTRELINK_HAVE_LZ4
#include <lz4.h>
#endif

namespace kestrelink::bench {
namespace {

Team OneStream() { return {"one stream on the calling thread (the formats have no split)", {}}; }

// A camera-like scene: gradients, a bright disc and bars, `bits` deep, one
// sample per pixel, under `noiseCounts` counts of noise (standard deviation).
std::vector<uint16_t> CameraScene(uint32_t w, uint32_t h, unsigned bits, double noiseCounts) {
  const size_t pixels = size_t(w) * h;
  std::vector<uint8_t> noise(4 * pixels);
  FillBytes(noise.data(), noise.size(), 0xCA3E7Aull);
  std::vector<uint16_t> out(pixels);
  const double top = double((1u << bits) - 1), scale = top / 4095.0;
  for (uint32_t y = 0; y < h; ++y)
    for (uint32_t x = 0; x < w; ++x) {
      const size_t i = size_t(y) * w + x;
      const double dx = x - 0.6 * w, dy = y - 0.4 * h;
      double v = 500 + 1800.0 * x / w + 900.0 * y / h;
      if (dx * dx + dy * dy < 0.02 * w * h) v += 1000;
      if ((x / 64) % 5 == 0 && y > h / 2) v -= 300;
      v *= scale;  // the sum of four bytes spreads by about 148
      v += (int(noise[4 * i]) + noise[4 * i + 1] + noise[4 * i + 2] + noise[4 * i + 3] - 510) * noiseCounts / 148.0;
      out[i] = uint16_t(v < 0 ? 0 : v > top ? top : v);
    }
  return out;
}

struct Frame {
  std::string name;
  FrameBuffer raw;
};

struct Size {
  std::string frame, coder;
  size_t raw, packed;
};
std::vector<Size>& Sizes() {
  static std::vector<Size> sizes;
  return sizes;
}

void PrintSizes() {
  std::printf("\nCompressed sizes (ratio = raw / compressed; MB/s of a row = raw bytes / us per frame):\n");
  std::printf("  %-14s %-10s %12s %12s %7s\n", "frame", "coder", "raw bytes", "compressed", "ratio");
  for (const Size& s : Sizes())
    std::printf("  %-14s %-10s %12zu %12zu %7.3f\n", s.frame.c_str(), s.coder.c_str(), s.raw, s.packed,
                double(s.raw) / double(s.packed));
}

void Check(bool ok, const std::string& what) {
  if (ok) return;
  std::fprintf(stderr, "bench_lossless: %s does not give the frame back\n", what.c_str());
  std::exit(1);
}

// One of our methods, both directions.
void OurMethod(Frame& f, IppCompressType type, const char* method) {
  const uint32_t n = uint32_t(f.raw.size());
  auto codec = std::make_shared<CIppImageCompress>();
  const uint32_t room = codec->InitCompress(type, n);
  auto stream = std::make_shared<FrameBuffer>(size_t(room) + 4);
  auto back = std::make_shared<FrameBuffer>(n);
  const uint32_t payload = codec->EncodeImage(f.raw.data(), stream->data());
  codec->DecodeImage(stream->data(), back->data());
  Check(codec->m_size == n && std::equal(back->data(), back->data() + n, f.raw.data()), method);
  Sizes().push_back({f.name, method, n, size_t(payload) + 4});

  const uint8_t* raw = f.raw.data();
  Register(Case{std::string(method) + ".encode:" + f.name, kOurs, n, payload + 4, OneStream(),
                [codec, stream, raw, type, n](int) {
                  codec->InitCompress(type, n);
                  return codec->EncodeImage(const_cast<uint8_t*>(raw), stream->data()) > 0;
                }});
  Register(Case{std::string(method) + ".decode:" + f.name, kOurs, payload + 4, n, OneStream(),
                [codec, stream, back, type, n](int) {
                  codec->InitCompress(type, n);
                  return codec->DecodeImage(stream->data(), back->data()) && codec->m_size == n;
                }});
}

// A peer's encode and decode, as one function each over (src, n, dst, room).
struct Peer {
  const char* name;
  size_t (*bound)(size_t n);
  size_t (*encode)(const uint8_t* src, size_t n, uint8_t* dst, size_t room);
  size_t (*decode)(const uint8_t* src, size_t n, uint8_t* dst, size_t room);
};

std::vector<Peer> Peers() {
  std::vector<Peer> peers;
#ifdef KESTRELINK_HAVE_ZSTD
  peers.push_back({"zstd-1", [](size_t n) { return ZSTD_compressBound(n); },
                   [](const uint8_t* src, size_t n, uint8_t* dst, size_t room) {
                     static thread_local ZSTD_CCtx* cctx = ZSTD_createCCtx();
                     const size_t r = ZSTD_compressCCtx(cctx, dst, room, src, n, 1);
                     return ZSTD_isError(r) ? size_t(0) : r;
                   },
                   [](const uint8_t* src, size_t n, uint8_t* dst, size_t room) {
                     static thread_local ZSTD_DCtx* dctx = ZSTD_createDCtx();
                     const size_t r = ZSTD_decompressDCtx(dctx, dst, room, src, n);
                     return ZSTD_isError(r) ? size_t(0) : r;
                   }});
#endif
#ifdef KESTRELINK_HAVE_LZ4
  peers.push_back({"lz4", [](size_t n) { return size_t(LZ4_compressBound(int(n))); },
                   [](const uint8_t* src, size_t n, uint8_t* dst, size_t room) {
                     const int r = LZ4_compress_default(reinterpret_cast<const char*>(src),
                                                        reinterpret_cast<char*>(dst), int(n), int(room));
                     return size_t(r > 0 ? r : 0);
                   },
                   [](const uint8_t* src, size_t n, uint8_t* dst, size_t room) {
                     const int r = LZ4_decompress_safe(reinterpret_cast<const char*>(src),
                                                       reinterpret_cast<char*>(dst), int(n), int(room));
                     return size_t(r > 0 ? r : 0);
                   }});
#endif
  return peers;
}

// A peer next to one of our methods: same operation names, so the summary
// puts it beside ours.
void PeerBeside(Frame& f, const Peer& peer, const char* method, bool record) {
  const size_t n = f.raw.size();
  auto packed = std::make_shared<FrameBuffer>(peer.bound(n));
  auto back = std::make_shared<FrameBuffer>(n);
  const size_t size = peer.encode(f.raw.data(), n, packed->data(), packed->size());
  Check(size > 0 && peer.decode(packed->data(), size, back->data(), n) == n &&
            std::equal(back->data(), back->data() + n, f.raw.data()),
        peer.name);
  if (record) Sizes().push_back({f.name, peer.name, n, size});
  const uint8_t* raw = f.raw.data();
  Register(Case{std::string(method) + ".encode:" + f.name, peer.name, n, size, OneStream(),
                [peer, packed, raw, n](int) { return peer.encode(raw, n, packed->data(), packed->size()) > 0; }});
  Register(Case{std::string(method) + ".decode:" + f.name, peer.name, size, n, OneStream(),
                [peer, packed, back, size, n](int) { return peer.decode(packed->data(), size, back->data(), n) == n; }});
}

std::vector<std::unique_ptr<Frame>>& Frames() { return Shared<std::vector<std::unique_ptr<Frame>>>(); }

}  // namespace

void RegisterCases() {
  const Settings& s = BenchSettings();
  const size_t pixels = size_t(s.width) * s.height;
  const std::vector<uint16_t> scene12 = CameraScene(s.width, s.height, 12, 6.0);
  const std::vector<uint16_t> scene8 = CameraScene(s.width, s.height, 8, 1.5);

  auto wide = std::make_unique<Frame>(Frame{"mono12in16", FrameBuffer(2 * pixels)});
  for (size_t i = 0; i < pixels; ++i) {  // little-endian words
    wide->raw.data()[2 * i] = uint8_t(scene12[i]);
    wide->raw.data()[2 * i + 1] = uint8_t(scene12[i] >> 8);
  }
  auto narrow = std::make_unique<Frame>(Frame{"mono8", FrameBuffer(pixels)});
  for (size_t i = 0; i < pixels; ++i) narrow->raw.data()[i] = uint8_t(scene8[i]);
  Frames().push_back(std::move(wide));
  Frames().push_back(std::move(narrow));

  RegisterMemcpy(2);
  RegisterMemcpy(1);
  const std::vector<Peer> peers = Peers();
  struct Method {
    IppCompressType type;
    const char* name;
  };
  for (auto& frame : Frames()) {
    bool first = true;
    for (const Method& m : {Method{IppCompressHuffman, "huffman"}, Method{IppCompressLZ77, "lzss"},
                            Method{IppCompressRLE, "rle"}}) {
      OurMethod(*frame, m.type, m.name);
      for (const Peer& peer : peers) PeerBeside(*frame, peer, m.name, first);
      first = false;
    }
  }
  std::atexit(PrintSizes);
}

}  // namespace kestrelink::bench
