// AVX-512 (F, BW, VL) channel-copy rows, built with those flags. Whole
// vectors use plain loads and stores; the portable rows finish each row, so
// no masked store is needed.
#include <immintrin.h>

#include <array>
#include <cstddef>

#include "convert/rows/ColourRowsCopy.h"

namespace kestrelink::rows {
namespace {

// The same 16 bytes in every lane (the zero-masked form: GCC 12's plain one
// starts from an undefined vector and warns).
inline __m512i Broadcast128(__m128i v) { return _mm512_maskz_broadcast_i32x4(0xFFFF, v); }

using LaneMask = std::array<int8_t, 16>;

// Byte k of a group of sixteen three-byte pixels is channel k % 3 of pixel
// k / 3. Gathers channel `ch` from part `part` (bytes 16*part ..) to the
// pixel's place; the other bytes come out 0.
constexpr LaneMask SplitMask(int ch, int part) {
  LaneMask m{};
  for (int p = 0; p < 16; ++p) {
    const int k = 3 * p + ch;
    m[p] = k / 16 == part ? int8_t(k % 16) : int8_t(-128);
  }
  return m;
}

// The reverse: puts pixel q's channel `ch` where part `part` of the group wants it.
constexpr LaneMask MergeMask(int ch, int part) {
  LaneMask m{};
  for (int q = 0; q < 16; ++q) {
    const int k = 16 * part + q;
    m[q] = k % 3 == ch ? int8_t(k / 3) : int8_t(-128);
  }
  return m;
}

constexpr std::array<std::array<LaneMask, 3>, 3> kSplitMasks = {{
    {SplitMask(0, 0), SplitMask(0, 1), SplitMask(0, 2)},
    {SplitMask(1, 0), SplitMask(1, 1), SplitMask(1, 2)},
    {SplitMask(2, 0), SplitMask(2, 1), SplitMask(2, 2)},
}};
constexpr std::array<std::array<LaneMask, 3>, 3> kMergeMasks = {{
    {MergeMask(0, 0), MergeMask(0, 1), MergeMask(0, 2)},
    {MergeMask(1, 0), MergeMask(1, 1), MergeMask(1, 2)},
    {MergeMask(2, 0), MergeMask(2, 1), MergeMask(2, 2)},
}};

inline __m512i AllLanes(const LaneMask& m) {
  return Broadcast128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(m.data())));
}

inline __m512i Load(const uint8_t* p) { return _mm512_loadu_si512(p); }
inline void Store(uint8_t* p, __m512i v) { _mm512_storeu_si512(p, v); }

// Lanes of a and b by 128-bit lane number: 0-3 from a, 4-7 from b.
inline __m512i Lanes(__m512i a, __m512i b, int l0, int l1, int l2, int l3) {
  const __m512i index = _mm512_setr_epi64(2 * l0, 2 * l0 + 1, 2 * l1, 2 * l1 + 1, 2 * l2, 2 * l2 + 1, 2 * l3, 2 * l3 + 1);
  return _mm512_permutex2var_epi64(a, index, b);
}

// Shuffle of one lane: byte 3p + order[i] to byte 4p + i, byte 4p + 3 zero.
__m512i Spread3To4Shuffle(ChannelOrder order) {
  alignas(16) int8_t m[16];
  for (int p = 0; p < 4; ++p) {
    for (int i = 0; i < 3; ++i) m[4 * p + i] = int8_t(3 * p + order.c[i]);
    m[4 * p + 3] = -128;
  }
  return Broadcast128(_mm_load_si128(reinterpret_cast<const __m128i*>(m)));
}

void Bytes3To4(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift) {
  const __m512i spread = _mm512_setr_epi32(0, 1, 2, 0, 3, 4, 5, 0, 6, 7, 8, 0, 9, 10, 11, 0);
  const __m512i shuffle = Spread3To4Shuffle(order);
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  const __m512i keep = _mm512_set1_epi8(char(shift < 8 ? 0xFFu >> shift : 0u));
  constexpr __mmask64 kFourth = 0x8888888888888888ull;
  uint32_t x = 0;
  for (; w - x >= 22; x += 16) {  // the load reads 64 bytes, 48 of them these sixteen pixels
    __m512i v = _mm512_and_si512(_mm512_srl_epi16(Load(src + 3 * size_t(x)), count), keep);
    v = _mm512_shuffle_epi8(_mm512_permutexvar_epi32(spread, v), shuffle);
    uint8_t* out = dst + 4 * size_t(x);
    Store(out, _mm512_mask_blend_epi8(kFourth, v, Load(out)));
  }
  Bytes3To4Portable(src + 3 * size_t(x), dst + 4 * size_t(x), w - x, order, shift);
}

