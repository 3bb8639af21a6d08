#pragma once
// The frame loop of the BGR10PixelPacked sources, plain and colour-map. The
// layout's third channel is not stored in its pixel: every pixel stores it
// in byte 0 of the destination frame, so a pixel's third byte stays as the
// caller left it and byte 0 ends up with the last pixel written. This is a
// settled behaviour of the format. Which thread writes last is not defined;
// byte 0 takes relaxed atomic stores, so that the race between the threads
// is a defined one. Within a row only its last pixel's store can be the one
// that stays, so one store a row gives every result a pixel-by-pixel loop can.
#include <atomic>
#include <cstdint>
#include <cstring>

#include "frame/RowLoop.h"

namespace kestrelink::colour {

// row(src, dst, n) writes D0 and D1 of n pixels; firstTwo(u) is D0 | D1 << 8
// of the word u; third(u) the byte that u stores in byte 0.
template <class Row, class FirstTwo, class Third>
void ThirdChannelIntoByteZero(uint32_t w, uint32_t h, const void* src, void* dst, uint32_t dstPixelBytes, bool flip,
                              Row row, FirstTwo firstTwo, Third third) {
  if (w == 0 || h == 0) return;
  std::atomic_ref<uint8_t> byteZero(*static_cast<uint8_t*>(dst));
  auto word = [](const uint8_t* p) {
    uint32_t u;
    std::memcpy(&u, p, 4);
    return u;
  };
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    const uint8_t* s = RowAt(src, 4 * size_t(w), in);
    uint8_t* d = RowAt(dst, dstPixelBytes * size_t(w), out);
    if (out == 0) {  // the frame's first pixel: its D0 is byte 0
      const uint32_t first = firstTwo(word(s));
      byteZero.store(uint8_t(first), std::memory_order_relaxed);
      d[1] = uint8_t(first >> 8);
      row(s + 4, d + dstPixelBytes, w - 1);
    } else {
      row(s, d, w);
    }
    byteZero.store(uint8_t(third(word(s + 4 * size_t(w - 1)))), std::memory_order_relaxed);
  });
}

}  // namespace kestrelink::colour
