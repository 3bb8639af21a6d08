// Plain path of the MonoPcoPixelPacked source, at every processor variant:
// eight pixels a group to the 8-bit targets, nine slots a group to the
// 16-bit ones, with the rows' overlap worked out by writing them one after
// another; and the team size of 4 that four of its targets leave behind.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageConverter.h>

#include <functional>

#include "PackedMonoTestFrames.h"

namespace {

using PcoCall = std::function<bool(CIppImageConverter&, uint32_t w, uint32_t h, void* src, void* dst, bool flip)>;

struct PcoCase {
  const char* name;
  int dstBytes;
  bool setsTeamOfFour;
  PcoCall call;
  // One group's output bytes from its eight pixels.
  std::function<std::vector<uint8_t>(const std::array<uint32_t, 8>& p)> group;
};

std::vector<uint8_t> Eight(const std::array<uint32_t, 8>& p, int bytes) {
  std::vector<uint8_t> out;
  for (uint32_t v : p) {
    const uint8_t top = uint8_t(v >> 4);
    out.insert(out.end(), bytes == 1 ? 1 : 3, top);
    if (bytes == 4) out.push_back(0);
  }
  return out;
}

std::vector<uint8_t> Nine(const std::array<uint32_t, 8>& p, uint32_t shift) {
  const uint32_t slots[9] = {p[0], p[1], p[2] & 0xFF0, p[2], p[3], p[4], p[5], p[6] & 0xFF0, p[7]};
  std::vector<uint8_t> out;
  for (uint32_t s : slots) packedtest::PutWord(out, s << shift);
  return out;
}

#define PCO_CALL(method)                                                        \
  [](CIppImageConverter& c, uint32_t w, uint32_t h, void* s, void* o, bool f) { \
    return c.method(w, h, 12, 12, s, o, f);                                     \
  }

const std::vector<PcoCase>& Cases() {
  static const std::vector<PcoCase> cases = {
      {"MonoPcoPixelPackedToBGRx", 4, false, PCO_CALL(MonoPcoPixelPackedToBGRx),
       [](const auto& p) { return Eight(p, 4); }},
      {"MonoPcoPixelPackedToBGR24", 3, true, PCO_CALL(MonoPcoPixelPackedToBGR24),
       [](const auto& p) { return Eight(p, 3); }},
      {"MonoPcoPixelPackedToMono8", 1, true, PCO_CALL(MonoPcoPixelPackedToMono8),
       [](const auto& p) { return Eight(p, 1); }},
      {"MonoPcoPixelPackedToMono16", 2, true, PCO_CALL(MonoPcoPixelPackedToMono16),
       [](const auto& p) { return Nine(p, 0); }},
      {"MonoPcoPixelPackedToMono16MSB", 2, true, PCO_CALL(MonoPcoPixelPackedToMono16MSB),
       [](const auto& p) { return Nine(p, 4); }},
  };
  return cases;
}

void Check(const PcoCase& c, uint32_t w, uint32_t h, bool flip) {
  packedtest::ScopedTeam keep;
  CIppImageConverter conv;
  const auto src = packedtest::PcoSource(w, h, w * 13 + h);
  const uint64_t groups = (uint64_t(w) + 7) / 8;
  // Room for the last row's reach past the frame, and guard bytes after it.
  const size_t size = size_t(w) * h * c.dstBytes + 9 * groups * c.dstBytes + 32;
  std::vector<uint8_t> dst(size, 0xA5);
  ASSERT_TRUE(c.call(conv, w, h, const_cast<uint8_t*>(src.data()), dst.data(), flip));
  const auto want = packedtest::RowsWrittenInOrder(size, 0xA5, h, flip, size_t(w) * c.dstBytes, [&](uint32_t r) {
    std::vector<uint8_t> row;
    for (uint64_t g = 0; g < groups; ++g) {
      const auto bytes = c.group(packedtest::PcoPixels(&src[packedtest::PcoRowStart(r, w) + 12 * g]));
      row.insert(row.end(), bytes.begin(), bytes.end());
    }
    return row;
  });
  for (size_t i = 0; i < size; ++i)
    ASSERT_EQ(dst[i], want[i]) << c.name << " w=" << w << " h=" << h << " flip=" << flip << " at byte " << i;
}

TEST(PackedMonoPco, EveryTargetEveryVariantWidthAndFlip) {
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    SCOPED_TRACE(kestrelink::VariantName(variant));
    for (const auto& c : Cases())
      for (uint32_t w : {8u, 16u, 24u, 64u, 72u, 96u, 120u, 136u, 256u, 264u})
        for (bool flip : {false, true}) Check(c, w, 5, flip);
  }
}

TEST(PackedMonoPco, NineSlotRowsOverlapLikeRowsWrittenInOrder) {
  // Heights that put the team's block borders in many places, and widths
  // that are not multiples of the group.
  for (const auto& c : Cases())
    for (uint32_t w : {1u, 3u, 4u, 5u, 8u, 9u, 13u, 17u, 40u, 100u})
      for (uint32_t h : {1u, 2u, 3u, 4u, 5u, 7u, 9u, 13u, 17u})
        for (bool flip : {false, true}) Check(c, w, h, flip);
}

TEST(PackedMonoPco, EightBitPlainTargetsWriteWidthPixelsARow) {
  // A width that is a multiple of 8 fills the frame exactly: nothing past it.
  CIppImageConverter conv;
  const uint32_t w = 32, h = 3;
  const auto src = packedtest::PcoSource(w, h, 1);
  std::vector<uint8_t> dst(w * h + 64, 0x5A);
  ASSERT_TRUE(conv.MonoPcoPixelPackedToMono8(w, h, 12, 12, const_cast<uint8_t*>(src.data()), dst.data(), false));
  for (size_t i = w * h; i < dst.size(); ++i) ASSERT_EQ(dst[i], 0x5A) << "byte " << i;
}

TEST(PackedMonoPco, FourTargetsLeaveATeamOfFour) {
  packedtest::ScopedTeam keep;
  for (const auto& c : Cases()) {
    CIppImageConverter conv;
    kestrelink::platform::SetTeamSize(3);
    const auto src = packedtest::PcoSource(16, 2, 3);
    std::vector<uint8_t> dst(16 * 2 * 4 + 64);
    ASSERT_TRUE(c.call(conv, 16, 2, const_cast<uint8_t*>(src.data()), dst.data(), false));
    EXPECT_EQ(kestrelink::platform::TeamSize(), c.setsTeamOfFour ? 4 : 3) << c.name;
    EXPECT_EQ(kestrelink::platform::MeasureTeamSize(), c.setsTeamOfFour ? 4 : 3) << c.name;
  }
}

TEST(PackedMonoPco, DepthAndPackedBitsAreNotUsedOnThePlainPath) {
  CIppImageConverter conv;
  const uint32_t w = 24, h = 3;
  const auto src = packedtest::PcoSource(w, h, 9);
  std::vector<uint8_t> a(w * h * 2 + 64, 0), b(a.size(), 0);
  ASSERT_TRUE(conv.MonoPcoPixelPackedToMono16(w, h, 12, 12, const_cast<uint8_t*>(src.data()), a.data(), false));
  ASSERT_TRUE(conv.MonoPcoPixelPackedToMono16(w, h, 7, 3, const_cast<uint8_t*>(src.data()), b.data(), false));
  EXPECT_EQ(a, b);
}

}  // namespace
