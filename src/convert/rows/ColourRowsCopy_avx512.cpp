// AVX-512 (F, BW, VL) channel-copy rows, built with those flags. Whole
// vectors use plain loads and stores; the portable rows finish each row, so
// no masked store is needed.
#include <immintrin.h>

#include <array>
#include <cstddef>

#include "convert/rows/ColourRowsCopy.h"
#include "convert/rows/ColourRowsCopyMasks.h"

namespace kestrelink::rows {
namespace {

// The same 16 bytes in every lane (the zero-masked form: GCC 12's plain one
// starts from an undefined vector and warns).
inline __m512i Broadcast128(__m128i v) { return _mm512_maskz_broadcast_i32x4(0xFFFF, v); }

using copymasks::LaneMask;

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

// Sources of sixteen three-byte pixels (48 bytes in the low part of a
// vector) from pixel x on; `room` is the pixels a step needs left in the row.
struct Bytes48 {  // the load reads 64 bytes, 48 of them these sixteen pixels
  static constexpr uint32_t room = 22;
  __m512i operator()(uint32_t x) const { return Load(src + 3 * size_t(x)); }
  void Group(uint32_t x, __m512i in[3]) const {  // sixty-four pixels, 192 bytes
    for (int i = 0; i < 3; ++i) in[i] = Load(src + 3 * size_t(x) + 64 * i);
  }
  const uint8_t* src;
};
struct ShiftedBytes48 {  // each byte shifted right; 8 or more gives 0
  static constexpr uint32_t room = 22;
  ShiftedBytes48(const uint8_t* src, uint32_t shift)
      : src(src), count(_mm_cvtsi32_si128(int(shift))), keep(_mm512_set1_epi8(char(shift < 8 ? 0xFFu >> shift : 0u))) {}
  __m512i Shift(__m512i v) const { return _mm512_and_si512(_mm512_srl_epi16(v, count), keep); }
  __m512i operator()(uint32_t x) const { return Shift(Load(src + 3 * size_t(x))); }
  void Group(uint32_t x, __m512i in[3]) const {
    for (int i = 0; i < 3; ++i) in[i] = Shift(Load(src + 3 * size_t(x) + 64 * i));
  }
  const uint8_t* src;
  __m128i count;
  __m512i keep;
};
struct NarrowedWords48 {  // 48 words shifted right and cut to bytes
  static constexpr uint32_t room = 16;
  NarrowedWords48(const uint8_t* src, uint32_t shift) : src(src), count(_mm_cvtsi32_si128(int(shift))) {}
  __m512i operator()(uint32_t x) const {
    const uint8_t* p = src + 6 * size_t(x);
    const __m256i lo = _mm512_cvtepi16_epi8(_mm512_srl_epi16(Load(p), count));
    const __m128i hi = _mm256_cvtepi16_epi8(
        _mm256_srl_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 64)), count));
    return _mm512_inserti32x4(_mm512_castsi256_si512(lo), hi, 2);
  }
  void Group(uint32_t x, __m512i in[3]) const {  // 192 words, 384 bytes
    const uint8_t* p = src + 6 * size_t(x);
    for (int i = 0; i < 3; ++i) {
      const __m256i lo = _mm512_cvtepi16_epi8(_mm512_srl_epi16(Load(p + 128 * i), count));
      const __m256i hi = _mm512_cvtepi16_epi8(_mm512_srl_epi16(Load(p + 128 * i + 64), count));
      in[i] = _mm512_inserti64x4(_mm512_castsi256_si512(lo), hi, 1);
    }
  }
  const uint8_t* src;
  __m128i count;
};

