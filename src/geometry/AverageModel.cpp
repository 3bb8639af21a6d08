#include "geometry/AverageModel.h"

#include <cstddef>
#include <vector>

#include "frame/RowLoop.h"
#include "geometry/rows/AverageRows.h"

namespace kestrelink::average {
namespace {

constexpr int kStackRows = 64;  // frame counts whose row pointers fit on the stack

bool FramesGiven(int n, void* const* frames) {
  if (!frames) return false;
  for (int f = 0; f < n; ++f)
    if (!frames[f]) return false;
  return true;
}

// Calls body(rows, firstRow, rowCount) per band, with rows[f] the band's
// start in frame f, `rowBytes` apart: on the stack up to kStackRows frames,
// else in one array a band.
template <class Body>
void FrameBands(int n, int32_t height, size_t rowBytes, void* const* frames, Body body) {
  ForEachBand(uint32_t(height), [&](uint32_t first, uint32_t count) {
    const uint8_t* stackRows[kStackRows];
    std::vector<const uint8_t*> heapRows(n > kStackRows ? size_t(n) : 0);
    const uint8_t** rows = n > kStackRows ? heapRows.data() : stackRows;
    for (int f = 0; f < n; ++f) rows[f] = static_cast<const uint8_t*>(frames[f]) + rowBytes * first;
    body(rows, first, count);
    return 0;
  });
}

}  // namespace

int32_t DepthLimit(int bitDepth) {
  if (bitDepth <= 0) return 0;
  if (bitDepth >= 31) return INT32_MAX;
  return int32_t((1u << bitDepth) - 1);
}

bool Full(int n, int64_t samples, int32_t height, uint32_t sampleBytes, int32_t max, void* const* frames, int* sums,
          void* dst) {
  if (n < 1 || !sums || !dst || !FramesGiven(n, frames)) return false;
  if (samples <= 0 || height <= 0) return true;
  const rows::AverageDivisor d = rows::MakeDivisor(n, max);
  const auto kernel = sampleBytes == 1 ? rows::AverageRows().full8 : rows::AverageRows().full16;
  const size_t rowBytes = size_t(samples) * sampleBytes;
  FrameBands(n, height, rowBytes, frames, [&](const uint8_t* const* rows, uint32_t first, uint32_t count) {
    const size_t at = size_t(samples) * first;
    kernel(rows, n, sums + at, static_cast<uint8_t*>(dst) + at * sampleBytes, size_t(samples) * count, d);
  });
  return true;
}

bool Rolling(int n, int64_t samples, int32_t height, uint32_t sampleBytes, int32_t max, const void* in, const void* out,
             int* sums, void* dst) {
  if (n < 1 || !in || !out || !sums || !dst) return false;
  if (samples <= 0 || height <= 0) return true;
  const rows::AverageDivisor d = rows::MakeDivisor(n, max);
  const auto kernel = sampleBytes == 1 ? rows::AverageRows().rolling8 : rows::AverageRows().rolling16;
  ForEachBand(uint32_t(height), [&](uint32_t first, uint32_t count) {
    const size_t at = size_t(samples) * first, bytes = at * sampleBytes;
    kernel(static_cast<const uint8_t*>(in) + bytes, static_cast<const uint8_t*>(out) + bytes, sums + at,
           static_cast<uint8_t*>(dst) + bytes, size_t(samples) * count, d);
    return 0;
  });
  return true;
}

bool Full4(int n, int32_t width, int32_t height, uint32_t sampleBytes, int32_t max, void* const* frames, int* sums,
           void* dst) {
  if (n < 1 || !sums || !dst || !FramesGiven(n, frames)) return false;
  if (width <= 0 || height <= 0) return true;
  const rows::AverageDivisor d = rows::MakeDivisor(n, max);
  const auto kernel = sampleBytes == 1 ? rows::AverageRows().full8x4 : rows::AverageRows().full16x4;
  const size_t rowBytes = size_t(width) * 4 * sampleBytes;
  FrameBands(n, height, rowBytes, frames, [&](const uint8_t* const* rows, uint32_t first, uint32_t count) {
    kernel(rows, n, sums + size_t(width) * 4 * first, static_cast<uint8_t*>(dst) + rowBytes * first,
           size_t(width) * count, d);
  });
  return true;
}

bool Rolling4Bytes(int n, int32_t width, int32_t height, const void* in, const void* out, int* sums, void* dst) {
  if (n < 1 || !in || !out || !sums || !dst) return false;
  if (width <= 0 || height <= 0) return true;
  const rows::AverageDivisor d = rows::MakeDivisor(n, 255);
  const auto kernel = rows::AverageRows().rolling8x4;
  ForEachBand(uint32_t(height), [&](uint32_t first, uint32_t count) {
    const size_t at = size_t(width) * 4 * first;
    kernel(static_cast<const uint8_t*>(in) + at, static_cast<const uint8_t*>(out) + at, sums + at,
           static_cast<uint8_t*>(dst) + at, size_t(width) * count, d);
    return 0;
  });
  return true;
}

bool FullPlanes(int n, int32_t width, int32_t height, uint32_t sampleBytes, int32_t max, void* const* const frames[3],
                int* sums, void* const dst[3]) {
  const size_t plane = width > 0 && height > 0 ? size_t(width) * size_t(height) : 0;
  for (int p = 0; p < 3; ++p)
    if (!Full(n, width, height, sampleBytes, max, frames[p], sums ? sums + p * plane : nullptr, dst[p])) return false;
  return true;
}

bool RollingPlanes(int n, int32_t width, int32_t height, uint32_t sampleBytes, int32_t max, const void* const in[3],
                   const void* const out[3], int* sums, void* const dst[3]) {
  const size_t plane = width > 0 && height > 0 ? size_t(width) * size_t(height) : 0;
  for (int p = 0; p < 3; ++p)
    if (!Rolling(n, width, height, sampleBytes, max, in[p], out[p], sums ? sums + p * plane : nullptr, dst[p]))
      return false;
  return true;
}

}  // namespace kestrelink::average
