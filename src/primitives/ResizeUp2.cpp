#include "primitives/ResizeUp2.h"

#include <algorithm>

#include "primitives/GeometryTypes.h"

namespace kestrelink::resize {

bool IsExactUp2(int kind, double xFactor, double yFactor, double xShift, double yShift, int channels) {
  return kind == IPPI_INTER_LINEAR && xFactor == 2.0 && yFactor == 2.0 && xShift == 0.0 && yShift == 0.0 &&
         channels == 1;
}

namespace {

int64_t Clamp(int64_t i, const AxisMap& m) { return std::clamp<int64_t>(i, m.lo, m.hi - 1); }

// The source pixel nearest destination position d, and the other one it
// leans towards (the next for odd d, the previous for even d), unclamped.
int64_t Near(const AxisMap& m, int64_t d) { return int64_t(m.roiStart) + (d >> 1); }
int64_t Far(const AxisMap& m, int64_t d) { return Near(m, d) + ((d & 1) ? 1 : -1); }

template <class Sample>
void ClampedColumns(const Sample* a, const Sample* b, const AxisMap& x, int64_t dx0, int64_t from, int64_t to,
                    Sample* outA, Sample* outB) {
  for (int64_t d = from; d < to; ++d) {
    const int64_t n = Clamp(Near(x, d), x), f = Clamp(Far(x, d), x);
    outA[d - dx0] = Up2Sample(a, b, n, f);
    if (outB) outB[d - dx0] = Up2Sample(b, a, n, f);
  }
}

void Rows(const Up2RowKernels& k, const uint8_t* a, const uint8_t* b, uint32_t m, uint8_t* outA, uint8_t* outB) {
  k.rows8(a, b, m, outA, outB);
}
void Rows(const Up2RowKernels& k, const uint16_t* a, const uint16_t* b, uint32_t m, uint16_t* outA,
          uint16_t* outB) {
  k.rows16(a, b, m, outA, outB);
}

// One or two output rows: outA from near row a and far row b, outB (when
// not null) the other way round. The columns whose source pairs lie inside
// the row go to the row kernels; the clamped ones at either end are done
// here.
template <class Sample>
void Columns(const Up2RowKernels& k, const Sample* a, const Sample* b, const AxisMap& x, int64_t dx0, int64_t width,
             Sample* outA, Sample* outB) {
  const int64_t dx1 = dx0 + width;
  // The first odd column whose near pixel is inside; pairs run while the
  // next pixel is.
  const int64_t ds = std::max(dx0 + ((dx0 & 1) ? 0 : 1), 2 * (int64_t(x.lo) - int64_t(x.roiStart)) + 1);
  const int64_t ns = Near(x, ds);
  const int64_t m = std::min(int64_t(x.hi) - 1 - ns, (dx1 - ds) / 2);
  if (m <= 0) {
    ClampedColumns(a, b, x, dx0, dx0, dx1, outA, outB);
    return;
  }
  ClampedColumns(a, b, x, dx0, dx0, ds, outA, outB);
  Rows(k, a + ns, b + ns, uint32_t(m), outA + (ds - dx0), outB ? outB + (ds - dx0) : nullptr);
  ClampedColumns(a, b, x, dx0, ds + 2 * m, dx1, outA, outB);
}

}  // namespace

template <class Sample>
void RunUp2(const RunRows& r, const AxisMap& x, int64_t dx0, int64_t width) {
  const Up2RowKernels& k = Up2Rows();
  const AxisMap& y = r.y;
  auto row = [&](int64_t i) { return reinterpret_cast<const Sample*>(r.src + r.srcStep * i); };
  auto out = [&](int64_t q) { return reinterpret_cast<Sample*>(r.dst + r.dstStep * q); };
  const int64_t end = r.y0 + r.rows;
  for (int64_t q = r.y0; q < end;) {
    // An odd row and the one below it read the same two source rows.
    const int64_t n = Near(y, q), f = Far(y, q);
    if ((q & 1) && q + 1 < end && n >= y.lo && f < y.hi) {
      Columns(k, row(n), row(f), x, dx0, width, out(q), out(q + 1));
      q += 2;
    } else {
      Columns<Sample>(k, row(Clamp(n, y)), row(Clamp(f, y)), x, dx0, width, out(q), nullptr);
      q += 1;
    }
  }
}

template void RunUp2<uint8_t>(const RunRows& r, const AxisMap& x, int64_t dx0, int64_t width);
template void RunUp2<uint16_t>(const RunRows& r, const AxisMap& x, int64_t dx0, int64_t width);

}  // namespace kestrelink::resize
