// The 8-bit colour conversions in AVX2 registers: the portable kernels'
// sums (JpegKernelBody.h) regrouped so that every product is one of 16-bit
// factors and comes from a multiply-add of word pairs (vpmaddwd). A weight
// above 32767 is split into a word weight and a multiple of 65536 that the
// pair's high word already holds, so each 32-bit sum, and with it every
// byte, is the portable one's. Included by the AVX2 and AVX-512 units
// inside their own namespaces after JpegKernelBody.h and JpegBlocksAvx2.h;
// the pixels a group of 32 (or 16) does not fill go through the portable
// loop.
// (no include guard: included once per unit)

namespace colour {

using V = __m256i;

// A byte shuffle for two pixels, `bytes` apart from `base`: their bytes
// `first` and `second` zero-extended into the two words of a 32-bit lane each.
constexpr int64_t PairMask(int bytes, int base, int first, int second) {
  uint64_t m = 0;
  for (int p = 0; p < 2; ++p)
    m |= (uint64_t(uint8_t(base + bytes * p + first)) | (0x80ull << 8) |
          (uint64_t(uint8_t(base + bytes * p + second)) << 16) | (0x80ull << 24))
         << (32 * p);
  return int64_t(m);
}

// Eight pixels to eight lanes, four in each 128-bit half; the upper half's
// first pixel sits at its byte `base1`.
inline V PairShuffle(int bytes, int base1, int first, int second) {
  return _mm256_setr_epi64x(PairMask(bytes, 0, first, second), PairMask(bytes, 2 * bytes, first, second),
                            PairMask(bytes, base1, first, second), PairMask(bytes, base1 + 2 * bytes, first, second));
}

// A word pair of weights, low | high << 16, as the block transforms build it.
using blocks::Weights;

// Eight pixels' Y, Cb, Cr sums, shifted to 0 .. 255 in 32-bit lanes; `rg`
// holds r | g << 16 of each pixel, `gb` g | b << 16.
inline void YccOfEight(V rg, V gb, V& y, V& cb, V& cr) {
  const V high = _mm256_set1_epi32(int32_t(0xFFFF0000u)), low = _mm256_set1_epi32(0xFFFF);
  // Y: the green weight 38470 is 65536 - 27066.
  const V ySum = _mm256_add_epi32(_mm256_add_epi32(_mm256_madd_epi16(rg, Weights(int16_t(kYr), int16_t(kYg - 65536))),
                                                   _mm256_and_si256(rg, high)),
                                  _mm256_add_epi32(_mm256_madd_epi16(gb, Weights(0, int16_t(kYb))),
                                                   _mm256_set1_epi32(32768)));
  // Cb and Cr: the weight 32768 is a shift by 15.
  const V centre = _mm256_set1_epi32((128 << 16) + 32767);
  const V cbSum = _mm256_add_epi32(_mm256_add_epi32(_mm256_madd_epi16(rg, Weights(int16_t(kCbr), int16_t(kCbg))),
                                                    _mm256_slli_epi32(_mm256_srli_epi32(gb, 16), 15)),
                                   centre);
  const V crSum = _mm256_add_epi32(_mm256_add_epi32(_mm256_madd_epi16(gb, Weights(int16_t(kCrg), int16_t(kCrb))),
                                                    _mm256_slli_epi32(_mm256_and_si256(rg, low), 15)),
                                   centre);
  y = _mm256_srli_epi32(ySum, 16);
  cb = _mm256_srli_epi32(cbSum, 16);
  cr = _mm256_srli_epi32(crSum, 16);
}

// Four registers of eight 32-bit values (0 .. 255) to 32 bytes in order.
inline V PackFour(const V v[4]) {
  const V bytes = _mm256_packus_epi16(_mm256_packs_epi32(v[0], v[1]), _mm256_packs_epi32(v[2], v[3]));
  return _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}

template <uint32_t kBytes, uint32_t kRed>
void PixelsToYccAvx2(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w) {
  constexpr uint32_t kBlue = 2 - kRed;
  // Eight pixels a register: four from `p`, four from `p + upper` whose
  // first pixel then sits at byte `base1` of the upper half (3-byte pixels
  // read bytes 8 .. 23 so that no byte past the eighth pixel is read).
  constexpr int upper = kBytes == 3 ? 8 : 16, base1 = int(4 * kBytes) - upper;
  const V rgMask = PairShuffle(int(kBytes), base1, int(kRed), 1);
  const V gbMask = PairShuffle(int(kBytes), base1, 1, int(kBlue));
  uint32_t x = 0;
  for (; x + 32 <= w; x += 32) {
    V ys[4], cbs[4], crs[4];
    for (int g = 0; g < 4; ++g) {
      const uint8_t* p = src + size_t(x + 8 * g) * kBytes;
      const V in = _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))),
                                           _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + upper)), 1);
      YccOfEight(_mm256_shuffle_epi8(in, rgMask), _mm256_shuffle_epi8(in, gbMask), ys[g], cbs[g], crs[g]);
    }
    _mm256_storeu_si256(reinterpret_cast<V*>(y + x), PackFour(ys));
    _mm256_storeu_si256(reinterpret_cast<V*>(cb + x), PackFour(cbs));
    _mm256_storeu_si256(reinterpret_cast<V*>(cr + x), PackFour(crs));
  }
  if (x < w) PixelsToYccFixed<uint8_t, 128, kBytes, kRed>(src + size_t(x) * kBytes, y + x, cb + x, cr + x, w - x);
}

