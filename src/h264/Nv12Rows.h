#pragma once
// Row kernels of the NV12 packing, one table per processor variant
// (portable, SSE2, AVX2, AVX-512). Each kernel comes twice: with ordinary
// stores, and with streaming stores for frames larger than the caches, which
// write the same bytes without first reading the lines they fill. No
// alignment is assumed of any pointer. Every variant gives the bytes of the
// portable one.
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::h264 {

// dst[0 .. n) = src[0 .. n), then dst[n .. to) = pad; to >= n.
using Nv12LumaRow = void (*)(const uint8_t* src, uint32_t n, uint8_t pad, uint32_t to, uint8_t* dst);
// out gets sourcePairs pairs u[i], v[i], then the last pair repeated up to
// pairs pairs (nothing repeated when sourcePairs is 0); pairs >= sourcePairs.
using Nv12ChromaRow = void (*)(const uint8_t* u, const uint8_t* v, uint32_t sourcePairs, uint32_t pairs,
                               uint8_t* out);
// dst[0 .. n) = value.
using Nv12FillRow = void (*)(uint8_t* dst, uint8_t value, uint32_t n);

struct Nv12RowKernels {
  Nv12LumaRow luma, lumaStream;
  Nv12ChromaRow chroma, chromaStream;
  Nv12FillRow fill, fillStream;
};

extern const Nv12RowKernels kNv12RowsPortable;
extern const Nv12RowKernels kNv12RowsSSE2;
extern const Nv12RowKernels kNv12RowsAVX2;
extern const Nv12RowKernels kNv12RowsAVX512;

inline const Nv12RowKernels& Nv12Rows() {
  static const Nv12RowKernels* const slots[kVariantCount] = {&kNv12RowsPortable, &kNv12RowsSSE2, nullptr,
                                                             &kNv12RowsAVX2, &kNv12RowsAVX512};
  return PickVariant(slots);
}

// The portable chroma row, also the head and tail of the vector variants.
inline void InterleavePairs(const uint8_t* u, const uint8_t* v, uint32_t from, uint32_t to, uint8_t* out) {
  for (uint32_t i = from; i < to; ++i) {
    out[2 * i] = u[i];
    out[2 * i + 1] = v[i];
  }
}

// The last pair repeated over pairs sourcePairs .. pairs-1.
inline void RepeatLastPair(const uint8_t* u, const uint8_t* v, uint32_t sourcePairs, uint32_t pairs, uint8_t* out) {
  if (sourcePairs == 0) return;
  const uint8_t lastU = u[sourcePairs - 1], lastV = v[sourcePairs - 1];
  for (uint32_t i = sourcePairs; i < pairs; ++i) {
    out[2 * i] = lastU;
    out[2 * i + 1] = lastV;
  }
}

}  // namespace kestrelink::h264
