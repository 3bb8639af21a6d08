#pragma once
// The table generators of the colour-map engine. Tables hold 2^inBits 16-bit
// entries; with an output of 8 bits or less an entry holds a byte value.
#include <cstdint>

namespace kestrelink::colormap {

// Writes pseudo-colour map `mode` (0 or above) into the B, G, R tables:
// 1 rainbow blue end first, 2 heat, 3 heat with B and R exchanged, 4 negative,
// 0 and anything above 4 rainbow red end first. Entry 0 is black.
void FillPseudoColor(int32_t mode, int32_t inBits, uint16_t* b, uint16_t* g, uint16_t* r);

// The ASC curve: y = pow(max(v / M_in * gain + offset, 0), gamma), capped at
// 1, entry = M_out * y truncated.
void ApplyAscCurve(uint16_t* table, uint32_t size, int32_t inBits, int32_t outBits, double gain, double offset,
                   double gamma);

// The clip rule for a level of 0 or above. `shiftBase` is 8 for the mono table
// and outBits for the colour tables.
void ApplyClipLevel(uint16_t* table, uint32_t size, int32_t inBits, int32_t outBits, int32_t level,
                    int32_t shiftBase);

// Entries whose flag is still 0 are in input units: shift them to output.
void ShiftUnflagged(uint16_t* table, const uint8_t* flags, uint32_t size, int32_t shift);

}  // namespace kestrelink::colormap
