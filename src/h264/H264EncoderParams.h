#pragma once
// The H.264 encoder's parameter record, with the defaults its constructor gives.
#include <cstdint>

#include "umc/CodecParams.h"

namespace UMC {

class H264EncoderParams : public VideoEncoderParams {
 public:
  H264EncoderParams() {
    info.bitRate = 2222222;
    info.frameRate = 30.0;
    info.colorFormat = YUV420;
  }

  int32_t chromaFormatIdc = 1;     // chroma_format_idc: 0 monochrome, 1 4:2:0, 2 4:2:2, 3 4:4:4
  int32_t codingType = 0;          // 0 frames, 1 field pictures
  int32_t bFrameRate = 0;          // B frames between references
  int32_t treatBAsReference = 1;
  int32_t numRefFrames = 1;
  int32_t numRefToStartCodeBSlice = 1;
  int32_t levelIdc = 0;            // 0: derived from size and rate
  int32_t rateControlMethod = 2;
  int32_t quantI = 20, quantP = 20, quantB = 20;
  int32_t numSlices = 0;           // 0: one per thread
  int32_t deblockingFilterIdc = 0;
  int32_t deblockingFilterAlpha = 2, deblockingFilterBeta = 2;
  int32_t mvSearchMethod = 2;
  int32_t meSplitMode = 0;
  int32_t meSearchX = 8, meSearchY = 8;
  int32_t useWeightedPred = 0, useWeightedBipred = 0, useImplicitWeightedBipred = 0;
  int32_t directPredMode = 0;
  int32_t useDirectInference = 1;
  uint8_t entropyCodingMode = 1;   // 1: CABAC
  uint8_t cabacInitIdc = 1;
  int32_t keyFrameMethod = 1;
  int32_t keyFrameInterval = 250;
  int32_t idrInterval = 0;         // key frames between IDR frames
  int32_t profileIdc = 77;
  int32_t transform8x8Mode = 1;
  int32_t losslessMode = 0;        // qpprime_y_zero_transform_bypass
  int32_t auxFormatIdc = 0;        // auxiliary picture format; 0 none
  int32_t alphaIncrFlag = 0;
  int32_t bitDepthAux = 8, bitDepthLuma = 8, bitDepthChroma = 8;
};

}  // namespace UMC