// Sixty-four pixels a step (192 source bytes in three vectors that sit where
// the row's own 64-byte blocks do), then sixteen; the fourth byte of each
// destination pixel is kept. Answers the first pixel left for the portable row.
template <class Source>
uint32_t Spread3To4(const Source& source, uint8_t* dst, uint32_t w, ChannelOrder order) {
  // Twelve-byte groups 4j .. 4j+3 into the lanes of output j, from the pair
  // of source vectors (0, 1) or (1, 2) that holds them.
  const __m512i groups[4] = {_mm512_setr_epi32(0, 1, 2, 0, 3, 4, 5, 0, 6, 7, 8, 0, 9, 10, 11, 0),
                             _mm512_setr_epi32(12, 13, 14, 0, 15, 16, 17, 0, 18, 19, 20, 0, 21, 22, 23, 0),
                             _mm512_setr_epi32(8, 9, 10, 0, 11, 12, 13, 0, 14, 15, 16, 0, 17, 18, 19, 0),
                             _mm512_setr_epi32(20, 21, 22, 0, 23, 24, 25, 0, 26, 27, 28, 0, 29, 30, 31, 0)};
  const __m512i shuffle = Spread3To4Shuffle(order);
  constexpr __mmask64 kFourth = 0x8888888888888888ull;
  auto put = [&](uint8_t* out, __m512i spread) {
    Store(out, _mm512_mask_blend_epi8(kFourth, _mm512_shuffle_epi8(spread, shuffle), Load(out)));
  };
  uint32_t x = 0;
  for (; w - x >= 64; x += 64) {
    __m512i in[3];
    source.Group(x, in);
    uint8_t* out = dst + 4 * size_t(x);
    put(out, _mm512_permutex2var_epi32(in[0], groups[0], in[1]));
    put(out + 64, _mm512_permutex2var_epi32(in[0], groups[1], in[1]));
    put(out + 128, _mm512_permutex2var_epi32(in[1], groups[2], in[2]));
    put(out + 192, _mm512_permutex2var_epi32(in[1], groups[3], in[2]));
  }
  for (; w - x >= Source::room; x += 16) put(dst + 4 * size_t(x), _mm512_permutexvar_epi32(groups[0], source(x)));
  return x;
}

void Bytes3To4(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift) {
  const uint32_t x = shift == 0 ? Spread3To4(Bytes48{src}, dst, w, order)
                                : Spread3To4(ShiftedBytes48(src, shift), dst, w, order);
  Bytes3To4Portable(src + 3 * size_t(x), dst + 4 * size_t(x), w - x, order, shift);
}

void Words3ToBytes3Of4(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift) {
  const uint32_t x = Spread3To4(NarrowedWords48(src, shift), dst, w, order);
  Words3ToBytes3Of4Portable(src + 6 * size_t(x), dst + 4 * size_t(x), w - x, order, shift);
}

bool Reversed(ChannelOrder order) { return order.c[0] == 2 && order.c[1] == 1 && order.c[2] == 0; }

// Bytes of channel `ch` in a vector that starts `phase` bytes into a pixel
// of three `bytes`-byte channels.
constexpr __mmask64 ChannelBytes(uint32_t bytes, uint32_t phase, uint32_t ch) {
  __mmask64 m = 0;
  for (uint32_t k = 0; k < 64; ++k)
    if ((k + phase) / bytes % 3 == ch) m |= __mmask64(1) << k;
  return m;
}

// Byte k + s, and byte k - s, of the stream that runs p, c, n, for each byte
// k of c: lanes moved across from the neighbours, then aligned within lanes.
template <int s>
inline __m512i Ahead(__m512i c, __m512i n) {
  return _mm512_alignr_epi8(_mm512_alignr_epi64(n, c, 2), c, s);
}
template <int s>
inline __m512i Behind(__m512i p, __m512i c) {
  return _mm512_alignr_epi8(c, _mm512_alignr_epi64(c, p, 6), 16 - s);
}

