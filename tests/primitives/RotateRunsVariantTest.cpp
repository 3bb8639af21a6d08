// The general rotation under every processor variant against the portable
// rule, byte for byte: interior runs of the vector variants gather whole
// words and must still give exactly the per-pixel result, the fourth sample
// of AC4 pixels untouched, at odd sizes, several angles and each kind, for
// every pixel form.
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

using Form = std::vector<uint8_t> (*)(kestrelink::CpuVariant, const std::vector<uint8_t>&, int, int, double, int);

template <class T, auto Kernel, int Bytes, bool BottomUp>
std::vector<uint8_t> TurnForm(kestrelink::CpuVariant v, const std::vector<uint8_t>& src, int w, int h, double angle,
                              int kind) {
  return Turn<T>(Kernel, v, src, w, h, Bytes, angle, kind, BottomUp);
}

TEST(RotateRunsVariants, EveryVariantGivesThePortableBytes) {
  const std::pair<int, int> sizes[] = {{9, 7}, {53, 41}, {130, 67}};
  // Every form the general path takes, and two read from bottom-up rows.
  const std::pair<const char*, Form> forms[] = {
      {"8u C1", TurnForm<Ipp8u, ippiRotate_8u_C1R, 1, false>},
      {"8u C3", TurnForm<Ipp8u, ippiRotate_8u_C3R, 3, false>},
      {"8u AC4", TurnForm<Ipp8u, ippiRotate_8u_AC4R, 4, false>},
      {"16u C1", TurnForm<Ipp16u, ippiRotate_16u_C1R, 2, false>},
      {"16u C3", TurnForm<Ipp16u, ippiRotate_16u_C3R, 6, false>},
      {"16u AC4", TurnForm<Ipp16u, ippiRotate_16u_AC4R, 8, false>},
      {"8u C1 bottom-up", TurnForm<Ipp8u, ippiRotate_8u_C1R, 1, true>},
      {"16u AC4 bottom-up", TurnForm<Ipp16u, ippiRotate_16u_AC4R, 8, true>},
  };
  for (auto [w, h] : sizes) {
    // Random bytes: 16-bit samples take every value, 65535 included.
    const auto src = testsupport::RandomBytes(size_t(w) * h * 8, uint32_t(w * h));
    for (double angle : {0.0, 7.5, -33.0, 90.0, 181.0, 250.25})
      for (int kind : {IPPI_INTER_NN, IPPI_INTER_LINEAR, IPPI_INTER_CUBIC, IPPI_INTER_LINEAR | IPPI_SMOOTH_EDGE})
        for (const auto& [name, turn] : forms) {
          SCOPED_TRACE(testing::Message() << name << " " << w << "x" << h << " angle " << angle << " kind " << kind);
          const auto want = turn(kestrelink::kVariantPortable, src, w, h, angle, kind);
          for (auto v : testsupport::RunnableVariants())
            ASSERT_EQ(turn(v, src, w, h, angle, kind), want) << kestrelink::VariantName(v);
        }
  }
}

}  // namespace
