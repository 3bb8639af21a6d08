// The JPEG kernels built for the AVX2 variant (compile flags come from the
// file name): the body's row kernels, and the 8-bit colour conversions and
// block transforms in registers.
#include <immintrin.h>

#include "jpeg/JpegKernels.h"

namespace kestrelink::jpeg {
namespace avx2_variant {
#include "jpeg/JpegKernelBody.h"
#include "jpeg/JpegBlocksAvx2.h"
#include "jpeg/JpegColourAvx2.h"

void FdctQuantAvx2(const uint8_t* src, intptr_t step, const ForwardQuant& quant, int16_t* zigzag) {
  alignas(32) int16_t transposed[64];
  blocks::V out[4];
  blocks::FdctQuantTransposed(src, step, quant, out);
  for (int i = 0; i < 4; ++i) _mm256_store_si256(reinterpret_cast<blocks::V*>(transposed + 16 * i), out[i]);
  for (int k = 0; k < 64; ++k) zigzag[k] = transposed[kZigzagToTransposed[k]];
}

constexpr JpegKernels MakeTable() {
  JpegKernels t = kTable;
  t.fdct_quant = FdctQuantAvx2;
  t.idct_store = blocks::IdctStore;
  t.pixels_to_ycc = colour::PixelsToYcc;
  t.ycc_to_pixels = colour::YccToPixels;
  return t;
}

}  // namespace avx2_variant

const JpegKernels kJpegKernelsAVX2 = avx2_variant::MakeTable();

}  // namespace kestrelink::jpeg
