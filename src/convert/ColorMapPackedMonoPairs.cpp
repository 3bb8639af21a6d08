// Colour-map path of the Mono16PixelPacked and Mono16PixelPacked8448
// sources: each pixel, read at full depth by its layout's rule, is the table
// index. Rows start at byte (row * width * packedBits) >> 3 on every target
// here, Mono8 included. A depth other than 10 or 12 leaves the pair loop idle
// once the table stands. Two 8448 quirks are settled behaviour: to Mono16 the
// depth test is inverted (any nonzero d reads 12-bit pixels, into a table d
// bits deep), and to BGR24 destination rows lie width * 4 bytes apart.
#include "convert/ColorMapEngine.h"
#include "convert/ColorMapPackedMonoLooks.h"
#include "convert/PackedMonoLanes.h"

namespace packedmono = kestrelink::packedmono;
namespace rows = kestrelink::rows;
using namespace kestrelink::colormap;
using kestrelink::packedmono::ForDepth;
using kestrelink::packedmono::Pairs;
using kestrelink::rows::LaneRule;

namespace {

// Every row's indices by the rule, staged a few hundred at a time and
// written by look(indices, out, n) at `pixelBytes` a pixel, rows
// `pitchBytes` apart.
template <class Look>
void PairIndexRows(const packedmono::PackedRows& src, uint32_t h, const LaneRule& rule, void* dst, uint64_t pitchBytes,
                   uint32_t pixelBytes, bool flip, Look&& look) {
  const auto kernel = rows::PackedMonoRows().lanes_to_words;
  const packedmono::Grouping& g = packedmono::kPairs;
  const packedmono::RowSpan span{pitchBytes, pixelBytes, packedmono::GroupsPerRow(src.width, g) * g.slots};
  packedmono::StageRows<uint16_t>(
      h, flip, g, span, dst, [&](uint32_t row) { return src.Row(row); },
      [&](const uint8_t* row, uint64_t group, uint32_t groups, uint8_t* out) {
        kernel(row + group * g.bytes, out, groups * g.pixels, rule);
      },
      [&](const uint16_t* staged, uint8_t* out, uint32_t n) {
        look(reinterpret_cast<const uint8_t*>(staged), out, n);
      });
}

}  // namespace

bool CColorMapEngine::Mono16PixelPackedToBGRx(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                              void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, true)) return false;
  if (const LaneRule* rule = ForDepth(d, rows::kPacked10ToMono16, rows::kPacked12ToMono16))
    PairIndexRows(Pairs(src, w, packedBits), h, *rule, dst, 4 * uint64_t(w), 4, flip,
                  BgrxLook{ColorBgrx(), ColorMask()});
  return true;
}

bool CColorMapEngine::Mono16PixelPackedToBGR24(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                               void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, true)) return false;
  if (const LaneRule* rule = ForDepth(d, rows::kPacked10ToMono16, rows::kPacked12ToMono16))
    PairIndexRows(Pairs(src, w, packedBits), h, *rule, dst, 3 * uint64_t(w), 3, flip,
                  BgrLook{ColorBgrx(), ColorMask()});
  return true;
}

bool CColorMapEngine::Mono16PixelPackedToMono8(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                               void* dst, bool flip) {
  if (!EnsureMonoTable(int32_t(d), 8)) return false;
  if (const LaneRule* rule = ForDepth(d, rows::kPacked10ToMono16, rows::kPacked12ToMono16))
    PairIndexRows(Pairs(src, w, packedBits), h, *rule, dst, w, 1, flip, ByteLook{MonoTable(), MonoMask()});
  return true;
}

bool CColorMapEngine::Mono16PixelPackedToMono16(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                                void* dst, bool flip) {
  if (!EnsureMonoTable(int32_t(d), int32_t(d))) return false;
  if (const LaneRule* rule = ForDepth(d, rows::kPacked10ToMono16, rows::kPacked12ToMono16))
    PairIndexRows(Pairs(src, w, packedBits), h, *rule, dst, 2 * uint64_t(w), 2, flip,
                  WordLook{MonoTable(), MonoMask()});
  return true;
}

bool CColorMapEngine::Mono16PixelPacked8448ToBGRx(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                                  void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, true)) return false;
  if (const LaneRule* rule = ForDepth(d, rows::k8448To10, rows::k8448To12))
    PairIndexRows(Pairs(src, w, packedBits), h, *rule, dst, 4 * uint64_t(w), 4, flip,
                  BgrxLook{ColorBgrx(), ColorMask()});
  return true;
}

bool CColorMapEngine::Mono16PixelPacked8448ToBGR24(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                                   void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, true)) return false;
  if (const LaneRule* rule = ForDepth(d, rows::k8448To10, rows::k8448To12))
    // Rows lie width * 4 bytes apart though a pixel takes 3: callers size the
    // frame height * width * 4.
    PairIndexRows(Pairs(src, w, packedBits), h, *rule, dst, 4 * uint64_t(w), 3, flip,
                  BgrLook{ColorBgrx(), ColorMask()});
  return true;
}

bool CColorMapEngine::Mono16PixelPacked8448ToMono8(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                                   void* dst, bool flip) {
  if (!EnsureMonoTable(12, 8)) return false;  // 12 bits deep whatever d says
  if (const LaneRule* rule = ForDepth(d, rows::k8448To10, rows::k8448To12))
    PairIndexRows(Pairs(src, w, packedBits), h, *rule, dst, w, 1, flip, ByteLook{MonoTable(), MonoMask()});
  return true;
}

bool CColorMapEngine::Mono16PixelPacked8448ToMono16(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src,
                                                    void* dst, bool flip) {
  if (!EnsureMonoTable(int32_t(d), int32_t(d))) return false;
  const LaneRule& rule = d != 0 ? rows::k8448To12 : rows::k8448To10;  // the inverted test
  // 12-bit pixels in a 10-bit table wrap inside it.
  PairIndexRows(Pairs(src, w, packedBits), h, rule, dst, 2 * uint64_t(w), 2, flip, WordLook{MonoTable(), MonoMask()});
  return true;
}
