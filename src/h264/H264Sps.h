#pragma once
// What the library reads from a sequence parameter set: the profile and
// level it claims, the picture format, and the picture size after cropping.
#include <cstddef>
#include <cstdint>

namespace UMC {

struct H264SpsInfo {
  int32_t profileIdc = 0;
  int32_t constraintFlags = 0;
  int32_t levelIdc = 0;
  int32_t spsId = 0;
  int32_t chromaFormatIdc = 1;
  int32_t bitDepthLuma = 8;
  int32_t bitDepthChroma = 8;
  int32_t log2MaxFrameNum = 4;
  int32_t pocType = 0;
  int32_t log2MaxPocLsb = 4;
  int32_t numRefFrames = 0;
  bool frameMbsOnly = true;
  int32_t width = 0;   // after cropping
  int32_t height = 0;  // after cropping
};

// Parses the NAL unit at `nal` (header byte first, emulation prevention
// still in). False for another NAL type, a reader overrun or sizes out of range.
bool ParseSps(const uint8_t* nal, size_t size, H264SpsInfo& sps);

}  // namespace UMC
