// Hue, lightness and saturation conversions of the merger's HSL colouring.
#include "merge/MergerColour.h"

namespace kestrelink::merge {

uint16_t HueToRGB(uint16_t n1, uint16_t n2, uint16_t hue) {
  if (hue >= 256) hue = uint16_t(hue - 255);
  const uint16_t span = uint16_t(n2 - n1);
  if (hue < 42) return uint16_t(n1 + uint16_t(uint16_t(span * hue + 21) / 42));
  if (hue < 127) return n2;
  if (hue < 170) return uint16_t(n1 + uint16_t(uint16_t(span * uint16_t(170 - hue) + 21) / 42));
  return n1;
}

void HLStoRGB(uint16_t hue, uint16_t lightness, uint16_t saturation, uint16_t& red, uint16_t& green, uint16_t& blue) {
  if (saturation == 0) {
    red = green = blue = lightness;
    return;
  }
  const uint32_t l = lightness, s = saturation;
  const uint16_t m2 = uint16_t(l <= 127 ? (l * (s + 255) + 127) / 255 : l + s - (l * s + 127) / 255);
  const uint16_t m1 = uint16_t(2 * l - m2);
  red = uint16_t((uint32_t(HueToRGB(m1, m2, uint16_t(hue + 85))) * 255 + 127) / 255);
  green = uint16_t((uint32_t(HueToRGB(m1, m2, hue)) * 255 + 127) / 255);
  blue = uint16_t((uint32_t(HueToRGB(m1, m2, uint16_t(hue - 85))) * 255 + 127) / 255);
}

void RGBtoHLS(uint16_t red, uint16_t green, uint16_t blue, uint16_t& hue, uint16_t& saturation, uint16_t& lightness) {
  const int r = red & 0xFF, g = green & 0xFF, b = blue & 0xFF;
  const int max = r > g ? (r > b ? r : b) : (g > b ? g : b);
  const int min = r < g ? (r < b ? r : b) : (g < b ? g : b);
  const int l = (max + min + 1) * 255 / 510;
  lightness = uint16_t(l);
  if (max == min) {
    saturation = 0;
    hue = 170;
    return;
  }
  const int d = max - min;
  saturation = uint16_t(l <= 127 ? (d * 255 + (max + min) / 2) / (max + min)
                                 : (d * 255 + (510 - max - min) / 2) / (510 - max - min));
  const int dR = ((max - r) * 42 + d / 2) / d, dG = ((max - g) * 42 + d / 2) / d, dB = ((max - b) * 42 + d / 2) / d;
  int h = r == max ? dB - dG : g == max ? dR - dB + 85 : dG - dR + 170;
  if (h < 0) h += 255;
  if (h > 255) h -= 255;
  hue = uint16_t(h);
}

void BuildHslTables(uint16_t hue, uint16_t saturation, uint16_t* red, uint16_t* green, uint16_t* blue) {
  for (uint16_t l = 0; l < 256; ++l) HLStoRGB(hue, l, saturation, red[l], green[l], blue[l]);
}

}  // namespace kestrelink::merge
