#pragma once
// The frame loop every row-wise conversion uses: rows 0 .. height-1 split
// statically over the process-wide team, one contiguous block per thread.
// The flip is only an index: output row r receives input row height-1-r.
#include <cstddef>
#include <cstdint>

#include <omp.h>

#include "platform/OpenMP.h"

namespace kestrelink {

// Calls body(inRow, outRow) for every row; a height of 0 does nothing.
template <class Body>
inline void ForEachRow(uint32_t height, bool flip, Body&& body) {
  const int64_t rows = height;
#pragma omp parallel for schedule(static) num_threads(platform::TeamSize())
  for (int64_t y = 0; y < rows; ++y) {
    const int64_t out = flip ? rows - 1 - y : y;
    body(static_cast<uint32_t>(y), static_cast<uint32_t>(out));
  }
}

// Calls body(firstRow, rowCount) once per thread of the team, for
// contiguous bands that cover rows 0 .. height-1; for primitives, which work
// on a whole region in the calling thread. Answers the first nonzero result.
template <class Body>
inline int ForEachBand(uint32_t height, Body&& body) {
  int status = 0;
#pragma omp parallel num_threads(platform::TeamSize())
  {
    const uint64_t team = uint64_t(omp_get_num_threads()), id = uint64_t(omp_get_thread_num());
    const uint32_t begin = uint32_t(height * id / team), end = uint32_t(height * (id + 1) / team);
    const int result = end > begin ? body(begin, end - begin) : 0;
    if (result != 0) {
#pragma omp critical(kestrelink_band_status)
      if (status == 0) status = result;
    }
  }
  return status;
}

// Byte address of row `row` in a tightly packed frame of `rowBytes` per row.
inline const uint8_t* RowAt(const void* frame, size_t rowBytes, uint32_t row) {
  return static_cast<const uint8_t*>(frame) + rowBytes * row;
}
inline uint8_t* RowAt(void* frame, size_t rowBytes, uint32_t row) {
  return static_cast<uint8_t*>(frame) + rowBytes * row;
}

}  // namespace kestrelink
