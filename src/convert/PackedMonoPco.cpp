// MonoPcoPixelPacked sources on the plain path: eight 12-bit pixels in 12
// bytes, (width - 1) / 8 + 1 groups a row, rows starting at byte
// ((row * width * 3) >> 3) * 4. `packedBits` and `d` are not used here.
// The 8-bit targets take the top 8 bits of each pixel, eight a group; the
// 16-bit targets write nine slots a group, p2 twice, so each row reaches
// width / 8 values into the next and the frame's last row past its end.
// Every target but BGRx sets the process-wide team to 4 threads first and
// leaves it so: a settled behaviour that other classes see too.
#include <kestrelink/CIppImageConverter.h>

#include "convert/ColorMapEngine.h"
#include "convert/PackedMonoLanes.h"
#include "convert/PackedMonoNineSlots.h"
#include "platform/OpenMP.h"

using kestrelink::packedmono::Pco;
using kestrelink::platform::SetBlockTimeZero;
using kestrelink::platform::SetTeamSize;
namespace packedmono = kestrelink::packedmono;
namespace rows = kestrelink::rows;

namespace {

inline constexpr int kPcoTeamSize = 4;

}  // namespace

bool CIppImageConverter::MonoPcoPixelPackedToBGRx(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                                  void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->MonoPcoPixelPackedToBGRx(w, h, packedBits, d, src, dst, flip);
  packedmono::LanesToBgrx(Pco(src, w), h, rows::kPcoToMono8, dst, flip);
  return true;
}

bool CIppImageConverter::MonoPcoPixelPackedToBGR24(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                                   void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->MonoPcoPixelPackedToBGR24(w, h, packedBits, d, src, dst, flip);
  SetTeamSize(kPcoTeamSize);
  packedmono::LanesToBgr(Pco(src, w), h, rows::kPcoToMono8, dst, flip);
  return true;
}

bool CIppImageConverter::MonoPcoPixelPackedToMono8(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                                   void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->MonoPcoPixelPackedToMono8(w, h, packedBits, d, src, dst, flip);
  SetTeamSize(kPcoTeamSize);
  packedmono::LanesToMono8(Pco(src, w), h, rows::kPcoToMono8, dst, flip);
  return true;
}

bool CIppImageConverter::MonoPcoPixelPackedToMono16(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                                    void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->MonoPcoPixelPackedToMono16(w, h, packedBits, d, src, dst, flip);
  SetTeamSize(kPcoTeamSize);
  packedmono::PcoToNineSlots(src, w, h, 0, dst, flip);
  return true;
}

bool CIppImageConverter::MonoPcoPixelPackedToMono16MSB(uint32_t w, uint32_t h, [[maybe_unused]] uint32_t packedBits,
                                                       [[maybe_unused]] uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  SetTeamSize(kPcoTeamSize);
  packedmono::PcoToNineSlots(src, w, h, 4, dst, flip);
  return true;
}
