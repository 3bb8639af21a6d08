#pragma once
// Block copy of one row that writes around the caches. For destinations
// larger than the caches hold, ordinary stores first read every line they
// fill; streaming stores skip that read, which is what a large memcpy does.
// The bytes written are those of memcpy.
#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kestrelink {

// Frames whose destination, shared out over the team, reaches this size a
// thread are copied with StreamCopy.
inline constexpr size_t kStreamCopyBytes = size_t(1) << 20;

inline void StreamCopy(uint8_t* d, const uint8_t* s, size_t n) {
  if (n < 64) {
    std::memcpy(d, s, n);
    return;
  }
  const size_t head = (16 - (reinterpret_cast<uintptr_t>(d) & 15)) & 15;
  std::memcpy(d, s, head);
  d += head;
  s += head;
  n -= head;
  size_t i = 0;
  for (; i + 64 <= n; i += 64) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 16));
    const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 32));
    const __m128i e = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 48));
    _mm_stream_si128(reinterpret_cast<__m128i*>(d + i), a);
    _mm_stream_si128(reinterpret_cast<__m128i*>(d + i + 16), b);
    _mm_stream_si128(reinterpret_cast<__m128i*>(d + i + 32), c);
    _mm_stream_si128(reinterpret_cast<__m128i*>(d + i + 48), e);
  }
  for (; i + 16 <= n; i += 16)
    _mm_stream_si128(reinterpret_cast<__m128i*>(d + i), _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i)));
  std::memcpy(d + i, s + i, n - i);
}

// Sets n bytes at d to value, as memset does, with streaming stores.
inline void StreamFill(uint8_t* d, uint8_t value, size_t n) {
  if (n < 64) {
    std::memset(d, value, n);
    return;
  }
  const size_t head = (16 - (reinterpret_cast<uintptr_t>(d) & 15)) & 15;
  std::memset(d, value, head);
  d += head;
  n -= head;
  const __m128i v = _mm_set1_epi8(char(value));
  size_t i = 0;
  for (; i + 64 <= n; i += 64) {
    _mm_stream_si128(reinterpret_cast<__m128i*>(d + i), v);
    _mm_stream_si128(reinterpret_cast<__m128i*>(d + i + 16), v);
    _mm_stream_si128(reinterpret_cast<__m128i*>(d + i + 32), v);
    _mm_stream_si128(reinterpret_cast<__m128i*>(d + i + 48), v);
  }
  std::memset(d + i, value, n - i);
}

// Streaming stores are weakly ordered. A team's join is a locked operation,
// which drains them on every thread; the calling thread fences its own once
// the frame is done, so the frame is complete when the call returns.
inline void StreamCopyDone() { _mm_sfence(); }

}  // namespace kestrelink
