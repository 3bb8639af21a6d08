#pragma once
// Frame loops of the packed mono layouts. Their rows convert a group of
// pixels at a time (a pair of 3 bytes, or the eight pixels of a 12-byte PCO
// group), so a row writes whole groups of output slots from its start: past
// the row's end when the width is not a multiple of the group, and one slot
// in nine more than it has pixels on the 16-bit PCO targets. Where a row
// runs into the rows after it, the frame ends as it would with every row
// written whole, one after another, in order: the later row wins. Threads
// get contiguous blocks of rows; the last row of a block writes only the
// slots that no later row overwrites, so the result does not depend on the
// team.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "frame/RowLoop.h"

namespace kestrelink::packedmono {

// How a layout's pixels group: a group of `bytes` source bytes decodes to
// `pixels` values and writes `slots` output slots.
struct Grouping {
  uint32_t pixels, bytes, slots;
};
inline constexpr Grouping kPairs{2, 3, 2};
inline constexpr Grouping kPcoEight{8, 12, 8};  // MonoPcoPixelPacked to 8-bit targets
inline constexpr Grouping kPcoNine{8, 12, 9};   // MonoPcoPixelPacked to 16-bit targets and colour maps

// (width - 1) / n + 1 groups, and none for a width of 0.
inline uint64_t GroupsPerRow(uint32_t width, const Grouping& g) { return (uint64_t(width) + g.pixels - 1) / g.pixels; }

// Row r of a pair-packed frame starts at byte (r * width * packedBits) >> 3.
inline const uint8_t* PairRow(const void* frame, uint32_t row, uint32_t width, uint32_t packedBits) {
  return static_cast<const uint8_t*>(frame) + ((uint64_t(row) * width * packedBits) >> 3);
}

// Row r of a MonoPcoPixelPacked frame starts at byte ((r * width * 3) >> 3) * 4:
// 1.5 bytes a pixel, rounded down to a multiple of 4.
inline const uint8_t* PcoRow(const void* frame, uint32_t row, uint32_t width) {
  return static_cast<const uint8_t*>(frame) + ((uint64_t(row) * width * 3) >> 3) * 4;
}

// Right shift that right-justifies a d-bit Mono16MSB sample, for depths 1
// to 16; other depths shift everything out.
inline uint32_t JustifyShift(uint32_t d) { return d >= 1 && d <= 16 ? 16 - d : 16; }

// The same for a Mono16MSBSwap word once its bytes are exchanged, for depths
// 8 to 16, where it is ((s & 255) << (d - 8)) | (s >> (24 - d)) of the word
// as read. Other depths give 0.
inline uint32_t SwappedJustifyShift(uint32_t d) { return d >= 8 && d <= 16 ? 16 - d : 16; }

// Where one row's slots go: rows start `pitchBytes` apart, a slot takes
// `slotBytes`, and a whole row writes `slots` of them.
struct RowSpan {
  uint64_t pitchBytes;
  uint32_t slotBytes;
  uint64_t slots;
};

// Calls write(inRow, outRow, firstSlot, endSlot) so that the frame ends as
// with every row's slots [0, span.slots) written in order of inRow, the flip
// giving outRow = height - 1 - inRow.
template <class Write>
void ForEachGroupedRow(uint32_t height, bool flip, const RowSpan& span, Write&& write) {
  const uint64_t reach = span.slots * span.slotBytes;
  const uint64_t pitch = span.pitchBytes / span.slotBytes;
  if (reach <= span.pitchBytes) {  // rows stay apart
    ForEachRow(height, flip, [&](uint32_t in, uint32_t out) { write(in, out, uint64_t(0), span.slots); });
    return;
  }
  if (span.pitchBytes % span.slotBytes != 0 || span.slots > 2 * pitch) {
    // A row reaches past the next one, or splits a slot: rows in order on
    // this thread. Only narrow or odd frames come here.
    for (uint32_t in = 0; in < height; ++in) write(in, flip ? height - 1 - in : in, uint64_t(0), span.slots);
    return;
  }
  // A row reaches into the next one only. Unflipped, the last row of a block
  // leaves the next row's start to it; flipped, the row written after it in
  // order lands in front of it and covers its first slots.
  ForEachBand(height, [&](uint32_t first, uint32_t count) {
    for (uint32_t in = first; in < first + count; ++in) {
      const uint32_t out = flip ? height - 1 - in : in;
      if (in + 1 == first + count && in + 1 < height) {
        flip ? write(in, out, span.slots - pitch, span.slots) : write(in, out, uint64_t(0), pitch);
      } else {
        write(in, out, uint64_t(0), span.slots);
      }
    }
    return 0;
  });
}

// Slots [first, end) of a row through a staging buffer: decode(group, groups,
// staged) stages `groups` groups from the row's group `group`, emit(slot,
// count, staged) writes `count` staged slots from the row's slot `slot`.
inline constexpr uint32_t kStageSlots = 576;  // whole groups of 2, 8 and 9 slots

template <class T, class Decode, class Emit>
void StageSlots(uint64_t first, uint64_t end, uint32_t slotsPerGroup, Decode&& decode, Emit&& emit) {
  T staged[kStageSlots];
  const uint64_t chunk = kStageSlots / slotsPerGroup;
  for (uint64_t group = first / slotsPerGroup; group * slotsPerGroup < end; group += chunk) {
    const uint64_t groups = std::min(chunk, (end + slotsPerGroup - 1) / slotsPerGroup - group);
    decode(group, uint32_t(groups), staged);
    const uint64_t from = std::max(first, group * slotsPerGroup);
    const uint64_t to = std::min(end, (group + groups) * slotsPerGroup);
    emit(from, uint32_t(to - from), staged + (from - group * slotsPerGroup));
  }
}

// A frame whose rows decode straight into the destination: decode(row,
// group, groups, out) writes `groups` groups' slots of the source row `row`
// from its group `group` to `out`. Rows start `sizeof(T) * width` bytes apart
// in the destination; rows that write only part of their slots stage them.
template <class T, class RowStart, class Decode>
void DecodeRows(uint32_t width, uint32_t height, bool flip, const Grouping& g, void* dst, RowStart&& rowStart,
                Decode&& decode) {
  const RowSpan span{sizeof(T) * uint64_t(width), sizeof(T), GroupsPerRow(width, g) * g.slots};
  ForEachGroupedRow(height, flip, span, [&](uint32_t in, uint32_t out, uint64_t first, uint64_t end) {
    const uint8_t* row = rowStart(in);
    uint8_t* to = RowAt(dst, span.pitchBytes, out);
    if (first == 0 && end == span.slots) {
      decode(row, uint64_t(0), uint32_t(span.slots / g.slots), to);
      return;
    }
    StageSlots<T>(
        first, end, g.slots,
        [&](uint64_t group, uint32_t groups, T* staged) {
          decode(row, group, groups, reinterpret_cast<uint8_t*>(staged));
        },
        [&](uint64_t slot, uint32_t n, const T* staged) { std::memcpy(to + sizeof(T) * slot, staged, sizeof(T) * n); });
  });
}

// A frame whose rows are staged as values of T, a few hundred at a time, and
// written by emit(staged, out, n) to `n` slots at `out`: decode as above.
template <class T, class RowStart, class Decode, class Emit>
void StageRows(uint32_t height, bool flip, const Grouping& g, const RowSpan& span, void* dst, RowStart&& rowStart,
               Decode&& decode, Emit&& emit) {
  ForEachGroupedRow(height, flip, span, [&](uint32_t in, uint32_t out, uint64_t first, uint64_t end) {
    const uint8_t* row = rowStart(in);
    uint8_t* to = RowAt(dst, span.pitchBytes, out);
    StageSlots<T>(
        first, end, g.slots,
        [&](uint64_t group, uint32_t groups, T* staged) {
          decode(row, group, groups, reinterpret_cast<uint8_t*>(staged));
        },
        [&](uint64_t slot, uint32_t n, const T* staged) { emit(staged, to + span.slotBytes * slot, n); });
  });
}

}  // namespace kestrelink::packedmono
