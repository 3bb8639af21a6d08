#include "convert/PackedMonoNineSlots.h"

#include "convert/PackedMonoFrame.h"
#include "convert/rows/PackedMonoRows.h"

namespace kestrelink::packedmono {

void PcoToNineSlots(const void* src, uint32_t width, uint32_t height, uint32_t shift, void* dst, bool flip) {
  const auto kernel = rows::PackedMonoRows().pco_nine_slots;
  DecodeRows<uint16_t>(
      width, height, flip, kPcoNine, dst, [&](uint32_t row) { return PcoRow(src, row, width); },
      [&](const uint8_t* row, uint64_t group, uint32_t groups, uint8_t* out) {
        kernel(row + group * kPcoNine.bytes, out, groups, shift);
      });
}

}  // namespace kestrelink::packedmono
