// The block kernels against the transforms written out in double precision:
// the inverse transform within the accuracy bounds of the IEEE 1180 test
// (peak error 1, mean square error 0.06 per sample and 0.02 overall, mean
// error 0.015 per sample and 0.0015 overall) on 8- and 12-bit output, and the
// forward transform with quantisation within half a step, plus one unit of
// the coefficient, of the exact quotient.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

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

// The inverse transform of rounded exact coefficients into samples of
// `precision` bits, as the kernel of that precision stores them.
void InverseOurs(const JpegKernels& k, int precision, const int16_t coef[64], int out[64]) {
  int32_t ones[64];
  for (int32_t& q : ones) q = 1;
  if (precision == 12) {
    uint16_t samples[64];
    k.twelve.idct_store(coef, ones, samples, 8);
    for (int i = 0; i < 64; ++i) out[i] = samples[i];
  } else {
    uint8_t samples[64];
    k.idct_store(coef, ones, samples, 8);
    for (int i = 0; i < 64; ++i) out[i] = samples[i];
  }
}

TEST(JpegKernels, InverseTransformMeetsIeee1180Bounds) {
  struct Case {
    int precision, range;
  };
  // Sample ranges of the accuracy test, at 8 bits and scaled up to 12.
  const Case cases[] = {{8, 128}, {8, 5}, {12, 2048}, {12, 300}, {12, 5}};
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    const JpegKernels& k = Kernels();
    for (const Case& cs : cases) {
      const int range = cs.range, centre = 1 << (cs.precision - 1), top = 2 * centre - 1;
      const double limit = cs.precision == 12 ? 32767.0 : 2047.0;
      std::mt19937 rng(uint32_t(range) * 7 + uint32_t(cs.precision));
      double sumErr[64] = {}, sumSq[64] = {};
      int peak = 0;
      const int blocks = 4000;
      for (int b = 0; b < blocks; ++b) {
        double pixels[64], coef[64], exact[64];
        for (double& p : pixels) p = int(rng() % uint32_t(2 * range)) - range;
        ForwardExact(pixels, coef);
        int16_t rounded[64];
        double roundedD[64];
        for (int i = 0; i < 64; ++i) {
          const double r = std::clamp(std::nearbyint(coef[i]), -limit - 1, limit);
          rounded[i] = int16_t(r);
          roundedD[i] = r;
        }
        InverseExact(roundedD, exact);
        int ours[64];
        InverseOurs(k, cs.precision, rounded, ours);
        for (int i = 0; i < 64; ++i) {
          const double ref = std::clamp(std::nearbyint(exact[i]) + centre, 0.0, double(top));
          const double e = double(ours[i]) - ref;
          peak = std::max(peak, int(std::abs(e)));
          sumErr[i] += e;
          sumSq[i] += e * e;
        }
      }
      const std::string where = std::string(kestrelink::VariantName(variant)) + " precision " +
                                std::to_string(cs.precision) + " range " + std::to_string(range);
      double overallSq = 0, overallErr = 0;
      for (int i = 0; i < 64; ++i) {
        EXPECT_LE(sumSq[i] / blocks, 0.06) << where << " at " << i;
        EXPECT_LE(std::abs(sumErr[i]) / blocks, 0.015) << where << " at " << i;
        overallSq += sumSq[i];
        overallErr += sumErr[i];
      }
      EXPECT_LE(peak, 1) << where;
      EXPECT_LE(overallSq / (64.0 * blocks), 0.02) << where;
      EXPECT_LE(std::abs(overallErr) / (64.0 * blocks), 0.0015) << where;
    }
  }
}

