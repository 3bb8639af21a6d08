#pragma once
// The byte-shuffle plan of the vector decimating rows: a lane of 16 output
// bytes holds the whole pixels that fit (16 / Bytes of them); its source bytes
// span at most four 16-byte loads, each shuffled into place and the results
// or-ed. Shared by the variants, which differ in lanes a step.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace kestrelink::geometry {

template <size_t Bytes, uint32_t Step>
struct Plan {
  static constexpr uint32_t kPixels = 16 / Bytes;                          // pixels a lane
  static constexpr uint32_t kSpan = ((kPixels - 1) * Step + 1) * Bytes;    // source bytes a lane needs
  static constexpr uint32_t kLoads = (kSpan + 15) / 16;
  static constexpr bool kWhole = kPixels * Bytes == 16;

  // Shuffle control of load l: output byte j takes source byte k when k lies
  // in that load; zero (0x80) elsewhere.
  static constexpr std::array<std::array<uint8_t, 16>, kLoads> Masks() {
    std::array<std::array<uint8_t, 16>, kLoads> m{};
    for (uint32_t l = 0; l < kLoads; ++l)
      for (uint32_t j = 0; j < 16; ++j) {
        const uint32_t k = (j / Bytes) * Step * Bytes + j % Bytes;
        m[l][j] = j < kPixels * Bytes && k / 16 == l ? uint8_t(k % 16) : uint8_t(0x80);
      }
    return m;
  }
  static constexpr auto kMasks = Masks();
};

// Whether a step of `lanes` lanes from output pixel i stays inside a row of
// `count` outputs, reading no source byte past pixel (count - 1) * Step.
template <size_t Bytes, uint32_t Step>
constexpr bool LanesFit(uint32_t i, uint32_t count, uint32_t lanes) {
  using P = Plan<Bytes, Step>;
  const size_t srcEnd = (size_t(count - 1) * Step + 1) * Bytes, dstEnd = size_t(count) * Bytes;
  const size_t last = size_t(i) + size_t(lanes - 1) * P::kPixels;  // first pixel of the last lane
  return last * Bytes + 16 <= dstEnd && last * Step * Bytes + 16 * P::kLoads <= srcEnd;
}

// The last output pixel from which a step of `lanes` lanes fits (LanesFit),
// or -1 where none does.
template <size_t Bytes, uint32_t Step>
constexpr int64_t LastFit(uint32_t count, uint32_t lanes) {
  using P = Plan<Bytes, Step>;
  if (count == 0) return -1;
  const int64_t dstEnd = int64_t(count) * Bytes, srcEnd = (int64_t(count - 1) * Step + 1) * int64_t(Bytes);
  if (dstEnd < 16 || srcEnd < 16 * int64_t(P::kLoads)) return -1;
  const int64_t last = std::min<int64_t>((dstEnd - 16) / int64_t(Bytes), (srcEnd - 16 * int64_t(P::kLoads)) / int64_t(Step * Bytes));
  return last - int64_t(lanes - 1) * P::kPixels;
}

// Moves the leading pixels of a row by `step(i)`, steps of `pixels` outputs,
// then one step that ends as late as fits (`last`, from LastFit), writing some
// outputs again with the same values; answers the pixels done.
template <class Step, class Fits>
uint32_t StepRow(uint32_t pixels, int64_t last, Fits&& fits, Step&& step) {
  uint32_t i = 0;
  for (; fits(i); i += pixels) step(i);
  if (last > 0 && last + pixels > i) {
    step(uint32_t(last));
    i = uint32_t(last) + pixels;
  }
  return i;
}

template <size_t Bytes, class Table, template <size_t, uint32_t> class Row>
constexpr void FillSteps(Table& k) {
  k.rows[Bytes][2] = Row<Bytes, 2>::Run;
  k.rows[Bytes][3] = Row<Bytes, 3>::Run;
  k.rows[Bytes][4] = Row<Bytes, 4>::Run;
}

// A vector unit's table: the shuffle rows for every pixel size and steps 2
// to 4, with its own packing rows for step 2 of 1- and 2-byte pixels.
template <class Table, template <size_t, uint32_t> class Row, class HalveRow>
constexpr Table ShuffleRowTable(HalveRow halveBytes, HalveRow halveWords) {
  Table k = {};
  FillSteps<1, Table, Row>(k);
  FillSteps<2, Table, Row>(k);
  FillSteps<3, Table, Row>(k);
  FillSteps<4, Table, Row>(k);
  FillSteps<6, Table, Row>(k);
  FillSteps<8, Table, Row>(k);
  k.rows[1][2] = halveBytes;
  k.rows[2][2] = halveWords;
  return k;
}

}  // namespace kestrelink::geometry
