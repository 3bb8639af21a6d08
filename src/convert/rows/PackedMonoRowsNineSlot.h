#pragma once
// Byte-shuffle tables of the nine-slot MonoPcoPixelPacked rows, for the
// vector variants. Each 12-byte group writes nine 16-bit slots, so eight
// groups (96 bytes) fill 72 slots: nine windows of eight slots, one 128-bit
// register each. Slot k of a group is the word x of two of the group's bytes,
// taken as (x >> 4) & shiftedMask | x & plainMask:
//
//   slot   0      1      2          3      4      5      6      7          8
//   pixel  p0     p1     p2 & 0xFF0 p2     p3     p4     p5     p6 & 0xFF0 p7
//   bytes  c0,c1  c3,c0  c5,c2      c5,c2  c4,c5  c6,c7  c9,c6  c11,c8     c10,c11
//
// A window loads the 16 bytes from its base and shuffles each slot's two
// bytes (low, high) into place. Data only: the tables hold no code.
#include <cstdint>

namespace kestrelink::rows::nineslot {

inline constexpr uint32_t kGroups = 8;   // groups a period covers
inline constexpr uint32_t kBytes = 96;   // source bytes of a period
inline constexpr uint32_t kWindows = 9;  // eight-slot windows of a period

struct Window {
  uint8_t base;             // first source byte the window loads, in the period
  uint8_t shuffle[16];      // per slot, low byte then high byte, from the base
  uint16_t shiftedMask[8];  // applied to x >> 4
  uint16_t plainMask[8];    // applied to x
};

struct Period {
  Window window[kWindows];
  uint32_t reach;  // bytes from the period's start that its loads touch
};

consteval Period MakePeriod() {
  constexpr uint8_t lo[9] = {0, 3, 5, 5, 4, 6, 9, 11, 10};
  constexpr uint8_t hi[9] = {1, 0, 2, 2, 5, 7, 6, 8, 11};
  constexpr uint16_t shifted[9] = {0xFFF, 0, 0xFF0, 0xFFF, 0, 0xFFF, 0, 0xFF0, 0};
  constexpr uint16_t plain[9] = {0, 0xFFF, 0, 0, 0xFFF, 0, 0xFFF, 0, 0xFFF};
  Period p{};
  for (uint32_t v = 0; v < kWindows; ++v) {
    uint32_t base = kBytes;
    for (uint32_t i = 0; i < 8; ++i) {
      const uint32_t slot = 8 * v + i, group = slot / 9, k = slot % 9;
      base = base < 12 * group + lo[k] ? base : 12 * group + lo[k];
      base = base < 12 * group + hi[k] ? base : 12 * group + hi[k];
    }
    Window& w = p.window[v];
    w.base = uint8_t(base);
    for (uint32_t i = 0; i < 8; ++i) {
      const uint32_t slot = 8 * v + i, group = slot / 9, k = slot % 9;
      w.shuffle[2 * i] = uint8_t(12 * group + lo[k] - base);
      w.shuffle[2 * i + 1] = uint8_t(12 * group + hi[k] - base);
      w.shiftedMask[i] = shifted[k];
      w.plainMask[i] = plain[k];
    }
    p.reach = p.reach > base + 16 ? p.reach : base + 16;
  }
  return p;
}

inline constexpr Period kPeriod = MakePeriod();

consteval bool ShufflesFitTheirWindows() {
  for (const Window& w : kPeriod.window)
    for (uint8_t s : w.shuffle)
      if (s >= 16) return false;
  return true;
}
static_assert(ShufflesFitTheirWindows(), "every slot's bytes lie in its window's 16 bytes");

}  // namespace kestrelink::rows::nineslot
