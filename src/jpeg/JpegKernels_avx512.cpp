// The JPEG kernels built for the AVX512 variant (compile flags come from the
// file name): the body's row kernels, and the 8-bit colour conversions and
// block transforms in registers, the forward transform's zigzag order made
// by two word permutes.
#include <immintrin.h>

#include "jpeg/JpegKernels.h"

namespace kestrelink::jpeg {
namespace avx512_variant {
#include "jpeg/JpegKernelBody.h"
#include "jpeg/JpegBlocksAvx2.h"
#include "jpeg/JpegColourAvx2.h"

void FdctQuantAvx512(const uint8_t* src, intptr_t step, const ForwardQuant& quant, int16_t* zigzag) {
  // Word k of each index: the transposed position of zigzag coefficient k (or k + 32).
  static const __m512i first = _mm512_set_epi16(
      kZigzagToTransposed[31], kZigzagToTransposed[30], kZigzagToTransposed[29], kZigzagToTransposed[28],
      kZigzagToTransposed[27], kZigzagToTransposed[26], kZigzagToTransposed[25], kZigzagToTransposed[24],
      kZigzagToTransposed[23], kZigzagToTransposed[22], kZigzagToTransposed[21], kZigzagToTransposed[20],
      kZigzagToTransposed[19], kZigzagToTransposed[18], kZigzagToTransposed[17], kZigzagToTransposed[16],
      kZigzagToTransposed[15], kZigzagToTransposed[14], kZigzagToTransposed[13], kZigzagToTransposed[12],
      kZigzagToTransposed[11], kZigzagToTransposed[10], kZigzagToTransposed[9], kZigzagToTransposed[8],
      kZigzagToTransposed[7], kZigzagToTransposed[6], kZigzagToTransposed[5], kZigzagToTransposed[4],
      kZigzagToTransposed[3], kZigzagToTransposed[2], kZigzagToTransposed[1], kZigzagToTransposed[0]);
  static const __m512i second = _mm512_set_epi16(
      kZigzagToTransposed[63], kZigzagToTransposed[62], kZigzagToTransposed[61], kZigzagToTransposed[60],
      kZigzagToTransposed[59], kZigzagToTransposed[58], kZigzagToTransposed[57], kZigzagToTransposed[56],
      kZigzagToTransposed[55], kZigzagToTransposed[54], kZigzagToTransposed[53], kZigzagToTransposed[52],
      kZigzagToTransposed[51], kZigzagToTransposed[50], kZigzagToTransposed[49], kZigzagToTransposed[48],
      kZigzagToTransposed[47], kZigzagToTransposed[46], kZigzagToTransposed[45], kZigzagToTransposed[44],
      kZigzagToTransposed[43], kZigzagToTransposed[42], kZigzagToTransposed[41], kZigzagToTransposed[40],
      kZigzagToTransposed[39], kZigzagToTransposed[38], kZigzagToTransposed[37], kZigzagToTransposed[36],
      kZigzagToTransposed[35], kZigzagToTransposed[34], kZigzagToTransposed[33], kZigzagToTransposed[32]);
  blocks::V out[4];
  blocks::FdctQuantTransposed(src, step, quant, out);
  const __m512i lo = _mm512_inserti64x4(_mm512_castsi256_si512(out[0]), out[1], 1);
  const __m512i hi = _mm512_inserti64x4(_mm512_castsi256_si512(out[2]), out[3], 1);
  _mm512_storeu_si512(zigzag, _mm512_permutex2var_epi16(lo, first, hi));
  _mm512_storeu_si512(zigzag + 32, _mm512_permutex2var_epi16(lo, second, hi));
}

constexpr JpegKernels MakeTable() {
  JpegKernels t = kTable;
  t.fdct_quant = FdctQuantAvx512;
  t.idct_store = blocks::IdctStore;
  t.pixels_to_ycc = colour::PixelsToYcc;
  t.ycc_to_pixels = colour::YccToPixels;
  return t;
}

}  // namespace avx512_variant

const JpegKernels kJpegKernelsAVX512 = avx512_variant::MakeTable();

}  // namespace kestrelink::jpeg
