// Portable resize rows: the reference every vector variant must match.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "primitives/ResizeRows.h"

namespace kestrelink::resize {

namespace {

inline uint16_t Word(const uint8_t* p) {
  uint16_t v;
  std::memcpy(&v, p, 2);
  return v;
}

constexpr int kVerticalShift = 14 + kRowFractionBits;

}  // namespace

void H8Portable(const uint8_t* src, const int32_t* off, const int16_t* w, int taps, uint32_t n, uint32_t from,
                int16_t* out) {
  for (uint32_t j = from; j < n; ++j) {
    int32_t acc = 128;
    for (int k = 0; k < taps; ++k) acc += int32_t(w[size_t(k) * n + j]) * src[off[size_t(k) * n + j]];
    out[j] = int16_t(std::clamp(acc >> 8, -32768, 32767));  // as the vector pack saturates
  }
}

void H16Portable(const uint8_t* src, const int32_t* off, const float* w, int taps, uint32_t n, uint32_t from,
                 float* out) {
  for (uint32_t j = from; j < n; ++j) {
    float acc = 0;
    for (int k = 0; k < taps; ++k) acc += w[size_t(k) * n + j] * float(Word(src + off[size_t(k) * n + j]));
    out[j] = acc;
  }
}

void V8Portable(const int16_t* const* rows, const int16_t* w, int taps, uint32_t from, uint32_t n, bool keepFourth,
                uint8_t* dst) {
  for (uint32_t j = from; j < n; ++j) {
    if (keepFourth && j % 4 == 3) continue;
    int32_t acc = 1 << (kVerticalShift - 1);
    for (int k = 0; k < taps; ++k) acc += int32_t(w[k]) * rows[k][j];
    dst[j] = uint8_t(std::clamp(acc >> kVerticalShift, 0, 255));
  }
}

void V16Portable(const float* const* rows, const float* w, int taps, uint32_t from, uint32_t n, bool keepFourth,
                 uint16_t* dst) {
  for (uint32_t j = from; j < n; ++j) {
    if (keepFourth && j % 4 == 3) continue;
    float acc = 0;
    for (int k = 0; k < taps; ++k) acc += w[k] * rows[k][j];
    dst[j] = uint16_t(std::clamp(acc, 0.0f, 65535.0f) + 0.5f);
  }
}

void H8WinPortable(const uint8_t* src, const int32_t* win, const int32_t* w01, const int32_t* w23, uint32_t from,
                   uint32_t n, int16_t* out) {
  for (uint32_t j = from; j < n; ++j) {
    const uint8_t* s = src + win[j];
    const int32_t acc = 128 + int16_t(w01[j]) * s[0] + (w01[j] >> 16) * s[1] + int16_t(w23[j]) * s[2] +
                        (w23[j] >> 16) * s[3];
    out[j] = int16_t(std::clamp(acc >> 8, -32768, 32767));
  }
}

void H8Px4Portable(const uint8_t* src, const int32_t* pixOff, uint32_t pixels, const int32_t* wpairs, int taps,
                   int channels, uint32_t fromBlock, uint32_t blocks, int16_t* out) {
  const int pairs = (taps + 1) / 2;
  for (uint32_t b = fromBlock; b < blocks; ++b)
    for (uint32_t p = 0; p < 8; ++p)
      for (uint32_t c = 0; c < uint32_t(channels); ++c) {
        int32_t acc = 128;
        for (int t = 0; t < pairs; ++t) {
          const int k0 = 2 * t, k1 = std::min(2 * t + 1, taps - 1);
          const int32_t pair = wpairs[((size_t(b) * pairs + t) * 4 + p % 4) * 8 + c + 4 * (p / 4)];
          const uint32_t pixel = 8 * b + p;
          acc += int16_t(pair) * src[pixOff[size_t(k0) * pixels + pixel] + c] +
                 (pair >> 16) * src[pixOff[size_t(k1) * pixels + pixel] + c];
        }
        out[(8 * size_t(b) + p) * channels + c] = int16_t(std::clamp(acc >> 8, -32768, 32767));
      }
}

void H16WinPortable(const uint8_t* src, const int32_t* win, const float* wf, int width, uint32_t from, uint32_t n,
                    float* out) {
  for (uint32_t j = from; j < n; ++j) {
    float acc = 0;
    for (int b = 0; b < width; ++b) acc += wf[size_t(b) * n + j] * float(Word(src + win[j] + 2 * b));
    out[j] = acc;
  }
}

void NN8Portable(const uint8_t* src, const int32_t* off, uint32_t from, uint32_t n, uint8_t* dst) {
  for (uint32_t j = from; j < n; ++j) dst[j] = src[off[j]];
}

void NN16Portable(const uint8_t* src, const int32_t* off, uint32_t from, uint32_t n, uint8_t* dst) {
  for (uint32_t j = from; j < n; ++j) std::memcpy(dst + 2 * size_t(j), src + off[j], 2);
}

void NN8x4KeepPortable(const uint8_t* src, const int32_t* off, uint32_t from, uint32_t n, uint8_t* dst) {
  for (uint32_t j = from; j < n; ++j) std::memcpy(dst + 4 * size_t(j), src + off[j], 3);
}

namespace {

void H8Win(const uint8_t* src, const int32_t* win, const int32_t* w01, const int32_t* w23, uint32_t n, int16_t* out) {
  H8WinPortable(src, win, w01, w23, 0, n, out);
}
void H8Px4(const uint8_t* src, const int32_t* pixOff, uint32_t pixels, const int32_t* wpairs, const int32_t*, int taps,
           int channels, uint32_t blocks, int16_t* out) {
  H8Px4Portable(src, pixOff, pixels, wpairs, taps, channels, 0, blocks, out);
}
void H16Win(const uint8_t* src, const int32_t* win, const float* wf, int width, uint32_t n, float* out) {
  H16WinPortable(src, win, wf, width, 0, n, out);
}
void NN8(const uint8_t* src, const int32_t* off, uint32_t n, uint32_t, uint8_t* dst) {
  NN8Portable(src, off, 0, n, dst);
}
void NN8x4Keep(const uint8_t* src, const int32_t* off, uint32_t n, uint8_t* dst) {
  NN8x4KeepPortable(src, off, 0, n, dst);
}
void NN16(const uint8_t* src, const int32_t* off, uint32_t n, uint32_t, uint8_t* dst) {
  NN16Portable(src, off, 0, n, dst);
}

void H8(const uint8_t* src, const int32_t* off, const int16_t* w, int taps, uint32_t n, uint32_t, int16_t* out) {
  H8Portable(src, off, w, taps, n, 0, out);
}
void H16(const uint8_t* src, const int32_t* off, const float* w, int taps, uint32_t n, uint32_t, float* out) {
  H16Portable(src, off, w, taps, n, 0, out);
}
void V8(const int16_t* const* rows, const int16_t* w, int taps, uint32_t n, bool keepFourth, uint8_t* dst) {
  V8Portable(rows, w, taps, 0, n, keepFourth, dst);
}
void V16(const float* const* rows, const float* w, int taps, uint32_t n, bool keepFourth, uint16_t* dst) {
  V16Portable(rows, w, taps, 0, n, keepFourth, dst);
}

}  // namespace

const ResizeRowKernels kResizeRowsPortable = {H8, H16, V8, V16, H8Win, H16Win, NN8, NN8x4Keep, NN16, H8Px4};

}  // namespace kestrelink::resize
