#pragma once
// Plain references for the analysis kernels, written from their definitions:
// 3 x 3 extremes with the edge replicated, and Sobel masks as full 2-D
// weight tables applied pixel by pixel.
#include <algorithm>
#include <cstdint>
#include <vector>

namespace testsupport {

// Maximum (or minimum) over the 3 x 3 neighbourhood, coordinates clamped to
// the w x h region whose rows are `stride` samples apart from `origin`.
template <class T>
std::vector<T> Extreme3x3(const std::vector<T>& image, size_t origin, size_t stride, int w, int h, bool maximum) {
  std::vector<T> out(image);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      T best = image[origin + size_t(y) * stride + size_t(x)];
      for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx) {
          const int yy = std::clamp(y + dy, 0, h - 1), xx = std::clamp(x + dx, 0, w - 1);
          const T v = image[origin + size_t(yy) * stride + size_t(xx)];
          best = maximum ? std::max(best, v) : std::min(best, v);
        }
      out[origin + size_t(y) * stride + size_t(x)] = best;
    }
  return out;
}

// The Sobel response of a packed w x h byte image: the mask is the outer
// product of a column weight and a row weight, as the filters define them.
// replicate: outside pixels take the nearest edge pixel; else `value`.
inline std::vector<int> SobelReference(const std::vector<uint8_t>& image, int w, int h, bool verticalEdges, bool five,
                                       bool replicate, int value) {
  const std::vector<int> smooth = five ? std::vector<int>{1, 4, 6, 4, 1} : std::vector<int>{1, 2, 1};
  const std::vector<int> derive = five ? std::vector<int>{-1, -2, 0, 2, 1} : std::vector<int>{-1, 0, 1};
  const std::vector<int>& down = verticalEdges ? smooth : derive;    // weight by row
  const std::vector<int>& across = verticalEdges ? derive : smooth;  // weight by column
  const int half = five ? 2 : 1;
  std::vector<int> out(size_t(w) * h);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      int sum = 0;
      for (int j = -half; j <= half; ++j)
        for (int i = -half; i <= half; ++i) {
          int yy = y + j, xx = x + i, v;
          if (replicate) {
            v = image[size_t(std::clamp(yy, 0, h - 1)) * w + size_t(std::clamp(xx, 0, w - 1))];
          } else {
            v = yy < 0 || yy >= h || xx < 0 || xx >= w ? value : image[size_t(yy) * w + size_t(xx)];
          }
          sum += down[size_t(j + half)] * across[size_t(i + half)] * v;
        }
      out[size_t(y) * w + size_t(x)] = sum;
    }
  return out;
}

}  // namespace testsupport