TEST(JpegKernels, ForwardTransformQuantisesWithinOneStep) {
  std::mt19937 rng(5);
  // Quality 90 tables, and at 12 bits also tables of ones (the largest
  // quotients) to show that no sum loses its top bits.
  for (int precision : {8, 12})
    for (int quality : {90, 100}) {
      uint16_t table[64];
      ScaleQuantTable(kLumaQuantZigzag, quality, table);
      ForwardQuant quant;
      MakeForwardQuant(table, quant);
      const int centre = 1 << (precision - 1);
      for (auto variant : testsupport::RunnableVariants()) {
        testsupport::ScopedVariant scoped(variant);
        for (int b = 0; b < 500; ++b) {
          uint8_t samples8[64];
          uint16_t samples12[64];
          double centred[64], exact[64];
          // Every fourth block a checkerboard of the extremes, the largest coefficients.
          for (int i = 0; i < 64; ++i) {
            const int v = (b & 3) == 0 ? (((i >> 3) + i + b / 4) & 1) * (2 * centre - 1) : int(rng() % (2u * centre));
            samples8[i] = uint8_t(v);
            samples12[i] = uint16_t(v);
            centred[i] = v - double(centre);
          }
          ForwardExact(centred, exact);
          int16_t zigzag[64];
          if (precision == 12)
            Kernels().twelve.fdct_quant(samples12, 8, quant, zigzag);
          else
            Kernels().fdct_quant(samples8, 8, quant, zigzag);
          for (int z = 0; z < 64; ++z) {
            const double quotient = exact[kZigzagToNatural[z]] / table[z];
            // Rounding gives half a step; the integer transform adds at most one unit of the coefficient.
            ASSERT_LE(std::abs(zigzag[z] - quotient), 0.5 + 1.0 / table[z])
                << kestrelink::VariantName(variant) << " precision " << precision << " zigzag " << z;
          }
        }
      }
    }
}

}  // namespace

namespace {

// The vector block kernels against the portable ones, sample for sample:
// camera-like blocks, extreme ones, blocks of DC alone, and coefficients no
// stream of sense holds (whose sums wrap the same way in every variant).
TEST(JpegKernels, EveryVariantMatchesThePortableBlocks) {
  std::mt19937 rng(11);
  uint16_t table[64];
  ScaleQuantTable(kLumaQuantZigzag, 75, table);
  ForwardQuant quant;
  MakeForwardQuant(table, quant);
  int32_t dequant[64], huge[64], ones[64];
  MakeDequant(table, dequant);
  for (int32_t& q : huge) q = 65535;
  for (int32_t& q : ones) q = 1;
  for (int b = 0; b < 364; ++b) {
    alignas(64) uint8_t samples[16 * 8];
    alignas(64) int16_t coef[64];
    for (uint8_t& s : samples) s = b % 3 == 0 ? uint8_t((rng() & 1) * 255) : uint8_t(rng());
    if (b >= 300) {
      // Samples 0 or 255 by the sign of one basis function: the largest
      // value of that coefficient, and of the sums that lead to it.
      const int u = (b - 300) % 8, v = (b - 300) / 8;
      for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) samples[y * 16 + x + 3] = Basis(u, x) * Basis(v, y) >= 0 ? 255 : 0;
    }
    for (int16_t& c : coef) c = int16_t(b % 2 ? int(rng() % 65536) - 32768 : int(rng() % 61) - 30);
    if (b % 5 >= 3) std::fill(coef + 1, coef + 64, int16_t(0));  // DC alone, of every size
    if (b % 5 == 4 && b % 2) coef[16 * (b % 3 + 1)] = int16_t(b);  // and DC with one more in the first column
    // A table of ones leaves large coefficients as they are: their first
    // pass fits words only now and then.
    const int32_t* dq = b % 4 == 1 ? huge : b % 8 == 3 ? ones : dequant;
    int16_t zigzagRef[64];
    uint8_t outRef[8 * 16];
    {
      testsupport::ScopedVariant portable(kestrelink::kVariantPortable);
      Kernels().fdct_quant(samples + 3, 16, quant, zigzagRef);
      Kernels().idct_store(coef, dq, outRef, 16);
    }
    for (auto variant : testsupport::RunnableVariants()) {
      testsupport::ScopedVariant scoped(variant);
      int16_t zigzag[64];
      uint8_t out[8 * 16];
      Kernels().fdct_quant(samples + 3, 16, quant, zigzag);
      Kernels().idct_store(coef, dq, out, 16);
      for (int i = 0; i < 64; ++i) {
        ASSERT_EQ(zigzag[i], zigzagRef[i]) << kestrelink::VariantName(variant) << " block " << b << " at " << i;
        ASSERT_EQ(out[(i / 8) * 16 + i % 8], outRef[(i / 8) * 16 + i % 8])
            << kestrelink::VariantName(variant) << " block " << b << " at " << i;
      }
    }
  }
}

}  // namespace

