#pragma once
// The merger's 16-bit blend and hold as plain loops, which each variant's
// unit builds with its own instruction set for the compiler to vectorise.
#include <cstdint>

namespace kestrelink::merge {
namespace {

void Blend16(const uint16_t* a, const uint16_t* b, uint16_t* out, uint32_t n, uint32_t w, uint32_t top) {
  const uint32_t wb = 256 - w;
  for (uint32_t i = 0; i < n; ++i) {
    const uint32_t sa = a[i] < top ? a[i] : top, sb = b[i] < top ? b[i] : top;
    out[i] = uint16_t((wb * sb + w * sa) >> 8);
  }
}

void Hold16(const uint16_t* in, uint16_t* out, uint32_t n, uint32_t top) {
  const uint16_t t = uint16_t(top);
  for (uint32_t i = 0; i < n; ++i) out[i] = in[i] < t ? in[i] : t;
}

}  // namespace
}  // namespace kestrelink::merge
