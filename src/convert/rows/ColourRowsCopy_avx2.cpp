// AVX2 channel-copy rows (this file is built with -mavx2). Whole vectors
// only; the portable rows finish each row.
#include <immintrin.h>

#include <array>
#include <cstddef>

#include "convert/rows/ColourRowsCopy.h"
#include "convert/rows/ColourRowsCopyMasks.h"

namespace kestrelink::rows {
namespace {

using copymasks::LaneMask;

inline __m256i BothLanes(const LaneMask& m) {
  return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(m.data())));
}

inline __m256i Load(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
inline void Store(uint8_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

// Shuffle of one lane: byte 3p + order[i] to byte 4p + i, byte 4p + 3 zero.
__m256i Spread3To4Shuffle(ChannelOrder order) {
  alignas(32) int8_t m[32];
  for (int lane = 0; lane < 2; ++lane)
    for (int p = 0; p < 4; ++p) {
      for (int i = 0; i < 3; ++i) m[16 * lane + 4 * p + i] = int8_t(3 * p + order.c[i]);
      m[16 * lane + 4 * p + 3] = -128;
    }
  return _mm256_load_si256(reinterpret_cast<const __m256i*>(m));
}

// Sources of eight three-byte pixels (24 bytes) from pixel x on, with the
// dword order that puts twelve bytes in each lane; `room` is the pixels a
// step needs left in the row.
struct Bytes24 {  // the load reads 32 bytes, 24 of them these eight pixels
  static constexpr uint32_t room = 11;
  __m256i Spread() const { return _mm256_setr_epi32(0, 1, 2, 0, 3, 4, 5, 0); }
  __m256i operator()(uint32_t x) const { return Load(src + 3 * size_t(x)); }
  const uint8_t* src;
};
struct ShiftedBytes24 : Bytes24 {  // each byte shifted right; 8 or more gives 0
  ShiftedBytes24(const uint8_t* src, uint32_t shift)
      : Bytes24{src}, count(_mm_cvtsi32_si128(int(shift))), keep(_mm256_set1_epi8(char(shift < 8 ? 0xFFu >> shift : 0u))) {}
  __m256i operator()(uint32_t x) const {
    return _mm256_and_si256(_mm256_srl_epi16(Bytes24::operator()(x), count), keep);
  }
  __m128i count;
  __m256i keep;
};
struct NarrowedWords24 {  // 24 words shifted right and cut to bytes
  static constexpr uint32_t room = 8;
  NarrowedWords24(const uint8_t* src, uint32_t shift) : src(src), count(_mm_cvtsi32_si128(int(shift))) {}
  // The pack leaves words 0-7 in dwords 0-1, 16-23 in 2-3 and 8-15 in 4-5.
  __m256i Spread() const { return _mm256_setr_epi32(0, 1, 4, 0, 5, 2, 3, 0); }
  __m256i operator()(uint32_t x) const {
    const uint8_t* p = src + 6 * size_t(x);
    const __m256i low = _mm256_set1_epi16(0xFF);
    const __m256i a = _mm256_and_si256(_mm256_srl_epi16(Load(p), count), low);
    const __m128i b = _mm_and_si128(_mm_srl_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 32)), count),
                                    _mm256_castsi256_si128(low));
    return _mm256_packus_epi16(a, _mm256_zextsi128_si256(b));
  }
  const uint8_t* src;
  __m128i count;
};

// Eight pixels a step into four-byte pixels, the fourth byte kept; answers
// the first pixel left for the portable row.
template <class Source>
uint32_t Spread3To4(const Source& source, uint8_t* dst, uint32_t w, ChannelOrder order) {
  const __m256i spread = source.Spread();
  const __m256i shuffle = Spread3To4Shuffle(order);
  const __m256i fourth = _mm256_set1_epi32(int(0xFF000000u));
  uint32_t x = 0;
  for (; w - x >= Source::room; x += 8) {
    const __m256i v = _mm256_shuffle_epi8(_mm256_permutevar8x32_epi32(source(x), spread), shuffle);
    uint8_t* out = dst + 4 * size_t(x);
    Store(out, _mm256_or_si256(v, _mm256_and_si256(Load(out), fourth)));
  }
  return x;
}

