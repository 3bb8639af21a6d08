#include "h264/H264ParamCheck.h"

#include <algorithm>
#include <iterator>

#include <omp.h>

#include "platform/OpenMP.h"

namespace UMC {

namespace {

int32_t MacroblocksPerFrame(int32_t width, int32_t height) { return (width + 15) / 16 * ((height + 15) / 16); }

bool IsKnownLevel(int32_t level) {
  constexpr int32_t kLevels[] = {0, 10, 11, 12, 13, 20, 21, 22, 30, 31, 32, 40, 41, 42, 50, 51};
  return std::find(std::begin(kLevels), std::end(kLevels), level) != std::end(kLevels);
}

// The Main and Baseline tools only: 8-bit 4:2:0, no auxiliary picture, no 8x8 transform, not lossless.
bool FitsMainTools(const H264EncoderParams& p) {
  return p.bitDepthLuma == 8 && p.bitDepthChroma == 8 && p.bitDepthAux == 8 && p.chromaFormatIdc == 1 &&
         p.auxFormatIdc == 0 && p.alphaIncrFlag == 0 && p.transform8x8Mode == 0 && p.losslessMode == 0;
}

int32_t Clip(int32_t value, int32_t lo, int32_t hi) { return std::min(std::max(value, lo), hi); }

int32_t InRangeOr(int32_t value, int32_t lo, int32_t hi, int32_t otherwise) {
  return value < lo || value > hi ? otherwise : value;
}

}  // namespace

Status WalkProfile(H264EncoderParams& p) {
  if (p.profileIdc < 66 || p.profileIdc > 144) return UMC_ERR_INVALID_STREAM;
  for (;;) {
    const int32_t profile = p.profileIdc;
    if (profile == 66 && p.bFrameRate > 0) {
      p.profileIdc = 77;
    } else if (profile == 66 || profile == 77 || profile == 88) {
      if (FitsMainTools(p)) break;
      p.profileIdc = 100;
    } else if (profile == 100) {
      const bool deep = p.bitDepthLuma != 8 || p.bitDepthChroma != 8 || p.bitDepthAux != 8;
      if (deep || p.chromaFormatIdc > 1) {
        p.profileIdc = 110;
      } else if (p.losslessMode) {
        p.profileIdc = 144;
      } else {
        break;
      }
    } else if (profile == 110 || profile == 122) {
      if (!p.losslessMode) break;
      p.profileIdc = 144;
    } else if (profile == 144) {
      break;
    } else {
      return UMC_ERR_INVALID_STREAM;
    }
  }
  for (int32_t depth : {p.bitDepthLuma, p.bitDepthChroma, p.bitDepthAux})
    if (depth < 8 || depth > 12) return UMC_ERR_INVALID_STREAM;
  // 4:2:2 stops at profile_idc 110, not 122; decoders read chroma_format_idc, and streams carry 110.
  if (p.chromaFormatIdc > 2) return UMC_ERR_NOT_IMPLEMENTED;
  return UMC_OK;
}

int32_t DeriveLevel(int32_t width, int32_t height, double frameRate) {
  struct LevelLimit {
    int32_t level, macroblocks, rate;
  };
  constexpr LevelLimit kLimits[] = {
      {10, 99, 1485},      {11, 396, 3000},     {12, 396, 6000},     {20, 396, 11880},   {21, 792, 19800},
      {22, 1620, 20250},   {30, 1620, 40500},   {31, 3600, 108000},  {32, 5120, 216000}, {40, 8192, 245760},
      {42, 8704, 522240},  {50, 22080, 589824},
  };
  const int64_t macroblocks = MacroblocksPerFrame(width, height);
  const int64_t rate = int64_t(double(macroblocks) * frameRate);
  for (const LevelLimit& limit : kLimits)
    if (macroblocks <= limit.macroblocks && rate <= limit.rate) return limit.level;
  return 51;
}

int32_t ReferenceLimit(int32_t levelIdc, int32_t width, int32_t height, bool fieldCoding) {
  int64_t maxDpb;  // in units of 512 bytes
  switch (levelIdc) {
    case 9: case 10: maxDpb = 297; break;
    case 11: maxDpb = 675; break;
    case 12: case 13: case 20: maxDpb = 1782; break;
    case 21: maxDpb = 3564; break;
    case 22: case 30: maxDpb = 6075; break;
    case 31: maxDpb = 13500; break;
    case 32: maxDpb = 15360; break;
    case 40: case 41: case 42: maxDpb = 24576; break;
    case 50: maxDpb = 82800; break;
    default: maxDpb = 138240; break;
  }
  const int64_t alignedWidth = (int64_t(width) + 15) & ~int64_t(15);
  const int64_t alignedHeight = fieldCoding ? (int64_t(height) + 31) & ~int64_t(31) : (int64_t(height) + 15) & ~int64_t(15);
  const int64_t area = alignedWidth * alignedHeight, frameBytes = area + area / 2;
  return int32_t(std::clamp<int64_t>(maxDpb * 512 / std::max<int64_t>(frameBytes, 1), 1, 16));
}

Status CheckEncoderParams(H264EncoderParams& p) {
  VideoStreamInfo& info = p.info;
  if (p.codingType > 1) p.codingType = 0;
  if (p.rateControlMethod == 3 || info.bitRate <= 0) p.rateControlMethod = 0;

  if (info.width < 1 || info.height < 1) return UMC_ERR_INIT;

  if (p.keyFrameInterval == 1) {
    p.bFrameRate = 0;
    p.numRefFrames = 1;
  }
  p.keyFrameMethod = 1;
  if (p.keyFrameInterval < 1) p.keyFrameInterval = 250;
  if (p.idrInterval < 0) p.idrInterval = 4;

  if (p.bFrameRate < 0) p.bFrameRate = 0;
  p.treatBAsReference = Clip(p.treatBAsReference, 0, 2);

  p.numRefFrames = Clip(p.numRefFrames, 1, 16);
  if (p.bFrameRate > 0) {
    if (p.numRefToStartCodeBSlice < 1) p.numRefToStartCodeBSlice = 1;
    p.numRefFrames = std::max(p.numRefFrames, p.numRefToStartCodeBSlice + 1);
  }

  if (p.numThreads < 1) p.numThreads = omp_get_max_threads();
  if (p.numSlices < 1) p.numSlices = std::min(p.numThreads, 32767);
  p.numSlices = std::min(p.numSlices, MacroblocksPerFrame(info.width, info.height));
  p.numThreads = std::min(p.numThreads, p.numSlices);
  kestrelink::platform::SetTeamSize(p.numThreads);

  if (!IsKnownLevel(p.levelIdc)) p.levelIdc = 0;
  if (p.levelIdc == 0) p.levelIdc = DeriveLevel(info.width, info.height, info.frameRate);

  const Status profile = WalkProfile(p);
  if (profile != UMC_OK) return profile;

  p.rateControlMethod = InRangeOr(p.rateControlMethod, 0, 5, 2);

  p.numRefFrames = std::min(p.numRefFrames, ReferenceLimit(p.levelIdc, info.width, info.height, p.codingType == 1));

  const int32_t lowestQuant = (8 - p.bitDepthLuma) * 6;
  p.quantI = InRangeOr(p.quantI, lowestQuant, 51, 0);
  p.quantP = InRangeOr(p.quantP, lowestQuant, 51, 0);
  p.quantB = InRangeOr(p.quantB, lowestQuant, 51, 0);

  p.mvSearchMethod = InRangeOr(p.mvSearchMethod, 0, 31, 2);
  p.meSplitMode = InRangeOr(p.meSplitMode, 0, 3, 1);
  p.useWeightedPred = p.useWeightedPred != 0;
  p.useWeightedBipred = p.useWeightedBipred != 0;
  p.useImplicitWeightedBipred = p.useImplicitWeightedBipred != 0;
  p.useDirectInference = p.useDirectInference != 0;
  p.entropyCodingMode = p.entropyCodingMode != 0;
  p.directPredMode = InRangeOr(p.directPredMode, 0, 2, 1);
  if (p.profileIdc == 88 || p.levelIdc >= 30 || p.codingType == 1) p.useDirectInference = 1;
  p.deblockingFilterIdc = InRangeOr(p.deblockingFilterIdc, 0, 2, 0);
  p.deblockingFilterAlpha = InRangeOr(p.deblockingFilterAlpha, -12, 12, 6);
  p.deblockingFilterBeta = InRangeOr(p.deblockingFilterBeta, -12, 12, 6);
  if (p.cabacInitIdc > 2) p.cabacInitIdc = 0;
  return UMC_OK;
}

}  // namespace UMC
