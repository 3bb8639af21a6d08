#include "jpeg/HuffmanEncoder.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

namespace kestrelink::jpeg {

bool CJPEGEncoderHuffmanTable::Init(const uint8_t bits[16], const uint8_t* values, int count) {
  int total = 0;
  for (int i = 0; i < 16; ++i) total += bits[i];
  if (total > 256 || total != count) return false;
  std::memcpy(m_bits, bits, 16);
  std::memcpy(m_values, values, size_t(total));
  m_count = total;
  std::memset(m_length, 0, sizeof m_length);
  uint32_t code = 0;
  int k = 0;
  for (int len = 1; len <= 16; ++len) {
    for (int i = 0; i < bits[len - 1]; ++i, ++k) {
      m_code[values[k]] = code++;
      m_length[values[k]] = uint8_t(len);
    }
    if (code > (1u << len)) return false;
    code <<= 1;
  }
  return true;
}

void BuildOptimalHuffman(const uint32_t freqIn[256], uint8_t bits[16], uint8_t values[256], int& count) {
  // Annex K.2: a reserved symbol 256 with count 1 keeps any code from being
  // all ones; merging the two least frequent trees gives the code sizes.
  int64_t freq[257];
  int codesize[257] = {}, others[257];
  for (int i = 0; i < 256; ++i) freq[i] = freqIn[i];
  freq[256] = 1;
  std::fill(others, others + 257, -1);
  for (;;) {
    int c1 = -1, c2 = -1;
    int64_t v = INT64_MAX;
    for (int i = 0; i <= 256; ++i)
      if (freq[i] && freq[i] <= v) v = freq[i], c1 = i;
    v = INT64_MAX;
    for (int i = 0; i <= 256; ++i)
      if (freq[i] && freq[i] <= v && i != c1) v = freq[i], c2 = i;
    if (c2 < 0) break;
    freq[c1] += freq[c2];
    freq[c2] = 0;
    for (++codesize[c1]; others[c1] >= 0; ++codesize[c1]) c1 = others[c1];
    others[c1] = c2;
    for (++codesize[c2]; others[c2] >= 0; ++codesize[c2]) c2 = others[c2];
  }
  int lengthCount[33] = {};
  for (int i = 0; i <= 256; ++i)
    if (codesize[i]) ++lengthCount[std::min(codesize[i], 32)];
  // Limit to 16 bits by moving pairs of the longest codes up a level.
  for (int i = 32; i > 16; --i) {
    while (lengthCount[i] > 0) {
      int j = i - 2;
      while (lengthCount[j] == 0) --j;
      lengthCount[i] -= 2;
      lengthCount[i - 1] += 1;
      lengthCount[j + 1] += 2;
      lengthCount[j] -= 1;
    }
  }
  int i = 16;
  while (i > 0 && lengthCount[i] == 0) --i;
  if (i > 0) lengthCount[i] -= 1;  // drop the reserved symbol (an unused table has none)
  for (int n = 0; n < 16; ++n) bits[n] = uint8_t(lengthCount[n + 1]);
  count = 0;
  for (int len = 1; len <= 32; ++len)
    for (int s = 0; s < 256; ++s)
      if (codesize[s] == len) values[count++] = uint8_t(s);
}

void CJPEGEncoderHuffmanState::PadToByte() {
  const uint32_t pad = (8 - (m_count & 7)) & 7;
  if (pad) Put((1u << pad) - 1, pad);
  while (m_count >= 8) {
    m_count -= 8;
    const uint8_t b = uint8_t(m_acc >> m_count);
    *m_out++ = b;
    if (b == 0xFF) *m_out++ = 0;
  }
}

uint64_t NonzeroMask(const int16_t zigzag[64]) {
  const __m128i zero = _mm_setzero_si128();
  uint64_t mask = 0;
  for (int i = 0; i < 64; i += 16) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(zigzag + i));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(zigzag + i + 8));
    const __m128i zeros = _mm_packs_epi16(_mm_cmpeq_epi16(a, zero), _mm_cmpeq_epi16(b, zero));
    mask |= uint64_t(uint16_t(~_mm_movemask_epi8(zeros))) << i;
  }
  return mask;
}

// The symbols of one sequential block in coding order: the DC category with
// its bits, then each run of zeros (ZRL for every 16) with the level that
// ends it, and EOB unless the last coefficient is nonzero. `dc(category,
// bits)` and `ac(symbol, bits, count)` receive them.
template <class Dc, class Ac>
inline void WalkBlock(const int16_t zigzag[64], int32_t& lastDc, Dc&& dc, Ac&& ac) {
  const int32_t diff = zigzag[0] - lastDc;
  lastDc = zigzag[0];
  const uint32_t n = MagnitudeBits(diff);
  dc(n, MagnitudeCode(diff, n));
  uint64_t mask = NonzeroMask(zigzag) & ~uint64_t(1);
  int last = 0;
  while (mask) {
    const int k = __builtin_ctzll(mask);
    mask &= mask - 1;
    int run = k - last - 1;
    for (; run >= 16; run -= 16) ac(0xF0u, 0u, 0u);
    const int32_t v = zigzag[k];
    const uint32_t size = MagnitudeBits(v);
    ac(uint32_t(run << 4) | size, MagnitudeCode(v, size), size);
    last = k;
  }
  if (last != 63) ac(0u, 0u, 0u);
}

void EncodeBlock(CJPEGEncoderHuffmanState& state, const int16_t zigzag[64], int32_t& lastDc,
                 const CJPEGEncoderHuffmanTable& dc, const CJPEGEncoderHuffmanTable& ac) {
  WalkBlock(
      zigzag, lastDc,
      [&](uint32_t n, uint32_t bits) { state.Put((dc.m_code[n] << n) | bits, dc.m_length[n] + n); },
      [&](uint32_t symbol, uint32_t bits, uint32_t n) {
        state.Put((ac.m_code[symbol] << n) | bits, ac.m_length[symbol] + n);
      });
}

void CountBlock(const int16_t zigzag[64], int32_t& lastDc, uint32_t dcFreq[256], uint32_t acFreq[256]) {
  WalkBlock(
      zigzag, lastDc, [&](uint32_t n, uint32_t) { ++dcFreq[n]; },
      [&](uint32_t symbol, uint32_t, uint32_t) { ++acFreq[symbol]; });
}

}  // namespace kestrelink::jpeg
