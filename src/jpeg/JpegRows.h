#pragma once
// The row and block kernels of one sample type, for the coders' templates:
// 8-bit samples, and 12-bit samples in 16-bit words.
#include <cstdint>

#include "jpeg/JpegKernels.h"

namespace kestrelink::jpeg {

template <class Table, class Sample, int kMaxValue>
struct JpegRows {
  using T = Sample;
  static constexpr int kMax = kMaxValue;
  const Table& k;
  void ToYcc(const T* s, uint32_t ch, uint32_t red, T* y, T* cb, T* cr, uint32_t w) const {
    k.pixels_to_ycc(s, ch, red, y, cb, cr, w);
  }
  void FromYcc(const T* y, const T* cb, const T* cr, T* d, uint32_t ch, uint32_t red, uint32_t w) const {
    k.ycc_to_pixels(y, cb, cr, d, ch, red, w);
  }
  void DownH2V1(const T* s, T* d, uint32_t w) const { k.down_h2v1(s, d, w); }
  void DownH2V2(const T* a, const T* b, T* d, uint32_t w) const { k.down_h2v2(a, b, d, w); }
  void UpH2(const T* near, const T* far, T* d, uint32_t w) const { k.up_h2(near, far, d, w); }
  // `stride` in samples.
  void Fdct(const T* s, int stride, const ForwardQuant& q, int16_t* out) const {
    k.fdct_quant(s, stride, q, out);
  }
  void Idct(const int16_t* coef, const int32_t* dequant, T* d, int stride) const { k.idct_store(coef, dequant, d, stride); }
};

using JpegRows8 = JpegRows<JpegKernels, uint8_t, 255>;
using JpegRows12 = JpegRows<JpegKernels12, uint16_t, 4095>;

}  // namespace kestrelink::jpeg
