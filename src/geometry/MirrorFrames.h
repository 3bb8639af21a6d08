#pragma once
// The frame loop of CIppImageMirror: the flags to an axis, and the mirror
// kernel run over the thread team in bands of destination rows.
#include <climits>
#include <cstdint>

#include "frame/RowLoop.h"
#include "platform/OpenMP.h"
#include "primitives/MirrorPrimitives.h"

namespace kestrelink::geometry {

template <class T>
using MirrorKernel = IppStatus (*)(const T*, int, T*, int, IppiSize, IppiAxis);

// Mirrors a packed frame of `bytes` bytes a pixel with `kernel`. Both flags
// false: nothing at all, and true.
template <class T>
bool MirrorFrame(MirrorKernel<T> kernel, int bytes, uint32_t width, uint32_t height, void* src, void* dst,
                 bool horizontalAxis, bool verticalAxis) {
  if (!horizontalAxis && !verticalAxis) return true;  // settled: dst is not written, not even as a copy
  platform::SetBlockTimeZero();
  const IppiAxis axis = horizontalAxis && verticalAxis ? ippAxsBoth
                        : horizontalAxis               ? ippAxsHorizontal
                                                       : ippAxsVertical;
  const uint64_t rowBytes = uint64_t(width) * uint32_t(bytes);
  if (rowBytes > INT_MAX || height > INT_MAX) return false;
  const int step = int(rowBytes);
  const auto* from = static_cast<const T*>(src);
  auto* to = static_cast<T*>(dst);
  // A null frame or an empty size: the kernel's own answer, in one call.
  if (!src || !dst || width == 0 || height == 0)
    return kernel(from, step, to, step, {int(width), int(height)}, axis) == ippStsNoErr;
  const bool rowsReverse = axis != ippAxsVertical;
  const int status = ForEachBand(height, [&](uint32_t first, uint32_t rows) {
    // Destination rows first .. first+rows-1 come from source rows that
    // mirror them when the rows reverse, else the same rows.
    const uint32_t from0 = rowsReverse ? height - first - rows : first;
    return kernel(reinterpret_cast<const T*>(RowAt(src, rowBytes, from0)), step,
                  reinterpret_cast<T*>(RowAt(dst, rowBytes, first)), step, {int(width), int(rows)}, axis);
  });
  return status == ippStsNoErr;
}

}  // namespace kestrelink::geometry
