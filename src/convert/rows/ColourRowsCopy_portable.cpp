// Portable channel-copy rows: the reference every vector variant must match.
#include "convert/rows/ColourRowsCopy.h"

namespace kestrelink::rows {
namespace {

uint8_t NarrowWord(const uint8_t* p, uint32_t shift) {
  return shift < 16 ? uint8_t(uint32_t(p[0] | p[1] << 8) >> shift) : 0;
}

}  // namespace

void Bytes3To4Portable(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift) {
  const uint32_t keep = shift < 8 ? 0xFFu : 0u;  // a shift of a whole byte or more leaves nothing
  const uint32_t s = shift & 7;
  for (uint32_t x = 0; x < w; ++x, src += 3, dst += 4)
    for (int i = 0; i < 3; ++i) dst[i] = uint8_t((src[order.c[i]] >> s) & keep);
}

void Bytes4To3Portable(const uint8_t* src, uint8_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; ++x, src += 4, dst += 3) {
    dst[0] = src[0];
    dst[1] = src[1];
    dst[2] = src[2];
  }
}

void Split3Portable(const uint8_t* src, uint8_t* d0, uint8_t* d1, uint8_t* d2, uint32_t w) {
  for (uint32_t x = 0; x < w; ++x, src += 3) {
    d0[x] = src[0];
    d1[x] = src[1];
    d2[x] = src[2];
  }
}

void Merge3Portable(const uint8_t* s0, const uint8_t* s1, const uint8_t* s2, uint8_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; ++x, dst += 3) {
    dst[0] = s0[x];
    dst[1] = s1[x];
    dst[2] = s2[x];
  }
}

void Reorder3x8Portable(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order) {
  for (uint32_t x = 0; x < w; ++x, src += 3, dst += 3) {
    const uint8_t in[3] = {src[0], src[1], src[2]};
    for (int i = 0; i < 3; ++i) dst[i] = in[order.c[i]];
  }
}

void Reorder3x16Portable(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order) {
  for (uint32_t x = 0; x < w; ++x, src += 6, dst += 6) {
    const uint8_t in[6] = {src[0], src[1], src[2], src[3], src[4], src[5]};
    for (int i = 0; i < 3; ++i) {
      dst[2 * i] = in[2 * order.c[i]];
      dst[2 * i + 1] = in[2 * order.c[i] + 1];
    }
  }
}

void Words3ToBytes3Of4Portable(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift) {
  for (uint32_t x = 0; x < w; ++x, src += 6, dst += 4)
    for (int i = 0; i < 3; ++i) dst[i] = NarrowWord(src + 2 * order.c[i], shift);
}

void Words3ToBytes3Portable(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift) {
  for (uint32_t x = 0; x < w; ++x, src += 6, dst += 3)
    for (int i = 0; i < 3; ++i) dst[i] = NarrowWord(src + 2 * order.c[i], shift);
}

void Words4To3Portable(const uint8_t* src, uint8_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; ++x, src += 8, dst += 6)
    for (int b = 0; b < 6; ++b) dst[b] = src[b];
}

void Words4ToBytes3Of4Portable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  for (uint32_t x = 0; x < w; ++x, src += 8, dst += 4)
    for (int i = 0; i < 3; ++i) dst[i] = NarrowWord(src + 2 * i, shift);
}

void Words4ToBytes3Portable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  for (uint32_t x = 0; x < w; ++x, src += 8, dst += 3)
    for (int i = 0; i < 3; ++i) dst[i] = NarrowWord(src + 2 * i, shift);
}

const CopyRowKernels kCopyRowsPortable = {
    Bytes3To4Portable,         Bytes4To3Portable,      Split3Portable,    Merge3Portable,
    Reorder3x8Portable,        Reorder3x16Portable,    Words3ToBytes3Of4Portable,
    Words3ToBytes3Portable,    Words4To3Portable,      Words4ToBytes3Of4Portable, Words4ToBytes3Portable,
};

}  // namespace kestrelink::rows
