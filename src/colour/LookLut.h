#pragma once
// A look: the 3D and 1D tables of one look file, and what the processor
// path prepares from the 3D table. Look objects belong to the process-wide
// look cache and live until the process ends.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

struct LookLut {
  std::unique_ptr<float[]> lut3D;      // size^3 nodes of three floats; null when the file has none
  size_t lut3DFloats = 0;              // floats that lut3D holds (a reload may keep a larger buffer)
  std::unique_ptr<uint8_t[]> table3D;  // 256^3 colours of three bytes, filled for the processor path
  int32_t size = 0;                    // nodes along an axis, N: a power of two from 2 to 256
  int32_t sizeLog2 = 0;                // log2 N
  int32_t cellLog2 = 0;                // log2 of the cell width 256 / N
  std::unique_ptr<float[]> cornerWeights[8];  // each s^3 trilinear weights, s = 256 / N
  uint32_t cellIndex[256] = {};               // v / s
  uint32_t cellRemainder[256] = {};           // v % s
  std::mutex lock3D;                          // held while table3D is filled
  uint32_t gpuLutId = 0;                      // the companion's handle; 0 for none
  std::unique_ptr<float[]> lut1D[3];          // red, green and blue curves of size1D entries
  int32_t size1D = 0;
  int32_t size1DLog2 = 0;  // floor of log2 size1D
  std::mutex lock1D;       // held while the curves are replaced
  std::string path;        // the cache's key
  int64_t fileTime = 0;    // last write time of the file when last read

  static constexpr size_t kTableBytes = size_t(256) * 256 * 256 * 3;
};
