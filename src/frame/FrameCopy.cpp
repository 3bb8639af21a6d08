#include "frame/FrameCopy.h"

#include <omp.h>

#include <cstring>

#include "frame/RowLoop.h"

namespace kestrelink {

void CopyFrame(const void* src, uint64_t rowBytes, uint32_t rows, void* dst, bool flip) {
  if (flip) {
    ForEachRow(rows, true, [&](uint32_t in, uint32_t out) {
      std::memcpy(RowAt(dst, rowBytes, out), RowAt(src, rowBytes, in), rowBytes);
    });
    return;
  }
  // One block, cut into a contiguous piece per thread.
  const uint64_t total = rowBytes * rows;
  if (total == 0) return;
#pragma omp parallel num_threads(platform::TeamSize())
  {
    const uint64_t team = uint64_t(omp_get_num_threads()), id = uint64_t(omp_get_thread_num());
    const uint64_t begin = total * id / team, end = total * (id + 1) / team;
    std::memcpy(static_cast<uint8_t*>(dst) + begin, static_cast<const uint8_t*>(src) + begin, end - begin);
  }
}

}  // namespace kestrelink
