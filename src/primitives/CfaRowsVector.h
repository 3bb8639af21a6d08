#pragma once
// Body of the vector variants of the colour-filter-array rows, written once
// with the compiler's vector types and built by each variant's translation
// unit with its own instruction set and lane count (CFA_LANES, the pixels of
// one step). Everything here stays in an anonymous namespace so that no
// variant's code is shared with another's.
#include <cstring>

#include "primitives/CfaRows.h"

#ifndef CFA_LANES
#error "CFA_LANES must name the lane count of the variant"
#endif

// Vectors here may be wider than the variant's registers; they never cross a
// call boundary (all is inlined within this unit), so the ABI note is moot.
#pragma GCC diagnostic ignored "-Wpsabi"

namespace kestrelink::cfa {
namespace {

template <class Sample>
struct Lanes;
template <>
struct Lanes<uint8_t> {
  typedef uint8_t In __attribute__((vector_size(CFA_LANES)));
  typedef int16_t Math __attribute__((vector_size(2 * CFA_LANES)));
};
template <>
struct Lanes<uint16_t> {
  typedef uint16_t In __attribute__((vector_size(2 * CFA_LANES)));
  typedef int32_t Math __attribute__((vector_size(4 * CFA_LANES)));
};

template <class Sample>
inline typename Lanes<Sample>::Math Load(const Sample* p) {
  typename Lanes<Sample>::In v;
  std::memcpy(&v, p, sizeof v);
  return __builtin_convertvector(v, typename Lanes<Sample>::Math);
}

// (sum + 8) >> 4 clamped to 0 .. top, stored as samples.
template <class Sample, class Math>
inline void Store(Sample* p, Math sum, Math top) {
  Math v = (sum + 8) >> 4;
  v = v < 0 ? 0 : v;
  v = v > top ? top : v;
  const typename Lanes<Sample>::In s = __builtin_convertvector(v, typename Lanes<Sample>::In);
  std::memcpy(p, &s, sizeof s);
}

template <class Sample, class Window>
void Interior(const Window& in, PlaneRow<Sample> out, uint32_t x0, uint32_t x1, int topValue,
              void (*tail)(const Window&, PlaneRow<Sample>, uint32_t, uint32_t, int)) {
  using Math = typename Lanes<Sample>::Math;
  const Sample *r0 = in.row[0], *r1 = in.row[1], *r2 = in.row[2], *r3 = in.row[3], *r4 = in.row[4];
  Math xSite, top;
  for (int i = 0; i < CFA_LANES; ++i) {  // lanes keep their parity: the step is even
    xSite[i] = ((x0 + uint32_t(i)) & 1) != uint32_t(out.greenOdd) ? -1 : 0;
    top[i] = topValue;
  }
  uint32_t x = x0;
  for (; x + CFA_LANES <= x1; x += CFA_LANES) {
    const Math c = Load(r2 + x);
    const Math h1 = Load(r2 + x - 1) + Load(r2 + x + 1), v1 = Load(r1 + x) + Load(r3 + x);
    const Math h2 = Load(r2 + x - 2) + Load(r2 + x + 2), v2 = Load(r0 + x) + Load(r4 + x);
    const Math d = Load(r1 + x - 1) + Load(r1 + x + 1) + Load(r3 + x - 1) + Load(r3 + x + 1);
    const Math c16 = c << 4, c10 = c * 10, hv2 = h2 + v2;
    const Math green = ((c << 3) + ((h1 + v1) << 2)) - (hv2 << 1);
    const Math across = c10 + (h1 << 3) - (h2 << 1) - (d << 1) + v2;
    const Math down = c10 + (v1 << 3) - (v2 << 1) - (d << 1) + h2;
    const Math diagonal = c * 12 + (d << 2) - hv2 * 3;
    Store(out.x + x, xSite ? c16 : across, top);
    Store(out.g + x, xSite ? green : c16, top);
    Store(out.y + x, xSite ? diagonal : down, top);
  }
  if (x < x1) tail(in, out, x, x1, topValue);
}

void PortableTail8(const Window8& in, PlaneRow<uint8_t> out, uint32_t x0, uint32_t x1, int) {
  Interior8Portable(in, out, x0, x1);
}
void PortableTail16(const Window16& in, PlaneRow<uint16_t> out, uint32_t x0, uint32_t x1, int top) {
  Interior16Portable(in, out, x0, x1, uint32_t(top));
}

void Interior8(const Window8& in, PlaneRow<uint8_t> out, uint32_t x0, uint32_t x1) {
  Interior<uint8_t>(in, out, x0, x1, 255, PortableTail8);
}
void Interior16(const Window16& in, PlaneRow<uint16_t> out, uint32_t x0, uint32_t x1, uint32_t top) {
  Interior<uint16_t>(in, out, x0, x1, int(top), PortableTail16);
}

}  // namespace
}  // namespace kestrelink::cfa
