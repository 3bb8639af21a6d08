// CIppImageMerger's tables: gamma, slope (and the byte ratios drawn from
// it), pseudo-colour and HSL, each rebuilt only when its parameters change.
#include <kestrelink/CIppImageMerger.h>

#include <cmath>
#include <cstring>

#include "frame/ThreadSetup.h"
#include "merge/MergerColour.h"

CIppImageMerger::CIppImageMerger()
    : hslHue1(0), hslSat1(0), hslHue2(0), hslSat2(0), hslHueW(0), hslSatW(0), gammaValue(-1.0), gammaBits(65528),
      slopeTable(65535, 0), ratioTable(65536, 0), gammaIsIdentity(false) {
  kestrelink::merge::BuildHslTables(0, 0, hslRed1, hslGreen1, hslBlue1);
  kestrelink::merge::BuildHslTables(0, 0, hslRed2, hslGreen2, hslBlue2);
  kestrelink::merge::BuildHslTables(0, 0, hslRedW, hslGreenW, hslBlueW);
  ReBuildGamma(1.0, 8);
  RebuildPseudoColorLUT(0);
  kestrelink::SetupThreads(0);
  RebuildSlopeLUT(0, 1.0f, 0);
}

void CIppImageMerger::ReBuildGamma(double gamma, int bits) {
  if (!(gamma > 0.0)) gamma = 1.0;
  if (gamma == gammaValue && bits == gammaBits) return;
  gammaValue = gamma;
  gammaBits = bits;
  const uint32_t n = 1u << bits;
  gammaTable.resize(n);
  const double inverse = 1.0 / gamma;
  gammaIsIdentity = inverse == 1.0;
  for (uint32_t i = 0; i < n; ++i) {
    if (gammaIsIdentity) {
      gammaTable[i] = uint16_t(i);
      continue;
    }
    const double base = double(i) / double(n);
    // Settled behaviour of the format: the linear foot is base times the inverse.
    const double v = base < 0.081 ? base * inverse : std::pow(base, inverse) * 1.099 - 0.099;
    const double entry = std::trunc(double(n) * v + 0.5);
    gammaTable[i] = uint16_t(entry < 0.0 ? 0.0 : entry > double(n - 1) ? double(n - 1) : entry);
  }
}

uint16_t CIppImageMerger::GammaCorrect(uint32_t value) const {
  return gammaTable[value < gammaTable.size() ? value : gammaTable.size() - 1];
}

int CIppImageMerger::SetWithinBounds(int value, int low, int high) const {
  return value > high ? high : value < low ? low : value;
}

int CIppImageMerger::SubWithinBounds(int a, int b, int shift, int low, int high) const {
  if (b == 0) return a;
  const int r = int((int64_t(a) * (int64_t(1) << shift)) / b);
  return slopeTable[size_t(SetWithinBounds(SetWithinBounds(r, low, high), 0, int(slopeTable.size()) - 1))];
}

void CIppImageMerger::RebuildSlopeLUT(int offset, float slope, int mode) {
  if (mode < 0 || mode > 2) return;
  for (int i = 0; i < 65535; ++i) {
    const float t = float(i) / 65535.0f;
    float v = 0.0f;
    if (mode == 0) v = std::tan(slope) * t * 255.0f;
    if (mode == 1) v = i == 0 ? 0.0f : std::pow(t, slope) * 255.0f;
    if (mode == 2) v = std::log(t + 1.0f) * slope * 255.0f;
    v += 0.5f;
    // Far beyond the clamp (or not a number) converts as its side of it.
    const float bounded = std::isnan(v) ? 0.0f : v < -1e6f ? -1e6f : v > 1e6f ? 1e6f : v;
    slopeTable[size_t(i)] = uint8_t(SetWithinBounds(int(bounded) + (offset < -2000000 ? -2000000
                                                                      : offset > 2000000 ? 2000000 : offset),
                                                    0, 255));
  }
  RebuildRatioTable();
}

// ratio(a, b): a for b 0, else slopeTable[min((a << 8) / b, 255)].
void CIppImageMerger::RebuildRatioTable() {
  for (int a = 0; a < 256; ++a)
    for (int b = 0; b < 256; ++b) {
      const int capped = b == 0 ? 0 : ((a << 8) / b < 255 ? (a << 8) / b : 255);
      ratioTable[size_t(a) * 256 + size_t(b)] = b == 0 ? uint8_t(a) : slopeTable[size_t(capped)];
    }
}

