#pragma once
// The NV12 row kernels written once over a vector type V (included by each
// vector variant's file, built for its instruction set). V gives kBytes, Reg,
// Load, Store, Stream, Splat and, for chroma rows, Interleave (two registers
// of u and v bytes to the pairs in order: the first kBytes / 2 pairs, then
// the rest).
// Streaming stores need aligned addresses: the bytes up to the first aligned
// one go with ordinary stores, and so do the bytes after the last whole
// vector.
#include <emmintrin.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "h264/Nv12Rows.h"

// Compiled into the SSE2, AVX2 and AVX-512 files alike, each with its own
// instruction set, so everything here has internal linkage.
namespace kestrelink::h264::nv12body {
namespace {

template <class V, bool Streaming>
inline void Put(uint8_t* p, typename V::Reg r) {
  if constexpr (Streaming) {
    V::Stream(p, r);
  } else {
    V::Store(p, r);
  }
}

// Bytes before the first address at which a streaming store may start.
template <class V, bool Streaming>
inline uint32_t HeadBytes(const uint8_t* p) {
  if constexpr (!Streaming) return 0;
  return uint32_t(-reinterpret_cast<uintptr_t>(p) & (V::kBytes - 1));
}

template <class V, bool Streaming>
void LumaRow(const uint8_t* src, uint32_t n, uint8_t pad, uint32_t to, uint8_t* dst) {
  if constexpr (Streaming) {
    uint32_t i = std::min(n, HeadBytes<V, true>(dst));
    std::memcpy(dst, src, i);
    for (; i + V::kBytes <= n; i += V::kBytes) V::Stream(dst + i, V::Load(src + i));
    std::memcpy(dst + i, src + i, n - i);
  } else {
    std::memcpy(dst, src, n);
  }
  std::memset(dst + n, pad, to - n);
}

template <class V, bool Streaming>
void FillRow(uint8_t* dst, uint8_t value, uint32_t n) {
  if constexpr (Streaming) {
    uint32_t i = std::min(n, HeadBytes<V, true>(dst));
    std::memset(dst, value, i);
    const typename V::Reg splat = V::Splat(value);
    for (; i + V::kBytes <= n; i += V::kBytes) V::Stream(dst + i, splat);
    std::memset(dst + i, value, n - i);
  } else {
    std::memset(dst, value, n);
  }
}

template <class V, bool Streaming>
void ChromaRow(const uint8_t* u, const uint8_t* v, uint32_t sourcePairs, uint32_t pairs, uint8_t* out) {
  const uint32_t head = HeadBytes<V, Streaming>(out);
  if (head % 2 != 0) {  // an odd start never reaches an aligned pair
    ChromaRow<V, false>(u, v, sourcePairs, pairs, out);
    return;
  }
  uint32_t i = std::min(sourcePairs, head / 2);
  InterleavePairs(u, v, 0, i, out);
  for (; i + V::kBytes <= sourcePairs; i += V::kBytes) {
    typename V::Reg first, second;
    V::Interleave(V::Load(u + i), V::Load(v + i), first, second);
    Put<V, Streaming>(out + 2 * i, first);
    Put<V, Streaming>(out + 2 * i + V::kBytes, second);
  }
  // What is left of a wide vector goes 16 pairs at a time, then one by one.
  for (; i + 16 <= sourcePairs; i += 16) {
    const __m128i uu = _mm_loadu_si128(reinterpret_cast<const __m128i*>(u + i));
    const __m128i vv = _mm_loadu_si128(reinterpret_cast<const __m128i*>(v + i));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 2 * i), _mm_unpacklo_epi8(uu, vv));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 2 * i + 16), _mm_unpackhi_epi8(uu, vv));
  }
  InterleavePairs(u, v, i, sourcePairs, out);
  RepeatLastPair(u, v, sourcePairs, pairs, out);
}

// 16 pairs a step, unpacked low and high: the SSE2 variant, and the chroma
// rows of the AVX2 one.
struct Sse2 {
  static constexpr uint32_t kBytes = 16;
  using Reg = __m128i;
  static Reg Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
  static void Store(uint8_t* p, Reg r) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), r); }
  static void Stream(uint8_t* p, Reg r) { _mm_stream_si128(reinterpret_cast<__m128i*>(p), r); }
  static Reg Splat(uint8_t value) { return _mm_set1_epi8(char(value)); }
  static void Interleave(Reg u, Reg v, Reg& first, Reg& second) {
    first = _mm_unpacklo_epi8(u, v);
    second = _mm_unpackhi_epi8(u, v);
  }
};

template <class V>
constexpr Nv12RowKernels Kernels() {
  return {LumaRow<V, false>, LumaRow<V, true>, ChromaRow<V, false>, ChromaRow<V, true>,
          FillRow<V, false>, FillRow<V, true>};
}

}  // namespace
}  // namespace kestrelink::h264::nv12body
