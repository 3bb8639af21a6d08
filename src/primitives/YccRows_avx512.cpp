// AVX-512 (F, BW, VL) YCbCr rows, built with those flags. The arithmetic is
// the portable rows' exactly (vpmaddwd into 32-bit lanes, rounded, shifted,
// packed with saturation). Whole vectors are stored plainly; the row's tail
// goes to the portable row.
#include <immintrin.h>

#include "primitives/YccRows.h"

namespace kestrelink::ycc {
namespace {

constexpr int8_t Z = -1;  // a zero byte in a shuffle

inline __m512i Weights(int first, int second) { return _mm512_set1_epi32(int((second << 16) | (first & 0xFFFF))); }

inline __m512i Pattern(const int8_t (&bytes)[64]) { return _mm512_loadu_si512(bytes); }

// ---- 4:2:2 pairs to RGB ----

// Zero-extended words (Y, c) of each pixel, c the group's Cb or Cr byte, from
// the two groups that a 128-bit lane holds (bytes 0-7 of the lane), laid out
// as Group says.
template <class Group>
inline __m512i ToWords(int c) {
  const char y0 = char(Group::kY0), y1 = char(Group::kY1), k = char(c);
  return _mm512_broadcast_i32x4(_mm_setr_epi8(y0, Z, k, Z, y1, Z, k, Z, char(y0 + 4), Z, char(k + 4), Z,
                                              char(y1 + 4), Z, char(k + 4), Z));
}
// Per lane: bytes B0-3 G0-3 R0-3 A0-3 to four pixels, or to twelve bytes.
alignas(64) constexpr int8_t kToBgrx[64] = {
    0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15,
    0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15, 0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
alignas(64) constexpr int8_t kToC3[64] = {
    0, 4, 8, 1, 5, 9, 2, 6, 10, 3, 7, 11, Z, Z, Z, Z, 0, 4, 8, 1, 5, 9, 2, 6, 10, 3, 7, 11, Z, Z, Z, Z,
    0, 4, 8, 1, 5, 9, 2, 6, 10, 3, 7, 11, Z, Z, Z, Z, 0, 4, 8, 1, 5, 9, 2, 6, 10, 3, 7, 11, Z, Z, Z, Z};

struct Channels {
  __m512i b, g, r;  // 32-bit; 128-bit lane k holds pixels 4k .. 4k+3
};

// acc plus the dot products of the word pairs of a and w, in 32-bit lanes.
struct DotAdd {
  static inline __m512i Apply(__m512i acc, __m512i a, __m512i w) {
    return _mm512_add_epi32(acc, _mm512_madd_epi16(a, w));
  }
};
// The same in one instruction, where the processor has AVX-512 VNNI.
struct DotAddVnni {
  __attribute__((target("avx512vnni"))) static inline __m512i Apply(__m512i acc, __m512i a, __m512i w) {
    return _mm512_dpwssd_epi32(acc, a, w);
  }
};

// Sixteen pixels from eight groups; each lane gets its two groups twice. The
// constant terms fold the offsets 16 and 128 and the rounding into one addend.
template <class Group, class Dot>
[[gnu::always_inline]] inline Channels DecodeSixteen(const uint8_t* src) {
  const __m256i raw = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src));
  const __m512i s = _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 0, 1, 1, 2, 2, 3, 3), _mm512_castsi256_si512(raw));
  const __m512i ycb = _mm512_shuffle_epi8(s, ToWords<Group>(Group::kCb));
  const __m512i ycr = _mm512_shuffle_epi8(s, ToWords<Group>(Group::kCr));
  const __m512i b =
      Dot::Apply(_mm512_set1_epi32(-kLuma * 16 - kCbToB * 128 + 2048), ycb, Weights(kLuma, kCbToB));
  const __m512i r =
      Dot::Apply(_mm512_set1_epi32(-kLuma * 16 - kCrToR * 128 + 2048), ycr, Weights(kLuma, kCrToR));
  const __m512i g = Dot::Apply(
      Dot::Apply(_mm512_set1_epi32(-kLuma * 16 + (kCrToG + kCbToG) * 128 + 2048), ycr, Weights(kLuma, -kCrToG)),
      ycb, Weights(0, -kCbToG));
  return {_mm512_srai_epi32(b, 12), _mm512_srai_epi32(g, 12), _mm512_srai_epi32(r, 12)};
}

