#include "jpeg/JpegKernels.h"

#include "jpeg/JpegTables.h"

namespace kestrelink::jpeg {

const uint8_t kZigzagToTransposed[64 + 16] = {
    0,  8,  1,  2,  9,  16, 24, 17, 10, 3,  4,  11, 18, 25, 32, 40, 33, 26, 19, 12,
    5,  6,  13, 20, 27, 34, 41, 48, 56, 49, 42, 35, 28, 21, 14, 7,  15, 22, 29, 36,
    43, 50, 57, 58, 51, 44, 37, 30, 23, 31, 38, 45, 52, 59, 60, 53, 46, 39, 47, 54,
    61, 62, 55, 63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 63, 63};

const float kDctBasis[64] = {
    0.353553391f, 0.353553391f, 0.353553391f, 0.353553391f, 0.353553391f, 0.353553391f, 0.353553391f, 0.353553391f,
    0.490392640f, 0.415734806f, 0.277785117f, 0.097545161f, -0.097545161f, -0.277785117f, -0.415734806f, -0.490392640f,
    0.461939766f, 0.191341716f, -0.191341716f, -0.461939766f, -0.461939766f, -0.191341716f, 0.191341716f, 0.461939766f,
    0.415734806f, -0.097545161f, -0.490392640f, -0.277785117f, 0.277785117f, 0.490392640f, 0.097545161f, -0.415734806f,
    0.353553391f, -0.353553391f, -0.353553391f, 0.353553391f, 0.353553391f, -0.353553391f, -0.353553391f, 0.353553391f,
    0.277785117f, -0.490392640f, 0.097545161f, 0.415734806f, -0.415734806f, -0.097545161f, 0.490392640f, -0.277785117f,
    0.191341716f, -0.461939766f, 0.461939766f, -0.191341716f, -0.191341716f, 0.461939766f, -0.461939766f, 0.191341716f,
    0.097545161f, -0.277785117f, 0.415734806f, -0.490392640f, 0.490392640f, -0.415734806f, 0.277785117f, -0.097545161f,
};

const JpegKernels& Kernels() {
  static const JpegKernels* const slots[kVariantCount] = {&kJpegKernelsPortable, nullptr, nullptr,
                                                          &kJpegKernelsAVX2, &kJpegKernelsAVX512};
  return PickVariant(slots);
}

void MakeForwardQuant(const uint16_t zigzagTable[64], ForwardQuant& quant) {
  for (int k = 0; k < 64; ++k) {
    const int t = kZigzagToTransposed[k], q = zigzagTable[k] ? zigzagTable[k] : 1;
    // Raised by 2^-21 so that an exact quotient is not lost to the float's
    // rounding; the largest quotient (2^16) stays clear of the next integer.
    quant.scale[t] = float((1.0 + 1.0 / (1 << 21)) / (8.0 * q));
    quant.half[t] = 4 * q;
  }
}

void MakeDequant(const uint16_t zigzagTable[64], int32_t dequant[64]) {
  for (int k = 0; k < 64; ++k) dequant[kZigzagToNatural[k]] = zigzagTable[k];
}

}  // namespace kestrelink::jpeg
