// The block kernels against the transforms written out in double precision:
// the inverse transform within the accuracy bounds of the IEEE 1180 test
// (peak error 1, mean square error 0.06 per sample and 0.02 overall, mean
// error 0.015 per sample and 0.0015 overall) on 8-bit output, and the
// forward transform with quantisation within half a step, plus one unit of
// the coefficient, of the exact quotient.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "jpeg/JpegKernels.h"
#include "jpeg/JpegTables.h"
#include "support/TestSupport.h"

namespace {

using namespace kestrelink::jpeg;

double Basis(int k, int n) { return (k == 0 ? std::sqrt(0.125) : 0.5) * std::cos((2 * n + 1) * k * M_PI / 16); }

// The separable 2-D transforms: along the rows, then down the columns.
void Separable(const double in[64], double out[64], bool forward) {
  double mid[64];
  for (int r = 0; r < 8; ++r)
    for (int o = 0; o < 8; ++o) {
      double s = 0;
      for (int i = 0; i < 8; ++i) s += in[r * 8 + i] * (forward ? Basis(o, i) : Basis(i, o));
      mid[r * 8 + o] = s;
    }
  for (int c = 0; c < 8; ++c)
    for (int o = 0; o < 8; ++o) {
      double s = 0;
      for (int i = 0; i < 8; ++i) s += mid[i * 8 + c] * (forward ? Basis(o, i) : Basis(i, o));
      out[o * 8 + c] = s;
    }
}
void ForwardExact(const double in[64], double out[64]) { Separable(in, out, true); }
void InverseExact(const double in[64], double out[64]) { Separable(in, out, false); }

TEST(JpegKernels, InverseTransformMeetsIeee1180Bounds) {
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    const JpegKernels& k = Kernels();
    for (int range : {128, 5}) {
      std::mt19937 rng(uint32_t(range) * 7 + 1);
      double sumErr[64] = {}, sumSq[64] = {};
      int peak = 0;
      const int blocks = 4000;
      int32_t ones[64];
      for (int& q : ones) q = 1;
      for (int b = 0; b < blocks; ++b) {
        double pixels[64], coef[64], exact[64];
        for (double& p : pixels) p = int(rng() % uint32_t(2 * range)) - range;
        ForwardExact(pixels, coef);
        int16_t rounded[64];
        double roundedD[64];
        for (int i = 0; i < 64; ++i) {
          const double r = std::clamp(std::nearbyint(coef[i]), -2048.0, 2047.0);
          rounded[i] = int16_t(r);
          roundedD[i] = r;
        }
        InverseExact(roundedD, exact);
        uint8_t ours[64];
        k.idct_store(rounded, ones, ours, 8);
        for (int i = 0; i < 64; ++i) {
          const double ref = std::clamp(std::nearbyint(exact[i]) + 128, 0.0, 255.0);
          const double e = double(ours[i]) - ref;
          peak = std::max(peak, int(std::abs(e)));
          sumErr[i] += e;
          sumSq[i] += e * e;
        }
      }
      double overallSq = 0, overallErr = 0;
      for (int i = 0; i < 64; ++i) {
        EXPECT_LE(sumSq[i] / blocks, 0.06) << kestrelink::VariantName(variant) << " range " << range << " at " << i;
        EXPECT_LE(std::abs(sumErr[i]) / blocks, 0.015) << kestrelink::VariantName(variant) << " at " << i;
        overallSq += sumSq[i];
        overallErr += sumErr[i];
      }
      EXPECT_LE(peak, 1) << kestrelink::VariantName(variant);
      EXPECT_LE(overallSq / (64.0 * blocks), 0.02);
      EXPECT_LE(std::abs(overallErr) / (64.0 * blocks), 0.0015);
    }
  }
}

TEST(JpegKernels, ForwardTransformQuantisesWithinOneStep) {
  uint16_t table[64];
  ScaleQuantTable(kLumaQuantZigzag, 90, table);
  ForwardQuant quant;
  MakeForwardQuant(table, quant);
  std::mt19937 rng(5);
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    for (int b = 0; b < 500; ++b) {
      uint8_t samples[64];
      double centred[64], exact[64];
      for (int i = 0; i < 64; ++i) {
        samples[i] = uint8_t(rng());
        centred[i] = samples[i] - 128.0;
      }
      ForwardExact(centred, exact);
      int16_t zigzag[64];
      Kernels().fdct_quant(samples, 8, quant, zigzag);
      for (int z = 0; z < 64; ++z) {
        const double quotient = exact[kZigzagToNatural[z]] / table[z];
        // Rounding gives half a step; the integer transform adds at most one unit of the coefficient.
        ASSERT_LE(std::abs(zigzag[z] - quotient), 0.5 + 1.0 / table[z])
            << kestrelink::VariantName(variant) << " zigzag " << z;
      }
    }
  }
}

}  // namespace