// Per lane: four bytes of each of a, b, c, d, limited to 0 .. 255.
inline __m512i PackBytes(__m512i a, __m512i b, __m512i c, __m512i d) {
  return _mm512_packus_epi16(_mm512_packs_epi32(a, b), _mm512_packs_epi32(c, d));
}

template <class Group, class Dot>
[[gnu::always_inline]] inline void DecodeToBgrx(const uint8_t* src, uint8_t* dst, uint32_t pairs, uint8_t alpha) {
  const __m512i a = _mm512_set1_epi32(alpha);
  uint32_t i = 0;
  for (; i + 8 <= pairs; i += 8) {
    const Channels c = DecodeSixteen<Group, Dot>(src + 4 * size_t(i));
    _mm512_storeu_si512(dst + 8 * size_t(i), _mm512_shuffle_epi8(PackBytes(c.b, c.g, c.r, a), Pattern(kToBgrx)));
  }
  PortablePairRows<Group>::bgrx(src + 4 * size_t(i), dst + 8 * size_t(i), pairs - i, alpha);
}

template <class Group, class Dot, ChannelOrder order>
[[gnu::always_inline]] inline void DecodeToC3Rows(const uint8_t* src, uint8_t* dst, uint32_t pairs) {
  const __m512i zero = _mm512_setzero_si512();
  const __m512i join = _mm512_setr_epi32(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 3, 7, 11, 15);
  uint32_t i = 0;
  for (; i + 8 <= pairs; i += 8) {
    const Channels c = DecodeSixteen<Group, Dot>(src + 4 * size_t(i));
    const __m512i planes = order == kOrderBGR ? PackBytes(c.b, c.g, c.r, zero) : PackBytes(c.r, c.g, c.b, zero);
    const __m512i px = _mm512_permutexvar_epi32(join, _mm512_shuffle_epi8(planes, Pattern(kToC3)));
    uint8_t* out = dst + 6 * size_t(i);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm512_castsi512_si256(px));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 32), _mm512_extracti32x4_epi32(px, 2));
  }
  PortablePairRows<Group>::c3(src + 4 * size_t(i), dst + 6 * size_t(i), pairs - i, order);
}

template <class Group>
void ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t pairs, uint8_t alpha) {
  DecodeToBgrx<Group, DotAdd>(src, dst, pairs, alpha);
}

template <class Group>
void ToC3(const uint8_t* src, uint8_t* dst, uint32_t pairs, ChannelOrder order) {
  if (order == kOrderRGB)
    DecodeToC3Rows<Group, DotAdd, kOrderRGB>(src, dst, pairs);
  else
    DecodeToC3Rows<Group, DotAdd, kOrderBGR>(src, dst, pairs);
}

template <class Group>
__attribute__((target("avx512vnni"))) void ToBgrxVnni(const uint8_t* src, uint8_t* dst, uint32_t pairs,
                                                     uint8_t alpha) {
  DecodeToBgrx<Group, DotAddVnni>(src, dst, pairs, alpha);
}

template <class Group>
__attribute__((target("avx512vnni"))) void ToC3Vnni(const uint8_t* src, uint8_t* dst, uint32_t pairs,
                                                   ChannelOrder order) {
  if (order == kOrderRGB)
    DecodeToC3Rows<Group, DotAddVnni, kOrderRGB>(src, dst, pairs);
  else
    DecodeToC3Rows<Group, DotAddVnni, kOrderBGR>(src, dst, pairs);
}

// ---- RGB to planar 4:2:2 and 4:2:0 ----

// Sixteen pixels as 32-bit lanes of words: `first` (c0, c1) and `second`
// (c2, 33), c0 c1 c2 the channels in memory order. With the weight 2048 on
// the 33, luma's offset and rounding come out of the multiply.
struct Words {
  __m512i first, second;
};

// Weights of one output (Y, Cb or Cr) for the two word vectors.
struct Output {
  __m512i first, second;
};

struct Weights3 {
  Output y, cb, cr;
};

Weights3 Prepare(const EncodeWeights& w) {
  return {{Weights(w.y[0], w.y[1]), Weights(w.y[2], 2048)},
          {Weights(w.cb[0], w.cb[1]), Weights(w.cb[2], 0)},
          {Weights(w.cr[0], w.cr[1]), Weights(w.cr[2], 0)}};
}

inline __m512i Apply(const Words& w, const Output& o) {
  return _mm512_add_epi32(_mm512_madd_epi16(w.first, o.first), _mm512_madd_epi16(w.second, o.second));
}

