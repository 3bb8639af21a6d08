// CIppImageMerger at 1920 x 1080: the overlay of two layers of the frame's
// size (the second offset by (8, 6), so the output is a little larger):
// 8-bit layers blended with the identity gamma and with gamma 2.2, their
// ratio as mono, through the pseudo-colour table and by hue (HSL), and
// 12-bit layers blended and by ratio to pseudo-colour, next to memcpy of an
// output of the same size.
#include <kestrelink/CIppImageMerger.h>

#include <cstdint>
#include <string>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"

namespace kestrelink::bench {
namespace {

constexpr int kOffsetX = 8, kOffsetY = 6;

struct MergeFrames : FrameSize {
  uint32_t outW = w + kOffsetX, outH = h + kOffsetY;
  FrameBuffer first{pixels}, second{pixels}, mono{size_t(outW) * outH}, bgr{3 * size_t(outW) * outH};
  FrameBuffer first16{2 * pixels}, second16{2 * pixels}, mono16{2 * size_t(outW) * outH};
  CIppImageMerger merger;
  MergeFrames() {
    FillBytes(first.data(), pixels, 0x31);
    FillBytes(second.data(), pixels, 0x32);
    FillBytes(first16.data(), 2 * pixels, 0x33);
    FillBytes(second16.data(), 2 * pixels, 0x34);
    // 12-bit samples.
    for (size_t i = 0; i < 2 * pixels; i += 2) first16.data()[i + 1] &= 0x0F, second16.data()[i + 1] &= 0x0F;
  }
};

MergeFrames& Frames() { return Shared<MergeFrames>(); }

void Blend(const std::string& name, double gamma) {
  const size_t pixels = Frames().pixels;
  Register(Case{name, kOurs, 2 * pixels, pixels, LibraryTeam(), [gamma](int) {
                  MergeFrames& f = Frames();
                  return f.merger.MergeMono8ToMono8(f.w, f.h, f.first.data(), 0.5f, f.w, f.h, f.second.data(),
                                                    f.mono.data(), kOffsetX, kOffsetY, 0, 0, gamma, 0.0, 0, 0, false);
                }});
}

void PseudoColour(const std::string& name) {
  const size_t pixels = Frames().pixels;
  Register(Case{name, kOurs, 2 * pixels, 3 * pixels, LibraryTeam(), [](int) {
                  MergeFrames& f = Frames();
                  return f.merger.SubMono8ToBGRByPseudoColor(f.w, f.h, f.first.data(), nullptr, f.w, f.h,
                                                             f.second.data(), nullptr, f.bgr.data(), kOffsetX,
                                                             kOffsetY, 0, 0, 1.0, 0.0, 0, 0, false);
                }});
}

void MonoRatio(const std::string& name) {
  const size_t pixels = Frames().pixels;
  Register(Case{name, kOurs, 2 * pixels, pixels, LibraryTeam(), [](int) {
                  MergeFrames& f = Frames();
                  return f.merger.SubMono8ToMono8(f.w, f.h, f.first.data(), nullptr, f.w, f.h, f.second.data(), nullptr,
                                                  f.mono.data(), kOffsetX, kOffsetY, 0, 0, 2.2, 0.0, 0, 0, false);
                }});
}

void Hsl(const std::string& name) {
  const size_t pixels = Frames().pixels;
  Register(Case{name, kOurs, 2 * pixels, 3 * pixels, LibraryTeam(), [](int) {
                  MergeFrames& f = Frames();
                  return f.merger.SubMono8ToBGRByHSL(f.w, f.h, f.first.data(), nullptr, 20, f.w, f.h, f.second.data(),
                                                     nullptr, 170, f.bgr.data(), kOffsetX, kOffsetY, 0, 0, 1.0, 0.0, 0,
                                                     0, false);
                }});
}

void Blend16(const std::string& name, double gamma) {
  const size_t pixels = Frames().pixels;
  Register(Case{name, kOurs, 4 * pixels, 2 * pixels, LibraryTeam(), [gamma](int) {
                  MergeFrames& f = Frames();
                  return f.merger.MergeMono16ToMono16(f.w, f.h, 12, f.first16.data(), 0.5f, f.w, f.h,
                                                      f.second16.data(), f.mono16.data(), kOffsetX, kOffsetY, 0, 0,
                                                      gamma, 0.0, 0, 0, false);
                }});
}

void PseudoColour16(const std::string& name) {
  const size_t pixels = Frames().pixels;
  Register(Case{name, kOurs, 4 * pixels, 3 * pixels, LibraryTeam(), [](int) {
                  MergeFrames& f = Frames();
                  return f.merger.SubMono16ToBGRByPseudoColor(f.w, f.h, 12, f.first16.data(), nullptr, f.w, f.h,
                                                              f.second16.data(), nullptr, f.bgr.data(), kOffsetX,
                                                              kOffsetY, 0, 0, 1.0, 0.0, 0, 0, false);
                }});
}

}  // namespace

void RegisterCases() {
  RegisterMemcpy(1);
  RegisterMemcpy(2);
  RegisterMemcpy(3);
  Blend("Mono8 overlay, blend, gamma 1", 1.0);
  Blend("Mono8 overlay, blend, gamma 2.2", 2.2);
  PseudoColour("Mono8 overlay, ratio to pseudo-colour BGR");
  MonoRatio("Mono8 overlay, ratio, gamma 2.2");
  Hsl("Mono8 overlay, ratio to HSL BGR");
  Blend16("Mono16 overlay (12-bit), blend, gamma 1", 1.0);
  Blend16("Mono16 overlay (12-bit), blend, gamma 2.2", 2.2);
  PseudoColour16("Mono16 overlay (12-bit), ratio to pseudo-colour BGR");
}

}  // namespace kestrelink::bench
