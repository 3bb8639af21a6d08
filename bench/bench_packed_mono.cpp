// Packed and swapped mono conversions of CIppImageConverter on whole frames
// at 1920x1080 and 2560x1600 in one run, against memcpy of each output size
// at each frame size. No library converts these camera layouts, so memcpy
// (the physical limit of a pass that writes that many bytes) is the only
// peer. Sources hold pseudo-random bytes; unpacking does not depend on them.
//
// MonoPcoPixelPackedToMono16 sets the process-wide team to 4 threads on
// every call, so its rows run on 4 threads in every mode; its
// ":rows at team" line runs the same frame loop at the mode's team. Its
// output is counted as the frame's 2 bytes a pixel, though the nine-slot
// rows write 2.25 (the ninth slot of each group lands in the next row).
#include <kestrelink/CIppImageConverter.h>

#include <cstdint>
#include <cstring>
#include <deque>
#include <string>

#include "convert/PackedMonoNineSlots.h"
#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"

namespace kestrelink::bench {
namespace {

constexpr uint32_t kDepth = 12, kPackedBits = 12;

struct Size {
  uint32_t w, h;
};

struct PackedFrames {
  uint32_t w, h;
  size_t pixels = size_t(w) * h;
  FrameBuffer packed{pixels * 3 / 2 + 16};  // 12 bits a pixel, pairs or PCO groups
  FrameBuffer words{2 * pixels};
  FrameBuffer dst{4 * pixels + 4 * size_t(w)};  // room for the nine-slot rows' reach
  CIppImageConverter plain;

  PackedFrames(uint32_t width, uint32_t height) : w(width), h(height) {
    FillBytes(packed.data(), packed.size(), 0x5EED0Cull);
    FillBytes(words.data(), words.size(), 0x5EED16ull);
  }
};

std::deque<PackedFrames>& AllFrames() {
  static std::deque<PackedFrames> frames;
  return frames;
}

std::string At(const char* operation, const PackedFrames& f) {
  return std::string(operation) + " " + std::to_string(f.w) + "x" + std::to_string(f.h);
}

template <class Call>
void Ours(PackedFrames& f, const char* operation, double readPerPixel, size_t writtenPerPixel, Call call) {
  Register(Case{At(operation, f), kOurs, size_t(readPerPixel * double(f.pixels)), writtenPerPixel * f.pixels,
                LibraryTeam(), [&f, call](int) { return call(f); }});
}

// memcpy of `bytesPerPixel` a pixel at this frame size, split into bands of
// rows, one per thread.
void Memcpy(const PackedFrames& f, uint32_t bytesPerPixel) {
  static std::deque<FrameBuffer> buffers;
  const size_t rowBytes = size_t(f.w) * bytesPerPixel;
  FrameBuffer& src = buffers.emplace_back(rowBytes * f.h);
  FrameBuffer& dst = buffers.emplace_back(rowBytes * f.h);
  FillBytes(src.data(), src.size(), 0x3E3C9ull + bytesPerPixel);
  Register(Case{At(("memcpy:" + std::to_string(bytesPerPixel) + "Bpp").c_str(), f), kMemcpy, src.size(), dst.size(),
                SplitRowsTeam(), [&src, &dst, rowBytes, rows = f.h](int threads) {
                  SplitRows(rows, threads, [&](uint32_t first, uint32_t count) {
                    std::memcpy(dst.data() + first * rowBytes, src.data() + first * rowBytes, count * rowBytes);
                  });
                  return true;
                }});
}

void RegisterSize(PackedFrames& f) {
  for (uint32_t bytesPerPixel : {4u, 2u, 1u}) Memcpy(f, bytesPerPixel);
  const uint32_t b = kPackedBits, d = kDepth;
  Ours(f, "Mono16PixelPackedToMono16:d12", 1.5, 2, [b, d](PackedFrames& f) {
    return f.plain.Mono16PixelPackedToMono16(f.w, f.h, b, d, f.packed.data(), f.dst.data(), false);
  });
  Ours(f, "MonoPcoPixelPackedToMono16:d12", 1.5, 2, [b, d](PackedFrames& f) {
    return f.plain.MonoPcoPixelPackedToMono16(f.w, f.h, b, d, f.packed.data(), f.dst.data(), false);
  });
  Ours(f, "MonoPcoPixelPackedToMono16:rows at team", 1.5, 2, [](PackedFrames& f) {
    packedmono::PcoToNineSlots(f.packed.data(), f.w, f.h, 0, f.dst.data(), false);
    return true;
  });
  Ours(f, "Mono16PixelPackedToBGRx:d12", 1.5, 4, [b, d](PackedFrames& f) {
    return f.plain.Mono16PixelPackedToBGRx(f.w, f.h, b, d, f.packed.data(), f.dst.data(), false);
  });
  Ours(f, "Mono16MSBToMono8:d12", 2, 1,
       [d](PackedFrames& f) { return f.plain.Mono16MSBToMono8(f.w, f.h, d, f.words.data(), f.dst.data(), false); });
  Ours(f, "Mono16MSBSwapToMono16:d12", 2, 2, [d](PackedFrames& f) {
    return f.plain.Mono16MSBSwapToMono16(f.w, f.h, d, f.words.data(), f.dst.data(), false);
  });
}

}  // namespace

void RegisterCases() {
  const bool quick = BenchSettings().quick;
  const Size sizes[] = {quick ? Size{320, 240} : Size{1920, 1080}, quick ? Size{400, 256} : Size{2560, 1600}};
  for (const Size& s : sizes) RegisterSize(AllFrames().emplace_back(s.w, s.h));
}

}  // namespace kestrelink::bench
