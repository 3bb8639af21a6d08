// The merger's placing of its layers and its per-row region runs.
#include "merge/MergeLayout.h"

#include <algorithm>
#include <climits>
#include <iterator>

namespace kestrelink::merge {

bool Place(uint32_t w1, uint32_t h1, uint32_t w2, uint32_t h2, int offsetX, int offsetY, int pixelBytes,
           Placement& p) {
  if (w1 == 0 || h1 == 0 || w2 == 0 || h2 == 0) return false;
  p.w1 = w1, p.h1 = h1, p.w2 = w2, p.h2 = h2;
  p.x1 = offsetX < 0 ? -int64_t(offsetX) : 0;
  p.x2 = offsetX > 0 ? int64_t(offsetX) : 0;
  p.y1 = offsetY < 0 ? -int64_t(offsetY) : 0;
  p.y2 = offsetY > 0 ? int64_t(offsetY) : 0;
  const int64_t width = std::max(p.x1 + w1, p.x2 + w2), height = std::max(p.y1 + h1, p.y2 + h2);
  if (width * pixelBytes > INT_MAX || height > INT_MAX) return false;
  p.width = uint32_t(width), p.height = uint32_t(height);
  return true;
}

Region RegionAt(const Placement& p, int64_t x, int64_t y) {
  const bool first = x > p.x1 && x < p.x1 + p.w1 && y > p.y1 && y < p.y1 + p.h1;
  if (first) return x > p.x2 && x < p.x2 + p.w2 && y > p.y2 && y < p.y2 + p.h2 ? Region::kBoth : Region::kFirst;
  return x >= p.x2 && x < p.x2 + p.w2 && y >= p.y2 && y < p.y2 + p.h2 ? Region::kSecond : Region::kNeither;
}

int RowSegments(const Placement& p, uint32_t y, Segment (&out)[8]) {
  // The region can change only at these columns.
  int64_t cuts[7] = {0, p.width, p.x1 + 1, p.x1 + p.w1, p.x2, p.x2 + 1, p.x2 + p.w2};
  for (auto& c : cuts) c = std::clamp<int64_t>(c, 0, p.width);
  std::sort(std::begin(cuts), std::end(cuts));
  int count = 0;
  for (int i = 0; i + 1 < 7; ++i) {
    if (cuts[i] == cuts[i + 1]) continue;
    const Region r = RegionAt(p, cuts[i], y);
    if (count > 0 && out[count - 1].region == r) {
      out[count - 1].end = uint32_t(cuts[i + 1]);
    } else {
      out[count++] = {uint32_t(cuts[i]), uint32_t(cuts[i + 1]), r};
    }
  }
  return count;
}

RowPlan PlanRows(const Placement& p) {
  // Every test of a row against the layers changes only at these rows.
  int64_t cuts[8] = {0, p.height, p.y1, p.y1 + 1, p.y1 + p.h1, p.y2, p.y2 + 1, p.y2 + p.h2};
  for (auto& c : cuts) c = std::clamp<int64_t>(c, 0, p.height);
  std::sort(std::begin(cuts), std::end(cuts));
  RowPlan plan;
  uint64_t stream = 0;
  for (int i = 0; i + 1 < 8; ++i) {
    if (cuts[i] == cuts[i + 1]) continue;
    RowBand& b = plan.band[plan.count++];
    b.begin = uint32_t(cuts[i]), b.end = uint32_t(cuts[i + 1]);
    b.count = RowSegments(p, b.begin, b.seg);
    b.stream = stream;
    for (int s = 0; s < b.count; ++s)
      if (b.seg[s].region == Region::kSecond || b.seg[s].region == Region::kBoth) b.reads += b.seg[s].end - b.seg[s].begin;
    stream += b.reads * (b.end - b.begin);
  }
  return plan;
}

}  // namespace kestrelink::merge
