// Colour-map path of the MonoPcoPixelPacked source: nine indices a group of
// eight pixels, to every target, so the destination advances nine pixels a
// group and each row reaches width / 8 pixels into the next. The indices are
// p0, p1, p2 & 0xFF0, p2, p3, p4, p5, p6 & 0xFF0, p7, except that the 8-bit
// targets take the four-bit fragment W3 & 15 (the top four bits of p5) in
// the seventh place. All four targets read the colour tables built for d
// bits in and 8 out; Mono8 and Mono16 take table 0 alone, so a Mono16 result
// carries 8-bit values.
#include "convert/ColorMapEngine.h"
#include "convert/ColorMapPackedMonoLooks.h"
#include "convert/PackedMonoFrame.h"
#include "convert/rows/PackedMonoRows.h"

namespace packedmono = kestrelink::packedmono;
namespace rows = kestrelink::rows;
using namespace kestrelink::colormap;

namespace {

// Every row's nine-slot indices, staged a few hundred at a time and written
// by look(indices, out, n) at `pixelBytes` a pixel.
template <class Look>
void PcoIndexRows(const void* src, uint32_t w, uint32_t h, bool fragmentInSlot7, void* dst, uint32_t pixelBytes,
                  bool flip, Look&& look) {
  const auto kernel = rows::PackedMonoRows().pco_nine_slots;
  const packedmono::Grouping& g = packedmono::kPcoNine;
  const packedmono::RowSpan span{uint64_t(pixelBytes) * w, pixelBytes, packedmono::GroupsPerRow(w, g) * g.slots};
  packedmono::StageRows<uint16_t>(
      h, flip, g, span, dst, [&](uint32_t row) { return packedmono::PcoRow(src, row, w); },
      [&](const uint8_t* row, uint64_t group, uint32_t groups, uint8_t* out) {
        kernel(row + group * g.bytes, out, groups, 0);
        if (!fragmentInSlot7) return;
        uint16_t* slots = reinterpret_cast<uint16_t*>(out);
        for (uint32_t k = 0; k < groups; ++k) slots[9 * k + 6] >>= 8;  // p5 >> 8 is W3 & 15
      },
      [&](const uint16_t* staged, uint8_t* out, uint32_t n) {
        look(reinterpret_cast<const uint8_t*>(staged), out, n);
      });
}

}  // namespace

bool CColorMapEngine::MonoPcoPixelPackedToBGRx(uint32_t w, uint32_t h, [[maybe_unused]] uint32_t packedBits, uint32_t d,
                                               void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, true)) return false;
  PcoIndexRows(src, w, h, true, dst, 4, flip, BgrxLook{ColorBgrx(), ColorMask()});
  return true;
}

bool CColorMapEngine::MonoPcoPixelPackedToBGR24(uint32_t w, uint32_t h, [[maybe_unused]] uint32_t packedBits,
                                                uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, true)) return false;
  PcoIndexRows(src, w, h, true, dst, 3, flip, BgrLook{ColorBgrx(), ColorMask()});
  return true;
}

bool CColorMapEngine::MonoPcoPixelPackedToMono8(uint32_t w, uint32_t h, [[maybe_unused]] uint32_t packedBits,
                                                uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, true)) return false;
  PcoIndexRows(src, w, h, true, dst, 1, flip, ByteLook{ColorTable(0), ColorMask()});
  return true;
}

bool CColorMapEngine::MonoPcoPixelPackedToMono16(uint32_t w, uint32_t h, [[maybe_unused]] uint32_t packedBits,
                                                 uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, true)) return false;
  PcoIndexRows(src, w, h, false, dst, 2, flip, FirstByteWordLook{ColorBgrx(), ColorMask()});  // table 0's low byte
  return true;
}
