#pragma once
// State of a CIppBayerCorrector: the image it is set up for, the correction
// settings and the three channel tables (entry i is what sample value i
// becomes; only the low 8 or 16 bits reach the image).
#include <cstdint>
#include <memory>

#include <kestrelink/CIppBayerCorrector.h>

struct LookLut;  // a shared look object, owned by the process-wide look cache

namespace kestrelink::colour {
inline constexpr uint32_t kLutEntries = 65536;
inline constexpr uint32_t kLookFractionEntries = 8912;

// Format codes of the corrector.
inline constexpr uint32_t kFormatRaw = 100, kFormatRawAlt = 101, kFormatBgr = 200, kFormatRgb = 400,
                          kFormatBgrx = 500, kFormatRgbx = 100000;
}  // namespace kestrelink::colour

struct CBayerCorrectorImpl {
  CBayerCorrectorImpl();

  uint32_t width = 0, height = 0;
  uint32_t bitsPerPixel = 0;
  uint32_t bitDepth = 0;
  uint32_t formatCode = 0;
  bool bIdentityLut = false;
  bool bLutValid = false;
  BAYERPATTERN bayerPattern = BAYERPATTERN(0);
  CORRECTIONAL_ALG cbAlgorithm = CORRECTIONAL_ALG(0);
  bool bBgrInput = false;
  bool bInitialised = false;
  CORRECTION_MODE correctionMode = CORRECTION_MANUAL;
  int32_t lutBits = 8;  // automatic tables cover 0 .. 2^lutBits - 1; nothing changes it
  LookLut* look = nullptr;
  int32_t redOffset = 0, blueOffset = 0, greenOffset = 0;
  std::unique_ptr<uint32_t[]> redLut, greenLut, blueLut;
  std::unique_ptr<uint32_t[]> lookCellIndex, lookCellRemainder;
  std::unique_ptr<float[]> lookOneMinusFraction, lookFraction;
};
