#pragma once
// MonoPcoPixelPacked frames to their 16-bit targets: nine slots a group of
// eight pixels, so each row reaches width / 8 values into the next.
#include <cstdint>

namespace kestrelink::packedmono {

// Slots p0, p1, p2 & 0xFF0, p2, p3, p4, p5, p6 & 0xFF0, p7 of each group,
// shifted left by `shift`: 0 for Mono16, 4 for Mono16MSB. Rows start
// `width` values apart; the last row in order runs past the frame.
void PcoToNineSlots(const void* src, uint32_t width, uint32_t height, uint32_t shift, void* dst, bool flip);

}  // namespace kestrelink::packedmono
