// Access units gathered from Annex B bytes by the splitter, as they arrive.
#include <gtest/gtest.h>
#include <string>

#include "h264/NalUnitSplitter.h"

namespace {

// Hand-made units: a header byte and a few payload bytes each. A slice's
// second byte has its top bit set exactly when it starts at macroblock 0.
const std::vector<uint8_t> kSps = {0x67, 0x42, 0x00, 0x0a, 0xfb, 0xc8};  // baseline, one 16x16 macroblock
const std::vector<uint8_t> kPps = {0x68, 0xce, 0x38, 0x80};
const std::vector<uint8_t> kSei = {0x06, 0x05, 0x01, 0x80};
const std::vector<uint8_t> kIdr = {0x65, 0x88, 0x84, 0x21};
const std::vector<uint8_t> kSecondSlice = {0x65, 0x40, 0x11, 0x22};  // first_mb_in_slice above 0: same picture
const std::vector<uint8_t> kP = {0x41, 0x9a, 0x02, 0x04};

std::vector<uint8_t> Stream(std::initializer_list<std::pair<int, const std::vector<uint8_t>*>> units) {
  std::vector<uint8_t> out;
  for (const auto& [startCode, unit] : units) {
    if (startCode == 4) out.push_back(0);
    out.insert(out.end(), {0, 0, 1});
    out.insert(out.end(), unit->begin(), unit->end());
  }
  return out;
}

// The NAL header bytes of an access unit, as a string of types: "7 8 5".
std::string Types(const std::vector<uint8_t>& unit) {
  std::string types;
  for (size_t i = 0; i + 4 < unit.size(); ++i)
    if (unit[i] == 0 && unit[i + 1] == 0 && unit[i + 2] == 0 && unit[i + 3] == 1) {
      if (!types.empty()) types += ' ';
      types += std::to_string(unit[i + 4] & 31);
    }
  return types;
}

std::vector<std::string> Split(const std::vector<uint8_t>& bytes, bool whole, size_t piece) {
  UMC::NalUnitSplitter splitter;
  std::vector<std::string> units;
  std::vector<uint8_t> pending, unit;
  for (size_t at = 0; at < bytes.size(); at += piece) {
    pending.insert(pending.end(), bytes.begin() + at, bytes.begin() + std::min(bytes.size(), at + piece));
    UMC::MediaData in;
    in.SetBufferPointer(pending.data(), pending.size());
    in.SetDataSize(pending.size());
    in.SetFlags(whole && at + piece >= bytes.size() ? uint32_t(UMC::MediaData::kWholeUnits) : 0u);
    while (splitter.NextAccessUnit(in, unit)) units.push_back(Types(unit));
    pending.erase(pending.begin(), pending.begin() + (pending.size() - in.GetDataSize()));
  }
  if (splitter.Flush(unit)) units.push_back(Types(unit) + " (flushed)");
  return units;
}

TEST(H264NalUnitSplitter, AccessUnitsOpenAtParameterSetsSeiAndFirstSlices) {
  const std::vector<uint8_t> stream = Stream({{4, &kSps}, {4, &kPps}, {3, &kSei}, {3, &kIdr}, {3, &kSecondSlice},
                                              {4, &kP}, {3, &kP}, {4, &kSps}, {4, &kPps}, {4, &kIdr}});
  const std::vector<std::string> whole = {"7 8 6 5 5", "1", "1", "7 8 5"};
  for (size_t piece : {size_t(1), size_t(2), size_t(5), size_t(7), stream.size()}) {
    SCOPED_TRACE(testing::Message() << "pieces of " << piece);
    EXPECT_EQ(Split(stream, true, piece), whole);
    // Without the end of the data marked, the last unit is never known complete.
    EXPECT_EQ(Split(stream, false, piece), std::vector<std::string>(whole.begin(), whole.end() - 1));
  }
}

TEST(H264NalUnitSplitter, GarbageBeforeTheFirstStartCodeIsDroppedAndTheHeaderWalkStopsAtTheSlice) {
  std::vector<uint8_t> bytes = {0x12, 0x34, 0x00, 0x56};
  const std::vector<uint8_t> stream = Stream({{3, &kP}, {4, &kSps}, {4, &kPps}, {3, &kIdr}, {3, &kP}});
  bytes.insert(bytes.end(), stream.begin(), stream.end());
  UMC::NalUnitSplitter splitter;
  UMC::MediaData in;
  in.SetBufferPointer(bytes.data(), bytes.size());
  in.SetDataSize(bytes.size());
  ASSERT_EQ(splitter.WalkHeaders(in), UMC::UMC_OK);
  ASSERT_TRUE(splitter.HasSps());
  EXPECT_EQ(splitter.Sps().profileIdc, 66);
  EXPECT_EQ(splitter.Sps().width, 16);
  EXPECT_EQ(splitter.Sps().height, 16);
  EXPECT_EQ(in.GetDataPointer()[3], 0x65);  // left at the start code of the IDR slice
  std::vector<uint8_t> unit;
  ASSERT_TRUE(splitter.NextAccessUnit(in, unit));
  EXPECT_EQ(Types(unit), "7 8 5");  // the P slice before the parameter sets is gone
}

}  // namespace

// A header walk over a first piece that ends inside a parameter set, or inside
// the start code behind it: the rest, joined with what follows, completes it.
TEST(H264NalUnitSplitter, AParameterSetCutByThePieceEndIsCompletedByWhatFollows) {
  const std::vector<uint8_t> stream = Stream({{4, &kSps}, {4, &kPps}, {3, &kIdr}, {4, &kP}});
  const size_t spsEnd = 4 + kSps.size();
  for (size_t cut = spsEnd; cut < stream.size() - kP.size(); ++cut) {
    SCOPED_TRACE(testing::Message() << "first piece of " << cut << " bytes");
    UMC::NalUnitSplitter splitter;
    std::vector<uint8_t> pending(stream.begin(), stream.begin() + cut);
    UMC::MediaData in;
    in.SetBufferPointer(pending.data(), pending.size());
    in.SetDataSize(pending.size());
    ASSERT_EQ(splitter.WalkHeaders(in), UMC::UMC_OK);
    pending.erase(pending.begin(), pending.begin() + (pending.size() - in.GetDataSize()));
    pending.insert(pending.end(), stream.begin() + cut, stream.end());
    in.SetBufferPointer(pending.data(), pending.size());
    in.SetDataSize(pending.size());
    std::vector<uint8_t> unit;
    ASSERT_TRUE(splitter.NextAccessUnit(in, unit));
    std::vector<uint8_t> expected = {0, 0, 0, 1};
    for (const auto* part : {&kSps, &kPps, &kIdr}) {
      expected.insert(expected.end(), part->begin(), part->end());
      if (part != &kIdr) expected.insert(expected.end(), {0, 0, 0, 1});
    }
    EXPECT_EQ(unit, expected);
  }
}
