// The table fill of every processor variant against the evaluation of one
// colour at a time, on random tables of several sizes (values a little out
// of range, so that clamping shows).
#include <gtest/gtest.h>

#include <random>

#include "colour/LookEvaluate.h"
#include "colour/LookKernels.h"
#include "colour/LookPrepare.h"
#include "support/TestSupport.h"

namespace {

using namespace kestrelink::colour;

TEST(LookKernels, EveryVariantFillsPlanesAsThePixelEvaluation) {
  for (int n : {2, 16, 64}) {
    LookLut look;
    look.size = n;
    const size_t floats = size_t(n) * n * n * 3;
    look.lut3D.reset(new float[floats]);
    std::mt19937 rng{uint32_t(n)};
    std::uniform_real_distribution<float> value(-0.1f, 1.1f);
    for (size_t v = 0; v < floats; ++v) look.lut3D[v] = value(rng);
    BuildCornerWeights(look);
    std::vector<uint8_t> plane(256 * 256 * 3);
    for (auto variant : testsupport::RunnableVariants()) {
      testsupport::ScopedVariant scoped(variant);
      for (uint32_t o : {0u, 77u, 255u}) {
        TheLookKernels().fillPlane(look, o, plane.data());
        int mismatches = 0;
        for (uint32_t m = 0; m < 256; ++m)
          for (uint32_t i = 0; i < 256; ++i) {
            uint8_t comp[3];
            Evaluate8(look, i, m, o, comp);
            const uint8_t* got = &plane[(size_t(m) * 256 + i) * 3];
            mismatches += got[0] != comp[2] || got[1] != comp[1] || got[2] != comp[0];
          }
        EXPECT_EQ(mismatches, 0) << "N " << n << " variant " << kestrelink::VariantName(variant) << " plane " << o;
      }
    }
  }
}

}  // namespace
