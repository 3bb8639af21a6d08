#include "primitives/ResizeEngine.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cmath>
#include <cstring>

#include "primitives/GeometryTypes.h"
#include "primitives/ResizeRows.h"

namespace kestrelink::resize {

namespace {

constexpr size_t kAlign = 64;
inline size_t Up(size_t bytes) { return (bytes + kAlign - 1) / kAlign * kAlign; }

// Sizes of the buffer's parts, in carving order.
constexpr int kParts = 18;
struct Parts {
  size_t sizes[kParts];
};
Parts PartSizes(uint32_t n, int tx, int ty) {
  const size_t xs = size_t(n) * size_t(tx), ys = size_t(ty);
  return {{xs * 4, xs * 2, xs * 4, ys * 4, ys * 8, ys * 2, ys * 4, ys * 8, ys * sizeof(void*), ys * sizeof(void*),
           ys * size_t(n) * 4, size_t(n) * 4, size_t(n) * 4, size_t(n) * 4, xs * 4, xs * 4, size_t(n) * 16, xs * 4}};
}

}  // namespace

size_t WorkBytes(uint32_t n, int tx, int ty) {
  size_t total = kAlign;  // room to align the start
  for (size_t s : PartSizes(n, tx, ty).sizes) total += Up(s);
  return total;
}

size_t ResizeWorkBytes(int64_t samples, int kind, double xFactor, double yFactor) {
  const int tx = TapCount(kind, xFactor), ty = TapCount(kind, yFactor);
  if (samples > INT_MAX / 16 || int64_t(tx) * samples > INT_MAX / 16 || int64_t(ty) * samples > INT_MAX / 16)
    return SIZE_MAX;
  const size_t bytes = WorkBytes(uint32_t(samples), tx, ty);
  return bytes > size_t(INT_MAX) ? SIZE_MAX : bytes;
}

Work CarveWork(uint8_t* buffer, uint32_t n, int tx, int ty) {
  const Parts parts = PartSizes(n, tx, ty);
  uint8_t* at = reinterpret_cast<uint8_t*>((reinterpret_cast<uintptr_t>(buffer) + kAlign - 1) / kAlign * kAlign);
  uint8_t* p[kParts];
  for (int i = 0; i < kParts; ++i) {
    p[i] = at;
    at += Up(parts.sizes[i]);
  }
  Work w;
  w.x = {reinterpret_cast<int32_t*>(p[0]), reinterpret_cast<int16_t*>(p[1]), reinterpret_cast<float*>(p[2]), n, tx, 0,
         false, reinterpret_cast<int32_t*>(p[11]), reinterpret_cast<int32_t*>(p[12]), reinterpret_cast<int32_t*>(p[13]),
         false, reinterpret_cast<int32_t*>(p[14]), reinterpret_cast<int32_t*>(p[15]), 4, 0,
         reinterpret_cast<int32_t*>(p[17]), 0, reinterpret_cast<float*>(p[16])};
  w.ty = ty;
  w.yIdx = reinterpret_cast<int32_t*>(p[3]);
  w.yW = reinterpret_cast<double*>(p[4]);
  w.yQ = reinterpret_cast<int16_t*>(p[5]);
  w.yF = reinterpret_cast<float*>(p[6]);
  w.tags = reinterpret_cast<int64_t*>(p[7]);
  w.slots = reinterpret_cast<void**>(p[8]);
  w.rows = reinterpret_cast<const void**>(p[9]);
  w.ring = p[10];
  for (int k = 0; k < ty; ++k) {
    w.tags[k] = -1;
    w.slots[k] = w.ring + size_t(k) * n * 4;
  }
  return w;
}

void SetTaps(RowTables& t, uint32_t j, const int32_t* idx, const double* w, int64_t pixelBytes, int64_t sampleOffset) {
  int sum = 0, largest = 0;
  for (int k = 0; k < t.taps; ++k) {
    const size_t at = size_t(k) * t.n + j;
    t.off[at] = int32_t(idx[k] * pixelBytes + sampleOffset);
    t.wq[at] = QuantiseWeight(w[k]);
    t.wf[at] = float(w[k]);
    sum += t.wq[at];
    if (w[k] > w[largest]) largest = k;
  }
  t.wq[size_t(largest) * t.n + j] += int16_t((1 << kWeightBits) - sum);
}

void DropSilentTaps(RowTables& t) {
  auto live = [&](uint32_t j) {
    int n = 0;
    for (int k = 0; k < t.taps; ++k) n += t.wq[size_t(k) * t.n + j] != 0;
    return n;
  };
  int kept = std::min(2, t.taps);
  for (uint32_t j = 0; j < t.n; ++j) kept = std::max(kept, live(j));
  if (kept == t.taps) return;
  for (uint32_t j = 0; j < t.n; ++j) {
    int to = 0;
    for (int k = 0; k < t.taps; ++k) {
      const size_t at = size_t(k) * t.n + j, dst = size_t(to) * t.n + j;
      if (t.wq[at] == 0) continue;
      t.off[dst] = t.off[at];
      t.wq[dst] = t.wq[at];
      t.wf[dst] = t.wf[at];
      ++to;
    }
    // A sample with fewer taps repeats its last pixel at weight 0.
    for (; to < kept; ++to) {
      const size_t dst = size_t(to) * t.n + j;
      t.off[dst] = t.off[dst - t.n];
      t.wq[dst] = 0;
      t.wf[dst] = 0;
    }
  }
  t.taps = kept;
}

void FindVectorEnd(RowTables& t, size_t rowBytes) {
  uint32_t end = t.n;
  for (int k = 0; k < t.taps; ++k)
    for (uint32_t j = 0; j < end; ++j)
      if (size_t(t.off[size_t(k) * t.n + j]) + 4 > rowBytes) {
        end = j;
        break;
      }
  t.vectorEnd = end;
}

void FoldWindows(RowTables& t, size_t rowBytes) {
  t.window = false;
  if (rowBytes < 4 || t.taps < 2 || t.taps > 4) return;
  for (uint32_t j = 0; j < t.n; ++j) {
    int32_t lo = t.off[j], hi = t.off[j];
    for (int k = 1; k < t.taps; ++k) {
      lo = std::min(lo, t.off[size_t(k) * t.n + j]);
      hi = std::max(hi, t.off[size_t(k) * t.n + j]);
    }
    const int32_t base = std::min(lo, int32_t(rowBytes) - 4);
    if (hi - base > 3) return;
    int32_t folded[4] = {0, 0, 0, 0};
    for (int k = 0; k < t.taps; ++k) folded[t.off[size_t(k) * t.n + j] - base] += t.wq[size_t(k) * t.n + j];
    t.win[j] = base;
    t.w01[j] = int32_t(uint32_t(uint16_t(folded[0])) | uint32_t(folded[1]) << 16);
    t.w23[j] = int32_t(uint32_t(uint16_t(folded[2])) | uint32_t(folded[3]) << 16);
  }
  t.window = true;
}

void FoldWindows16(RowTables& t, size_t rowBytes) {
  t.windowWidth = 0;
  const int width = t.taps == 2 ? 2 : 4;
  const int32_t samples = int32_t(rowBytes / 2);
  if (t.taps < 2 || t.taps > 4 || samples < width) return;
  for (uint32_t j = 0; j < t.n; ++j) {
    int32_t lo = t.off[j] / 2, hi = lo;
    for (int k = 1; k < t.taps; ++k) {
      lo = std::min(lo, t.off[size_t(k) * t.n + j] / 2);
      hi = std::max(hi, t.off[size_t(k) * t.n + j] / 2);
    }
    const int32_t base = std::min(lo, samples - width);
    if (hi - base >= width) return;
    for (int b = 0; b < width; ++b) t.wwin[size_t(b) * t.n + j] = 0;
    for (int k = 0; k < t.taps; ++k)
      t.wwin[size_t(t.off[size_t(k) * t.n + j] / 2 - base) * t.n + j] += t.wf[size_t(k) * t.n + j];
    t.win[j] = 2 * base;
  }
  t.windowWidth = width;
}

void GatherPixels(RowTables& t, int channels, size_t rowBytes) {
  t.pix4 = false;
  if (t.taps < 2) return;
  const uint32_t pixels = t.n / uint32_t(channels), blocks = pixels / 8;
  const int pairs = (t.taps + 1) / 2;
  t.pixChannels = channels;
  t.pixBlocks = blocks;
  for (int k = 0; k < t.taps; ++k)
    for (uint32_t p = 0; p < pixels; ++p) {
      const int32_t at = t.off[size_t(k) * t.n + uint32_t(channels) * p];
      t.pixOff[size_t(k) * pixels + p] = at;
      if (size_t(at) + 4 > rowBytes) t.pixBlocks = std::min(t.pixBlocks, p / 8);
    }
  auto weight = [&](int k, uint32_t sample) { return uint16_t(t.wq[size_t(k) * t.n + sample]); };
  for (uint32_t b = 0; b < blocks; ++b)
    for (int pair = 0; pair < pairs; ++pair)
      for (uint32_t v = 0; v < 4; ++v)
        for (uint32_t lane = 0; lane < 8; ++lane) {
          // The fourth lane of a three-sample pixel is computed and dropped.
          const uint32_t sample = uint32_t(channels) * (8 * b + v + 4 * (lane / 4)) + std::min(lane % 4, uint32_t(channels) - 1);
          const int k0 = 2 * pair, k1 = 2 * pair + 1;
          const uint32_t high = k1 < t.taps ? weight(k1, sample) : 0;
          t.wpairs[((size_t(b) * pairs + pair) * 4 + v) * 8 + lane] = int32_t(weight(k0, sample) | high << 16);
        }
  // Blocks of 8 pixels of 3 or 4 samples, pairs of taps: fewer than n * taps
  // values, the size of the part.
  PixelWindows(t.pixOff, pixels, t.taps, channels, t.pixBlocks, rowBytes, t.pixWindows);
  t.pix4 = true;
}

void PixelWindows(const int32_t* pixOff, uint32_t pixels, int taps, int channels, uint32_t blocks, size_t rowBytes,
                  int32_t* windows) {
  static constexpr uint32_t kOrder[8] = {0, 2, 4, 6, 1, 3, 5, 7};
  const int pairs = (taps + 1) / 2;
  // Three-byte pixels read the window and the one a byte on.
  const int64_t reach = kPixelWindowBytes + (channels == 4 ? 0 : 1);
  for (uint32_t b = 0; b < blocks; ++b)
    for (int t = 0; t < pairs; ++t) {
      int32_t* w = windows + (size_t(b) * pairs + t) * kPixelWindowInts;
      const int k[2] = {2 * t, std::min(2 * t + 1, taps - 1)};
      int64_t lo = INT64_MAX, hi = INT64_MIN;
      for (int lane = 0; lane < 16; ++lane) {
        const int64_t at = pixOff[size_t(k[lane % 2]) * pixels + 8 * b + kOrder[lane / 2]];
        lo = std::min(lo, at);
        hi = std::max(hi, at);
      }
      // The window starts at the lowest offset, earlier near the row's end.
      const int64_t base = std::min(lo, int64_t(rowBytes) - reach);
      bool fits = base >= 0 && hi + 4 - base <= kPixelWindowBytes + (channels == 4 ? 0 : 1);
      for (int lane = 0; lane < 16 && fits; ++lane) {
        const int64_t rel = pixOff[size_t(k[lane % 2]) * pixels + 8 * b + kOrder[lane / 2]] - base;
        if (channels == 4) {
          fits = rel % 4 == 0;
          w[1 + lane] = int32_t(rel / 4);
        } else {
          const int32_t h = int32_t(rel / 2);
          w[1 + lane] = h | (h + 1) << 16 | int32_t(rel % 2) << 15;
        }
      }
      w[0] = fits ? int32_t(base) : -1;
    }
}

namespace {

// The vertical weights of one output row in the form a sample type uses,
// the taps that weigh exactly nothing left out (their rows add exactly 0);
// sets w.yIdx to the rows of the taps kept, and `taps` to their number.
template <class Weight>
Weight* KeepWeighed(Work& w, Weight* weights, int& taps) {
  taps = 0;
  for (int k = 0; k < w.ty; ++k)
    if (weights[k] != 0) {
      w.yIdx[taps] = w.yIdx[k];
      weights[taps++] = weights[k];
    }
  return weights;
}
inline const int16_t* Weights(Work& w, const int16_t*, int& taps) {
  QuantiseWeights(w.yW, w.ty, w.yQ);
  return KeepWeighed(w, w.yQ, taps);
}
inline const float* Weights(Work& w, const float*, int& taps) {
  for (int k = 0; k < w.ty; ++k) w.yF[k] = float(w.yW[k]);
  return KeepWeighed(w, w.yF, taps);
}

}  // namespace

template <class Sample>
void RunFiltered(const RunRows& r, Work& w) {
  using Row = std::conditional_t<sizeof(Sample) == 1, int16_t, float>;
  const ResizeRowKernels& k = ResizeRows();
  const RowTables& x = w.x;
  for (int64_t y = r.y0; y < r.y0 + r.rows; ++y) {
    AxisTaps(r.y, y, w.yIdx, w.yW);
    int taps = 0;
    const auto* weights = Weights(w, static_cast<const Row*>(nullptr), taps);
    for (int t = 0; t < taps; ++t) {
      const int32_t row = w.yIdx[t];
      const int slot = row % w.ty;
      if (w.tags[slot] != row) {
        const uint8_t* s = r.src + r.srcStep * row;
        if constexpr (sizeof(Sample) == 1) {
          int16_t* out = static_cast<int16_t*>(w.slots[slot]);
          if (x.window) {
            k.h8win(s, x.win, x.w01, x.w23, x.n, out);
          } else if (x.pix4) {
            const uint32_t pixels = x.n / uint32_t(x.pixChannels);
            k.h8px4(s, x.pixOff, pixels, x.wpairs, x.pixWindows, x.taps, x.pixChannels, x.pixBlocks, out);
            H8Portable(s, x.off, x.wq, x.taps, x.n, 8 * x.pixBlocks * uint32_t(x.pixChannels), out);
          } else {
            k.h8(s, x.off, x.wq, x.taps, x.n, x.vectorEnd, out);
          }
        }
        if constexpr (sizeof(Sample) == 2) {
          if (x.windowWidth)
            k.h16win(s, x.win, x.wwin, x.windowWidth, x.n, static_cast<float*>(w.slots[slot]));
          else
            k.h16(s, x.off, x.wf, x.taps, x.n, x.vectorEnd, static_cast<float*>(w.slots[slot]));
        }
        w.tags[slot] = row;
      }
      w.rows[t] = w.slots[slot];
    }
    const Row* const* rows = reinterpret_cast<const Row* const*>(w.rows);
    uint8_t* out = r.dst + r.dstStep * y;
    if constexpr (sizeof(Sample) == 1)
      k.v8(rows, weights, taps, x.n, r.keepFourth, out);
    else
      k.v16(rows, weights, taps, x.n, r.keepFourth, reinterpret_cast<uint16_t*>(out));
  }
}

template void RunFiltered<uint8_t>(const RunRows& r, Work& w);
template void RunFiltered<uint16_t>(const RunRows& r, Work& w);

namespace {

template <int Copy, int Stride>
void CopyUnits(const uint8_t* src, const int32_t* off, uint32_t n, uint8_t* dst) {
  for (uint32_t j = 0; j < n; ++j) std::memcpy(dst + size_t(j) * Stride, src + off[j], Copy);
}

using CopyRow = void (*)(const uint8_t*, const int32_t*, uint32_t, uint8_t*);

CopyRow PickCopy(int copyBytes, int dstStride) {
  switch (copyBytes * 16 + dstStride) {
    case 1 * 16 + 1: return CopyUnits<1, 1>;
    case 2 * 16 + 2: return CopyUnits<2, 2>;
    case 3 * 16 + 3: return CopyUnits<3, 3>;
    case 3 * 16 + 4: return CopyUnits<3, 4>;
    case 4 * 16 + 4: return CopyUnits<4, 4>;
    case 6 * 16 + 6: return CopyUnits<6, 6>;
    case 6 * 16 + 8: return CopyUnits<6, 8>;
    default: return CopyUnits<8, 8>;
  }
}

}  // namespace

void RunNearest(const RunRows& r, const RowTables& x, int copyBytes, int dstStride) {
  const ResizeRowKernels& k = ResizeRows();
  const CopyRow plain = PickCopy(copyBytes, dstStride);
  auto copy = [&](const uint8_t* src, const int32_t* off, uint32_t n, uint8_t* out) {
    if (copyBytes == 1 && dstStride == 1)
      k.nn8(src, off, n, x.vectorEnd, out);
    else if (copyBytes == 2 && dstStride == 2)
      k.nn16(src, off, n, x.vectorEnd, out);
    else if (copyBytes == 3 && dstStride == 4)
      k.nn8x4keep(src, off, n, out);
    else
      plain(src, off, n, out);
  };
  int32_t row = 0, previous = -1;
  double weight = 0;
  const size_t rowBytes = size_t(x.n) * size_t(dstStride);
  for (int64_t y = r.y0; y < r.y0 + r.rows; ++y) {
    AxisTaps(r.y, y, &row, &weight);
    uint8_t* out = r.dst + r.dstStep * y;
    // A repeated source row is the output row above again, unless the
    // untouched fourth samples of the two rows differ.
    if (row == previous && !r.keepFourth)
      std::memmove(out, out - r.dstStep, rowBytes);
    else
      copy(r.src + r.srcStep * row, x.off, x.n, out);
    previous = row;
  }
}

IppStatus CheckResize(IppiSize srcSize, IppiRect srcRoi, IppiSize dstSize, double xFactor, double yFactor,
                      int interpolation) {
  if (srcSize.width < 1 || srcSize.height < 1 || dstSize.width < 1 || dstSize.height < 1) return ippStsSizeErr;
  auto good = [](double f) { return std::isfinite(f) && f > 0 && std::isfinite(1.0 / f); };
  if (!good(xFactor) || !good(yFactor)) return ippStsResizeFactorErr;
  if (!KnownInterpolation(interpolation)) return ippStsInterpolationErr;
  int32_t x0, x1, y0, y1;
  if (!ClipRoi(srcSize, srcRoi, x0, x1, y0, y1)) return ippStsWrongIntersectROI;
  return ippStsNoErr;
}

bool ClipRoi(IppiSize srcSize, IppiRect srcRoi, int32_t& x0, int32_t& x1, int32_t& y0, int32_t& y1) {
  x0 = int32_t(std::max<int64_t>(srcRoi.x, 0));
  y0 = int32_t(std::max<int64_t>(srcRoi.y, 0));
  x1 = int32_t(std::min<int64_t>(int64_t(srcRoi.x) + srcRoi.width, srcSize.width));
  y1 = int32_t(std::min<int64_t>(int64_t(srcRoi.y) + srcRoi.height, srcSize.height));
  return x1 > x0 && y1 > y0;
}

}  // namespace kestrelink::resize
