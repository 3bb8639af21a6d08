#pragma once
// The source layouts of the converter's format codes, between 8-bit frames
// and planes of signed 32-bit samples:
//   100, 101  one component, 8-bit mono at the third pointer
//   300       three planes; the first pointer is component 2, the third component 0
//   400       third pointer, 3 bytes a pixel as components 0, 1, 2 (decoded as BGR24)
//   500       third pointer, 4 bytes a pixel, bytes 2, 1, 0 as components 0, 1, 2,
//             byte 3 dropped (decoded as BGR24)
//   other     third pointer, BGR24: bytes 2, 1, 0 as components 0, 1, 2
// Rows are tightly packed; there is no flip.
#include <cstdint>

namespace kestrelink::j2k {

inline bool IsMonoFormat(uint32_t format) { return format == 100 || format == 101; }

// Loads the frame with the level shift: each sample is its byte minus 128.
void LoadSamples(uint32_t format, uint32_t width, uint32_t height, void* const planes[3], int32_t* const out[3]);
// Stores samples plus 128, clamped to 0 .. 255.
void StoreSamples(uint32_t format, uint32_t width, uint32_t height, const int32_t* const in[3], void* const planes[3]);

}  // namespace kestrelink::j2k