// Channels 0 and 2 exchanged in a stream of three-channel pixels of `bytes`
// bytes a channel: byte k of channel 0 takes byte k + 2 * bytes, of channel 2
// byte k - 2 * bytes. `next(at)` gives the 64 stream bytes from byte `at`;
// every load lies inside the row. Answers the first pixel not done.
template <uint32_t bytes, class Next>
uint32_t ReverseStream(const Next& next, uint8_t* dst, uint32_t w) {
  constexpr uint32_t pixel = 3 * bytes;
  constexpr int s = 2 * bytes;
  constexpr __mmask64 first[3] = {ChannelBytes(bytes, 0, 0), ChannelBytes(bytes, 64 % pixel, 0),
                                  ChannelBytes(bytes, 128 % pixel, 0)};
  constexpr __mmask64 last[3] = {ChannelBytes(bytes, 0, 2), ChannelBytes(bytes, 64 % pixel, 2),
                                 ChannelBytes(bytes, 128 % pixel, 2)};
  const size_t rowBytes = size_t(w) * pixel;
  if (rowBytes < 128) return 0;
  __m512i p = _mm512_setzero_si512(), c = next(0);  // the first vector's channel 2 starts past its own bytes
  size_t at = 0;
  for (int phase = 0; at + 128 <= rowBytes; at += 64, phase = phase == 2 ? 0 : phase + 1) {
    const __m512i n = next(at + 64);
    const __m512i v = _mm512_mask_blend_epi8(first[phase], c, Ahead<s>(c, n));
    Store(dst + at, _mm512_mask_blend_epi8(last[phase], v, Behind<s>(p, c)));
    p = c;
    c = n;
  }
  return uint32_t(at / pixel);  // a pixel cut by the last vector is done again whole
}

struct StreamBytes {
  __m512i operator()(size_t at) const { return Load(src + at); }
  const uint8_t* src;
};
struct StreamNarrowedWords {  // 64 words shifted right and cut to bytes
  StreamNarrowedWords(const uint8_t* src, uint32_t shift) : src(src), count(_mm_cvtsi32_si128(int(shift))) {}
  __m512i operator()(size_t at) const {
    const uint8_t* p = src + 2 * at;
    const __m256i lo = _mm512_cvtepi16_epi8(_mm512_srl_epi16(Load(p), count));
    const __m256i hi = _mm512_cvtepi16_epi8(_mm512_srl_epi16(Load(p + 64), count));
    return _mm512_inserti64x4(_mm512_castsi256_si512(lo), hi, 1);
  }
  const uint8_t* src;
  __m128i count;
};

// Every word narrowed in its place, 64 a step; answers the first pixel not done.
template <class Next>
uint32_t CopyStream(const Next& next, uint8_t* dst, uint32_t w) {
  const size_t rowBytes = 3 * size_t(w);
  size_t at = 0;
  for (; at + 64 <= rowBytes; at += 64) Store(dst + at, next(at));
  return uint32_t(at / 3);
}

bool Same(ChannelOrder order) { return order.c[0] == 0 && order.c[1] == 1 && order.c[2] == 2; }

void Words3ToBytes3(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift) {
  const StreamNarrowedWords next(src, shift);
  const uint32_t x = Reversed(order) ? ReverseStream<1>(next, dst, w) : Same(order) ? CopyStream(next, dst, w) : 0;
  Words3ToBytes3Portable(src + 6 * size_t(x), dst + 3 * size_t(x), w - x, order, shift);
}

// Sources for Keep12Of16: a vector of pixels from pixel x on.
struct Pixels4 {
  static constexpr uint32_t pixels = 16;
  __m512i operator()(uint32_t x) const { return Load(src + 4 * size_t(x)); }
  const uint8_t* src;
};
struct Pixels8 {  // four 16-bit words a pixel
  static constexpr uint32_t pixels = 8;
  __m512i operator()(uint32_t x) const { return Load(src + 8 * size_t(x)); }
  const uint8_t* src;
};
struct NarrowedPixels4 {  // four 16-bit words a pixel, shifted right and cut to bytes
  static constexpr uint32_t pixels = 16;
  __m512i operator()(uint32_t x) const { return words(4 * size_t(x)); }
  StreamNarrowedWords words;
};