void Bytes3To4(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift) {
  const uint32_t x = shift == 0 ? Spread3To4(Bytes24{src}, dst, w, order)
                                : Spread3To4(ShiftedBytes24(src, shift), dst, w, order);
  Bytes3To4Portable(src + 3 * size_t(x), dst + 4 * size_t(x), w - x, order, shift);
}

void Words3ToBytes3Of4(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift) {
  const uint32_t x = Spread3To4(NarrowedWords24(src, shift), dst, w, order);
  Words3ToBytes3Of4Portable(src + 6 * size_t(x), dst + 4 * size_t(x), w - x, order, shift);
}

bool Reversed(ChannelOrder order) { return order.c[0] == 2 && order.c[1] == 1 && order.c[2] == 0; }

// Bytes of channel `ch` in a vector that starts `phase` bytes into a pixel
// of three `bytes`-byte channels, as a blend mask.
using ByteMask = std::array<int8_t, 32>;
constexpr ByteMask ChannelBytes(uint32_t bytes, uint32_t phase, uint32_t ch) {
  ByteMask m{};
  for (uint32_t k = 0; k < 32; ++k) m[k] = (k + phase) / bytes % 3 == ch ? int8_t(-1) : int8_t(0);
  return m;
}

template <uint32_t bytes>
struct ReverseMasks {
  static constexpr uint32_t pixel = 3 * bytes;
  static constexpr ByteMask first[3] = {ChannelBytes(bytes, 0, 0), ChannelBytes(bytes, 32 % pixel, 0),
                                        ChannelBytes(bytes, 64 % pixel, 0)};
  static constexpr ByteMask last[3] = {ChannelBytes(bytes, 0, 2), ChannelBytes(bytes, 32 % pixel, 2),
                                       ChannelBytes(bytes, 64 % pixel, 2)};
};

// Byte k + s, and byte k - s, of the stream that runs p, c, n, for each byte
// k of c: a lane moved across from the neighbour, then aligned within lanes.
template <int s>
inline __m256i Ahead(__m256i c, __m256i n) {
  return _mm256_alignr_epi8(_mm256_permute2x128_si256(c, n, 0x21), c, s);
}
template <int s>
inline __m256i Behind(__m256i p, __m256i c) {
  return _mm256_alignr_epi8(c, _mm256_permute2x128_si256(p, c, 0x21), 16 - s);
}

// Channels 0 and 2 exchanged in a stream of three-channel pixels of `bytes`
// bytes a channel: byte k of channel 0 takes byte k + 2 * bytes, of channel 2
// byte k - 2 * bytes. `next(at)` gives the 32 stream bytes from byte `at`;
// every load lies inside the row. Answers the first pixel not done.
template <uint32_t bytes, class Next>
uint32_t ReverseStream(const Next& next, uint8_t* dst, uint32_t w) {
  using Masks = ReverseMasks<bytes>;
  constexpr int s = 2 * bytes;
  const size_t rowBytes = size_t(w) * Masks::pixel;
  if (rowBytes < 64) return 0;
  __m256i first[3], last[3];
  for (int i = 0; i < 3; ++i) {
    first[i] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(Masks::first[i].data()));
    last[i] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(Masks::last[i].data()));
  }
  __m256i p = _mm256_setzero_si256(), c = next(0);  // the first vector's channel 2 starts past its own bytes
  size_t at = 0;
  for (int phase = 0; at + 64 <= rowBytes; at += 32, phase = phase == 2 ? 0 : phase + 1) {
    const __m256i n = next(at + 32);
    const __m256i v = _mm256_blendv_epi8(c, Ahead<s>(c, n), first[phase]);
    Store(dst + at, _mm256_blendv_epi8(v, Behind<s>(p, c), last[phase]));
    p = c;
    c = n;
  }
  return uint32_t(at / Masks::pixel);  // a pixel cut by the last vector is done again whole
}

struct StreamBytes {
  __m256i operator()(size_t at) const { return Load(src + at); }
  const uint8_t* src;
};
struct StreamNarrowedWords {  // 32 words shifted right and cut to bytes
  StreamNarrowedWords(const uint8_t* src, uint32_t shift) : src(src), count(_mm_cvtsi32_si128(int(shift))) {}
  __m256i operator()(size_t at) const {
    const uint8_t* p = src + 2 * at;
    const __m256i low = _mm256_set1_epi16(0xFF);
    const __m256i a = _mm256_and_si256(_mm256_srl_epi16(Load(p), count), low);
    const __m256i b = _mm256_and_si256(_mm256_srl_epi16(Load(p + 32), count), low);
    return _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8);
  }
  const uint8_t* src;
  __m128i count;
};

