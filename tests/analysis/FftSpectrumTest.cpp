// CIppImageWrapper::Compute1DFFT: magnitudes summed over rows and added to
// the caller's spectrum, centring, the hint mapping and the cases that leave
// the spectrum alone.
#include <gtest/gtest.h>

#include <kestrelink/CIppImageWrapper.h>

#include <cmath>
#include <random>
#include <vector>

#include "primitives/FftReal16.h"
#include "support/TestSupport.h"

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

// The spectrum as the packed transform defines it, summed plainly: point k
// of a row is bin k up to length / 2 and the conjugate of bin length - k
// above (the conjugate of -32768 is 32767), its magnitude taken in single
// precision, output i reading point i + length / 2 (mod length) when centred.
std::vector<double> PlainSpectrum(const std::vector<std::vector<short>>& rows, int order, int centred) {
  const int n = 1 << order, half = n / 2;
  IppsFFTSpec_R_16s* spec = nullptr;
  EXPECT_EQ(ippsFFTInitAlloc_R_16s(&spec, order, IPP_FFT_NODIV_BY_ANY, ippAlgHintNone), ippStsNoErr);
  int bytes = 0;
  ippsFFTGetBufSize_R_16s(spec, &bytes);
  std::vector<int32_t> work(size_t(bytes) / 4);
  std::vector<double> out(n, 0.0);
  for (const auto& row : rows) {
    std::vector<Ipp16s> ccs(n + 2);
    ippsFFTFwd_RToCCS_16s_Sfs(row.data(), ccs.data(), spec, 1, reinterpret_cast<Ipp8u*>(work.data()));
    for (int i = 0; i < n; ++i) {
      const int k = centred ? (i + half) % n : i;
      const int re = k <= half ? ccs[2 * k] : ccs[2 * (n - k)];
      const int im = k <= half ? ccs[2 * k + 1] : std::min(32767, -ccs[2 * (n - k) + 1]);
      const float fr = float(re), fi = float(im);
      out[i] += double(std::sqrt(fr * fr + fi * fi));
    }
  }
  ippsFFTFree_R_16s(spec);
  return out;
}

TEST(Compute1DFFT, EveryVariantSumsThePlainSpectrum) {
  // Noise, and a full-scale sine whose bin saturates to -32768 so that its
  // mirror reads 32767.
  for (int order : {1, 2, 3, 5, 10, 11}) {
    const int n = 1 << order;
    std::mt19937 rng{uint32_t(order)};
    std::uniform_int_distribution<int> d(-32768, 32767);
    std::vector<std::vector<short>> rows(3, std::vector<short>(n));
    for (auto& v : rows[0]) v = short(d(rng));
    for (int j = 0; j < n; ++j) rows[1][j] = short(std::lround(32767.0 * std::sin(2 * M_PI * (n / 4 + 1) * j / n)));
    for (int j = 0; j < n; ++j) rows[2][j] = short(j % 3 ? 20000 : -32768);
    const Rows held(rows);
    for (int centred : {0, 1}) {
      const auto want = PlainSpectrum(rows, order, centred);
      for (auto v : testsupport::RunnableVariants()) {
        SCOPED_TRACE(kestrelink::VariantName(v));
        testsupport::ScopedVariant scoped(v);
        std::vector<double> got(n, 0.0);
        CIppImageWrapper wrapper;
        EXPECT_TRUE(wrapper.Compute1DFFT(centred, n, order, 3, 8, HintNone, const_cast<short**>(held.pointers.data()),
                                         got.data()));
        EXPECT_EQ(got, want) << "order " << order << " centred " << centred;
      }
    }
  }
}

}  // namespace