inline Words ToWords(__m512i px, const int8_t (&first)[64], const int8_t (&second)[64]) {
  return {_mm512_shuffle_epi8(px, Pattern(first)),
          _mm512_or_si512(_mm512_shuffle_epi8(px, Pattern(second)), _mm512_set1_epi32(33 << 16))};
}

inline Words Sum(const Words& a, const Words& b) {
  return {_mm512_add_epi16(a.first, b.first), _mm512_add_epi16(a.second, b.second)};
}

// The words of each pair of pixels summed, sixteen pairs in order, from
// pixels 0-15 (a) and 16-31 (b): the even lanes plus the odd ones.
inline __m512i PairSum(__m512i a, __m512i b) {
  const __m512i even = _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
  const __m512i odd = _mm512_setr_epi32(1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31);
  return _mm512_add_epi16(_mm512_permutex2var_epi32(a, even, b), _mm512_permutex2var_epi32(a, odd, b));
}

inline Words PairSums(const Words& a, const Words& b) {
  return {PairSum(a.first, b.first), PairSum(a.second, b.second)};
}

// Three-byte pixels, lane k from byte 12k; the last lane is read from byte
// 32 so that nothing past byte 47 is touched, hence its masks four bytes on.
alignas(64) constexpr int8_t kC3First[64] = {
    0, Z, 1, Z, 3, Z, 4, Z, 6, Z, 7, Z, 9, Z, 10, Z, 0, Z, 1, Z, 3, Z, 4, Z, 6, Z, 7, Z, 9, Z, 10, Z,
    0, Z, 1, Z, 3, Z, 4, Z, 6, Z, 7, Z, 9, Z, 10, Z, 4, Z, 5, Z, 7, Z, 8, Z, 10, Z, 11, Z, 13, Z, 14, Z};
alignas(64) constexpr int8_t kC3Second[64] = {
    2, Z, Z, Z, 5, Z, Z, Z, 8, Z, Z, Z, 11, Z, Z, Z, 2, Z, Z, Z, 5, Z, Z, Z, 8, Z, Z, Z, 11, Z, Z, Z,
    2, Z, Z, Z, 5, Z, Z, Z, 8, Z, Z, Z, 11, Z, Z, Z, 6, Z, Z, Z, 9, Z, Z, Z, 12, Z, Z, Z, 15, Z, Z, Z};
alignas(64) constexpr int8_t kBgrxFirst[64] = {
    0, Z, 1, Z, 4, Z, 5, Z, 8, Z, 9, Z, 12, Z, 13, Z, 0, Z, 1, Z, 4, Z, 5, Z, 8, Z, 9, Z, 12, Z, 13, Z,
    0, Z, 1, Z, 4, Z, 5, Z, 8, Z, 9, Z, 12, Z, 13, Z, 0, Z, 1, Z, 4, Z, 5, Z, 8, Z, 9, Z, 12, Z, 13, Z};
alignas(64) constexpr int8_t kBgrxSecond[64] = {
    2, Z, Z, Z, 6, Z, Z, Z, 10, Z, Z, Z, 14, Z, Z, Z, 2, Z, Z, Z, 6, Z, Z, Z, 10, Z, Z, Z, 14, Z, Z, Z,
    2, Z, Z, Z, 6, Z, Z, Z, 10, Z, Z, Z, 14, Z, Z, Z, 2, Z, Z, Z, 6, Z, Z, Z, 10, Z, Z, Z, 14, Z, Z, Z};

inline Words LoadC3(const uint8_t* p) {
  // Bytes 0 .. 47 by plain loads: a masked load is slow on memory not yet
  // cached. (The all-ones masked forms keep GCC 12's headers from warning.)
  const __m512i low = _mm512_maskz_inserti64x4(0xFF, _mm512_setzero_si512(),
                                               _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)), 0);
  const __m512i raw =
      _mm512_mask_inserti32x4(low, 0xFFFF, low, _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 32)), 2);
  const __m512i lanes =
      _mm512_maskz_permutexvar_epi32(0xFFFF, _mm512_setr_epi32(0, 1, 2, 3, 3, 4, 5, 6, 6, 7, 8, 9, 8, 9, 10, 11), raw);
  return ToWords(lanes, kC3First, kC3Second);
}

