// SSE2 transposes (the x86-64 baseline, so no extra flags): the tile walk
// with squares of one 16-byte register a row, 16 x 16 bytes, 8 x 8 words,
// 4 x 4 and 2 x 2 of the four- and eight-byte pixels, their ragged edges in
// squares of 8-byte rows. Three- and six-byte pixels do not divide a
// register and go a pixel at a time, still tile by tile.
#include <immintrin.h>

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "primitives/RotateTranspose.h"

namespace kestrelink::rotate {
namespace {
#include "primitives/TransposeTiles.h"
#include "primitives/TransposeBlocks.h"

template <int Bytes>
void Transpose(const uint8_t* src, ptrdiff_t ss, uint8_t* dst, ptrdiff_t ds, uint32_t cols, uint32_t rows) {
  if constexpr (16 % Bytes == 0)
    TransposeTiled<Bytes, RegisterBlock<Bytes>>(src, ss, dst, ds, cols, rows);
  else
    TransposeTiled<Bytes, PixelBlock<Bytes>>(src, ss, dst, ds, cols, rows);
}

}  // namespace

const TransposeKernels kTransposeSSE2 = {Transpose<1>, Transpose<2>, Transpose<3>,
                                         Transpose<4>, Transpose<6>, Transpose<8>};

}  // namespace kestrelink::rotate
