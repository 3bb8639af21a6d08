#pragma once
// The block store of the wavelet codec: a plane cut into 32 x 32 blocks of
// 32-bit samples, each block owning its rows, and the filter set.
#include <cstdint>
#include <memory>
#include <vector>

#include "compress/wavelet/LiftingFilter.h"

namespace kestrelink::wavelet {

inline constexpr int kBlockSide = 32;
inline constexpr int kBlockSamples = kBlockSide * kBlockSide;

}  // namespace kestrelink::wavelet

struct WaveletBlock {
  WaveletBlock(int bx, int by);
  int32_t x, y, width, height;
  int32_t* rows[kestrelink::wavelet::kBlockSide];
  // The samples behind the rows, one row after another.
  alignas(64) int32_t samples[kestrelink::wavelet::kBlockSamples];
};

struct WaveletPlane {
  std::vector<std::unique_ptr<WaveletBlock>> blocks;
  int32_t blockCount = 0;
  int32_t blockSamples = kestrelink::wavelet::kBlockSamples;
  int32_t paddedWidth = 0, paddedHeight = 0;
  // Blocks per grid row.
  int32_t gridWidth = 0;
};

struct WaveletFilterSet {
  int32_t isInteger = 1;
  std::unique_ptr<CWaveletFilter<int32_t>> integerFilter;
  void* floatFilter = nullptr;  // no filter type selects a float filter
};