void PixelsToYcc(const uint8_t* src, uint32_t bytes, uint32_t red, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w) {
  if (bytes == 4)
    red ? PixelsToYccAvx2<4, 2>(src, y, cb, cr, w) : PixelsToYccAvx2<4, 0>(src, y, cb, cr, w);
  else
    red ? PixelsToYccAvx2<3, 2>(src, y, cb, cr, w) : PixelsToYccAvx2<3, 0>(src, y, cb, cr, w);
}

// Sixteen pixels' red, green and blue offsets from Y (before the clamp) in
// words, from 16 Cb and 16 Cr words less 128.
inline void ChromaOfSixteen(V u, V v, V& r, V& g, V& b) {
  const V high = _mm256_set1_epi32(int32_t(0xFFFF0000u)), round = _mm256_set1_epi32(32768);
  auto half = [&](V uv, V& rh, V& gh, V& bh) {
    // uv: u | v << 16. The high word masked is v x 65536, the pair shifted by 17 u x 131072.
    const V vHigh = _mm256_and_si256(uv, high);
    rh = _mm256_srai_epi32(_mm256_add_epi32(_mm256_add_epi32(_mm256_madd_epi16(uv, Weights(0, int16_t(kCrToR - 65536))),
                                                             vHigh),
                                            round),
                           16);
    gh = _mm256_srai_epi32(_mm256_add_epi32(_mm256_sub_epi32(_mm256_madd_epi16(uv, Weights(int16_t(kCbToG),
                                                                                           int16_t(kCrToG + 65536))),
                                                             vHigh),
                                            round),
                           16);
    bh = _mm256_srai_epi32(_mm256_add_epi32(_mm256_add_epi32(_mm256_madd_epi16(uv, Weights(int16_t(kCbToB - 131072), 0)),
                                                             _mm256_slli_epi32(uv, 17)),
                                            round),
                           16);
  };
  V r0, g0, b0, r1, g1, b1;
  half(_mm256_unpacklo_epi16(u, v), r0, g0, b0);
  half(_mm256_unpackhi_epi16(u, v), r1, g1, b1);
  // The packs undo the unpacks' lane order.
  r = _mm256_packs_epi32(r0, r1);
  g = _mm256_packs_epi32(g0, g1);
  b = _mm256_packs_epi32(b0, b1);
}

inline __m128i ToBytes(V words) {
  return _mm_packus_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1));
}

// Byte shuffle k (0 .. 2) of channel c that places its samples into the
// k-th 16 bytes of 3-byte pixels.
inline __m128i InterleaveMask(int k, int c) {
  alignas(16) int8_t m[16];
  for (int i = 0; i < 16; ++i) {
    const int at = 16 * k + i;
    m[i] = at % 3 == c ? int8_t(at / 3) : int8_t(-128);
  }
  return _mm_load_si128(reinterpret_cast<const __m128i*>(m));
}

template <uint32_t kBytes, uint32_t kRed>
void YccToPixelsAvx2(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, uint32_t w) {
  const V centre = _mm256_set1_epi16(128);
  __m128i masks[3][3];
  if constexpr (kBytes == 3)
    for (int k = 0; k < 3; ++k)
      for (int c = 0; c < 3; ++c) masks[k][c] = InterleaveMask(k, c);
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const V u = _mm256_sub_epi16(_mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(cb + x))), centre);
    const V v = _mm256_sub_epi16(_mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(cr + x))), centre);
    const V l = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(y + x)));
    V r, g, b;
    ChromaOfSixteen(u, v, r, g, b);
    const __m128i rb = ToBytes(_mm256_add_epi16(l, r)), gb = ToBytes(_mm256_add_epi16(l, g)),
                  bb = ToBytes(_mm256_add_epi16(l, b));
    const __m128i c0 = kRed == 0 ? rb : bb, c2 = kRed == 0 ? bb : rb;
    uint8_t* d = dst + size_t(x) * kBytes;
    if constexpr (kBytes == 3) {
      for (int k = 0; k < 3; ++k) {
        const __m128i out = _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(c0, masks[k][0]), _mm_shuffle_epi8(gb, masks[k][1])),
                                         _mm_shuffle_epi8(c2, masks[k][2]));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 16 * k), out);
      }
    } else {
      const __m128i c01l = _mm_unpacklo_epi8(c0, gb), c01h = _mm_unpackhi_epi8(c0, gb);
      const __m128i c23l = _mm_unpacklo_epi8(c2, _mm_set1_epi8(-1)), c23h = _mm_unpackhi_epi8(c2, _mm_set1_epi8(-1));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_unpacklo_epi16(c01l, c23l));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 16), _mm_unpackhi_epi16(c01l, c23l));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 32), _mm_unpacklo_epi16(c01h, c23h));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 48), _mm_unpackhi_epi16(c01h, c23h));
    }
  }
  if (x < w) YccToPixelsFixed<uint8_t, 128, kBytes, kRed>(y + x, cb + x, cr + x, dst + size_t(x) * kBytes, w - x);
}

void YccToPixels(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, uint32_t bytes, uint32_t red,
                 uint32_t w) {
  if (bytes == 4)
    red ? YccToPixelsAvx2<4, 2>(y, cb, cr, dst, w) : YccToPixelsAvx2<4, 0>(y, cb, cr, dst, w);
  else
    red ? YccToPixelsAvx2<3, 2>(y, cb, cr, dst, w) : YccToPixelsAvx2<3, 0>(y, cb, cr, dst, w);
}

}  // namespace colour
