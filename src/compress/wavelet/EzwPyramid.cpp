// Band sizes and places of the zerotree coder's pyramid.
#include "compress/wavelet/EzwPyramid.h"

namespace kestrelink::wavelet {

EZWShape::EZWShape(int w, int h, int l) : width(w), height(h), levels(l < 1 ? 1 : l), bandCount(3 * levels + 1) {
  const size_t n = static_cast<size_t>(levels);
  std::vector<int> lw(n), lh(n), hw(n), hh(n);
  const int last = levels - 1;
  lw[size_t(last)] = (width + 1) / 2;
  lh[size_t(last)] = (height + 1) / 2;
  hw[size_t(last)] = width / 2;
  hh[size_t(last)] = height / 2;
  for (int i = last - 1; i >= 0; --i) {
    lw[size_t(i)] = (lw[size_t(i + 1)] + 1) / 2;
    lh[size_t(i)] = (lh[size_t(i + 1)] + 1) / 2;
    hw[size_t(i)] = lw[size_t(i + 1)] / 2;
    hh[size_t(i)] = lh[size_t(i + 1)] / 2;
  }
  bands.resize(size_t(bandCount));
  auto place = [&](int band, int bw, int bh, int x0, int y0) {
    EZWBand& b = bands[size_t(band)];
    b.width = bw;
    b.height = bh;
    b.count = bw * bh;
    b.x0 = x0;
    b.y0 = y0;
    b.offset = samples;
    samples += b.count;
  };
  place(0, lw[0], lh[0], 0, 0);
  for (int i = 0; i < levels; ++i) {
    const size_t k = size_t(i);
    place(3 * i + 1, hw[k], lh[k], lw[k], 0);
    place(3 * i + 2, lw[k], hh[k], 0, lh[k]);
    place(3 * i + 3, hw[k], hh[k], lw[k], lh[k]);
  }
}

}  // namespace kestrelink::wavelet
