// CImageCombine on two half-width frames placed side by side into one
// 1920 x 1080 destination (and one case one above the other): the copying
// members against memcpy of the destination, the converting members against
// the same conversion of one whole frame by CIppImageConverter (implementation
// "converter"), so that the cost of placing shows as the ratio. Sources hold
// pseudo-random bytes. The YUV combines use the library's integer formula
// where the converter's plain path uses the studio-range kernels: the same
// frame traffic, other arithmetic.
#include <kestrelink/CImageCombine.h>
#include <kestrelink/CIppImageConverter.h>

#include <cstdint>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"

namespace kestrelink::bench {
namespace {

struct CombineFrames : FrameSize {
  uint32_t half = w / 2;
  FrameBuffer a{8 * pixels / 2}, b{8 * pixels / 2};  // room for the widest source, 8 bytes a pixel
  FrameBuffer planes[2][3] = {{FrameBuffer{pixels}, FrameBuffer{pixels}, FrameBuffer{pixels}},
                              {FrameBuffer{pixels}, FrameBuffer{pixels}, FrameBuffer{pixels}}};
  FrameBuffer whole{8 * pixels};  // the converter's source: both halves' bytes
  FrameBuffer dst{4 * pixels};
  CImageCombine combine;
  CIppImageConverter conv;

  CombineFrames() {
    FillBytes(a.data(), a.size(), 0xA11ull);
    FillBytes(b.data(), b.size(), 0xB22ull);
    FillBytes(whole.data(), whole.size(), 0xC33ull);
    for (auto& frame : planes)
      for (auto& p : frame) FillBytes(p.data(), p.size(), 0xD44ull + size_t(&p - &frame[0]));
    FillBytes(dst.data(), dst.size(), 0xE55ull);
  }
};

using Frames = CombineFrames;

template <class Call>
void Ours(const char* operation, size_t readTenths, size_t writtenTenths, Call call) {
  RegisterOurs<Frames>(operation, readTenths, writtenTenths, call, 10);
}

template <class Call>
void Converter(const char* operation, size_t readTenths, size_t writtenTenths, Call call) {
  const size_t pixels = Shared<Frames>().pixels;
  Register(Case{operation, "converter", readTenths * pixels / 10, writtenTenths * pixels / 10, LibraryTeam(),
                [call](int) { return call(Shared<Frames>()); }});
}

// A member of the (w1, h1, src1, w2, h2, src2, dst, side) form, side by side.
#define SIDE(method) \
  [](Frames& f) { return f.combine.method(f.half, f.h, f.a.data(), f.w - f.half, f.h, f.b.data(), f.dst.data(), true); }
#define WHOLE(method) [](Frames& f) { return f.conv.method(f.w, f.h, f.whole.data(), f.dst.data(), false); }
#define WHOLE_DEPTH(method, d) [](Frames& f) { return f.conv.method(f.w, f.h, d, f.whole.data(), f.dst.data(), false); }

}  // namespace

void RegisterCases() {
  for (uint32_t bytesPerPixel : {1u, 2u, 3u, 4u}) RegisterMemcpy(bytesPerPixel);

  // Copies: within 1.2x of memcpy of the destination is the aim.
  Ours("Mono8CombineMono8", 10, 10, SIDE(Mono8CombineMono8));
  Ours("Mono16CombineMono16", 20, 20, SIDE(Mono16CombineMono16));
  Ours("BGR24CombineToBGR", 30, 30, SIDE(BGR24CombineToBGR));
  Ours("BGRxCombineToBGRx", 40, 40, SIDE(BGRxCombineToBGRx));
  Ours("BGRxCombineToBGRx above", 40, 40, [](Frames& f) {
    return f.combine.BGRxCombineToBGRx(f.w, f.h / 2, f.a.data(), f.w, f.h - f.h / 2, f.b.data(), f.dst.data(), false);
  });

  // Conversions while placing, next to one frame's conversion.
  Ours("BGR555 to BGR24", 20, 30, SIDE(BGR555CombineToBGR));
  Converter("BGR555 to BGR24", 20, 30, WHOLE(BGR555PackedToBGR24));
  Ours("BGR565 to BGR24", 20, 30, SIDE(BGR565CombineToBGR));
  Converter("BGR565 to BGR24", 20, 30, WHOLE(BGR565PackedToBGR24));
  Ours("BGRx to BGR24", 40, 30, SIDE(BGRxCombineToBGR));
  Converter("BGRx to BGR24", 40, 30, WHOLE(BGRxToBGR24));
  Ours("RGB24 to BGR24", 30, 30, SIDE(RGB24CombineToBGR));
  Converter("RGB24 to BGR24", 30, 30, WHOLE(RGB24ToBGR24));
  Ours("Mono8 to BGR24", 10, 30, SIDE(Mono8CombineBGR));
  Converter("Mono8 to BGR24", 10, 30, WHOLE(Mono8ToBGR));
  Ours("Mono16 to BGR24", 20, 30, [](Frames& f) {
    return f.combine.Mono16CombineBGR(f.half, f.h, 12, f.a.data(), f.w - f.half, f.h, 12, f.b.data(), f.dst.data(),
                                      true);
  });
  Converter("Mono16 to BGR24", 20, 30, WHOLE_DEPTH(Mono16ToBGR, 12));
  Ours("YUV422 to BGR24", 20, 30, SIDE(YUV422CombineBGR));
  Converter("YUV422 to BGR24", 20, 30, WHOLE(YUV422ToBGR24));
  Ours("UVY422 to BGR24", 20, 30, SIDE(UVY422CombineBGR));
  Converter("UVY422 to BGR24", 20, 30, WHOLE(UVY422ToBGR24));
  Ours("UVY411 to BGR24", 15, 30, SIDE(YUV411CombineBGR));
  Converter("UVY411 to BGR24", 15, 30, WHOLE(UVY411ToBGR24));
  Ours("UVY444 to BGR24", 30, 30, SIDE(YUV444CombineBGR));
  Converter("UVY444 to BGR24", 30, 30, WHOLE(UVY444ToBGR24));
  Ours("BGR24P to BGR24", 30, 30, [](Frames& f) {
    return f.combine.BGR24PlannerCombineBGR(f.half, f.h, f.planes[0][0].data(), f.planes[0][1].data(),
                                            f.planes[0][2].data(), f.w - f.half, f.h, f.planes[1][0].data(),
                                            f.planes[1][1].data(), f.planes[1][2].data(), f.dst.data(), true);
  });
  Converter("BGR24P to BGR24", 30, 30, [](Frames& f) {
    return f.conv.BGR24PToBGR24(f.w, f.h, f.planes[0][0].data(), f.planes[0][1].data(), f.planes[0][2].data(),
                                f.dst.data(), false);
  });
  Ours("BGR48 to BGRx (16-bit colour member)", 60, 40, [](Frames& f) {
    return f.combine.BGR48CombineBGR(f.half, f.h, 12, f.a.data(), f.w - f.half, f.h, 12, f.b.data(), f.dst.data(),
                                     true);
  });
  Converter("BGR48 to BGRx (16-bit colour member)", 60, 40, WHOLE_DEPTH(BGR48ToBGRx, 12));
}

}  // namespace kestrelink::bench
