#pragma once
// The merger's overlay loop, in parallel over output rows: each row is cut
// into runs of one region, and each run calls the member's rule for it.
// The rules are small inline functors, so each run is a plain loop.
#include <cstdint>
#include <vector>

#include "frame/RowLoop.h"
#include "merge/MergeLayout.h"

namespace kestrelink::merge {

struct Bgr {
  uint8_t b, g, r;
};
static_assert(sizeof(Bgr) == 3);

// firstOnly(a), secondOnly(b), both(a, b) give an output pixel;
// neither(row, x, n, firstRow) fills a run that no layer claims (firstRow is
// the first frame's row at this output row, or null).
template <class In, class Out, class FirstOnly, class SecondOnly, class Both, class Neither>
void OverlayRows(const Placement& p, const std::vector<uint64_t>& starts, const In* first, const In* second, Out* dst,
                 FirstOnly firstOnly, SecondOnly secondOnly, Both both, Neither neither) {
  ForEachRow(p.height, false, [&](uint32_t y, uint32_t) {
    // Copies the loops own: writes through a byte pointer could alias the captured originals.
    const FirstOnly ruleFirst = firstOnly;
    const SecondOnly ruleSecond = secondOnly;
    const Both ruleBoth = both;
    Out* row = dst + size_t(y) * p.width;
    const In* firstRow = y >= p.y1 && y < p.y1 + p.h1 ? first + size_t(y - p.y1) * p.w1 : nullptr;
    Segment seg[8];
    const int count = RowSegments(p, y, seg);
    const In* stream = second + starts[y];
    for (int s = 0; s < count; ++s) {
      const uint32_t x = seg[s].begin, n = seg[s].end - seg[s].begin;
      Out* out = row + x;
      switch (seg[s].region) {
        case Region::kFirst: {
          const In* a = firstRow + (x - p.x1);
          for (uint32_t i = 0; i < n; ++i) out[i] = ruleFirst(a[i]);
          break;
        }
        case Region::kSecond:
          for (uint32_t i = 0; i < n; ++i) out[i] = ruleSecond(stream[i]);
          stream += n;
          break;
        case Region::kBoth: {
          const In* a = firstRow + (x - p.x1);
          for (uint32_t i = 0; i < n; ++i) out[i] = ruleBoth(a[i], stream[i]);
          stream += n;
          break;
        }
        default:
          neither(row, x, n, firstRow);
      }
    }
  });
}

// The "neither" rule of the mono forms: the first frame's raw samples where
// its copy lay (its edge), 0 elsewhere if the output was cleared, else
// untouched.
template <class T>
struct MonoNeither {
  const Placement* p;
  bool cleared;
  void operator()(T* row, uint32_t x, uint32_t n, const T* firstRow) const {
    for (uint32_t i = x; i < x + n; ++i) {
      if (firstRow && i >= p->x1 && i < p->x1 + p->w1)
        row[i] = firstRow[i - p->x1];
      else if (cleared)
        row[i] = 0;
    }
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