// Every word narrowed in its place, 32 a step; answers the first pixel not done.
template <class Next>
uint32_t CopyStream(const Next& next, uint8_t* dst, uint32_t w) {
  const size_t rowBytes = 3 * size_t(w);
  size_t at = 0;
  for (; at + 32 <= rowBytes; at += 32) Store(dst + at, next(at));
  return uint32_t(at / 3);
}

bool Same(ChannelOrder order) { return order.c[0] == 0 && order.c[1] == 1 && order.c[2] == 2; }

void Words3ToBytes3(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift) {
  const StreamNarrowedWords next(src, shift);
  const uint32_t x = Reversed(order) ? ReverseStream<1>(next, dst, w) : Same(order) ? CopyStream(next, dst, w) : 0;
  Words3ToBytes3Portable(src + 6 * size_t(x), dst + 3 * size_t(x), w - x, order, shift);
}

// Twelve bytes of each 16-byte lane, picked by `shuffle`, stored as 24.
inline void Keep24Of32(__m256i v, __m256i shuffle, uint8_t* out) {
  const __m256i packed = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(v, shuffle), _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(packed));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 16), _mm256_extracti128_si256(packed, 1));
}

// The first three of every four bytes, or of every four 16-bit words.
// (Functions, not globals: nothing of this file may run before the variant is chosen.)
inline __m256i FirstThreeBytes() {
  return _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -128, -128, -128, -128,  //
                          0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -128, -128, -128, -128);
}
inline __m256i FirstThreeWords() {
  return _mm256_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -128, -128, -128, -128,  //
                          0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -128, -128, -128, -128);
}

void Bytes4To3(const uint8_t* src, uint8_t* dst, uint32_t w) {
  uint32_t x = 0;
  for (; x + 8 <= w; x += 8) Keep24Of32(Load(src + 4 * size_t(x)), FirstThreeBytes(), dst + 3 * size_t(x));
  Bytes4To3Portable(src + 4 * size_t(x), dst + 3 * size_t(x), w - x);
}

// Part `part` of two groups of sixteen pixels, one group a lane.
inline __m256i LoadParts(const uint8_t* group, int part) {
  const __m128i lo = _mm_loadu_si128(reinterpret_cast<const __m128i*>(group + 16 * part));
  const __m128i hi = _mm_loadu_si128(reinterpret_cast<const __m128i*>(group + 48 + 16 * part));
  return _mm256_inserti128_si256(_mm256_castsi128_si256(lo), hi, 1);
}

void Split3(const uint8_t* src, uint8_t* d0, uint8_t* d1, uint8_t* d2, uint32_t w) {
  __m256i m[3][3];
  for (int ch = 0; ch < 3; ++ch)
    for (int part = 0; part < 3; ++part) m[ch][part] = BothLanes(copymasks::kSplit[ch][part]);
  uint8_t* const planes[3] = {d0, d1, d2};
  uint32_t x = 0;
  for (; x + 32 <= w; x += 32) {
    const uint8_t* group = src + 3 * size_t(x);
    const __m256i a = LoadParts(group, 0), b = LoadParts(group, 1), c = LoadParts(group, 2);
    for (int ch = 0; ch < 3; ++ch) {
      const __m256i ab = _mm256_or_si256(_mm256_shuffle_epi8(a, m[ch][0]), _mm256_shuffle_epi8(b, m[ch][1]));
      Store(planes[ch] + x, _mm256_or_si256(ab, _mm256_shuffle_epi8(c, m[ch][2])));
    }
  }
  Split3Portable(src + 3 * size_t(x), d0 + x, d1 + x, d2 + x, w - x);
}

