// Portable transposes: the tile walk with a pixel at a time.
#include <algorithm>
#include <cstring>

#include "primitives/RotateTranspose.h"

namespace kestrelink::rotate {
namespace {
#include "primitives/TransposeTiles.h"

template <int Bytes>
void Transpose(const uint8_t* src, ptrdiff_t ss, uint8_t* dst, ptrdiff_t ds, uint32_t cols, uint32_t rows) {
  TransposeTiled<Bytes, PixelBlock<Bytes>>(src, ss, dst, ds, cols, rows);
}

}  // namespace

const TransposeKernels kTransposePortable = {Transpose<1>, Transpose<2>, Transpose<3>,
                                             Transpose<4>, Transpose<6>, Transpose<8>};

}  // namespace kestrelink::rotate
