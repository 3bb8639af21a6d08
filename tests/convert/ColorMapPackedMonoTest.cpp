// Colour-map path of the packed and swapped mono sources. The tables come
// from a LUT file the test writes, so each expected pixel is read straight
// off the file at the index the layout's own rule gives: the settled quirks
// (the unswapped Mono16MSBSwap to Mono16, the inverted depth test of the
// 8448 Mono16 target, its 12-bit Mono8 table and 4-byte BGR24 row spacing,
// the nine PCO indices with their four-bit seventh) included.
#include <gtest/gtest.h>
#include <unistd.h>
#include <kestrelink/CIppImageConverter.h>

#include <functional>
#include <random>
#include <string>

#include "PackedMonoTestFrames.h"
#include "support/RandomLut.h"

namespace {

using packedtest::Pair;

using Lut = testsupport::RandomLut;
using testsupport::MakeLut;

enum class Source { Msb, Swap, Pairs, Pco };
enum class Out { Bgrx, Bgr, Mono8, Mono16 };

using Call =
    std::function<bool(CIppImageConverter&, uint32_t w, uint32_t h, uint32_t bits, uint32_t d, void*, void*, bool)>;
// The indices one source row gives, slot by slot; empty for an idle depth.
using Indices = std::function<std::vector<uint32_t>(const uint8_t* row, uint32_t w, uint32_t d)>;

struct MapCase {
  const char* name;
  Source source;
  Out out;
  bool rowsAt12Bits = false;        // the source's rows ignore packedBits
  uint32_t fixedTableBits = 0;      // the table's depth when it is not d
  uint32_t pitchBytesPerPixel = 0;  // destination rows, when not the pixel's size
  Call call;
  Indices indices;
};

int PixelBytes(Out out) { return out == Out::Bgrx ? 4 : out == Out::Bgr ? 3 : out == Out::Mono8 ? 1 : 2; }

std::vector<uint32_t> Words(const uint8_t* row, uint32_t w, const std::function<uint32_t(uint32_t)>& index) {
  std::vector<uint32_t> out;
  for (uint32_t x = 0; x < w; ++x) out.push_back(index(packedtest::U16(row[2 * x], row[2 * x + 1])));
  return out;
}

std::vector<uint32_t> Pairs(const uint8_t* row, uint32_t w, const std::function<Pair(const uint8_t*)>& pair) {
  std::vector<uint32_t> out;
  for (uint32_t k = 0; k < (w + 1) / 2; ++k) {
    const Pair p = pair(row + 3 * k);
    out.push_back(p.p0);
    out.push_back(p.p1);
  }
  return out;
}

// Nine indices a group; the 8-bit targets take W3 & 15 in the seventh place.
std::vector<uint32_t> PcoNine(const uint8_t* row, uint32_t w, bool fragment) {
  std::vector<uint32_t> out;
  for (uint32_t g = 0; g < (w + 7) / 8; ++g) {
    const uint8_t* c = row + 12 * g;
    const auto p = packedtest::PcoPixels(c);
    const uint32_t w3 = packedtest::U16(c[6], c[7]);
    const uint32_t seventh = fragment ? (w3 & 15) : p[5];
    for (uint32_t v : {p[0], p[1], p[2] & 0xFF0, p[2], p[3], p[4], seventh, p[6] & 0xFF0, p[7]}) out.push_back(v);
  }
  return out;
}

uint32_t SwappedSample(uint32_t s, uint32_t d) { return (((s & 255) << (d - 8)) | (s >> (24 - d))) & 0xFFFF; }

Pair PackedByDepth(const uint8_t* b, uint32_t d) { return d == 12 ? packedtest::Packed12(b) : packedtest::Packed10(b); }
Pair E8448ByDepth(const uint8_t* b, uint32_t d) { return d == 12 ? packedtest::E8448_12(b) : packedtest::E8448_10(b); }
bool KnownDepth(uint32_t d) { return d == 10 || d == 12; }

#define WORDS_CALL(method)                                                                            \
  [](CIppImageConverter& c, uint32_t w, uint32_t h, uint32_t, uint32_t d, void* s, void* o, bool f) { \
    return c.method(w, h, d, s, o, f);                                                                \
  }
#define PACKED_CALL(method)                                                                                \
  [](CIppImageConverter& c, uint32_t w, uint32_t h, uint32_t bits, uint32_t d, void* s, void* o, bool f) { \
    return c.method(w, h, bits, d, s, o, f);                                                               \
  }

const std::vector<MapCase>& Cases() {
  const Indices msb = [](const uint8_t* r, uint32_t w, uint32_t d) {
    return Words(r, w, [d](uint32_t s) { return s >> (16 - d); });
  };
  const Indices swapped = [](const uint8_t* r, uint32_t w, uint32_t d) {
    return Words(r, w, [d](uint32_t s) { return SwappedSample(s, d); });
  };
  const Indices packed = [](const uint8_t* r, uint32_t w, uint32_t d) {
    return KnownDepth(d) ? Pairs(r, w, [d](const uint8_t* b) { return PackedByDepth(b, d); }) : std::vector<uint32_t>{};
  };
  const Indices e8448 = [](const uint8_t* r, uint32_t w, uint32_t d) {
    return KnownDepth(d) ? Pairs(r, w, [d](const uint8_t* b) { return E8448ByDepth(b, d); }) : std::vector<uint32_t>{};
  };
  // Any nonzero depth reads 12-bit pixels.
  const Indices e8448Inverted = [](const uint8_t* r, uint32_t w, uint32_t d) {
    return Pairs(r, w, [d](const uint8_t* b) { return d != 0 ? packedtest::E8448_12(b) : packedtest::E8448_10(b); });
  };
  const Indices pco8 = [](const uint8_t* r, uint32_t w, uint32_t) { return PcoNine(r, w, true); };
  const Indices pco16 = [](const uint8_t* r, uint32_t w, uint32_t) { return PcoNine(r, w, false); };
  static const std::vector<MapCase> cases = {
      {"Mono16MSBToBGRx", Source::Msb, Out::Bgrx, false, 0, 0, WORDS_CALL(Mono16MSBToBGRx), msb},
      {"Mono16MSBToBGR24", Source::Msb, Out::Bgr, false, 0, 0, WORDS_CALL(Mono16MSBToBGR24), msb},
      {"Mono16MSBToMono8", Source::Msb, Out::Mono8, false, 0, 0, WORDS_CALL(Mono16MSBToMono8), msb},
      {"Mono16MSBToMono16", Source::Msb, Out::Mono16, false, 0, 0, WORDS_CALL(Mono16MSBToMono16), msb},
      {"Mono16MSBSwapToBGRx", Source::Swap, Out::Bgrx, false, 0, 0, WORDS_CALL(Mono16MSBSwapToBGRx), swapped},
      {"Mono16MSBSwapToBGR24", Source::Swap, Out::Bgr, false, 0, 0, WORDS_CALL(Mono16MSBSwapToBGR24), swapped},
      {"Mono16MSBSwapToMono8", Source::Swap, Out::Mono8, false, 0, 0, WORDS_CALL(Mono16MSBSwapToMono8), swapped},
      // Through the Mono16MSB loop: the bytes are not exchanged.
      {"Mono16MSBSwapToMono16", Source::Swap, Out::Mono16, false, 0, 0, WORDS_CALL(Mono16MSBSwapToMono16), msb},
      {"Mono16PixelPackedToBGRx", Source::Pairs, Out::Bgrx, false, 0, 0, PACKED_CALL(Mono16PixelPackedToBGRx), packed},
      {"Mono16PixelPackedToBGR24", Source::Pairs, Out::Bgr, false, 0, 0, PACKED_CALL(Mono16PixelPackedToBGR24), packed},
      {"Mono16PixelPackedToMono8", Source::Pairs, Out::Mono8, false, 0, 0, PACKED_CALL(Mono16PixelPackedToMono8),
       packed},
      {"Mono16PixelPackedToMono16", Source::Pairs, Out::Mono16, false, 0, 0, PACKED_CALL(Mono16PixelPackedToMono16),
       packed},
      {"Mono16PixelPacked8448ToBGRx", Source::Pairs, Out::Bgrx, false, 0, 0, PACKED_CALL(Mono16PixelPacked8448ToBGRx),
       e8448},
      {"Mono16PixelPacked8448ToBGR24", Source::Pairs, Out::Bgr, false, 0, 4, PACKED_CALL(Mono16PixelPacked8448ToBGR24),
       e8448},
      {"Mono16PixelPacked8448ToMono8", Source::Pairs, Out::Mono8, false, 12, 0,
       PACKED_CALL(Mono16PixelPacked8448ToMono8), e8448},
      {"Mono16PixelPacked8448ToMono16", Source::Pairs, Out::Mono16, false, 0, 0,
       PACKED_CALL(Mono16PixelPacked8448ToMono16), e8448Inverted},
      {"MonoPcoPixelPackedToBGRx", Source::Pco, Out::Bgrx, false, 0, 0, PACKED_CALL(MonoPcoPixelPackedToBGRx), pco8},
      {"MonoPcoPixelPackedToBGR24", Source::Pco, Out::Bgr, false, 0, 0, PACKED_CALL(MonoPcoPixelPackedToBGR24), pco8},
      {"MonoPcoPixelPackedToMono8", Source::Pco, Out::Mono8, false, 0, 0, PACKED_CALL(MonoPcoPixelPackedToMono8), pco8},
      {"MonoPcoPixelPackedToMono16", Source::Pco, Out::Mono16, false, 0, 0, PACKED_CALL(MonoPcoPixelPackedToMono16),
       pco16},
  };
  return cases;
}

// Mono8 and Mono16 read the mono table, except from MonoPcoPixelPacked,
// which reads colour table 0 built for 8 bits out: its Mono16 carries the
// entry's low byte.
std::vector<uint8_t> Output(const MapCase& c, const Lut& lut, uint32_t i) {
  const uint16_t b = lut.t[0][i], g = lut.t[1][i], r = lut.t[2][i];
  switch (c.out) {
    case Out::Bgrx:
      return {uint8_t(b), uint8_t(g), uint8_t(r), 0};
    case Out::Bgr:
      return {uint8_t(b), uint8_t(g), uint8_t(r)};
    case Out::Mono8:
      return {uint8_t(b)};
    case Out::Mono16:
      return c.source == Source::Pco ? std::vector<uint8_t>{uint8_t(b), 0}
                                     : std::vector<uint8_t>{uint8_t(b), uint8_t(b >> 8)};
  }
  return {};
}

std::vector<uint8_t> MakeSource(const MapCase& c, uint32_t w, uint32_t h, uint32_t rowBits, uint32_t seed) {
  switch (c.source) {
    case Source::Msb:
    case Source::Swap:
      return testsupport::RandomBytes(2 * size_t(w) * h, seed);
    case Source::Pairs:
      return packedtest::PairSource(w, h, rowBits, seed);
    case Source::Pco:
      return packedtest::PcoSource(w, h, seed);
  }
  return {};
}

const uint8_t* RowOf(const MapCase& c, const std::vector<uint8_t>& src, uint32_t r, uint32_t w, uint32_t rowBits) {
  switch (c.source) {
    case Source::Msb:
    case Source::Swap:
      return &src[2 * size_t(w) * r];
    case Source::Pairs:
      return &src[packedtest::PairRowStart(r, w, rowBits)];
    case Source::Pco:
      return &src[packedtest::PcoRowStart(r, w)];
  }
  return nullptr;
}

// A team size, when given, is set once the converter is made.
void Check(const MapCase& c, uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, bool flip, int team = 0) {
  packedtest::ScopedTeam keep;
  const uint32_t tableBits = c.fixedTableBits ? c.fixedTableBits : d;
  Lut lut;
  // Named by process too: test programs of other builds may run beside this one.
  testsupport::TempFile file("packed-" + std::to_string(getpid()) + "-" + c.name + ".txt",
                             MakeLut(tableBits, tableBits + w, lut));
  CIppImageConverter conv;
  if (team) kestrelink::platform::SetTeamSize(team);
  conv.SetImageColorMap(true);
  ASSERT_TRUE(conv.LoadLUTFrom(file.path()));
  const uint32_t rowBits = c.rowsAt12Bits ? 12 : packedBits;
  const auto src = MakeSource(c, w, h, rowBits, w * 5 + h + d);
  const size_t bytes = PixelBytes(c.out);
  const size_t pitch = size_t(w) * (c.pitchBytesPerPixel ? c.pitchBytesPerPixel : bytes);
  const size_t size = pitch * h + 9 * ((size_t(w) + 7) / 8) * bytes + 32;
  std::vector<uint8_t> dst(size, 0xEE);
  ASSERT_TRUE(c.call(conv, w, h, packedBits, d, const_cast<uint8_t*>(src.data()), dst.data(), flip)) << c.name;
  const uint32_t mask = (1u << tableBits) - 1;  // an index past the table wraps inside it
  const auto want = packedtest::RowsWrittenInOrder(size, 0xEE, h, flip, pitch, [&](uint32_t r) {
    std::vector<uint8_t> row;
    for (uint32_t i : c.indices(RowOf(c, src, r, w, rowBits), w, d)) {
      const auto px = Output(c, lut, i & mask);
      row.insert(row.end(), px.begin(), px.end());
    }
    return row;
  });
  for (size_t i = 0; i < size; ++i)
    ASSERT_EQ(dst[i], want[i]) << c.name << " w=" << w << " h=" << h << " bits=" << packedBits << " d=" << d
                               << " flip=" << flip << " at byte " << i;
}

TEST(ColorMapPackedMono, EveryMethodReadsTheTablesAtItsLayoutsIndex) {
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    SCOPED_TRACE(kestrelink::VariantName(variant));
    for (const auto& c : Cases())
      for (uint32_t d : {10u, 12u})
        for (uint32_t w : {8u, 17u, 64u, 136u})
          for (bool flip : {false, true}) Check(c, w, 3, 12, d, flip);
  }
}

