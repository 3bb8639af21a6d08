// AVX2 YCbCr rows (this file is built with -mavx2). The arithmetic is the
// portable rows' exactly: 16-bit samples multiplied and summed in pairs into
// 32-bit lanes (vpmaddwd), rounded and shifted, packed with saturation.
#include <immintrin.h>

#include "primitives/YccRows.h"

namespace kestrelink::ycc {
namespace {

constexpr char Z = -1;  // a zero byte in a shuffle

// Two 16-bit weights in each 32-bit lane, for vpmaddwd.
inline __m256i Weights(int first, int second) { return _mm256_set1_epi32(int((second << 16) | (first & 0xFFFF))); }

// ---- 4:2:2 pairs to RGB ----

struct Channels {
  __m256i b, g, r;  // 32-bit, pixels 0-3 in the low half, 4-7 in the high
};

// Zero-extended bytes of four groups laid out as Group says: words (Y, c)
// for each pixel, c the group's Cb or Cr byte; the low half serves pixels
// 0-3, the high half 4-7.
template <class Group>
inline __m256i ToWords(int c) {
  const char y0 = char(Group::kY0), y1 = char(Group::kY1), k = char(c);
  return _mm256_setr_epi8(y0, Z, k, Z, y1, Z, k, Z, char(y0 + 4), Z, char(k + 4), Z, char(y1 + 4), Z, char(k + 4), Z,
                          char(y0 + 8), Z, char(k + 8), Z, char(y1 + 8), Z, char(k + 8), Z, char(y0 + 12), Z,
                          char(k + 12), Z, char(y1 + 12), Z, char(k + 12), Z);
}

// Eight pixels from four groups; the constant terms fold the offsets 16 and
// 128 and the rounding into one addend per channel.
template <class Group>
inline Channels DecodeEight(const uint8_t* src) {
  const __m256i s = _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src)));
  const __m256i ycb = _mm256_shuffle_epi8(s, ToWords<Group>(Group::kCb));
  const __m256i ycr = _mm256_shuffle_epi8(s, ToWords<Group>(Group::kCr));
  const __m256i b = _mm256_add_epi32(_mm256_madd_epi16(ycb, Weights(kLuma, kCbToB)),
                                     _mm256_set1_epi32(-kLuma * 16 - kCbToB * 128 + 2048));
  const __m256i r = _mm256_add_epi32(_mm256_madd_epi16(ycr, Weights(kLuma, kCrToR)),
                                     _mm256_set1_epi32(-kLuma * 16 - kCrToR * 128 + 2048));
  const __m256i g = _mm256_add_epi32(
      _mm256_add_epi32(_mm256_madd_epi16(ycr, Weights(kLuma, -kCrToG)), _mm256_madd_epi16(ycb, Weights(0, -kCbToG))),
      _mm256_set1_epi32(-kLuma * 16 + (kCrToG + kCbToG) * 128 + 2048));
  return {_mm256_srai_epi32(b, 12), _mm256_srai_epi32(g, 12), _mm256_srai_epi32(r, 12)};
}

// Per half: four bytes of the first vector, four of the second, ... limited
// to 0 .. 255.
inline __m256i PackBytes(__m256i a, __m256i b, __m256i c, __m256i d) {
  return _mm256_packus_epi16(_mm256_packs_epi32(a, b), _mm256_packs_epi32(c, d));
}

template <class Group>
void DecodeToBgrx(const uint8_t* src, uint8_t* dst, uint32_t pairs, uint8_t alpha) {
  const __m256i a = _mm256_set1_epi32(alpha);
  const __m256i interleave = _mm256_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15,  //
                                              0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
  uint32_t i = 0;
  for (; i + 4 <= pairs; i += 4) {
    const Channels c = DecodeEight<Group>(src + 4 * size_t(i));
    const __m256i px = _mm256_shuffle_epi8(PackBytes(c.b, c.g, c.r, a), interleave);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 8 * size_t(i)), px);
  }
  PortablePairRows<Group>::bgrx(src + 4 * size_t(i), dst + 8 * size_t(i), pairs - i, alpha);
}

