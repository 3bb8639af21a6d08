#pragma once
// The sub-band pyramid of a block for the zerotree coder. Band 0 is the low
// band; band 3i + 1 + o belongs to level i + 1 (1 the coarsest) with
// orientation o: 0 to the right of that level's low band, 1 below it, 2
// diagonally. Sizes, for a side n and L levels: low lw[L-1] = (n + 1) / 2,
// lw[i] = (lw[i+1] + 1) / 2; high hw[L-1] = n / 2, hw[i] = lw[i+1] / 2; the
// same for heights. The low size of a level is where its high bands sit in
// the block.
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestrelink::wavelet {

struct EZWBand {
  int count = 0, width = 0, height = 0;
  int x0 = 0, y0 = 0;  // where the band lies in the block
  int offset = 0;      // where it starts in the backing array
};

// The band of (level, orientation); level 0 is the low band.
inline int EZWBandOf(int level, int orientation) { return level == 0 ? 0 : orientation + 3 * level - 2; }

// The shape of a pyramid, shared by the sample, map and mask pyramids.
struct EZWShape {
  EZWShape(int width, int height, int levels);
  int width, height, levels, bandCount;
  std::vector<EZWBand> bands;
  int samples = 0;
};

template <class T>
struct EZWPyramid {
  explicit EZWPyramid(const EZWShape& s) : shape(&s), data(size_t(s.samples)) {}
  T& At(int band, int x, int y) {
    const EZWBand& b = shape->bands[size_t(band)];
    return data[size_t(b.offset + y * b.width + x)];
  }
  T At(int band, int x, int y) const {
    const EZWBand& b = shape->bands[size_t(band)];
    return data[size_t(b.offset + y * b.width + x)];
  }
  bool Holds(int band, int x, int y) const {
    const EZWBand& b = shape->bands[size_t(band)];
    return x < b.width && y < b.height;
  }
  void Clear() { data.assign(data.size(), T(0)); }

  const EZWShape* shape;
  std::vector<T> data;
};

// The dominant queue's element.
struct EZWEntry {
  uint16_t x, y;
  uint8_t level, orientation, symbol;
};

// The subordinate list's element.
struct EZWRefineEntry {
  uint16_t x, y;
  uint8_t level, orientation;
  uint32_t magnitude;
  int32_t value;
};

}  // namespace kestrelink::wavelet
