#include "jpeg2000/Wavelet53.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include <omp.h>

#include "jpeg2000/WaveletKernels.h"
#include "platform/OpenMP.h"

namespace kestrelink::j2k {
namespace {

// Bands below this many samples are not worth waking the team for.
constexpr size_t kTeamSamples = 1 << 15;
bool UseTeam(uint32_t w, uint32_t h) { return size_t(w) * h >= kTeamSamples; }

// One column pass: the w by h band of src becomes, in dst, its low rows
// followed by its high rows.
void ColumnsForward(const WaveletKernels& k, const int32_t* src, int32_t* dst, size_t stride, uint32_t w, uint32_t h) {
  const int64_t lows = (h + 1) / 2, highs = h / 2;
  auto row = [&](const int32_t* base, int64_t y) { return base + size_t(y) * stride; };
  int32_t* out = dst;
#pragma omp parallel num_threads(platform::TeamSize()) if (UseTeam(w, h))
  {
#pragma omp for schedule(static)
    for (int64_t i = 0; i < highs; ++i) {
      const int64_t below = 2 * i + 2 < h ? 2 * i + 2 : 2 * i;  // the last odd row mirrors its upper neighbour
      k.predict(row(src, 2 * i), row(src, below), row(src, 2 * i + 1), out + size_t(lows + i) * stride, w);
    }
#pragma omp for schedule(static)
    for (int64_t i = 0; i < lows; ++i) {
      const int32_t* hi = out + size_t(lows) * stride;
      const int64_t a = i > 0 ? i - 1 : 0, b = i < highs ? i : highs - 1;
      k.update(hi + size_t(a) * stride, hi + size_t(b) * stride, row(src, 2 * i), out + size_t(i) * stride, w);
    }
  }
}

void ColumnsInverse(const WaveletKernels& k, const int32_t* src, int32_t* dst, size_t stride, uint32_t w, uint32_t h) {
  const int64_t lows = (h + 1) / 2, highs = h / 2;
  const int32_t* hi = src + size_t(lows) * stride;
  auto row = [&](int32_t* base, int64_t y) { return base + size_t(y) * stride; };
#pragma omp parallel num_threads(platform::TeamSize()) if (UseTeam(w, h))
  {
#pragma omp for schedule(static)
    for (int64_t i = 0; i < lows; ++i) {
      const int64_t a = i > 0 ? i - 1 : 0, b = i < highs ? i : highs - 1;
      k.unupdate(hi + size_t(a) * stride, hi + size_t(b) * stride, src + size_t(i) * stride, row(dst, 2 * i), w);
    }
#pragma omp for schedule(static)
    for (int64_t i = 0; i < highs; ++i) {
      const int64_t below = 2 * i + 2 < h ? 2 * i + 2 : 2 * i;
      k.unpredict(row(dst, 2 * i), row(dst, below), hi + size_t(i) * stride, row(dst, 2 * i + 1), w);
    }
  }
}

// Work arrays of one row pass: even samples with one past the end, high
// samples with one before and one past.
struct RowScratch {
  std::vector<int32_t> even, odd, high;
  explicit RowScratch(uint32_t w) : even(w / 2 + 2), odd(w / 2 + 2), high(w / 2 + 3) {}
};

void RowForward(const WaveletKernels& k, const int32_t* in, int32_t* out, uint32_t w, RowScratch& s) {
  const uint32_t lows = (w + 1) / 2, highs = w / 2;
  int32_t* even = s.even.data();
  int32_t* high = s.high.data() + 1;
  k.split(in, even, s.odd.data(), w);
  if (!(w & 1)) even[lows] = even[lows - 1];  // even widths mirror the last even sample
  k.predict(even, even + 1, s.odd.data(), high, highs);
  high[-1] = high[0];
  high[highs] = high[highs - 1];
  k.update(high - 1, high, even, out, lows);
  std::memcpy(out + lows, high, sizeof(int32_t) * highs);
}

void RowInverse(const WaveletKernels& k, const int32_t* in, int32_t* out, uint32_t w, RowScratch& s) {
  const uint32_t lows = (w + 1) / 2, highs = w / 2;
  int32_t* even = s.even.data();
  int32_t* high = s.high.data() + 1;
  std::memcpy(high, in + lows, sizeof(int32_t) * highs);
  high[-1] = high[0];
  high[highs] = high[highs - 1];
  k.unupdate(high - 1, high, in, even, lows);
  if (!(w & 1)) even[lows] = even[lows - 1];
  k.unpredict(even, even + 1, high, s.odd.data(), highs);
  k.merge(even, s.odd.data(), out, w);
}

// Applies one of the row steps above to every row of the band, src to dst.
template <class RowStep>
void EachRow(RowStep step, const WaveletKernels& k, const int32_t* src, int32_t* dst, size_t stride, uint32_t w,
             uint32_t h) {
  const int64_t rows = h;
#pragma omp parallel num_threads(platform::TeamSize()) if (UseTeam(w, h))
  {
    RowScratch s(w);
#pragma omp for schedule(static)
    for (int64_t y = 0; y < rows; ++y) step(k, src + size_t(y) * stride, dst + size_t(y) * stride, w, s);
  }
}

void CopyBand(const int32_t* src, int32_t* dst, size_t stride, uint32_t w, uint32_t h) {
  for (uint32_t y = 0; y < h; ++y) std::memcpy(dst + y * stride, src + y * stride, sizeof(int32_t) * w);
}

}  // namespace

void Forward53(const PlaneView& plane, uint32_t levels, int32_t* scratch) {
  const WaveletKernels& k = ActiveWaveletKernels();
  for (uint32_t l = 0; l < levels; ++l) {
    const uint32_t w = LevelSize(plane.width, l), h = LevelSize(plane.height, l);
    if (w == 0 || h == 0) return;
    // A single row or column is its own low band in that direction.
    if (h > 1) ColumnsForward(k, plane.samples, scratch, plane.stride, w, h);
    else CopyBand(plane.samples, scratch, plane.stride, w, h);
    if (w > 1) EachRow(RowForward, k, scratch, plane.samples, plane.stride, w, h);
    else CopyBand(scratch, plane.samples, plane.stride, w, h);
  }
}

void Inverse53(const PlaneView& plane, uint32_t levels, int32_t* scratch) {
  const WaveletKernels& k = ActiveWaveletKernels();
  for (uint32_t l = levels; l-- > 0;) {
    const uint32_t w = LevelSize(plane.width, l), h = LevelSize(plane.height, l);
    if (w == 0 || h == 0) continue;
    if (w > 1) EachRow(RowInverse, k, plane.samples, scratch, plane.stride, w, h);
    else CopyBand(plane.samples, scratch, plane.stride, w, h);
    if (h > 1) ColumnsInverse(k, scratch, plane.samples, plane.stride, w, h);
    else CopyBand(scratch, plane.samples, plane.stride, w, h);
  }
}

}  // namespace kestrelink::j2k
