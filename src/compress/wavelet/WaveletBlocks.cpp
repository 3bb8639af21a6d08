// A block's rows point into its own samples.
#include "compress/wavelet/WaveletBlocks.h"

WaveletBlock::WaveletBlock(int bx, int by) : x(bx), y(by), width(32), height(32) {
  for (int r = 0; r < kestrelink::wavelet::kBlockSide; ++r) rows[r] = samples + r * kestrelink::wavelet::kBlockSide;
}
