// The portable NV12 rows: plain loops, the reference of the vector variants.
// Streaming makes no difference here, so both slots hold the same kernel.
#include "h264/Nv12Rows.h"

namespace kestrelink::h264 {
namespace {

void LumaRow(const uint8_t* src, uint32_t n, uint8_t pad, uint32_t to, uint8_t* dst) {
  for (uint32_t i = 0; i < n; ++i) dst[i] = src[i];
  for (uint32_t i = n; i < to; ++i) dst[i] = pad;
}

void ChromaRow(const uint8_t* u, const uint8_t* v, uint32_t sourcePairs, uint32_t pairs, uint8_t* out) {
  InterleavePairs(u, v, 0, sourcePairs, out);
  RepeatLastPair(u, v, sourcePairs, pairs, out);
}

void FillRow(uint8_t* dst, uint8_t value, uint32_t n) {
  for (uint32_t i = 0; i < n; ++i) dst[i] = value;
}

}  // namespace

const Nv12RowKernels kNv12RowsPortable = {LumaRow, LumaRow, ChromaRow, ChromaRow, FillRow, FillRow};

}  // namespace kestrelink::h264
