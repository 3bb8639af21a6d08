// The fixed-point real transform against a double-precision DFT written out
// from its definition, within the stated bound, at every order and flag;
// the packed form's fixed parts and expansion; every variant against the
// portable one.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "primitives/FftReal16.h"
#include "primitives/FftReal16Plan.h"
#include "support/TestSupport.h"

namespace {

using Row = std::vector<Ipp16s>;

// X[k] = sum x[n] e^{-2 pi i k n / N}, then the flag's normalisation and
// 2^-scaleFactor.
void ExactBin(const Row& x, int k, int flag, int scaleFactor, double& re, double& im) {
  const double n = double(x.size());
  re = im = 0;
  for (size_t j = 0; j < x.size(); ++j) {
    const double a = -2.0 * M_PI * double((uint64_t(k) * j) % x.size()) / n;
    re += x[j] * std::cos(a);
    im += x[j] * std::sin(a);
  }
  double norm = std::ldexp(1.0, -scaleFactor);
  if (flag == IPP_FFT_DIV_FWD_BY_N) norm /= n;
  if (flag == IPP_FFT_DIV_BY_SQRTN) norm /= std::sqrt(n);
  re *= norm, im *= norm;
}

Row RandomRow(size_t n, int amplitude, uint32_t seed) {
  std::mt19937 rng(seed);
  std::uniform_int_distribution<int> d(-amplitude, amplitude - 1);
  Row r(n);
  for (auto& v : r) v = Ipp16s(d(rng));
  return r;
}

Row Transform(const Row& x, int order, int flag, int scaleFactor) {
  IppsFFTSpec_R_16s* spec = nullptr;
  EXPECT_EQ(ippsFFTInitAlloc_R_16s(&spec, order, flag, ippAlgHintNone), ippStsNoErr);
  int bytes = 0;
  ippsFFTGetBufSize_R_16s(spec, &bytes);
  std::vector<int32_t> work(size_t(bytes) / 4);
  Row out(x.size() + 2, 0x5A5A);
  EXPECT_EQ(ippsFFTFwd_RToCCS_16s_Sfs(x.data(), out.data(), spec, scaleFactor, reinterpret_cast<Ipp8u*>(work.data())),
            ippStsNoErr);
  ippsFFTFree_R_16s(spec);
  return out;
}

double Saturated(double v) { return std::fmin(32767.0, std::fmax(-32768.0, v)); }

TEST(FftReal16, BinsWithinStatedBoundOfExactDft) {
  struct Case {
    int order, flag, scaleFactor, amplitude;
  };
  const Case cases[] = {
      {1, IPP_FFT_NODIV_BY_ANY, 1, 32768}, {2, IPP_FFT_NODIV_BY_ANY, 1, 32768}, {3, IPP_FFT_DIV_FWD_BY_N, 1, 32768},
      {4, IPP_FFT_DIV_BY_SQRTN, 1, 32768}, {5, IPP_FFT_NODIV_BY_ANY, 1, 1000},  {7, IPP_FFT_DIV_INV_BY_N, 1, 200},
      {8, IPP_FFT_DIV_FWD_BY_N, 1, 32768}, {9, IPP_FFT_DIV_BY_SQRTN, 1, 4000},  {10, IPP_FFT_NODIV_BY_ANY, 1, 60},
      {10, IPP_FFT_DIV_FWD_BY_N, 1, 32768}, {11, IPP_FFT_DIV_FWD_BY_N, 1, 32768}, {11, IPP_FFT_DIV_BY_SQRTN, 0, 2000},
      {11, IPP_FFT_NODIV_BY_ANY, 3, 30},   {6, IPP_FFT_NODIV_BY_ANY, -2, 100},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "order " << c.order << " flag " << c.flag << " sf " << c.scaleFactor);
    const size_t n = size_t(1) << c.order;
    const Row x = RandomRow(n, c.amplitude, uint32_t(c.order * 31 + c.flag));
    double sumAbs = 0;
    for (Ipp16s v : x) sumAbs += std::abs(double(v));
    const double bound = kestrelink::fft::FftErrorBound(c.order, c.flag, c.scaleFactor, sumAbs);
    const Row got = Transform(x, c.order, c.flag, c.scaleFactor);
    double worst = 0;
    for (size_t k = 0; k <= n / 2; ++k) {
      double re, im;
      ExactBin(x, int(k), c.flag, c.scaleFactor, re, im);
      worst = std::fmax(worst, std::fabs(got[2 * k] - Saturated(re)));
      worst = std::fmax(worst, std::fabs(got[2 * k + 1] - Saturated(im)));
    }
    EXPECT_LE(worst, bound);
    EXPECT_EQ(got[1], 0);
    EXPECT_EQ(got[n + 1], 0);
  }
}

