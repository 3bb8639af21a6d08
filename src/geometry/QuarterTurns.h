#pragma once
// The exact right-angle turns of CIppImageRotate on packed frames of
// `bytes` bytes a pixel, over the thread team in bands of output rows.
#include <cstdint>

namespace kestrelink::geometry {

// Output row x, column y = source row h-1-y, column x; output rows are
// `pitch` pixels apart and columns h .. pitch-1 are not written.
void TurnClockwise(uint32_t w, uint32_t h, const void* src, void* dst, uint32_t pitch, int bytes);
// Output row w-1-x, column pitch-1-y = source row h-1-y, column x: the pad
// columns 0 .. pitch-h-1 stand at the left and are not written.
void TurnAnticlockwise(uint32_t w, uint32_t h, const void* src, void* dst, uint32_t pitch, int bytes);
// Output row h-1-y, column x = source row y, column w-1-x; packed rows.
void TurnHalf(uint32_t w, uint32_t h, const void* src, void* dst, int bytes);

}  // namespace kestrelink::geometry
