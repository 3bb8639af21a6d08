#pragma once
// Byte shuffles that split three interleaved channels into planes and join
// them back, lane by lane: a group of sixteen three-byte pixels is 48 bytes
// in three 16-byte parts, byte k being channel k % 3 of pixel k / 3. The
// tables are data only, made at compile time, shared by the vector variants.
#include <array>
#include <cstdint>

namespace kestrelink::rows::copymasks {

using LaneMask = std::array<int8_t, 16>;

// Gathers channel `ch` from part `part` to its pixel's place; the other bytes 0.
consteval LaneMask SplitMask(int ch, int part) {
  LaneMask m{};
  for (int p = 0; p < 16; ++p) {
    const int k = 3 * p + ch;
    m[p] = k / 16 == part ? int8_t(k % 16) : int8_t(-128);
  }
  return m;
}

// The reverse: puts pixel q's channel `ch` where part `part` wants it.
consteval LaneMask MergeMask(int ch, int part) {
  LaneMask m{};
  for (int q = 0; q < 16; ++q) {
    const int k = 16 * part + q;
    m[q] = k % 3 == ch ? int8_t(k / 3) : int8_t(-128);
  }
  return m;
}

// Indexed [channel][part].
inline constexpr std::array<std::array<LaneMask, 3>, 3> kSplit = {{
    {SplitMask(0, 0), SplitMask(0, 1), SplitMask(0, 2)},
    {SplitMask(1, 0), SplitMask(1, 1), SplitMask(1, 2)},
    {SplitMask(2, 0), SplitMask(2, 1), SplitMask(2, 2)},
}};
inline constexpr std::array<std::array<LaneMask, 3>, 3> kMerge = {{
    {MergeMask(0, 0), MergeMask(0, 1), MergeMask(0, 2)},
    {MergeMask(1, 0), MergeMask(1, 1), MergeMask(1, 2)},
    {MergeMask(2, 0), MergeMask(2, 1), MergeMask(2, 2)},
}};

}  // namespace kestrelink::rows::copymasks
