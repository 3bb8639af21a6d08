// The 5/3 lifting steps. Division truncates toward zero (C++ integer
// division), never a floor: (-1 + -2 + 2) / 4 is 0.
#include "compress/wavelet/LiftingFilter.h"

#include <cstring>

namespace kestrelink::wavelet {

namespace {

// Sums in 32 bits that wrap rather than overflow: the coefficients of a
// damaged frame can be anything, and their sums must not be undefined. The
// sums of well-formed frames stay far inside 32 bits, where this is plain
// addition.
inline int32_t Sum(int32_t a, int32_t b) { return int32_t(uint32_t(a) + uint32_t(b)); }
inline int32_t Sum(int32_t a, int32_t b, int32_t c) { return int32_t(uint32_t(a) + uint32_t(b) + uint32_t(c)); }
inline int32_t Less(int32_t a, int32_t b) { return int32_t(uint32_t(a) - uint32_t(b)); }
inline int32_t Twice(int32_t a) { return int32_t(uint32_t(a) << 1); }

}  // namespace

void LiftForward(int32_t* x, int n, int32_t* out) {
  const int h = n / 2;
  for (int k = 0; k + 1 < h; ++k) x[2 * k + 1] = Less(x[2 * k + 1], Sum(x[2 * k], x[2 * k + 2], 1) / 2);
  x[n - 1] = Less(x[n - 1], Sum(Twice(x[n - 2]), 1) / 2);
  out[0] = Sum(x[0], Sum(Twice(x[1]), 2) / 4);
  for (int k = 1; k + 1 < h; ++k) out[k] = Sum(x[2 * k], Sum(x[2 * k - 1], x[2 * k + 1], 2) / 4);
  // The last even sample takes only its left neighbour, twice; x[n-1] plays
  // no part. A settled behaviour of the format on both sides of the codec.
  out[h - 1] = Sum(x[n - 2], Sum(Twice(x[n - 3]), 2) / 4);
  for (int k = 0; k < h; ++k) out[h + k] = x[2 * k + 1];
}

void LiftInverse(const int32_t* in, int n, int32_t* out) {
  const int h = n / 2;
  const int32_t* s = in;
  const int32_t* d = in + h;
  int32_t e[32];
  e[0] = Sum(s[0], Less(-2, Twice(d[0])) / 4);
  for (int k = 1; k + 1 < h; ++k) e[k] = Less(s[k], Sum(d[k], d[k - 1], 2) / 4);
  e[h - 1] = Sum(s[h - 1], Less(-2, Twice(d[h - 2])) / 4);
  for (int k = 0; k + 1 < h; ++k) {
    out[2 * k] = e[k];
    out[2 * k + 1] = Sum(d[k], Sum(e[k], e[k + 1], 1) / 2);
  }
  out[n - 2] = e[h - 1];
  out[n - 1] = Sum(d[h - 1], Sum(Twice(e[h - 1]), 1) / 2);
}

namespace {

using Step = void (*)(int32_t* row, int n, int32_t* out);

void ForwardStep(int32_t* row, int n, int32_t* out) { LiftForward(row, n, out); }
void InverseStep(int32_t* row, int n, int32_t* out) { LiftInverse(row, n, out); }

// Rows of the region through `step`, transposed into a temporary of width
// rows; then the temporary's rows through `step`, transposed back.
void TwoPasses(int width, int height, int32_t** rows, Step step) {
  int32_t temp[32][32];
  int32_t line[32], out[32];
  for (int y = 0; y < height; ++y) {
    std::memcpy(line, rows[y], sizeof(int32_t) * size_t(width));
    step(line, width, out);
    for (int x = 0; x < width; ++x) temp[x][y] = out[x];
  }
  for (int x = 0; x < width; ++x) {
    step(temp[x], height, out);
    for (int y = 0; y < height; ++y) rows[y][x] = out[y];
  }
}

// The steps need an even run of 4 to 32 samples; levels past 4 would ask for
// runs of 2, which the steps are not defined on.
bool Runnable(int width, int height) {
  return width >= 4 && height >= 4 && width <= 32 && height <= 32 && width % 2 == 0 && height % 2 == 0;
}

}  // namespace

}  // namespace kestrelink::wavelet

bool CDaubcies53Filter::Forward(int width, int height, int32_t** rows) {
  if (!kestrelink::wavelet::Runnable(width, height)) return false;
  kestrelink::wavelet::TwoPasses(width, height, rows, kestrelink::wavelet::ForwardStep);
  return true;
}

// The inverse passes run in the same order as the forward ones (rows, then
// columns), so rounding does not undo exactly: a settled behaviour of the
// format that decoded frames depend on.
bool CDaubcies53Filter::Inverse(int width, int height, int32_t** rows) {
  if (!kestrelink::wavelet::Runnable(width, height)) return false;
  kestrelink::wavelet::TwoPasses(width, height, rows, kestrelink::wavelet::InverseStep);
  return true;
}