namespace {

// The vector colour conversions against the portable ones, byte for byte:
// every pixel layout, widths around the vectors' group sizes (the tails go
// through the portable loop), random colours and the cube's corners, with
// guard bytes after each row that no kernel may touch.
TEST(JpegKernels, EveryVariantMatchesThePortableColourRows) {
  std::mt19937 rng(5);
  for (uint32_t bytes : {3u, 4u})
    for (uint32_t red : {0u, 2u})
      for (uint32_t w : {1u, 15u, 16u, 17u, 31u, 32u, 33u, 48u, 70u, 129u}) {
        std::vector<uint8_t> pixels(size_t(w) * bytes), y(w), cb(w), cr(w);
        for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = i % 7 == 0 ? uint8_t((rng() & 1) * 255) : uint8_t(rng());
        for (size_t i = 0; i < w; ++i) {
          y[i] = uint8_t(rng());
          cb[i] = i % 5 == 0 ? uint8_t((rng() & 1) * 255) : uint8_t(rng());
          cr[i] = i % 3 == 0 ? uint8_t((rng() & 1) * 255) : uint8_t(rng());
        }
        std::vector<uint8_t> yRef(w), cbRef(w), crRef(w), outRef(size_t(w) * bytes);
        {
          testsupport::ScopedVariant portable(kestrelink::kVariantPortable);
          Kernels().pixels_to_ycc(pixels.data(), bytes, red, yRef.data(), cbRef.data(), crRef.data(), w);
          Kernels().ycc_to_pixels(y.data(), cb.data(), cr.data(), outRef.data(), bytes, red, w);
        }
        for (auto variant : testsupport::RunnableVariants()) {
          testsupport::ScopedVariant scoped(variant);
          const std::string where = std::string(kestrelink::VariantName(variant)) + " bytes " + std::to_string(bytes) +
                                    " red " + std::to_string(red) + " width " + std::to_string(w);
          std::vector<uint8_t> planes(3 * (w + 8), 0xA5), out(size_t(w) * bytes + 8, 0xA5);
          uint8_t* yo = planes.data();
          uint8_t* cbo = yo + w + 8;
          uint8_t* cro = cbo + w + 8;
          Kernels().pixels_to_ycc(pixels.data(), bytes, red, yo, cbo, cro, w);
          Kernels().ycc_to_pixels(y.data(), cb.data(), cr.data(), out.data(), bytes, red, w);
          EXPECT_TRUE(std::equal(yRef.begin(), yRef.end(), yo)) << where;
          EXPECT_TRUE(std::equal(cbRef.begin(), cbRef.end(), cbo)) << where;
          EXPECT_TRUE(std::equal(crRef.begin(), crRef.end(), cro)) << where;
          EXPECT_TRUE(std::equal(outRef.begin(), outRef.end(), out.begin())) << where;
          for (int g = 0; g < 8; ++g) {
            EXPECT_EQ(yo[w + g], 0xA5) << where;
            EXPECT_EQ(cbo[w + g], 0xA5) << where;
            EXPECT_EQ(cro[w + g], 0xA5) << where;
            EXPECT_EQ(out[size_t(w) * bytes + g], 0xA5) << where;
          }
        }
      }
}

// Known colours written out from the full-range weights (in 65536ths,
// rounded half up): a row of 40 so that the vector groups see them too.
TEST(JpegKernels, ColourRowsGiveTheFullRangeValues) {
  struct Known {
    uint8_t r, g, b, y, cb, cr;
  };
  // Y = (19595 R + 38470 G + 7471 B + 32768) >> 16; Cb, Cr centred on 128.
  const Known known[] = {{255, 255, 255, 255, 128, 128}, {0, 0, 0, 0, 128, 128},     {255, 0, 0, 76, 85, 255},
                         {0, 255, 0, 150, 44, 21},       {0, 0, 255, 29, 255, 107}, {128, 128, 128, 128, 128, 128}};
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    for (const Known& k : known) {
      constexpr uint32_t w = 40;
      uint8_t bgr[w * 3], y[w], cb[w], cr[w];
      for (uint32_t x = 0; x < w; ++x) {
        bgr[3 * x] = k.b;
        bgr[3 * x + 1] = k.g;
        bgr[3 * x + 2] = k.r;
      }
      Kernels().pixels_to_ycc(bgr, 3, 2, y, cb, cr, w);
      for (uint32_t x = 0; x < w; ++x) {
        ASSERT_EQ(y[x], k.y) << kestrelink::VariantName(variant) << " at " << x;
        ASSERT_EQ(cb[x], k.cb) << kestrelink::VariantName(variant) << " at " << x;
        ASSERT_EQ(cr[x], k.cr) << kestrelink::VariantName(variant) << " at " << x;
      }
    }
  }
}

}  // namespace