inline Words LoadBgrx(const uint8_t* p) { return ToWords(_mm512_loadu_si512(p), kBgrxFirst, kBgrxSecond); }

inline __m512i Luma(const Words& w, const Output& y) { return _mm512_srli_epi32(Apply(w, y), 12); }

// Chroma of sixteen groups from their summed words; `shift` 13 for pairs,
// 14 for 2 x 2 blocks.
template <int shift>
inline __m512i Chroma16(const Words& groups, const Output& c) {
  const __m512i bias = _mm512_set1_epi32((128 << shift) + (1 << (shift - 1)));
  return _mm512_srli_epi32(_mm512_add_epi32(Apply(groups, c), bias), shift);
}

// Dword 4k + j of a pack of four vectors back to vector j's order.
inline __m512i Unlace(__m512i v) {
  return _mm512_permutexvar_epi32(_mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15), v);
}

// Luma of 32 pixels (0-15 and 16-31) and the chroma of their sixteen
// groups, as 32-bit lanes.
struct Columns32 {
  __m512i lumaA, lumaB, cb, cr;
};

inline Columns32 Encode422Columns(const Words& a, const Words& b, const Weights3& k) {
  const Words pairs = PairSums(a, b);
  return {Luma(a, k.y), Luma(b, k.y), Chroma16<13>(pairs, k.cb), Chroma16<13>(pairs, k.cr)};
}

// Two rows: the first row's luma in `top`, the second's in `bottom`, the
// chroma of the 2 x 2 blocks in `top`.
struct Rows32 {
  Columns32 top;
  __m512i bottomA, bottomB;
};

inline Rows32 Encode420Columns(const Words& a0, const Words& b0, const Words& a1, const Words& b1, const Weights3& k) {
  const Words blocks = PairSums(Sum(a0, a1), Sum(b0, b1));
  return {{Luma(a0, k.y), Luma(b0, k.y), Chroma16<14>(blocks, k.cb), Chroma16<14>(blocks, k.cr)},
          Luma(a1, k.y),
          Luma(b1, k.y)};
}

