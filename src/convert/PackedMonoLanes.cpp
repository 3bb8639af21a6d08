// Frames through a lane rule. Words and bytes go straight from the row
// kernel to the frame; BGRx and BGR stage the bytes of a few hundred pixels
// and widen them with the grey rows of the mono conversions.
#include "convert/PackedMonoLanes.h"

#include "convert/rows/MonoRows.h"

namespace kestrelink::packedmono {
namespace {

using LaneKernel = void (*)(const uint8_t* src, uint8_t* dst, uint32_t pixels, const rows::LaneRule& rule);
using GreyKernel = void (*)(const uint8_t* src, uint8_t* dst, uint32_t w);

template <class T>
void Direct(const PackedRows& src, uint32_t height, const rows::LaneRule& rule, LaneKernel kernel, void* dst,
            bool flip) {
  const Grouping& g = src.grouping();
  DecodeRows<T>(
      src.width, height, flip, g, dst, [&](uint32_t row) { return src.Row(row); },
      [&](const uint8_t* row, uint64_t group, uint32_t groups, uint8_t* out) {
        kernel(row + group * g.bytes, out, groups * g.pixels, rule);
      });
}

// Bytes by the rule, widened by `grey` to `pixelBytes` a pixel.
void Widened(const PackedRows& src, uint32_t height, const rows::LaneRule& rule, GreyKernel grey, uint32_t pixelBytes,
             void* dst, bool flip) {
  const LaneKernel kernel = rows::PackedMonoRows().lanes_to_bytes;
  const Grouping& g = src.grouping();
  const RowSpan span{uint64_t(pixelBytes) * src.width, pixelBytes, GroupsPerRow(src.width, g) * g.slots};
  StageRows<uint8_t>(
      height, flip, g, span, dst, [&](uint32_t row) { return src.Row(row); },
      [&](const uint8_t* row, uint64_t group, uint32_t groups, uint8_t* out) {
        kernel(row + group * g.bytes, out, groups * g.pixels, rule);
      },
      [&](const uint8_t* staged, uint8_t* out, uint32_t n) { grey(staged, out, n); });
}

}  // namespace

void LanesToWords(const PackedRows& src, uint32_t height, const rows::LaneRule& rule, void* dst, bool flip) {
  Direct<uint16_t>(src, height, rule, rows::PackedMonoRows().lanes_to_words, dst, flip);
}

void LanesToMono8(const PackedRows& src, uint32_t height, const rows::LaneRule& rule, void* dst, bool flip) {
  Direct<uint8_t>(src, height, rule, rows::PackedMonoRows().lanes_to_bytes, dst, flip);
}

void LanesToBgrx(const PackedRows& src, uint32_t height, const rows::LaneRule& rule, void* dst, bool flip) {
  Widened(src, height, rule, rows::MonoRows().mono8_to_bgrx, 4, dst, flip);
}

void LanesToBgr(const PackedRows& src, uint32_t height, const rows::LaneRule& rule, void* dst, bool flip) {
  Widened(src, height, rule, rows::MonoRows().mono8_to_bgr, 3, dst, flip);
}

}  // namespace kestrelink::packedmono
