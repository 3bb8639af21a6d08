// CIppImageWrapper::Compute1DFFT: magnitudes summed over rows and added to
// the caller's spectrum, centring, the hint mapping and the cases that leave
// the spectrum alone.
#include <gtest/gtest.h>

#include <kestrelink/CIppImageWrapper.h>

#include <cmath>
#include <vector>

namespace {

constexpr int kOrder = 6, kLength = 1 << kOrder;

struct Rows {
  std::vector<std::vector<short>> data;
  std::vector<short*> pointers;
  explicit Rows(std::vector<std::vector<short>> rows) : data(std::move(rows)) {
    for (auto& r : data) pointers.push_back(r.data());
  }
};

std::vector<double> Spectrum(const Rows& rows, int centred, HintAlgorithm hint = HintNone,
                             std::vector<double> start = std::vector<double>(kLength, 0.0)) {
  CIppImageWrapper wrapper;
  EXPECT_TRUE(wrapper.Compute1DFFT(centred, kLength, kOrder, int(rows.pointers.size()), 8, hint,
                                   const_cast<short**>(rows.pointers.data()), start.data()));
  return start;
}

TEST(Compute1DFFT, ConstantRowsPutTheirEnergyAtZeroOrAtTheCentre) {
  // Constant c: X[0] = 64 c, halved by the scale factor to 32 c; two rows add.
  const Rows rows({std::vector<short>(kLength, 10), std::vector<short>(kLength, -3)});
  const auto plain = Spectrum(rows, 0), centred = Spectrum(rows, 1);
  for (int i = 0; i < kLength; ++i) {
    EXPECT_EQ(plain[i], i == 0 ? 320.0 + 96.0 : 0.0) << i;
    EXPECT_EQ(centred[i], i == kLength / 2 ? 416.0 : 0.0) << i;
  }
}

TEST(Compute1DFFT, CosineShowsAtBothMirroredBinsAndCentringSwapsHalves) {
  // Amplitude 100 at bin 5: X[5] = X[59] = 100 * 64 / 2, halved: 1600.
  std::vector<short> row(kLength);
  for (int j = 0; j < kLength; ++j) row[j] = short(std::lround(100.0 * std::cos(2 * M_PI * 5 * j / kLength)));
  const Rows rows({row});
  const auto plain = Spectrum(rows, 0), centred = Spectrum(rows, 1);
  EXPECT_NEAR(plain[5], 1600.0, 2.0);
  EXPECT_NEAR(plain[kLength - 5], 1600.0, 2.0);
  for (int i = 0; i < kLength; ++i) EXPECT_EQ(centred[i], plain[(i + kLength / 2) % kLength]) << i;
}

TEST(Compute1DFFT, AccumulatesIntoTheCallersSpectrum) {
  const Rows rows({std::vector<short>(kLength, 1)});
  const auto once = Spectrum(rows, 0);
  const auto twice = Spectrum(rows, 0, HintNone, once);
  EXPECT_EQ(twice[0], 2 * once[0]);
  EXPECT_EQ(Spectrum(rows, 0, HintNone, std::vector<double>(kLength, 0.5))[0], once[0] + 0.5);
}

TEST(Compute1DFFT, HintsOutsideTheEnumActAsNone) {
  std::vector<short> row(kLength);
  for (int j = 0; j < kLength; ++j) row[j] = short((j * 977) % 2001 - 1000);
  const Rows rows({row});
  const auto none = Spectrum(rows, 0, HintNone);
  EXPECT_EQ(Spectrum(rows, 0, HintAlgorithm(7)), none);
  EXPECT_EQ(Spectrum(rows, 0, HintFast), none);
  EXPECT_EQ(Spectrum(rows, 0, HintAccurate), none);
}

TEST(Compute1DFFT, CallsThatCannotRunLeaveTheSpectrumAndAnswerTrue) {
  const Rows rows({std::vector<short>(kLength, 7)});
  CIppImageWrapper wrapper;
  std::vector<double> s(kLength, 1.5);
  const std::vector<double> before = s;
  short** p = const_cast<short**>(rows.pointers.data());
  EXPECT_TRUE(wrapper.Compute1DFFT(0, kLength, kOrder, 0, 8, HintNone, p, s.data()));
  EXPECT_TRUE(wrapper.Compute1DFFT(0, kLength, kOrder, -1, 8, HintNone, p, s.data()));
  EXPECT_TRUE(wrapper.Compute1DFFT(0, kLength, kOrder, 1, 3, HintNone, p, s.data()));  // no such flag
  EXPECT_TRUE(wrapper.Compute1DFFT(0, kLength / 2, kOrder, 1, 8, HintNone, p, s.data()));
  EXPECT_EQ(s, before);
}

}  // namespace
