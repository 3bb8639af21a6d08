#pragma once
// A plain, serial model of the merger's overlay, written from the layout
// rules: layer corners from the offsets, the strict inside tests, the
// second layer read as a stream, and a rule per region.
#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

namespace mergerref {

struct Layout {
  int x1, y1, x2, y2, width, height;
};

inline Layout Place(int w1, int h1, int w2, int h2, int offsetX, int offsetY) {
  Layout l;
  l.x1 = offsetX < 0 ? -offsetX : 0;
  l.x2 = offsetX > 0 ? offsetX : 0;
  l.y1 = offsetY < 0 ? -offsetY : 0;
  l.y2 = offsetY > 0 ? offsetY : 0;
  l.width = std::max(l.x1 + w1, l.x2 + w2);
  l.height = std::max(l.y1 + h1, l.y2 + h2);
  return l;
}

// out holds what dst held before the call; each region's rule writes a pixel.
template <class In, class Out>
void Overlay(int w1, int h1, const std::vector<In>& first, int w2, int h2, const std::vector<In>& second, int offsetX,
             int offsetY, std::vector<Out>& out, const std::function<Out(In)>& firstOnly,
             const std::function<Out(In)>& secondOnly, const std::function<Out(In, In)>& both,
             const std::function<void(Out&, int x, int y)>& neither) {
  const Layout l = Place(w1, h1, w2, h2, offsetX, offsetY);
  size_t stream = 0;
  for (int y = 0; y < l.height; ++y)
    for (int x = 0; x < l.width; ++x) {
      Out& o = out[size_t(y) * l.width + x];
      const bool inFirst = x > l.x1 && x < l.x1 + w1 && y > l.y1 && y < l.y1 + h1;
      const In a = inFirst ? first[size_t(y - l.y1) * w1 + (x - l.x1)] : In(0);
      if (inFirst) {
        if (x > l.x2 && x < l.x2 + w2 && y > l.y2 && y < l.y2 + h2)
          o = both(a, second[stream++]);
        else
          o = firstOnly(a);
      } else if (x >= l.x2 && x < l.x2 + w2 && y >= l.y2 && y < l.y2 + h2) {
        o = secondOnly(second[stream++]);
      } else {
        neither(o, x, y);
      }
    }
}

}  // namespace mergerref