TEST(FftReal16, CosinePeaksAtItsBinHalvedByScaleFactorOne) {
  // A cosine of amplitude A at bin f has X[f] = A N / 2; divided by N and
  // halved by scale factor 1 that is A / 4, with nothing at the other bins.
  for (int f : {1, 5, 100, 511}) {
    const int order = 10, n = 1 << order;
    Row x(n);
    for (int j = 0; j < n; ++j) x[j] = Ipp16s(std::lround(8000.0 * std::cos(2 * M_PI * f * j / n)));
    const Row got = Transform(x, order, IPP_FFT_DIV_FWD_BY_N, 1);
    EXPECT_NEAR(got[2 * f], 2000, 1) << f;
    EXPECT_NEAR(got[2 * f + 1], 0, 1) << f;
    for (int k = 0; k <= n / 2; ++k) {
      if (k == f) continue;
      EXPECT_LE(std::abs(got[2 * k]) + std::abs(got[2 * k + 1]), 2) << f << " " << k;
    }
  }
}

TEST(FftReal16, LargeBinsSaturate) {
  const Row x(2048, 32767);
  const Row got = Transform(x, 11, IPP_FFT_NODIV_BY_ANY, 1);
  EXPECT_EQ(got[0], 32767);
  EXPECT_EQ(got[2], 0);
  const Row low(2048, -32768);
  EXPECT_EQ(Transform(low, 11, IPP_FFT_NODIV_BY_ANY, 1)[0], -32768);
  EXPECT_EQ(Transform(low, 11, IPP_FFT_DIV_FWD_BY_N, 1)[0], -16384);
}

TEST(FftReal16, SetUpRejectsOrderAndFlagOutsideRange) {
  IppsFFTSpec_R_16s* spec = reinterpret_cast<IppsFFTSpec_R_16s*>(1);
  EXPECT_EQ(ippsFFTInitAlloc_R_16s(&spec, 0, IPP_FFT_NODIV_BY_ANY, ippAlgHintNone), ippStsFftOrderErr);
  EXPECT_EQ(spec, nullptr);
  EXPECT_EQ(ippsFFTInitAlloc_R_16s(&spec, 17, IPP_FFT_NODIV_BY_ANY, ippAlgHintNone), ippStsFftOrderErr);
  EXPECT_EQ(ippsFFTInitAlloc_R_16s(&spec, 4, 3, ippAlgHintNone), ippStsFftFlagErr);
  EXPECT_EQ(ippsFFTInitAlloc_R_16s(nullptr, 4, 8, ippAlgHintNone), ippStsNullPtrErr);
  EXPECT_EQ(ippsFFTFree_R_16s(nullptr), ippStsNullPtrErr);
}

TEST(FftReal16, ConjCcsMirrorsConjugates) {
  const Row ccs = {10, 0, 1, 2, 3, -4, -32768, -32768, 7, 0};  // N = 8
  std::vector<Ipp16sc> out(8);
  ASSERT_EQ(ippsConjCcs_16sc(ccs.data(), out.data(), 8), ippStsNoErr);
  const Ipp16sc want[8] = {{10, 0}, {1, 2}, {3, -4}, {-32768, -32768}, {7, 0}, {-32768, 32767}, {3, 4}, {1, -2}};
  for (int k = 0; k < 8; ++k) {
    EXPECT_EQ(out[k].re, want[k].re) << k;
    EXPECT_EQ(out[k].im, want[k].im) << k;
  }
  EXPECT_EQ(ippsConjCcs_16sc(ccs.data(), out.data(), 0), ippStsSizeErr);
}

