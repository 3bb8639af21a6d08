#pragma once
// Row kernels of the YCbCr kernels that carry the frame-sized traffic, one
// table per processor variant (portable, AVX2, AVX-512; the SSE slots fall
// back to portable). Pointers are byte addresses with no alignment assumed.
// The arithmetic and its rounding are those of YCbCrToRgb.h and RgbToYCbCr.h;
// every variant gives the same bytes as the portable one.
#include <cstdint>

#include "platform/CpuFeatures.h"
#include "primitives/Variant.h"

namespace kestrelink::ycc {

// Weights in 4096ths (YCbCrToRgb.h, RgbToYCbCr.h).
inline constexpr int kLuma = 4767, kCrToR = 6537, kCrToG = 3330, kCbToG = 1605, kCbToB = 8261;
inline constexpr int kYR = 1052, kYG = 2065, kYB = 401;
inline constexpr int kCbR = -607, kCbG = -1192, kCbB = 1799;
inline constexpr int kCrR = 1799, kCrG = -1506, kCrB = -293;

// Byte positions in a 4:2:2 group: Y0 Cb Y1 Cr, and Cb Y0 Cr Y1.
struct YuyvGroup {
  static constexpr int kY0 = 0, kCb = 1, kY1 = 2, kCr = 3;
};
struct UyvyGroup {
  static constexpr int kY0 = 1, kCb = 0, kY1 = 3, kCr = 2;
};

// Channel order of three-byte pixels.
enum ChannelOrder : int { kOrderBGR = 0, kOrderRGB = 1 };

// The encoders' weights for the channels in memory order.
struct EncodeWeights {
  int y[3], cb[3], cr[3];
};
inline constexpr EncodeWeights kEncodeBGR = {{kYB, kYG, kYR}, {kCbB, kCbG, kCbR}, {kCrB, kCrG, kCrR}};
inline constexpr EncodeWeights kEncodeRGB = {{kYR, kYG, kYB}, {kCbR, kCbG, kCbB}, {kCrR, kCrG, kCrB}};

struct YccRowKernels {
  // `pairs` groups Y0 Cb Y1 Cr to BGRx pixels with `alpha` in the fourth byte.
  void (*pairs_to_bgrx)(const uint8_t* src, uint8_t* dst, uint32_t pairs, uint8_t alpha);
  // `pairs` groups Y0 Cb Y1 Cr to three-byte pixels in `order`.
  void (*pairs_to_c3)(const uint8_t* src, uint8_t* dst, uint32_t pairs, ChannelOrder order);
  // The same two from groups Cb Y0 Cr Y1.
  void (*uyvy_to_bgrx)(const uint8_t* src, uint8_t* dst, uint32_t pairs, uint8_t alpha);
  void (*uyvy_to_c3)(const uint8_t* src, uint8_t* dst, uint32_t pairs, ChannelOrder order);
  // `w` three-byte pixels in `order` to Y of each pixel, Cb and Cr of each
  // whole pair.
  void (*c3_to_planar422)(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w,
                          ChannelOrder order);
  // The same from BGRx pixels.
  void (*bgrx_to_planar422)(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w);
  // Two rows of `w` three-byte pixels to their two Y rows and the Cb and Cr
  // of each whole 2 x 2 block.
  void (*c3_to_planar420)(const uint8_t* src0, const uint8_t* src1, uint8_t* y0, uint8_t* y1, uint8_t* cb,
                          uint8_t* cr, uint32_t w, ChannelOrder order);
  // The same from BGRx pixels.
  void (*bgrx_to_planar420)(const uint8_t* src0, const uint8_t* src1, uint8_t* y0, uint8_t* y1, uint8_t* cb,
                            uint8_t* cr, uint32_t w);
};

extern const YccRowKernels kYccRowsPortable;
extern const YccRowKernels kYccRowsAVX2;
extern const YccRowKernels kYccRowsAVX512;
// The AVX-512 rows whose 4:2:2 decoders add their dot products in one
// instruction (AVX-512 VNNI), taken where the processor has it.
extern const YccRowKernels kYccRowsAVX512Vnni;

inline const YccRowKernels& YccRows() {
  static const YccRowKernels* const slots[kVariantCount] = {&kYccRowsPortable, nullptr, nullptr, &kYccRowsAVX2,
                                                            &kYccRowsAVX512};
  static const bool vnni = platform::GetCpuFeatures().avx512vnni;
  const YccRowKernels& picked = PickVariant(slots);
  return &picked == &kYccRowsAVX512 && vnni ? kYccRowsAVX512Vnni : picked;
}

// Portable rows, also the tails of the vector variants.
void PairsToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t pairs, uint8_t alpha);
void PairsToC3Portable(const uint8_t* src, uint8_t* dst, uint32_t pairs, ChannelOrder order);
void UyvyToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t pairs, uint8_t alpha);
void UyvyToC3Portable(const uint8_t* src, uint8_t* dst, uint32_t pairs, ChannelOrder order);

// The portable 4:2:2 decoders of a group layout: the tails of the vector rows.
template <class Group>
struct PortablePairRows {
  static constexpr auto bgrx = &PairsToBgrxPortable;
  static constexpr auto c3 = &PairsToC3Portable;
};
template <>
struct PortablePairRows<UyvyGroup> {
  static constexpr auto bgrx = &UyvyToBgrxPortable;
  static constexpr auto c3 = &UyvyToC3Portable;
};
void C3ToPlanar422Portable(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w,
                           ChannelOrder order);
void BgrxToPlanar422Portable(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w);
void C3ToPlanar420Portable(const uint8_t* src0, const uint8_t* src1, uint8_t* y0, uint8_t* y1, uint8_t* cb,
                           uint8_t* cr, uint32_t w, ChannelOrder order);
void BgrxToPlanar420Portable(const uint8_t* src0, const uint8_t* src1, uint8_t* y0, uint8_t* y1, uint8_t* cb,
                             uint8_t* cr, uint32_t w);

}  // namespace kestrelink::ycc
