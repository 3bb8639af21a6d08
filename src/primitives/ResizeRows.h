#pragma once
// Row kernels of the separable resize, one table per processor variant
// (portable, AVX2, AVX-512; the SSE slots fall back). A row is a run of `n`
// samples; the horizontal pass reads each output sample's taps at byte
// offsets of one source row, tap-major tables (tap k of sample j at
// [k * n + j]); the vertical pass blends `taps` horizontal rows.
//
// 8-bit: weights in 1/16384; the horizontal rows hold samples times 64,
// rounded, as int16 (room for the overshoot of the cubic and Lanczos
// lobes); the vertical pass rounds to the nearest and saturates to 0 .. 255.
// 16-bit: float weights and rows; the vertical pass rounds and saturates to
// 0 .. 65535. Every variant gives the same samples as the portable one.
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::resize {

inline constexpr int kRowFractionBits = 6;

struct ResizeRowKernels {
  // out[j] = round(sum_k w[k*n+j] * src[off[k*n+j]] / 256). The vector body
  // runs for j < vectorEnd, where every offset leaves 4 bytes to read.
  void (*h8)(const uint8_t* src, const int32_t* off, const int16_t* w, int taps, uint32_t n, uint32_t vectorEnd,
             int16_t* out);
  void (*h16)(const uint8_t* src, const int32_t* off, const float* w, int taps, uint32_t n, uint32_t vectorEnd,
              float* out);
  // dst[j] = saturate(round(sum_k w[k] * rows[k][j] / 2^20)); with keepFourth
  // every fourth sample (j % 4 == 3) of dst is left as it was.
  void (*v8)(const int16_t* const* rows, const int16_t* w, int taps, uint32_t n, bool keepFourth, uint8_t* dst);
  void (*v16)(const float* const* rows, const float* w, int taps, uint32_t n, bool keepFourth, uint16_t* dst);
  // 8-bit rows of one channel whose taps lie within the four bytes at
  // win[j]: out[j] = round(sum_b w_b * src[win[j] + b] / 256), with the
  // weights of bytes 0 and 1 in w01[j] (low half first) and of 2 and 3 in
  // w23[j]; the four bytes always lie inside the row.
  void (*h8win)(const uint8_t* src, const int32_t* win, const int32_t* w01, const int32_t* w23, uint32_t n,
                int16_t* out);
  // 16-bit rows of one channel whose taps lie within `width` (2 or 4)
  // samples from byte offset win[j]: out[j] = sum_b wf[b * n + j] * sample b,
  // summed in order from 0; the samples always lie inside the row.
  void (*h16win)(const uint8_t* src, const int32_t* win, const float* wf, int width, uint32_t n, float* out);
  // Nearest neighbour of bytes, dst[j] = src[off[j]], vectors for j < vectorEnd;
  // and of four-byte pixels whose fourth byte in dst stays as it was.
  void (*nn8)(const uint8_t* src, const int32_t* off, uint32_t n, uint32_t vectorEnd, uint8_t* dst);
  void (*nn8x4keep)(const uint8_t* src, const int32_t* off, uint32_t n, uint8_t* dst);
  // Nearest neighbour of 16-bit samples, vectors for j < vectorEnd.
  void (*nn16)(const uint8_t* src, const int32_t* off, uint32_t n, uint32_t vectorEnd, uint8_t* dst);
  // Three- and four-channel 8-bit rows, `blocks` blocks of 8 pixels: each
  // tap gathers four bytes a pixel, pixOff[k * pixels + p] the byte offset
  // of tap k of pixel p. Weights come in pairs of taps (2t, 2t+1; an odd
  // last tap pairs with itself at weight 0), low half first, per block and
  // pair four vectors of 8 lanes: vector v holds pixels v and v+4, four
  // lanes each. Three-channel rows write three samples a pixel (and may
  // write two samples past the block, which the next one overwrites).
  // `windows` (PixelWindows) may serve a variant's fetch of a pair's pixels
  // from one window of the row; the samples are those of pixOff either way.
  void (*h8px4)(const uint8_t* src, const int32_t* pixOff, uint32_t pixels, const int32_t* wpairs,
                const int32_t* windows, int taps, int channels, uint32_t blocks, int16_t* out);
};

extern const ResizeRowKernels kResizeRowsPortable;
extern const ResizeRowKernels kResizeRowsAVX2;
extern const ResizeRowKernels kResizeRowsAVX512;  // the AVX2 rows with a wider vertical pass

inline const ResizeRowKernels& ResizeRows() {
  static const ResizeRowKernels* const slots[kVariantCount] = {&kResizeRowsPortable, nullptr, nullptr,
                                                               &kResizeRowsAVX2, &kResizeRowsAVX512};
  return PickVariant(slots);
}

// Portable rows, also the tails of the vector variants.
void H8Portable(const uint8_t* src, const int32_t* off, const int16_t* w, int taps, uint32_t n, uint32_t from,
                int16_t* out);
void H16Portable(const uint8_t* src, const int32_t* off, const float* w, int taps, uint32_t n, uint32_t from,
                 float* out);
void V8Portable(const int16_t* const* rows, const int16_t* w, int taps, uint32_t from, uint32_t n, bool keepFourth,
                uint8_t* dst);
void V16Portable(const float* const* rows, const float* w, int taps, uint32_t from, uint32_t n, bool keepFourth,
                 uint16_t* dst);
void H8WinPortable(const uint8_t* src, const int32_t* win, const int32_t* w01, const int32_t* w23, uint32_t from,
                   uint32_t n, int16_t* out);
void H8Px4Portable(const uint8_t* src, const int32_t* pixOff, uint32_t pixels, const int32_t* wpairs, int taps,
                   int channels, uint32_t fromBlock, uint32_t blocks, int16_t* out);
void H16WinPortable(const uint8_t* src, const int32_t* win, const float* wf, int width, uint32_t from, uint32_t n,
                    float* out);
void NN8Portable(const uint8_t* src, const int32_t* off, uint32_t from, uint32_t n, uint8_t* dst);
void NN16Portable(const uint8_t* src, const int32_t* off, uint32_t from, uint32_t n, uint8_t* dst);
void NN8x4KeepPortable(const uint8_t* src, const int32_t* off, uint32_t from, uint32_t n, uint8_t* dst);

}  // namespace kestrelink::resize
