// Portable packed-colour rows: the reference every vector variant must match.
#include <cstring>

#include "convert/rows/ColourRowsPacked.h"

namespace kestrelink::rows {
namespace {

// The pixel rules: each gives D0 | D1 << 8 | D2 << 16 from the source word.
uint32_t Bgr555Pixel(uint32_t u) { return (u << 3 & 0xF8u) | (u << 6 & 0xF800u) | (u << 9 & 0xF80000u); }
uint32_t Rgb555Pixel(uint32_t u) { return (u >> 7 & 0xF8u) | (u << 6 & 0xF800u) | (u << 19 & 0xF80000u); }
uint32_t Bgr565Pixel(uint32_t u) { return (u << 3 & 0xF8u) | (u << 5 & 0xFC00u) | (u << 8 & 0xF80000u); }
uint32_t Rgb565Pixel(uint32_t u) { return (u >> 8 & 0xF8u) | (u << 5 & 0xFC00u) | (u << 19 & 0xF80000u); }
uint32_t Bgr10Pixel(uint32_t u) { return (u >> 2 & 0xFFu) | (u >> 4 & 0xFF00u); }
uint32_t PhoenixPixel(uint32_t u) { return (u >> 2 & 0xFFu) | (u >> 6 & 0xFF00u) | (u >> 8 & 0xFF0000u); }
uint32_t RgbPhoenixPixel(uint32_t u) { return (u >> 24) | (u >> 6 & 0xFF00u) | (u << 14 & 0xFF0000u); }
uint32_t GvspV1Pixel(uint32_t u) { return u >> 8; }
uint32_t GvspV2Pixel(uint32_t u) { return (u >> 22 & 0xFFu) | (u >> 4 & 0xFF00u) | (u << 14 & 0xFF0000u); }

uint32_t Load16(const uint8_t* p) { return uint32_t(p[0] | p[1] << 8); }
uint32_t Load32(const uint8_t* p) {
  uint32_t u;
  std::memcpy(&u, p, 4);
  return u;
}

// Bytes of the destination pixel that a row writes; the others keep their value.
template <uint32_t written>
void StorePixel(uint8_t* p, uint32_t px) {
  for (int b = 0; b < 4; ++b)
    if (written >> b & 1) p[b] = uint8_t(px >> (8 * b));
}

template <uint32_t srcBytes, uint32_t dstBytes, uint32_t written, uint32_t (*rule)(uint32_t)>
void RuleRow(const uint8_t* src, uint8_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; ++x, src += srcBytes, dst += dstBytes)
    StorePixel<written>(dst, rule(srcBytes == 2 ? Load16(src) : Load32(src)));
}

constexpr uint32_t kBgr = 0b0111, kBgrx = 0b1111, kFirstTwo = 0b0011;

}  // namespace

void Bgr555ToBgrxPortable(const uint8_t* s, uint8_t* d, uint32_t w) { RuleRow<2, 4, kBgr, Bgr555Pixel>(s, d, w); }
void Bgr555ToBgr24Portable(const uint8_t* s, uint8_t* d, uint32_t w) { RuleRow<2, 3, kBgr, Bgr555Pixel>(s, d, w); }
void Bgr555ToRgb24Portable(const uint8_t* s, uint8_t* d, uint32_t w) { RuleRow<2, 3, kBgr, Rgb555Pixel>(s, d, w); }
void Bgr565ToBgrxPortable(const uint8_t* s, uint8_t* d, uint32_t w) { RuleRow<2, 4, kBgr, Bgr565Pixel>(s, d, w); }
void Bgr565ToBgr24Portable(const uint8_t* s, uint8_t* d, uint32_t w) { RuleRow<2, 3, kBgr, Bgr565Pixel>(s, d, w); }
void Bgr565ToRgb24Portable(const uint8_t* s, uint8_t* d, uint32_t w) { RuleRow<2, 3, kBgr, Rgb565Pixel>(s, d, w); }
void Bgr10ToBgrxPortable(const uint8_t* s, uint8_t* d, uint32_t w) { RuleRow<4, 4, kFirstTwo, Bgr10Pixel>(s, d, w); }
void Bgr10ToBgr24Portable(const uint8_t* s, uint8_t* d, uint32_t w) { RuleRow<4, 3, kFirstTwo, Bgr10Pixel>(s, d, w); }
void PhoenixToBgrxPortable(const uint8_t* s, uint8_t* d, uint32_t w) { RuleRow<4, 4, kBgr, PhoenixPixel>(s, d, w); }
void PhoenixToBgr24Portable(const uint8_t* s, uint8_t* d, uint32_t w) { RuleRow<4, 3, kBgr, PhoenixPixel>(s, d, w); }
void RgbPhoenixToBgrxPortable(const uint8_t* s, uint8_t* d, uint32_t w) {
  RuleRow<4, 4, kBgr, RgbPhoenixPixel>(s, d, w);
}
void RgbPhoenixToBgr24Portable(const uint8_t* s, uint8_t* d, uint32_t w) {
  RuleRow<4, 3, kBgr, RgbPhoenixPixel>(s, d, w);
}
void GvspV1ToBgrxPortable(const uint8_t* s, uint8_t* d, uint32_t w) { RuleRow<4, 4, kBgrx, GvspV1Pixel>(s, d, w); }
void GvspV1ToBgr24Portable(const uint8_t* s, uint8_t* d, uint32_t w) { RuleRow<4, 3, kBgr, GvspV1Pixel>(s, d, w); }
void GvspV2ToBgrxPortable(const uint8_t* s, uint8_t* d, uint32_t w) { RuleRow<4, 4, kBgrx, GvspV2Pixel>(s, d, w); }
void GvspV2ToBgr24Portable(const uint8_t* s, uint8_t* d, uint32_t w) { RuleRow<4, 3, kBgr, GvspV2Pixel>(s, d, w); }

const PackedRowKernels kPackedRowsPortable = {
    Bgr555ToBgrxPortable,     Bgr555ToBgr24Portable,     Bgr555ToRgb24Portable, Bgr565ToBgrxPortable,
    Bgr565ToBgr24Portable,    Bgr565ToRgb24Portable,     Bgr10ToBgrxPortable,   Bgr10ToBgr24Portable,
    PhoenixToBgrxPortable,    PhoenixToBgr24Portable,    RgbPhoenixToBgrxPortable, RgbPhoenixToBgr24Portable,
    GvspV1ToBgrxPortable,     GvspV1ToBgr24Portable,     GvspV2ToBgrxPortable,  GvspV2ToBgr24Portable,
};

}  // namespace kestrelink::rows
