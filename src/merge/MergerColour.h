#pragma once
// The merger's hue arithmetic on integers of 0..255: hue 0 red, 85 green,
// 170 blue, lightness and saturation 0..255. Every division truncates.
#include <cstdint>

namespace kestrelink::merge {

// Settled behaviour of the format: all in unsigned 16-bit, a hue of 256 or
// more loses 255 (so 300 acts as 45), and a negative hue wraps to a large
// value that lands in the last branch.
uint16_t HueToRGB(uint16_t n1, uint16_t n2, uint16_t hue);

void HLStoRGB(uint16_t hue, uint16_t lightness, uint16_t saturation, uint16_t& red, uint16_t& green, uint16_t& blue);

void RGBtoHLS(uint16_t red, uint16_t green, uint16_t blue, uint16_t& hue, uint16_t& saturation, uint16_t& lightness);

// The colour of every lightness 0..255 at one hue and saturation.
void BuildHslTables(uint16_t hue, uint16_t saturation, uint16_t* red, uint16_t* green, uint16_t* blue);

}  // namespace kestrelink::merge