void CIppImageMerger::RebuildPseudoColorLUT(int swap) {
  uint8_t red[256], green[256], blue[256];
  red[0] = green[0] = blue[0] = 0;
  for (int v = 1; v <= 128; ++v) {
    red[v] = uint8_t(v <= 64 ? 255 : (128 - v) * 255 / 64);
    green[v] = uint8_t((v * 255) >> 7);
    blue[v] = 0;
  }
  for (int v = 129; v <= 254; ++v) {
    red[v] = 0;
    green[v] = green[256 - v];
    blue[v] = uint8_t(v <= 196 ? (v - 128) * 255 / 68 : 255);
  }
  red[255] = green[255] = blue[255] = 255;
  std::memcpy(pseudoRed, swap ? blue : red, 256);
  std::memcpy(pseudoGreen, green, 256);
  std::memcpy(pseudoBlue, swap ? red : blue, 256);
}

uint16_t CIppImageMerger::HueToRGB(uint16_t n1, uint16_t n2, uint16_t hue) {
  return kestrelink::merge::HueToRGB(n1, n2, hue);
}

void CIppImageMerger::HLStoRGB(uint16_t hue, uint16_t lightness, uint16_t saturation, uint16_t& red,
                               uint16_t& green, uint16_t& blue) {
  kestrelink::merge::HLStoRGB(hue, lightness, saturation, red, green, blue);
}

void CIppImageMerger::RGBtoHLS(uint16_t red, uint16_t green, uint16_t blue, uint16_t& hue, uint16_t& saturation,
                               uint16_t& lightness) {
  kestrelink::merge::RGBtoHLS(red, green, blue, hue, saturation, lightness);
}

void CIppImageMerger::ReBuildHSLLUT(uint16_t hue, uint16_t saturation, uint16_t* outRed, uint16_t* outGreen,
                                    uint16_t* outBlue) {
  kestrelink::merge::BuildHslTables(hue, saturation, outRed, outGreen, outBlue);
}

void CIppImageMerger::UseRegionTables(uint16_t hue, uint16_t saturation, uint16_t* red, uint16_t* green,
                                      uint16_t* blue, uint16_t& heldHue, uint16_t& heldSaturation) {
  if (hue == heldHue && saturation == heldSaturation) return;
  ReBuildHSLLUT(hue, saturation, red, green, blue);
  heldHue = hue;
  heldSaturation = saturation;
}

void CIppImageMerger::HLStoRGB_1(uint16_t hue, uint16_t lightness, uint16_t saturation, uint16_t& red,
                                 uint16_t& green, uint16_t& blue) {
  UseRegionTables(hue, saturation, hslRed1, hslGreen1, hslBlue1, hslHue1, hslSat1);
  red = hslRed1[lightness & 0xFF], green = hslGreen1[lightness & 0xFF], blue = hslBlue1[lightness & 0xFF];
}

void CIppImageMerger::HLStoRGB_2(uint16_t hue, uint16_t lightness, uint16_t saturation, uint16_t& red,
                                 uint16_t& green, uint16_t& blue) {
  UseRegionTables(hue, saturation, hslRed2, hslGreen2, hslBlue2, hslHue2, hslSat2);
  red = hslRed2[lightness & 0xFF], green = hslGreen2[lightness & 0xFF], blue = hslBlue2[lightness & 0xFF];
}

void CIppImageMerger::HLStoRGB_W(uint16_t hue, uint16_t lightness, uint16_t saturation, uint16_t& red,
                                 uint16_t& green, uint16_t& blue) {
  UseRegionTables(hue, saturation, hslRedW, hslGreenW, hslBlueW, hslHueW, hslSatW);
  red = hslRedW[lightness & 0xFF], green = hslGreenW[lightness & 0xFF], blue = hslBlueW[lightness & 0xFF];
}

// The three regions' tables for one call, checked once before the overlay
// (the same values the per-pixel check would settle on): each layer fully
// saturated at its hue, the overlap at the hue and saturation of the two
// layers' colours added.
void CIppImageMerger::PrepareHslTables(uint32_t hue1, uint32_t hue2) {
  uint16_t r, g, b, r1, g1, b1, r2, g2, b2;
  HLStoRGB_1(uint16_t(hue1), 0, 255, r, g, b);
  HLStoRGB_2(uint16_t(hue2), 0, 255, r, g, b);
  HLStoRGB(uint16_t(hue1), 128, 255, r1, g1, b1);
  HLStoRGB(uint16_t(hue2), 128, 255, r2, g2, b2);
  uint16_t hue, saturation, lightness;
  RGBtoHLS(uint16_t(r1 + r2 > 255 ? 255 : r1 + r2), uint16_t(g1 + g2 > 255 ? 255 : g1 + g2),
           uint16_t(b1 + b2 > 255 ? 255 : b1 + b2), hue, saturation, lightness);
  HLStoRGB_W(hue, 0, saturation, r, g, b);
}
