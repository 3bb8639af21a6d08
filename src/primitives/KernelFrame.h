#pragma once
// Frame walking shared by the kernels: row addresses from a base pointer and
// a step in bytes of any sign, and the checks each kernel makes before it
// touches memory.
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "primitives/IppTypes.h"

namespace kestrelink::prim {

// Byte address of row `row` of a region whose rows are `step` bytes apart.
template <class T>
inline auto StepRow(T* base, int step, int row) {
  using Byte = std::conditional_t<std::is_const_v<T>, const uint8_t, uint8_t>;
  return reinterpret_cast<Byte*>(base) + std::ptrdiff_t(step) * row;
}

// A plane array or one of its planes is null.
template <class T>
inline bool PlanesNull(T* const planes[3]) {
  return !planes || !planes[0] || !planes[1] || !planes[2];
}

// ippStsSizeErr when the region is narrower or lower than the kernel's group.
inline IppStatus CheckSize(IppiSize size, int minWidth, int minHeight) {
  return size.width < minWidth || size.height < minHeight ? ippStsSizeErr : ippStsNoErr;
}

}  // namespace kestrelink::prim
