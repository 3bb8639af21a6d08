// The general rotation under every processor variant against the portable
// rule, byte for byte: interior runs of the vector variants gather whole
// words and must still give exactly the per-pixel result, the fourth sample
// of AC4 pixels untouched, at odd sizes, several angles and each kind.
#include <gtest/gtest.h>

#include "primitives/RotatePrimitives.h"
#include "support/TestSupport.h"

namespace {

template <class T, class Kernel>
std::vector<uint8_t> Turn(Kernel kernel, kestrelink::CpuVariant v, const std::vector<uint8_t>& src, int w, int h,
                          int bytes, double angle, int kind, bool bottomUp) {
  testsupport::ScopedVariant variant(v);
  std::vector<uint8_t> dst(size_t(w + 3) * (h + 2) * bytes, 0x5C);
  const int step = w * bytes, dstStep = (w + 3) * bytes;
  const T* first = reinterpret_cast<const T*>(src.data() + (bottomUp ? size_t(h - 1) * step : 0));
  double xs, ys;
  ippiGetRotateShift(w / 2.0, h / 3.0, angle, &xs, &ys);
  EXPECT_EQ(kernel(first, {w, h}, bottomUp ? -step : step, {1, 0, w - 1, h}, reinterpret_cast<T*>(dst.data()), dstStep,
                   {0, 1, w + 3, h + 1}, angle, xs, ys, kind),
            ippStsNoErr);
  return dst;
}

TEST(RotateRunsVariants, EveryVariantGivesThePortableBytes) {
  const std::pair<int, int> sizes[] = {{9, 7}, {53, 41}, {130, 67}};
  for (auto [w, h] : sizes)
    for (double angle : {0.0, 7.5, -33.0, 90.0, 181.0})
      for (int kind : {IPPI_INTER_NN, IPPI_INTER_LINEAR, IPPI_INTER_CUBIC, IPPI_INTER_LINEAR | IPPI_SMOOTH_EDGE})
        for (bool bottomUp : {false, true}) {
          SCOPED_TRACE(testing::Message()
                       << w << "x" << h << " angle " << angle << " kind " << kind << (bottomUp ? " bottom-up" : ""));
          const auto src8 = testsupport::RandomBytes(size_t(w) * h * 4, uint32_t(w * h + kind));
          const auto src16 = testsupport::RandomWords(size_t(w) * h, 65536, uint32_t(w + h));
          const auto want1 =
              Turn<Ipp8u>(ippiRotate_8u_C1R, kestrelink::kVariantPortable, src8, w, h, 1, angle, kind, bottomUp);
          const auto want4 =
              Turn<Ipp8u>(ippiRotate_8u_AC4R, kestrelink::kVariantPortable, src8, w, h, 4, angle, kind, bottomUp);
          const auto want16 =
              Turn<Ipp16u>(ippiRotate_16u_C1R, kestrelink::kVariantPortable, src16, w, h, 2, angle, kind, bottomUp);
          for (auto v : testsupport::RunnableVariants()) {
            ASSERT_EQ(Turn<Ipp8u>(ippiRotate_8u_C1R, v, src8, w, h, 1, angle, kind, bottomUp), want1)
                << kestrelink::VariantName(v) << " 8u C1";
            ASSERT_EQ(Turn<Ipp8u>(ippiRotate_8u_AC4R, v, src8, w, h, 4, angle, kind, bottomUp), want4)
                << kestrelink::VariantName(v) << " 8u AC4";
            ASSERT_EQ(Turn<Ipp16u>(ippiRotate_16u_C1R, v, src16, w, h, 2, angle, kind, bottomUp), want16)
                << kestrelink::VariantName(v) << " 16u C1";
          }
        }
}

}  // namespace
