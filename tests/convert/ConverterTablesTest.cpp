// The fixed 10- and 12-bit tables step one index later than a plain shift.
#include <gtest/gtest.h>

#include <vector>

#include "convert/ConverterTables.h"

namespace {

TEST(ConverterTables, TenBitStepFallsOneIndexLate) {
  std::vector<uint32_t> t(1024);
  kestrelink::FillLateStepTable(t.data(), 10, 0);
  const struct { uint32_t index, value; } rows[] = {{0, 0}, {1, 0}, {4, 0}, {5, 1}, {8, 1}, {9, 2}, {12, 2}, {1020, 254}, {1021, 255}, {1023, 255}};
  for (auto r : rows) EXPECT_EQ(t[r.index], r.value) << "index " << r.index;
}

TEST(ConverterTables, TwelveBitStepFallsOneIndexLate) {
  std::vector<uint32_t> t(4096);
  kestrelink::FillLateStepTable(t.data(), 12, 0);
  const struct { uint32_t index, value; } rows[] = {{0, 0}, {16, 0}, {17, 1}, {32, 1}, {33, 2}, {4080, 254}, {4081, 255}, {4095, 255}};
  for (auto r : rows) EXPECT_EQ(t[r.index], r.value) << "index " << r.index;
}

TEST(ConverterTables, ChannelShiftPlacesTheByte) {
  std::vector<uint32_t> red(1024), green(4096);
  kestrelink::FillLateStepTable(red.data(), 10, 16);
  kestrelink::FillLateStepTable(green.data(), 12, 8);
  EXPECT_EQ(red[1023], 0xFF0000u);
  EXPECT_EQ(green[17], 0x100u);
}

}  // namespace
