#pragma once
// The merger's overlay loop, in parallel over output rows: each row is cut
// into runs of one region, and each run calls the member's rule for it,
// either a row kernel or a small inline functor a pixel, so that each run
// is a plain loop.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/RowLoop.h"
#include "merge/MergeLayout.h"

namespace kestrelink::merge {

struct Bgr {
  uint8_t b, g, r;
};
static_assert(sizeof(Bgr) == 3);

// The overlay by runs: firstRun(a, out, n) and secondRun(b, out, n) write
// n output pixels of one layer, bothRun(a, b, out, n) of both;
// neither(row, x, n, firstRow) fills a run that no layer claims (firstRow is
// the first frame's row at this output row, or null).
template <class In, class Out, class FirstRun, class SecondRun, class BothRun, class Neither>
void OverlayRuns(const Placement& p, const RowPlan& plan, const In* first, const In* second, Out* dst,
                 FirstRun firstRun, SecondRun secondRun, BothRun bothRun, Neither neither) {
  ForEachRow(p.height, false, [&](uint32_t y, uint32_t) {
    const RowBand& band = plan.BandOf(y);
    Out* row = dst + size_t(y) * p.width;
    const In* firstRow = y >= p.y1 && y < p.y1 + p.h1 ? first + size_t(y - p.y1) * p.w1 : nullptr;
    const In* stream = second + band.stream + (y - band.begin) * band.reads;
    for (int s = 0; s < band.count; ++s) {
      const Segment& seg = band.seg[s];
      const uint32_t x = seg.begin, n = seg.end - seg.begin;
      switch (seg.region) {
        case Region::kFirst:
          firstRun(firstRow + (x - p.x1), row + x, n);
          break;
        case Region::kSecond:
          secondRun(stream, row + x, n);
          stream += n;
          break;
        case Region::kBoth:
          bothRun(firstRow + (x - p.x1), stream, row + x, n);
          stream += n;
          break;
        default:
          neither(row, x, n, firstRow);
      }
    }
  });
}

// The overlay by pixels: firstOnly(a), secondOnly(b), both(a, b) give an
// output pixel.
template <class In, class Out, class FirstOnly, class SecondOnly, class Both, class Neither>
void OverlayRows(const Placement& p, const RowPlan& plan, const In* first, const In* second, Out* dst,
                 FirstOnly firstOnly, SecondOnly secondOnly, Both both, Neither neither) {
  // The loops own copies of the rules: writes through a byte pointer could
  // alias the captured originals.
  OverlayRuns(
      p, plan, first, second, dst,
      [firstOnly](const In* a, Out* out, uint32_t n) {
        const FirstOnly rule = firstOnly;
        for (uint32_t i = 0; i < n; ++i) out[i] = rule(a[i]);
      },
      [secondOnly](const In* b, Out* out, uint32_t n) {
        const SecondOnly rule = secondOnly;
        for (uint32_t i = 0; i < n; ++i) out[i] = rule(b[i]);
      },
      [both](const In* a, const In* b, Out* out, uint32_t n) {
        const Both rule = both;
        for (uint32_t i = 0; i < n; ++i) out[i] = rule(a[i], b[i]);
      },
      neither);
}

// The "neither" rule of the mono forms: the first frame's raw samples where
// its copy lay (its edge), 0 elsewhere if the output was cleared, else
// untouched.
template <class T>
struct MonoNeither {
  const Placement* p;
  bool cleared;
  void operator()(T* row, uint32_t x, uint32_t n, const T* firstRow) const {
    // The part within the first frame's columns, and what lies either side.
    const int64_t end = int64_t(x) + n;
    const int64_t from = firstRow ? std::clamp<int64_t>(p->x1, x, end) : end;
    const int64_t to = firstRow ? std::clamp<int64_t>(p->x1 + p->w1, from, end) : end;
    if (to > from) std::memcpy(row + from, firstRow + (from - p->x1), size_t(to - from) * sizeof(T));
    if (!cleared) return;
    if (from > x) std::memset(row + x, 0, size_t(from - x) * sizeof(T));
    if (end > to) std::memset(row + to, 0, size_t(end - to) * sizeof(T));
  }
};

// BGR forms: entry 0 of the colour tables, black.
struct BgrNeither {
  Bgr colour;
  template <class T>
  void operator()(Bgr* row, uint32_t x, uint32_t n, const T*) const {
    for (uint32_t i = x; i < x + n; ++i) row[i] = colour;
  }
};

// blend(a, b) = ((256 - w) b + a w) >> 8 with w = trunc(256 weight),
// clamped to 0..maxValue. A weight far outside 0..1 is held at +-2^40,
// which gives the same clamped results without overflow.
inline int64_t BlendWeight(float weight) {
  double w = double(weight) * 256.0;
  if (!(w == w)) w = 0;
  w = w < -1099511627776.0 ? -1099511627776.0 : w > 1099511627776.0 ? 1099511627776.0 : w;
  return int64_t(w);
}

}  // namespace kestrelink::merge
