// Mono16PixelPacked and Mono16PixelPacked8448 sources on the plain path:
// two pixels in three bytes, (width - 1) / 2 + 1 pairs a row. Rows start at
// byte (row * width * packedBits) >> 3, except on the Mono8 target, which
// takes 12 bits a pixel whatever the argument says. A depth other than 10
// or 12 leaves the pair loop idle: the destination stays as it was.
#include <kestrelink/CIppImageConverter.h>

#include "convert/ColorMapEngine.h"
#include "convert/PackedMonoLanes.h"
#include "platform/OpenMP.h"

using kestrelink::packedmono::ForDepth;
using kestrelink::packedmono::LanesToBgr;
using kestrelink::packedmono::LanesToBgrx;
using kestrelink::packedmono::LanesToMono8;
using kestrelink::packedmono::LanesToWords;
using kestrelink::packedmono::Pairs;
using kestrelink::platform::SetBlockTimeZero;
using kestrelink::rows::LaneRule;
namespace rows = kestrelink::rows;

bool CIppImageConverter::Mono16PixelPackedToBGRx(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                                 void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16PixelPackedToBGRx(w, h, packedBits, d, src, dst, flip);
  if (const LaneRule* rule = ForDepth(d, rows::kPacked10ToMono8, rows::kPacked12ToMono8))
    LanesToBgrx(Pairs(src, w, packedBits), h, *rule, dst, flip);
  return true;
}

bool CIppImageConverter::Mono16PixelPackedToBGR24(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                                  void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16PixelPackedToBGR24(w, h, packedBits, d, src, dst, flip);
  if (const LaneRule* rule = ForDepth(d, rows::kPacked10ToMono8, rows::kPacked12ToMono8))
    LanesToBgr(Pairs(src, w, packedBits), h, *rule, dst, flip);
  return true;
}

bool CIppImageConverter::Mono16PixelPackedToMono8(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                                  void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16PixelPackedToMono8(w, h, packedBits, d, src, dst, flip);
  if (const LaneRule* rule = ForDepth(d, rows::kPacked10ToMono8, rows::kPacked12ToMono8))
    LanesToMono8(Pairs(src, w, 12), h, *rule, dst, flip);
  return true;
}

bool CIppImageConverter::Mono16PixelPackedToMono16(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                                   void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16PixelPackedToMono16(w, h, packedBits, d, src, dst, flip);
  if (const LaneRule* rule = ForDepth(d, rows::kPacked10ToMono16, rows::kPacked12ToMono16))
    LanesToWords(Pairs(src, w, packedBits), h, *rule, dst, flip);
  return true;
}

bool CIppImageConverter::Mono16PixelPackedToMono16MSB(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d,
                                                      void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (const LaneRule* rule = ForDepth(d, rows::kPacked10ToMono16Msb, rows::kPacked12ToMono16Msb))
    LanesToWords(Pairs(src, w, packedBits), h, *rule, dst, flip);
  return true;
}

// The 8-bit targets of the 8448 layout take the outer bytes, b0 and b2, at
// any depth; no test of d is made.
bool CIppImageConverter::Mono16PixelPacked8448ToBGRx(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                                     void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap())
    return m_Engine->Mono16PixelPacked8448ToBGRx(w, h, packedBits, d, src, dst, flip);
  LanesToBgrx(Pairs(src, w, packedBits), h, rows::k8448ToMono8, dst, flip);
  return true;
}

bool CIppImageConverter::Mono16PixelPacked8448ToBGR24(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d,
                                                      void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap())
    return m_Engine->Mono16PixelPacked8448ToBGR24(w, h, packedBits, d, src, dst, flip);
  LanesToBgr(Pairs(src, w, packedBits), h, rows::k8448ToMono8, dst, flip);
  return true;
}

bool CIppImageConverter::Mono16PixelPacked8448ToMono8(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d,
                                                      void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap())
    return m_Engine->Mono16PixelPacked8448ToMono8(w, h, packedBits, d, src, dst, flip);
  LanesToMono8(Pairs(src, w, 12), h, rows::k8448ToMono8, dst, flip);
  return true;
}

// Alone of the packed methods, this one refuses a depth other than 10 or 12,
// before doing anything.
bool CIppImageConverter::Mono16PixelPacked8448ToMono16(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d,
                                                       void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap())
    return m_Engine->Mono16PixelPacked8448ToMono16(w, h, packedBits, d, src, dst, flip);
  const LaneRule* rule = ForDepth(d, rows::k8448To10, rows::k8448To12);
  if (!rule) return false;
  LanesToWords(Pairs(src, w, packedBits), h, *rule, dst, flip);
  return true;
}

bool CIppImageConverter::Mono16PixelPacked8448ToMono16MSB(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d,
                                                          void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (const LaneRule* rule = ForDepth(d, rows::k8448To10Msb, rows::k8448To12Msb))
    LanesToWords(Pairs(src, w, packedBits), h, *rule, dst, flip);
  return true;
}