void Bytes4To3(const uint8_t* src, uint8_t* dst, uint32_t w) {
  const __m512i shuffle = Broadcast128(
      _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -128, -128, -128, -128));
  const __m512i pack = _mm512_setr_epi32(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 3, 7, 11, 15);
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const __m512i v = _mm512_permutexvar_epi32(pack, _mm512_shuffle_epi8(Load(src + 4 * size_t(x)), shuffle));
    uint8_t* out = dst + 3 * size_t(x);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm512_castsi512_si256(v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 32), _mm512_extracti32x4_epi32(v, 2));
  }
  Bytes4To3Portable(src + 4 * size_t(x), dst + 3 * size_t(x), w - x);
}

// Sixty-four pixels: 192 bytes in twelve 16-byte parts c0..c11; lane l of
// part j holds c(3l + j), the part j of the pixels 16l .. 16l+15.
void Split3(const uint8_t* src, uint8_t* d0, uint8_t* d1, uint8_t* d2, uint32_t w) {
  __m512i m[3][3];
  for (int ch = 0; ch < 3; ++ch)
    for (int part = 0; part < 3; ++part) m[ch][part] = AllLanes(kSplitMasks[ch][part]);
  uint8_t* const planes[3] = {d0, d1, d2};
  uint32_t x = 0;
  for (; x + 64 <= w; x += 64) {
    const uint8_t* group = src + 3 * size_t(x);
    const __m512i z0 = Load(group), z1 = Load(group + 64), z2 = Load(group + 128);
    const __m512i a = Lanes(Lanes(z0, z1, 0, 3, 6, 6), z2, 0, 1, 2, 5);  // c0 c3 c6 c9
    const __m512i b = Lanes(Lanes(z0, z1, 1, 4, 7, 7), z2, 0, 1, 2, 6);  // c1 c4 c7 c10
    const __m512i c = Lanes(Lanes(z0, z1, 2, 5, 5, 5), z2, 0, 1, 4, 7);  // c2 c5 c8 c11
    for (int ch = 0; ch < 3; ++ch) {
      const __m512i ab = _mm512_or_si512(_mm512_shuffle_epi8(a, m[ch][0]), _mm512_shuffle_epi8(b, m[ch][1]));
      Store(planes[ch] + x, _mm512_or_si512(ab, _mm512_shuffle_epi8(c, m[ch][2])));
    }
  }
  Split3Portable(src + 3 * size_t(x), d0 + x, d1 + x, d2 + x, w - x);
}

void Merge3(const uint8_t* s0, const uint8_t* s1, const uint8_t* s2, uint8_t* dst, uint32_t w) {
  __m512i m[3][3];
  for (int ch = 0; ch < 3; ++ch)
    for (int part = 0; part < 3; ++part) m[ch][part] = AllLanes(kMergeMasks[ch][part]);
  uint32_t x = 0;
  for (; x + 64 <= w; x += 64) {
    const __m512i s[3] = {Load(s0 + x), Load(s1 + x), Load(s2 + x)};
    __m512i p[3];  // lane l of p[j]: part j of pixels 16l .. 16l+15, which goes to byte 48l + 16j
    for (int j = 0; j < 3; ++j) {
      const __m512i ab = _mm512_or_si512(_mm512_shuffle_epi8(s[0], m[0][j]), _mm512_shuffle_epi8(s[1], m[1][j]));
      p[j] = _mm512_or_si512(ab, _mm512_shuffle_epi8(s[2], m[2][j]));
    }
    uint8_t* out = dst + 3 * size_t(x);
    Store(out, Lanes(Lanes(p[0], p[1], 0, 4, 4, 1), p[2], 0, 1, 4, 3));        // p0.0 p1.0 p2.0 p0.1
    Store(out + 64, Lanes(Lanes(p[1], p[2], 1, 5, 5, 2), p[0], 0, 1, 6, 3));   // p1.1 p2.1 p0.2 p1.2
    Store(out + 128, Lanes(Lanes(p[2], p[0], 2, 7, 7, 3), p[1], 0, 1, 7, 3));  // p2.2 p0.3 p1.3 p2.3
  }
  Merge3Portable(s0 + x, s1 + x, s2 + x, dst + 3 * size_t(x), w - x);
}