// Twelve bytes of each 16-byte lane, picked by `shuffle`, stored as 48: a
// source gives `pixels` pixels a vector. (Four vectors to three whole stores
// measured slower from memory.) Answers the first pixel left over.
template <class Source>
uint32_t Keep12Of16(const Source& source, __m512i shuffle, uint8_t* dst, uint32_t w) {
  constexpr uint32_t pixels = Source::pixels, outBytes = 48 / pixels;
  const __m512i pack = _mm512_setr_epi32(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 3, 7, 11, 15);
  uint32_t x = 0;
  for (; w - x >= pixels; x += pixels) {
    const __m512i v = _mm512_permutexvar_epi32(pack, _mm512_shuffle_epi8(source(x), shuffle));
    uint8_t* out = dst + outBytes * size_t(x);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm512_castsi512_si256(v));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 32), _mm512_extracti32x4_epi32(v, 2));
  }
  return x;
}

inline __m512i FirstThreeBytes() {
  return Broadcast128(_mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -128, -128, -128, -128));
}
inline __m512i FirstThreeWords() {
  return Broadcast128(_mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -128, -128, -128, -128));
}

void Bytes4To3(const uint8_t* src, uint8_t* dst, uint32_t w) {
  const uint32_t x = Keep12Of16(Pixels4{src}, FirstThreeBytes(), dst, w);
  Bytes4To3Portable(src + 4 * size_t(x), dst + 3 * size_t(x), w - x);
}

void Words4ToBytes3(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const uint32_t x = Keep12Of16(NarrowedPixels4{StreamNarrowedWords(src, shift)}, FirstThreeBytes(), dst, w);
  Words4ToBytes3Portable(src + 8 * size_t(x), dst + 3 * size_t(x), w - x, shift);
}

// Sixty-four pixels: 192 bytes in twelve 16-byte parts c0..c11; lane l of
// part j holds c(3l + j), the part j of the pixels 16l .. 16l+15.
void Split3(const uint8_t* src, uint8_t* d0, uint8_t* d1, uint8_t* d2, uint32_t w) {
  __m512i m[3][3];
  for (int ch = 0; ch < 3; ++ch)
    for (int part = 0; part < 3; ++part) m[ch][part] = AllLanes(copymasks::kSplit[ch][part]);
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
    for (int part = 0; part < 3; ++part) m[ch][part] = AllLanes(copymasks::kMerge[ch][part]);
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

// Any other order: blends of loads displaced by each channel's move;
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
  if (!Reversed(order)) return Reorder3<1>(src, dst, w, order, Reorder3x8Portable);
  const uint32_t x = ReverseStream<1>(StreamBytes{src}, dst, w);
  Reorder3x8Portable(src + 3 * size_t(x), dst + 3 * size_t(x), w - x, order);
}

void Reorder3x16(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order) {
  if (!Reversed(order)) return Reorder3<2>(src, dst, w, order, Reorder3x16Portable);
  const uint32_t x = ReverseStream<2>(StreamBytes{src}, dst, w);
  Reorder3x16Portable(src + 6 * size_t(x), dst + 6 * size_t(x), w - x, order);
}

void Words4To3(const uint8_t* src, uint8_t* dst, uint32_t w) {
  const uint32_t x = Keep12Of16(Pixels8{src}, FirstThreeWords(), dst, w);
  Words4To3Portable(src + 8 * size_t(x), dst + 6 * size_t(x), w - x);
}

// Sixteen pixels of four words a step, narrowed as one stream of words.
void Words4ToBytes3Of4(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const StreamNarrowedWords next(src, shift);
  constexpr __mmask64 kFourth = 0x8888888888888888ull;
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    uint8_t* out = dst + 4 * size_t(x);
    Store(out, _mm512_mask_blend_epi8(kFourth, next(4 * size_t(x)), Load(out)));
  }
  Words4ToBytes3Of4Portable(src + 8 * size_t(x), dst + 4 * size_t(x), w - x, shift);
}

}  // namespace

const CopyRowKernels kCopyRowsAVX512 = {
    Bytes3To4,         Bytes4To3,      Split3,    Merge3, Reorder3x8, Reorder3x16, Words3ToBytes3Of4,
    Words3ToBytes3,    Words4To3,      Words4ToBytes3Of4, Words4ToBytes3,
};

}  // namespace kestrelink::rows