TEST(ColorMapPackedMono, OddWidthsAndNineSlotRowsOverlapLikeRowsInOrder) {
  for (int team : {1, 3})
    for (const auto& c : Cases())
      for (uint32_t w : {1u, 3u, 5u, 9u, 13u})
        for (uint32_t h : {2u, 5u, 9u})
          for (bool flip : {false, true}) Check(c, w, h, 12, 12, flip, team);
}

TEST(ColorMapPackedMono, PairRowsFollowPackedBitsOnEveryTarget) {
  // Mono8 included: on this path it honours packedBits.
  for (const auto& c : Cases())
    if (c.source == Source::Pairs)
      for (uint32_t bits : {12u, 14u, 16u})
        for (bool flip : {false, true}) Check(c, 16, 4, bits, 12, flip);
}

TEST(ColorMapPackedMono, OtherDepths) {
  // Depth 14: the table stands, the pair loop runs idle (nothing written)
  // and the inverted 8448 Mono16 test reads 12-bit pixels; the other
  // layouts go on at 14 bits.
  for (const auto& c : Cases()) {
    if (c.fixedTableBits) continue;
    Check(c, 16, 3, 12, 14, false);
  }
}

TEST(ColorMapPackedMono, PseudoColourReachesBGR24ButNotMono16MSBToBGRx) {
  // Mono16MSB to BGRx builds its tables without the pseudo-colour map; to
  // BGR24 with it. The heat map is not grey: entry 3000 of 4096 has full red.
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  conv.SetMonoPseudoColorMode(2);
  const uint16_t src[1] = {uint16_t(3000 << 4)};
  uint8_t bgrx[4], bgr[3];
  ASSERT_TRUE(conv.Mono16MSBToBGRx(1, 1, 12, const_cast<uint16_t*>(src), bgrx, false));
  EXPECT_EQ(bgrx[0], 3000 >> 4);
  EXPECT_EQ(bgrx[1], 3000 >> 4);
  EXPECT_EQ(bgrx[2], 3000 >> 4);
  ASSERT_TRUE(conv.Mono16MSBToBGR24(1, 1, 12, const_cast<uint16_t*>(src), bgr, false));
  EXPECT_EQ(bgr[2], 255);
  EXPECT_NE(bgr[0], bgr[2]);
}