template <class Group, ChannelOrder order>
void DecodeToC3Rows(const uint8_t* src, uint8_t* dst, uint32_t pairs) {
  const __m256i zero = _mm256_setzero_si256();
  const __m256i interleave = _mm256_setr_epi8(0, 4, 8, 1, 5, 9, 2, 6, 10, 3, 7, 11, Z, Z, Z, Z,  //
                                              0, 4, 8, 1, 5, 9, 2, 6, 10, 3, 7, 11, Z, Z, Z, Z);
  const __m256i join = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
  uint32_t i = 0;
  for (; i + 4 <= pairs; i += 4) {
    const Channels c = DecodeEight<Group>(src + 4 * size_t(i));
    const __m256i planes = order == kOrderBGR ? PackBytes(c.b, c.g, c.r, zero) : PackBytes(c.r, c.g, c.b, zero);
    const __m256i px = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(planes, interleave), join);
    uint8_t* out = dst + 6 * size_t(i);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(px));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 16), _mm256_extracti128_si256(px, 1));
  }
  PortablePairRows<Group>::c3(src + 4 * size_t(i), dst + 6 * size_t(i), pairs - i, order);
}

template <class Group>
void DecodeToC3(const uint8_t* src, uint8_t* dst, uint32_t pairs, ChannelOrder order) {
  if (order == kOrderRGB)
    DecodeToC3Rows<Group, kOrderRGB>(src, dst, pairs);
  else
    DecodeToC3Rows<Group, kOrderBGR>(src, dst, pairs);
}

// ---- RGB to planar 4:2:2 and 4:2:0 ----

// Four pixels a half as 32-bit lanes of words: `first` (c0, c1) and
// `second` (c2, 33), c0 c1 c2 the channels in memory order. With the weight
// 2048 on the 33, luma's offset and rounding come out of the multiply.
struct Words {
  __m256i first, second;
};

// Weights of one output for the two word vectors, channels in memory order.
struct Output {
  __m256i first, second;
};

struct Weights3 {
  Output y, cb, cr;
};

Weights3 Prepare(const EncodeWeights& w) {
  return {{Weights(w.y[0], w.y[1]), Weights(w.y[2], 2048)},
          {Weights(w.cb[0], w.cb[1]), Weights(w.cb[2], 0)},
          {Weights(w.cr[0], w.cr[1]), Weights(w.cr[2], 0)}};
}

inline __m256i Apply(const Words& w, const Output& o) {
  return _mm256_add_epi32(_mm256_madd_epi16(w.first, o.first), _mm256_madd_epi16(w.second, o.second));
}

inline Words ToWords(__m256i px, __m256i firstMask, __m256i secondMask) {
  return {_mm256_shuffle_epi8(px, firstMask),
          _mm256_or_si256(_mm256_shuffle_epi8(px, secondMask), _mm256_set1_epi32(33 << 16))};
}

inline Words Sum(const Words& a, const Words& b) {
  return {_mm256_add_epi16(a.first, b.first), _mm256_add_epi16(a.second, b.second)};
}

// Sixteen pixels as two word sets: `a` pixels 0-3 and 8-11, `b` 4-7 and
// 12-15, an order in which the pair sums and the packs come out in place.
struct Sixteen {
  Words a, b;
};

inline __m256i Load2x128(const uint8_t* lo, const uint8_t* hi) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(lo))),
                                 _mm_loadu_si128(reinterpret_cast<const __m128i*>(hi)), 1);
}

// Three-byte pixels; the last four are read from byte 32 so that nothing
// past byte 47 is touched, hence the second mask set, four bytes on.
inline Sixteen LoadC3(const uint8_t* p) {
  const __m256i first = _mm256_setr_epi8(0, Z, 1, Z, 3, Z, 4, Z, 6, Z, 7, Z, 9, Z, 10, Z,  //
                                         0, Z, 1, Z, 3, Z, 4, Z, 6, Z, 7, Z, 9, Z, 10, Z);
  const __m256i second = _mm256_setr_epi8(2, Z, Z, Z, 5, Z, Z, Z, 8, Z, Z, Z, 11, Z, Z, Z,  //
                                          2, Z, Z, Z, 5, Z, Z, Z, 8, Z, Z, Z, 11, Z, Z, Z);
  const __m256i firstOn4 = _mm256_setr_epi8(0, Z, 1, Z, 3, Z, 4, Z, 6, Z, 7, Z, 9, Z, 10, Z,  //
                                            4, Z, 5, Z, 7, Z, 8, Z, 10, Z, 11, Z, 13, Z, 14, Z);
  const __m256i secondOn4 = _mm256_setr_epi8(2, Z, Z, Z, 5, Z, Z, Z, 8, Z, Z, Z, 11, Z, Z, Z,  //
                                             6, Z, Z, Z, 9, Z, Z, Z, 12, Z, Z, Z, 15, Z, Z, Z);
  return {ToWords(Load2x128(p, p + 24), first, second), ToWords(Load2x128(p + 12, p + 32), firstOn4, secondOn4)};
}

