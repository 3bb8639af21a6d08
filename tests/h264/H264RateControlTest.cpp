// The rate control's arithmetic on recorded bit counts, and key-frame placement.
#include <cmath>
#include <gtest/gtest.h>

#include "h264/H264KeyFrames.h"
#include "h264/H264RateControl.h"

namespace {

using UMC::H264RateControl;

UMC::RateControlSetup RateSetup(int32_t method, int64_t luma, int32_t chroma, int32_t bitRate, int32_t depth = 8) {
  UMC::RateControlSetup s;
  s.method = method;
  s.luma = luma;
  s.chromaFormatIdc = chroma;
  s.bitRate = bitRate;
  s.depth = depth;
  s.frameRate = 30.0;
  return s;
}

TEST(H264RateControl, FirstQuantiserFollowsTheSampleCountAndRate) {
  const struct {
    const char* name;
    int64_t luma;
    int32_t chroma, bitRate, depth;
    double samples;
  } rows[] = {
      {"1080p 4:2:2 at 5 Mbit/s", 1920 * 1080, 2, 5000000, 8, 2.0 * 1920 * 1080},
      {"1080p 4:0:0 at 5 Mbit/s", 1920 * 1080, 0, 5000000, 8, 1920 * 1080},
      {"1080p 4:2:0 at 2 Mbit/s", 1920 * 1080, 1, 2000000, 8, 1920 * 1080 * 1.5},
      {"QCIF 4:2:2 at 5 Mbit/s", 176 * 144, 2, 5000000, 8, 2.0 * 176 * 144},
      {"QCIF 4:4:4 at 100 kbit/s", 176 * 144, 3, 100000, 8, 3.0 * 176 * 144},
      {"1080p 4:2:0, 10 bits, at 1 Mbit/s", 1920 * 1080, 1, 1000000, 10, 1920 * 1080 * 1.5},
  };
  for (const auto& row : rows) {
    H264RateControl rc;
    ASSERT_EQ(rc.Init(RateSetup(2, row.luma, row.chroma, row.bitRate, row.depth)), UMC::UMC_OK) << row.name;
    const double x = std::floor(row.samples * row.depth / 8) * 2.0 / 3.0 * 30.0 / row.bitRate;
    const int qpMax = 51 + 6 * (row.depth - 8);
    int expected = int(std::trunc(std::pow(10.0, std::log10(x) * 0.32 + 1.19) / 1.2 + 0.5));
    expected = std::min(std::max(expected, 1), qpMax) - 6 * (row.depth - 8);
    EXPECT_EQ(rc.GetQP(UMC::I_PICTURE), expected) << row.name;
    EXPECT_EQ(rc.GetQP(UMC::P_PICTURE), expected) << row.name;
    EXPECT_EQ(rc.GetQP(UMC::B_PICTURE), expected) << row.name;
  }
}

TEST(H264RateControl, UnknownMethodsAreUnsupported) {
  H264RateControl rc;
  EXPECT_EQ(rc.Init(RateSetup(0, 100, 1, 1000)), UMC::UMC_ERR_UNSUPPORTED);
  EXPECT_EQ(rc.Init(RateSetup(3, 100, 1, 1000)), UMC::UMC_ERR_UNSUPPORTED);
  EXPECT_EQ(rc.Init(RateSetup(6, 100, 1, 1000)), UMC::UMC_ERR_UNSUPPORTED);
  EXPECT_EQ(rc.Init(RateSetup(1, 100, 1, 1000)), UMC::UMC_OK);
}

// The model written out step by step for method 2 (windows 100, 100, 30), fed
// a recorded run of frame sizes; every quantiser it picks must match.
TEST(H264RateControl, StepsTheQuantiserByTheBitsSpent) {
  const int64_t luma = 1920 * 1080;
  const int32_t bitRate = 5000000;
  H264RateControl rc;
  ASSERT_EQ(rc.Init(RateSetup(2, luma, 2, bitRate)), UMC::UMC_OK);
  const int bitsPerFrame = int(bitRate / 30.0);
  const int qpMax = 51;
  int qpI = rc.GetQP(UMC::I_PICTURE), qpP = qpI, qpPrev = qpI;
  double q = 1.0 / qpI, average = bitsPerFrame;
  int64_t desired = 0, encoded = 0;
  // An I frame three times the budget, then P frames well over, then well under.
  const int64_t recorded[] = {500000, 400000, 390000, 380000, 300000, 250000, 60000, 50000, 40000,
                              40000,  30000,  30000,  30000,  20000,  20000,  500000, 20000};
  for (size_t i = 0; i < std::size(recorded); ++i) {
    const bool intra = i == 0 || i == 15;
    const int64_t bits = recorded[i];
    desired += bitsPerFrame;
    encoded += bits;
    q += (1.0 / (intra ? qpI : qpP) - q) / 100;
    q = std::min(std::max(q, 1.0 / qpMax), 1.0);
    if (!intra) average += (double(bits) - average) / 30;
    double y = q * std::pow(bitsPerFrame / average, 2);
    const double dev = std::min(std::max(double(encoded - desired) / 100 / bitsPerFrame, -1.0), 1.0);
    y = std::min(std::max(y + (1.0 / qpMax - y) * dev, 1.0 / qpMax), 1.0);
    const int t = int(1.0 / y + 0.5), p = qpP;
    int next = t >= p + 5 ? p + 3 : t >= p + 3 ? p + 2 : t == p + 2 ? p + 1 : t <= p - 5 ? p - 3 : t <= p - 3 ? p - 2
                                                                                                   : std::max(t, p - 1);
    const int qpB = std::min(std::max((((qpPrev + p) * 563) >> 10) + 1, 1), qpMax);  // before qpPrev moves on
    qpPrev = p;
    qpI = qpP = next;

    rc.PostFrame(intra ? UMC::I_PICTURE : UMC::P_PICTURE, bits);
    ASSERT_EQ(rc.GetQP(UMC::P_PICTURE), qpP) << "after frame " << i + 1;
    ASSERT_EQ(rc.GetQP(UMC::I_PICTURE), qpI) << "after frame " << i + 1;
    ASSERT_EQ(rc.GetQP(UMC::B_PICTURE), qpB) << "after frame " << i + 1;
  }
}

TEST(H264RateControl, SettingAQuantiserBeforeTheFirstFrameResetsTheModel) {
  H264RateControl rc;
  ASSERT_EQ(rc.Init(RateSetup(2, 1920 * 1080, 1, 5000000, 10)), UMC::UMC_OK);
  rc.SetQP(UMC::P_PICTURE, 30);
  EXPECT_EQ(rc.GetQP(UMC::I_PICTURE), 30);  // readers see it without the depth offset
  rc.SetQP(UMC::B_PICTURE, 70);
  EXPECT_EQ(rc.GetQP(UMC::B_PICTURE), 63 - 12);  // clipped to qpMax 63, less the offset
  rc.SetQP(UMC::I_PICTURE, -40);
  EXPECT_EQ(rc.GetQP(UMC::I_PICTURE), 1 - 12);
}

TEST(H264KeyFrames, EveryIntervalFromTheFirstFrameAndIdrByItsOwnCount) {
  const struct {
    int32_t interval, idr;
    const char* pattern;  // I: IDR, K: key frame, .: inter frame
  } rows[] = {
      {12, 1, "I...........I...........I."},
      {1, 1, "IIIII"},
      {3, 2, "I..K..I..K..I"},
      {2, 3, "I.K.K.I.K.K.I"},
  };
  for (const auto& row : rows) {
    UMC::H264KeyFrames keys;
    keys.Init(row.interval, row.idr);
    std::string got;
    for (size_t i = 0; row.pattern[i]; ++i) {
      const UMC::KeyFrameKind kind = keys.Next();
      got += kind == UMC::KeyFrameKind::Idr ? 'I' : kind == UMC::KeyFrameKind::Key ? 'K' : '.';
    }
    EXPECT_EQ(got, row.pattern) << "interval " << row.interval << ", idr " << row.idr;
  }
}

}  // namespace