TEST(ColorMapPackedMono, PcoToMono8WritesNineBytesAGroup) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  const uint32_t w = 16, h = 1;
  const auto src = packedtest::PcoSource(w, h, 4);
  std::vector<uint8_t> dst(64, 0x5A);
  ASSERT_TRUE(conv.MonoPcoPixelPackedToMono8(w, h, 12, 12, const_cast<uint8_t*>(src.data()), dst.data(), false));
  EXPECT_NE(dst[17], 0x5A);  // identity table to 8 bits: p7 >> 4 of the second group
  for (size_t i = 18; i < dst.size(); ++i) ASSERT_EQ(dst[i], 0x5A) << "byte " << i;
}

TEST(ColorMapPackedMono, FalseWhenTheColourMapIsOffOrTheTableCannotBeBuilt) {
  // The inverted 8448 test takes d = 0 for 10-bit pixels, but no table is
  // 0 bits deep: the call answers false and writes nothing.
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  uint8_t src[6] = {1, 2, 3, 4, 5, 6};
  uint16_t dst[4] = {0x5A5A, 0x5A5A, 0x5A5A, 0x5A5A};
  EXPECT_FALSE(conv.Mono16PixelPacked8448ToMono16(4, 1, 12, 0, src, dst, false));
  EXPECT_FALSE(conv.Mono16MSBToBGRx(2, 1, 0, src, dst, false));
  for (uint16_t v : dst) EXPECT_EQ(v, 0x5A5A);
}

}  // namespace