// Channels reordered by blending loads displaced by each channel's move:
// byte k of a vector that starts on a pixel is channel (k / bytes) % 3.
template <uint32_t bytes, class Portable>
void Reorder3(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, Portable portable) {
  constexpr uint32_t pixel = 3 * bytes, step = (64 / pixel) * pixel, reach = 2 * bytes;
  alignas(64) int8_t channelOf[64];
  for (uint32_t k = 0; k < 64; ++k) channelOf[k] = int8_t((k / bytes) % 3);
  const __m512i channel = _mm512_load_si512(channelOf);
  __mmask64 select[3];
  std::ptrdiff_t move[3];
  for (int i = 0; i < 3; ++i) {
    select[i] = _mm512_cmpeq_epi8_mask(channel, _mm512_set1_epi8(char(i)));
    move[i] = (std::ptrdiff_t(order.c[i]) - i) * std::ptrdiff_t(bytes);
  }
  if (w == 0) return;
  portable(src, dst, 1, order);  // vectors start at pixel 1, so no load reaches before the row
  const size_t rowBytes = size_t(w) * pixel;
  size_t at = pixel;
  for (; at + 64 + reach <= rowBytes; at += step) {
    __m512i v = Load(src + at);
    for (int i = 0; i < 3; ++i) v = _mm512_mask_blend_epi8(select[i], v, Load(src + at + move[i]));
    Store(dst + at, v);
  }
  portable(src + at, dst + at, uint32_t((rowBytes - at) / pixel), order);
}

void Reorder3x8(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order) {
  Reorder3<1>(src, dst, w, order, Reorder3x8Portable);
}

void Reorder3x16(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order) {
  Reorder3<2>(src, dst, w, order, Reorder3x16Portable);
}

void Words4To3(const uint8_t* src, uint8_t* dst, uint32_t w) {
  const __m512i shuffle = Broadcast128(
      _mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -128, -128, -128, -128));
  const __m512i pack = _mm512_setr_epi32(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 3, 7, 11, 15);
  uint32_t x = 0;
  for (; x + 8 <= w; x += 8) {
    const __m512i v = _mm512_permutexvar_epi32(pack, _mm512_shuffle_epi8(Load(src + 8 * size_t(x)), shuffle));
    uint8_t* out = dst + 6 * size_t(x);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm512_castsi512_si256(v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 32), _mm512_extracti32x4_epi32(v, 2));
  }
  Words4To3Portable(src + 8 * size_t(x), dst + 6 * size_t(x), w - x);
}

void Words4ToBytes3Of4(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  constexpr __mmask64 kFourth = 0x8888888888888888ull;
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const uint8_t* in = src + 8 * size_t(x);
    const __m256i a = _mm512_cvtepi16_epi8(_mm512_srl_epi16(Load(in), count));
    const __m256i b = _mm512_cvtepi16_epi8(_mm512_srl_epi16(Load(in + 64), count));
    uint8_t* out = dst + 4 * size_t(x);
    Store(out, _mm512_mask_blend_epi8(kFourth, _mm512_inserti64x4(_mm512_castsi256_si512(a), b, 1), Load(out)));
  }
  Words4ToBytes3Of4Portable(src + 8 * size_t(x), dst + 4 * size_t(x), w - x, shift);
}

}  // namespace

const CopyRowKernels kCopyRowsAVX512 = {
    Bytes3To4, Bytes4To3, Split3, Merge3, Reorder3x8, Reorder3x16, Words4To3, Words4ToBytes3Of4,
};

}  // namespace kestrelink::rows
