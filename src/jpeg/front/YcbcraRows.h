#pragma once
// RGBA rows to the YCbCrA that the general library writes as four
// components: the full-range transform of the JFIF format in 16-bit fixed
// point, alpha kept, each sample
//   Y  = (19595 R + 38470 G +  7471 B + 32768) >> 16
//   Cb = ((-11059 R - 21709 G + 32768 B + 32768) >> 16) + 128, at most 255
//   Cr = ((32768 R - 27439 G -  5329 B + 32768) >> 16) + 128, at most 255
// (an arithmetic shift; only the pure blue and pure red ends reach 256).
#include <cstdint>

namespace kestrelink::jpegfront {

// The active variant's row.
void RgbaRowToYcbcra(const uint8_t* in, uint8_t* out, int width);

void RgbaRowToYcbcraPortable(const uint8_t* in, uint8_t* out, int width);
void RgbaRowToYcbcraSSE2(const uint8_t* in, uint8_t* out, int width);

}  // namespace kestrelink::jpegfront