inline Sixteen LoadBgrx(const uint8_t* p) {
  const __m256i first = _mm256_setr_epi8(0, Z, 1, Z, 4, Z, 5, Z, 8, Z, 9, Z, 12, Z, 13, Z,  //
                                         0, Z, 1, Z, 4, Z, 5, Z, 8, Z, 9, Z, 12, Z, 13, Z);
  const __m256i second = _mm256_setr_epi8(2, Z, Z, Z, 6, Z, Z, Z, 10, Z, Z, Z, 14, Z, Z, Z,  //
                                          2, Z, Z, Z, 6, Z, Z, Z, 10, Z, Z, Z, 14, Z, Z, Z);
  return {ToWords(Load2x128(p, p + 32), first, second), ToWords(Load2x128(p + 16, p + 48), first, second)};
}

// Luma of sixteen pixels as words in pixel order.
inline __m256i Luma16(const Sixteen& s, const Output& y) {
  return _mm256_packs_epi32(_mm256_srli_epi32(Apply(s.a, y), 12), _mm256_srli_epi32(Apply(s.b, y), 12));
}

// The words of each pair of pixels summed, eight pairs in order: per half,
// lanes 0 and 2 of `a` and `b` plus lanes 1 and 3.
inline __m256i PairSum(__m256i a, __m256i b) {
  const __m256 fa = _mm256_castsi256_ps(a), fb = _mm256_castsi256_ps(b);
  return _mm256_add_epi16(_mm256_castps_si256(_mm256_shuffle_ps(fa, fb, 0x88)),
                          _mm256_castps_si256(_mm256_shuffle_ps(fa, fb, 0xDD)));
}

inline Words PairSums(const Sixteen& s) { return {PairSum(s.a.first, s.b.first), PairSum(s.a.second, s.b.second)}; }

// Chroma of eight groups from their summed words; `shift` 13 for pairs, 14
// for 2 x 2 blocks.
template <int shift>
inline __m256i Chroma8(const Words& pairs, const Output& c) {
  const __m256i bias = _mm256_set1_epi32((128 << shift) + (1 << (shift - 1)));
  return _mm256_srli_epi32(_mm256_add_epi32(Apply(pairs, c), bias), shift);
}

// Thirty-two luma words (pixels 0-15 in `a`, 16-31 in `b`) to bytes.
inline void StoreLuma(__m256i a, __m256i b, uint8_t* out) {
  const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), bytes);
}

// Cb and Cr of sixteen groups (groups 0-7 in the first of each, 8-15 in the
// second) to sixteen bytes each: whole stores, which matter where the planes
// are not yet cached.
inline void StoreChroma(__m256i cb0, __m256i cb1, __m256i cr0, __m256i cr1, uint8_t* cbOut, uint8_t* crOut) {
  const __m256i bytes = _mm256_packus_epi16(_mm256_packs_epi32(cb0, cb1), _mm256_packs_epi32(cr0, cr1));
  const __m256i joined = _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(cbOut), _mm256_castsi256_si128(joined));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(crOut), _mm256_extracti128_si256(joined, 1));
}

