// CIppImageMerger at 1920 x 1080: the overlay of two layers of the frame's
// size (the second offset by (8, 6), so the output is a little larger),
// blended with the identity gamma and with gamma 2.2, and the ratio through
// the pseudo-colour table, next to memcpy of an output of the same size.
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
  CIppImageMerger merger;
  MergeFrames() {
    FillBytes(first.data(), pixels, 0x31);
    FillBytes(second.data(), pixels, 0x32);
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

}  // namespace

void RegisterCases() {
  RegisterMemcpy(1);
  RegisterMemcpy(3);
  Blend("Mono8 overlay, blend, gamma 1", 1.0);
  Blend("Mono8 overlay, blend, gamma 2.2", 2.2);
  PseudoColour("Mono8 overlay, ratio to pseudo-colour BGR");
}

}  // namespace kestrelink::bench