const kestrelink::fft::FftKernels* const kTables[kestrelink::kVariantCount] = {
    &kestrelink::fft::kFftKernelsPortable, nullptr, nullptr, &kestrelink::fft::kFftKernelsAVX2,
    &kestrelink::fft::kFftKernelsAVX512};

// Rows that reach the corners: full-range noise, quiet noise, and the
// extremes alternating in runs so that every bin and lane sees large values.
std::vector<Row> VariantRows(size_t n, uint32_t seed) {
  std::vector<Row> rows = {RandomRow(n, 32768, seed), RandomRow(n, 40, seed + 1), Row(n)};
  for (size_t i = 0; i < n; ++i) rows[2][i] = Ipp16s((i / 3) % 2 ? 32767 : -32768);
  return rows;
}

TEST(FftReal16Variants, EveryVariantMatchesPortableAtEveryOrder) {
  struct Setting {
    int flag, scaleFactor;
  };
  const Setting settings[] = {{IPP_FFT_NODIV_BY_ANY, 1}, {IPP_FFT_DIV_FWD_BY_N, 1}, {IPP_FFT_DIV_BY_SQRTN, 1},
                              {IPP_FFT_DIV_INV_BY_N, 0}, {IPP_FFT_NODIV_BY_ANY, -3}, {IPP_FFT_DIV_FWD_BY_N, 9}};
  for (int order = 1; order <= 16; ++order) {
    const size_t n = size_t(1) << order;
    const std::vector<Row> rows = VariantRows(n, uint32_t(order * 7));
    std::vector<Row> want;
    {
      testsupport::ScopedVariant scoped(kestrelink::kVariantPortable);
      for (const Row& x : rows)
        for (const Setting& s : settings) want.push_back(Transform(x, order, s.flag, s.scaleFactor));
    }
    for (auto v : testsupport::RunnableVariants()) {
      if (v == kestrelink::kVariantPortable || !kTables[v]) continue;
      SCOPED_TRACE(kestrelink::VariantName(v));
      testsupport::ScopedVariant scoped(v);
      size_t at = 0;
      for (const Row& x : rows)
        for (const Setting& s : settings)
          EXPECT_EQ(Transform(x, order, s.flag, s.scaleFactor), want[at++])
              << "order " << order << " flag " << s.flag << " sf " << s.scaleFactor;
    }
  }
}

TEST(FftReal16Variants, ExpansionAndMagnitudesMatchPortable) {
  for (uint32_t len : {1u, 2u, 7u, 16u, 17u, 33u, 1024u, 2048u}) {
    Row ccs = RandomRow(len + 2, 32768, len);
    for (size_t i = 1; i < ccs.size(); i += 5) ccs[i] = -32768;  // imaginary parts whose conjugate saturates
    std::vector<Ipp16sc> base(len), got(len);
    kTables[0]->conjCcs(ccs.data(), base.data(), len);
    std::vector<double> sumBase(len, 0.25);
    kTables[0]->addMagnitudes(base.data(), sumBase.data(), len);
    for (auto v : testsupport::RunnableVariants()) {
      if (v == kestrelink::kVariantPortable || !kTables[v]) continue;
      SCOPED_TRACE(kestrelink::VariantName(v));
      kTables[v]->conjCcs(ccs.data(), got.data(), len);
      for (uint32_t k = 0; k < len; ++k) {
        EXPECT_EQ(got[k].re, base[k].re) << len << " " << k;
        EXPECT_EQ(got[k].im, base[k].im) << len << " " << k;
      }
      std::vector<double> sum(len, 0.25);
      kTables[v]->addMagnitudes(got.data(), sum.data(), len);
      EXPECT_EQ(sum, sumBase) << len;
    }
  }
}

}  // namespace