template <class Load>
void Encode422(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w, const Weights3& k,
               uint32_t bytesPerPixel, Load load) {
  for (uint32_t x = 0; x + 32 <= w; x += 32) {
    const uint8_t* p = src + bytesPerPixel * size_t(x);
    const Sixteen s0 = load(p), s1 = load(p + 16 * bytesPerPixel);
    StoreLuma(Luma16(s0, k.y), Luma16(s1, k.y), y + x);
    const Words pairs0 = PairSums(s0), pairs1 = PairSums(s1);
    StoreChroma(Chroma8<13>(pairs0, k.cb), Chroma8<13>(pairs1, k.cb), Chroma8<13>(pairs0, k.cr),
                Chroma8<13>(pairs1, k.cr), cb + x / 2, cr + x / 2);
  }
}

template <class Load>
void Encode420(const uint8_t* src0, const uint8_t* src1, uint8_t* y0, uint8_t* y1, uint8_t* cb, uint8_t* cr,
               uint32_t w, const Weights3& k, uint32_t bytesPerPixel, Load load) {
  for (uint32_t x = 0; x + 32 <= w; x += 32) {
    const uint8_t* p0 = src0 + bytesPerPixel * size_t(x);
    const uint8_t* p1 = src1 + bytesPerPixel * size_t(x);
    const Sixteen a0 = load(p0), b0 = load(p0 + 16 * bytesPerPixel);
    const Sixteen a1 = load(p1), b1 = load(p1 + 16 * bytesPerPixel);
    StoreLuma(Luma16(a0, k.y), Luma16(b0, k.y), y0 + x);
    StoreLuma(Luma16(a1, k.y), Luma16(b1, k.y), y1 + x);
    const Words blocksA = PairSums({Sum(a0.a, a1.a), Sum(a0.b, a1.b)});
    const Words blocksB = PairSums({Sum(b0.a, b1.a), Sum(b0.b, b1.b)});
    StoreChroma(Chroma8<14>(blocksA, k.cb), Chroma8<14>(blocksB, k.cb), Chroma8<14>(blocksA, k.cr),
                Chroma8<14>(blocksB, k.cr), cb + x / 2, cr + x / 2);
  }
}

void C3ToPlanar422(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w, ChannelOrder order) {
  Encode422(src, y, cb, cr, w, Prepare(order == kOrderRGB ? kEncodeRGB : kEncodeBGR), 3, LoadC3);
  const uint32_t x = w & ~31u;
  C3ToPlanar422Portable(src + 3 * size_t(x), y + x, cb + x / 2, cr + x / 2, w - x, order);
}

void BgrxToPlanar422(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w) {
  Encode422(src, y, cb, cr, w, Prepare(kEncodeBGR), 4, LoadBgrx);
  const uint32_t x = w & ~31u;
  BgrxToPlanar422Portable(src + 4 * size_t(x), y + x, cb + x / 2, cr + x / 2, w - x);
}

void C3ToPlanar420(const uint8_t* src0, const uint8_t* src1, uint8_t* y0, uint8_t* y1, uint8_t* cb, uint8_t* cr,
                   uint32_t w, ChannelOrder order) {
  Encode420(src0, src1, y0, y1, cb, cr, w, Prepare(order == kOrderRGB ? kEncodeRGB : kEncodeBGR), 3, LoadC3);
  const uint32_t x = w & ~31u;
  C3ToPlanar420Portable(src0 + 3 * size_t(x), src1 + 3 * size_t(x), y0 + x, y1 + x, cb + x / 2, cr + x / 2, w - x,
                        order);
}

void BgrxToPlanar420(const uint8_t* src0, const uint8_t* src1, uint8_t* y0, uint8_t* y1, uint8_t* cb, uint8_t* cr,
                     uint32_t w) {
  Encode420(src0, src1, y0, y1, cb, cr, w, Prepare(kEncodeBGR), 4, LoadBgrx);
  const uint32_t x = w & ~31u;
  BgrxToPlanar420Portable(src0 + 4 * size_t(x), src1 + 4 * size_t(x), y0 + x, y1 + x, cb + x / 2, cr + x / 2, w - x);
}

}  // namespace

const YccRowKernels kYccRowsAVX2 = {
    DecodeToBgrx<YuyvGroup>, DecodeToC3<YuyvGroup>, DecodeToBgrx<UyvyGroup>, DecodeToC3<UyvyGroup>,
    C3ToPlanar422,           BgrxToPlanar422,       C3ToPlanar420,           BgrxToPlanar420,
};

}  // namespace kestrelink::ycc
