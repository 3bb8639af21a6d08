#pragma once
// Where the merger's two layers lie in the output, which layer each pixel
// belongs to, and where each output row starts reading the second layer.
#include <cstdint>

namespace kestrelink::merge {

struct Placement {
  int64_t x1 = 0, y1 = 0, x2 = 0, y2 = 0;  // top-left corners of the first and second layer
  uint32_t w1 = 0, h1 = 0, w2 = 0, h2 = 0;
  uint32_t width = 0, height = 0;           // the output: the bounding box of both
};

// A positive offset places the second layer at it, a negative one places the
// first at its opposite. False for a zero size or an output beyond 2^31
// bytes a row (pixelBytes a pixel) or 2^31 rows.
bool Place(uint32_t w1, uint32_t h1, uint32_t w2, uint32_t h2, int offsetX, int offsetY, int pixelBytes,
           Placement& p);

enum class Region : uint8_t { kNeither, kFirst, kSecond, kBoth };

// Settled behaviour of the format: a pixel is in the first layer strictly
// inside its left and top edges; within it the second layer takes the same
// strict test, outside it the second layer owns its left and top edges.
Region RegionAt(const Placement& p, int64_t x, int64_t y);

struct Segment {
  uint32_t begin, end;
  Region region;
};

// Splits output row y into runs of one region, left to right; answers the count (at most 8).
int RowSegments(const Placement& p, uint32_t y, Segment (&out)[8]);

// Rows whose runs are alike: rows begin .. end - 1 split into the same
// segments, each reading `reads` samples of the second layer, the first of
// them starting at `stream`.
struct RowBand {
  uint32_t begin = 0, end = 0;
  int count = 0;
  Segment seg[8];
  uint64_t stream = 0, reads = 0;
};

// The output's rows as at most 8 bands of alike rows (the regions change
// only at the layers' top and bottom edges), found once a call.
struct RowPlan {
  int count = 0;
  RowBand band[8];
  const RowBand& BandOf(uint32_t y) const {
    int i = 0;
    while (i + 1 < count && y >= band[i].end) ++i;
    return band[i];
  }
};

// Settled behaviour of the format: the second layer is read as one stream
// that moves on only at pixels that read it; the plan's bands carry where
// each row starts reading it.
RowPlan PlanRows(const Placement& p);

}  // namespace kestrelink::merge