inline void Store32(uint8_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
inline void Store16(uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

// Both encoders take 64 columns a step, so that luma goes out in whole
// 64-byte lines and chroma in halves (which matters where the planes are not
// cached), then 32 columns once; they answer how many columns they did.
template <class Load>
uint32_t Encode422(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w, const Weights3& k,
                   uint32_t bytesPerPixel, Load load) {
  const size_t block = 16 * bytesPerPixel;
  uint32_t x = 0;
  for (; x + 64 <= w; x += 64) {
    const uint8_t* p = src + bytesPerPixel * size_t(x);
    const Columns32 l = Encode422Columns(load(p), load(p + block), k);
    const Columns32 r = Encode422Columns(load(p + 2 * block), load(p + 3 * block), k);
    _mm512_storeu_si512(y + x, Unlace(PackBytes(l.lumaA, l.lumaB, r.lumaA, r.lumaB)));
    const __m512i chroma = Unlace(PackBytes(l.cb, r.cb, l.cr, r.cr));
    Store32(cb + x / 2, _mm512_castsi512_si256(chroma));
    Store32(cr + x / 2, _mm512_extracti64x4_epi64(chroma, 1));
  }
  if (x + 32 <= w) {
    const uint8_t* p = src + bytesPerPixel * size_t(x);
    const Columns32 c = Encode422Columns(load(p), load(p + block), k);
    const __m512i out = Unlace(PackBytes(c.lumaA, c.lumaB, c.cb, c.cr));
    Store32(y + x, _mm512_castsi512_si256(out));
    Store16(cb + x / 2, _mm512_extracti32x4_epi32(out, 2));
    Store16(cr + x / 2, _mm512_extracti32x4_epi32(out, 3));
    x += 32;
  }
  return x;
}

template <class Load>
uint32_t Encode420(const uint8_t* src0, const uint8_t* src1, uint8_t* y0, uint8_t* y1, uint8_t* cb, uint8_t* cr,
                   uint32_t w, const Weights3& k, uint32_t bytesPerPixel, Load load) {
  const size_t block = 16 * bytesPerPixel;
  uint32_t x = 0;
  for (; x + 64 <= w; x += 64) {
    const uint8_t* p0 = src0 + bytesPerPixel * size_t(x);
    const uint8_t* p1 = src1 + bytesPerPixel * size_t(x);
    const Rows32 l = Encode420Columns(load(p0), load(p0 + block), load(p1), load(p1 + block), k);
    const Rows32 r = Encode420Columns(load(p0 + 2 * block), load(p0 + 3 * block), load(p1 + 2 * block),
                                      load(p1 + 3 * block), k);
    _mm512_storeu_si512(y0 + x, Unlace(PackBytes(l.top.lumaA, l.top.lumaB, r.top.lumaA, r.top.lumaB)));
    _mm512_storeu_si512(y1 + x, Unlace(PackBytes(l.bottomA, l.bottomB, r.bottomA, r.bottomB)));
    const __m512i chroma = Unlace(PackBytes(l.top.cb, r.top.cb, l.top.cr, r.top.cr));
    Store32(cb + x / 2, _mm512_castsi512_si256(chroma));
    Store32(cr + x / 2, _mm512_extracti64x4_epi64(chroma, 1));
  }
  if (x + 32 <= w) {
    const uint8_t* p0 = src0 + bytesPerPixel * size_t(x);
    const uint8_t* p1 = src1 + bytesPerPixel * size_t(x);
    const Rows32 c = Encode420Columns(load(p0), load(p0 + block), load(p1), load(p1 + block), k);
    const __m512i luma = Unlace(PackBytes(c.top.lumaA, c.top.lumaB, c.bottomA, c.bottomB));
    Store32(y0 + x, _mm512_castsi512_si256(luma));
    Store32(y1 + x, _mm512_extracti64x4_epi64(luma, 1));
    const __m512i chroma = Unlace(PackBytes(c.top.cb, c.top.cr, c.top.cb, c.top.cr));
    Store16(cb + x / 2, _mm512_castsi512_si128(chroma));
    Store16(cr + x / 2, _mm512_extracti32x4_epi32(chroma, 1));
    x += 32;
  }
  return x;
}

void C3ToPlanar422(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w, ChannelOrder order) {
  const uint32_t x = Encode422(src, y, cb, cr, w, Prepare(order == kOrderRGB ? kEncodeRGB : kEncodeBGR), 3, LoadC3);
  C3ToPlanar422Portable(src + 3 * size_t(x), y + x, cb + x / 2, cr + x / 2, w - x, order);
}

void BgrxToPlanar422(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w) {
  const uint32_t x = Encode422(src, y, cb, cr, w, Prepare(kEncodeBGR), 4, LoadBgrx);
  BgrxToPlanar422Portable(src + 4 * size_t(x), y + x, cb + x / 2, cr + x / 2, w - x);
}

void C3ToPlanar420(const uint8_t* src0, const uint8_t* src1, uint8_t* y0, uint8_t* y1, uint8_t* cb, uint8_t* cr,
                   uint32_t w, ChannelOrder order) {
  const uint32_t x =
      Encode420(src0, src1, y0, y1, cb, cr, w, Prepare(order == kOrderRGB ? kEncodeRGB : kEncodeBGR), 3, LoadC3);
  C3ToPlanar420Portable(src0 + 3 * size_t(x), src1 + 3 * size_t(x), y0 + x, y1 + x, cb + x / 2, cr + x / 2, w - x,
                        order);
}

void BgrxToPlanar420(const uint8_t* src0, const uint8_t* src1, uint8_t* y0, uint8_t* y1, uint8_t* cb, uint8_t* cr,
                     uint32_t w) {
  const uint32_t x = Encode420(src0, src1, y0, y1, cb, cr, w, Prepare(kEncodeBGR), 4, LoadBgrx);
  BgrxToPlanar420Portable(src0 + 4 * size_t(x), src1 + 4 * size_t(x), y0 + x, y1 + x, cb + x / 2, cr + x / 2, w - x);
}

}  // namespace

const YccRowKernels kYccRowsAVX512 = {
    ToBgrx<YuyvGroup>, ToC3<YuyvGroup>, ToBgrx<UyvyGroup>, ToC3<UyvyGroup>,
    C3ToPlanar422,     BgrxToPlanar422, C3ToPlanar420,     BgrxToPlanar420,
};

const YccRowKernels kYccRowsAVX512Vnni = {
    ToBgrxVnni<YuyvGroup>, ToC3Vnni<YuyvGroup>, ToBgrxVnni<UyvyGroup>, ToC3Vnni<UyvyGroup>,
    C3ToPlanar422,         BgrxToPlanar422,     C3ToPlanar420,         BgrxToPlanar420,
};

}  // namespace kestrelink::ycc