void Merge3(const uint8_t* s0, const uint8_t* s1, const uint8_t* s2, uint8_t* dst, uint32_t w) {
  __m256i m[3][3];
  for (int ch = 0; ch < 3; ++ch)
    for (int part = 0; part < 3; ++part) m[ch][part] = BothLanes(copymasks::kMerge[ch][part]);
  uint32_t x = 0;
  for (; x + 32 <= w; x += 32) {
    const __m256i s[3] = {Load(s0 + x), Load(s1 + x), Load(s2 + x)};
    __m256i part[3];  // lane 0: part of pixels 0-15, lane 1: the same part of pixels 16-31
    for (int j = 0; j < 3; ++j) {
      const __m256i ab = _mm256_or_si256(_mm256_shuffle_epi8(s[0], m[0][j]), _mm256_shuffle_epi8(s[1], m[1][j]));
      part[j] = _mm256_or_si256(ab, _mm256_shuffle_epi8(s[2], m[2][j]));
    }
    uint8_t* out = dst + 3 * size_t(x);
    Store(out, _mm256_permute2x128_si256(part[0], part[1], 0x20));
    Store(out + 32, _mm256_permute2x128_si256(part[2], part[0], 0x30));
    Store(out + 64, _mm256_permute2x128_si256(part[1], part[2], 0x31));
  }
  Merge3Portable(s0 + x, s1 + x, s2 + x, dst + 3 * size_t(x), w - x);
}

// Any other order: blends of loads displaced by each channel's move;
// byte k of a vector that starts on a pixel is channel (k / bytes) % 3.
template <uint32_t bytes, class Portable>
void Reorder3(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, Portable portable) {
  constexpr uint32_t pixel = 3 * bytes, step = (32 / pixel) * pixel, reach = 2 * bytes;
  alignas(32) int8_t channelOf[32];
  for (uint32_t k = 0; k < 32; ++k) channelOf[k] = int8_t((k / bytes) % 3);
  const __m256i channel = _mm256_load_si256(reinterpret_cast<const __m256i*>(channelOf));
  __m256i select[3];
  std::ptrdiff_t move[3];
  for (int i = 0; i < 3; ++i) {
    select[i] = _mm256_cmpeq_epi8(channel, _mm256_set1_epi8(char(i)));
    move[i] = (std::ptrdiff_t(order.c[i]) - i) * std::ptrdiff_t(bytes);
  }
  if (w == 0) return;
  portable(src, dst, 1, order);  // vectors start at pixel 1, so no load reaches before the row
  const size_t rowBytes = size_t(w) * pixel;
  size_t at = pixel;
  for (; at + 32 + reach <= rowBytes; at += step) {
    __m256i v = Load(src + at);
    for (int i = 0; i < 3; ++i) v = _mm256_blendv_epi8(v, Load(src + at + move[i]), select[i]);
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
  uint32_t x = 0;
  for (; x + 4 <= w; x += 4) Keep24Of32(Load(src + 8 * size_t(x)), FirstThreeWords(), dst + 6 * size_t(x));
  Words4To3Portable(src + 8 * size_t(x), dst + 6 * size_t(x), w - x);
}

// Eight pixels of four words a step, narrowed as one stream of words.
void Words4ToBytes3Of4(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const StreamNarrowedWords next(src, shift);
  const __m256i fourth = _mm256_set1_epi32(int(0xFF000000u));
  uint32_t x = 0;
  for (; x + 8 <= w; x += 8) {
    uint8_t* out = dst + 4 * size_t(x);
    Store(out, _mm256_blendv_epi8(next(4 * size_t(x)), Load(out), fourth));
  }
  Words4ToBytes3Of4Portable(src + 8 * size_t(x), dst + 4 * size_t(x), w - x, shift);
}

void Words4ToBytes3(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const StreamNarrowedWords next(src, shift);
  uint32_t x = 0;
  for (; x + 8 <= w; x += 8) Keep24Of32(next(4 * size_t(x)), FirstThreeBytes(), dst + 3 * size_t(x));
  Words4ToBytes3Portable(src + 8 * size_t(x), dst + 3 * size_t(x), w - x, shift);
}

}  // namespace

const CopyRowKernels kCopyRowsAVX2 = {
    Bytes3To4,         Bytes4To3,      Split3,    Merge3, Reorder3x8, Reorder3x16, Words3ToBytes3Of4,
    Words3ToBytes3,    Words4To3,      Words4ToBytes3Of4, Words4ToBytes3,
};

}  // namespace kestrelink::rows
