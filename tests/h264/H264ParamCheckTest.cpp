// The encoder's parameter check, profile walk, level table and reference limit.
#include <gtest/gtest.h>

#include "h264/H264ParamCheck.h"
#include "platform/OpenMP.h"

namespace {

using UMC::H264EncoderParams;

struct TeamSizeGuard {
  int saved = kestrelink::platform::TeamSize();
  ~TeamSizeGuard() { kestrelink::platform::SetTeamSize(saved); }
};

H264EncoderParams Sized(int32_t width, int32_t height) {
  H264EncoderParams p;
  p.info.width = width;
  p.info.height = height;
  p.numThreads = 1;
  return p;
}

TEST(H264ProfileWalk, RaisesTheProfileToWhatTheToolsNeed) {
  const struct {
    const char* name;
    int32_t profile, chroma, depth, bFrames, transform8x8, lossless, aux;
    UMC::Status status;
    int32_t result;
  } rows[] = {
      {"baseline, plain", 66, 1, 8, 0, 0, 0, 0, UMC::UMC_OK, 66},
      {"baseline with B frames", 66, 1, 8, 2, 0, 0, 0, UMC::UMC_OK, 77},
      {"baseline with 8x8 transform", 66, 1, 8, 0, 1, 0, 0, UMC::UMC_OK, 100},
      {"main with 8x8 transform", 77, 1, 8, 0, 1, 0, 0, UMC::UMC_OK, 100},
      {"extended, plain", 88, 1, 8, 0, 0, 0, 0, UMC::UMC_OK, 88},
      {"main, monochrome", 77, 0, 8, 0, 1, 0, 0, UMC::UMC_OK, 100},
      {"main, 4:2:2 stops at 110", 77, 2, 8, 0, 1, 0, 0, UMC::UMC_OK, 110},
      {"main with an auxiliary picture", 77, 1, 8, 0, 0, 0, 1, UMC::UMC_OK, 100},
      {"high, 10 bits", 100, 1, 10, 0, 1, 0, 0, UMC::UMC_OK, 110},
      {"high, lossless", 100, 1, 8, 0, 1, 1, 0, UMC::UMC_OK, 144},
      {"high 4:2:2 stays", 122, 2, 8, 0, 1, 0, 0, UMC::UMC_OK, 122},
      {"high 10, lossless", 110, 1, 8, 0, 1, 1, 0, UMC::UMC_OK, 144},
      {"4:4:4 is not implemented", 100, 3, 8, 0, 1, 0, 0, UMC::UMC_ERR_NOT_IMPLEMENTED, 144},
      {"14 bits is too deep", 100, 1, 14, 0, 1, 0, 0, UMC::UMC_ERR_INVALID_STREAM, 110},
      {"below 66", 65, 1, 8, 0, 0, 0, 0, UMC::UMC_ERR_INVALID_STREAM, 65},
      {"above 144", 145, 1, 8, 0, 0, 0, 0, UMC::UMC_ERR_INVALID_STREAM, 145},
      {"an unknown value inside the range", 99, 1, 8, 0, 0, 0, 0, UMC::UMC_ERR_INVALID_STREAM, 99},
  };
  for (const auto& row : rows) {
    H264EncoderParams p = Sized(64, 64);
    p.profileIdc = row.profile;
    p.chromaFormatIdc = row.chroma;
    p.bitDepthLuma = p.bitDepthChroma = row.depth;
    p.bFrameRate = row.bFrames;
    p.transform8x8Mode = row.transform8x8;
    p.losslessMode = row.lossless;
    p.auxFormatIdc = row.aux;
    EXPECT_EQ(UMC::WalkProfile(p), row.status) << row.name;
    if (row.status == UMC::UMC_OK) {
      EXPECT_EQ(p.profileIdc, row.result) << row.name;
    }
  }
}

TEST(H264Level, FirstRowWhoseMacroblockAndRateLimitsFit) {
  const struct {
    int32_t width, height;
    double rate;
    int32_t level;
  } rows[] = {
      {176, 144, 15.0, 10},   // 99 MB, 1485 MB/s
      {176, 144, 30.0, 11},   // 99 MB, 2970 MB/s
      {352, 288, 15.0, 12},   // 396 MB, 5940
      {352, 288, 30.0, 20},   // 11880
      {352, 576, 25.0, 21},   // 792 MB, 19800
      {720, 576, 12.5, 22},   // 1620 MB, 20250
      {720, 576, 25.0, 30},   // 40500
      {1280, 720, 30.0, 31},  // 3600 MB, 108000
      {1280, 1024, 42.0, 32}, // 5120 MB, 215040
      {1920, 1080, 30.0, 40}, // 8160 MB, 244800
      {1920, 1088, 30.0, 40}, // 8160 MB as well
      {2048, 1088, 30.0, 42}, // 8704 MB, 261120
      {2560, 1600, 30.0, 50}, // 16000 MB, 480000
      {4096, 2304, 30.0, 51}, // 36864 MB
      {1920, 1080, 120.0, 51},
  };
  for (const auto& row : rows)
    EXPECT_EQ(UMC::DeriveLevel(row.width, row.height, row.rate), row.level) << row.width << "x" << row.height << "@" << row.rate;
}

TEST(H264ReferenceLimit, DecodedPictureBufferOverFrameSizeCappedAtSixteen) {
  const struct {
    int32_t level, width, height;
    bool field;
    int32_t limit;
  } rows[] = {
      {40, 1920, 1080, false, 24576 * 512 / (1920 * 1088 * 3 / 2)},  // 4
      {11, 176, 144, false, 675 * 512 / (176 * 144 * 3 / 2)},       // 9
      {30, 720, 576, false, 6075 * 512 / (720 * 576 * 3 / 2)},
      {30, 720, 576, true, 6075 * 512 / (720 * 576 * 3 / 2)},
      {31, 1280, 720, false, 13500 * 512 / (1280 * 720 * 3 / 2)},
      {51, 64, 64, false, 16},
      {10, 1920, 1088, false, 1},  // too small a buffer still leaves one
  };
  for (const auto& row : rows)
    EXPECT_EQ(UMC::ReferenceLimit(row.level, row.width, row.height, row.field), row.limit) << "level " << row.level;
  // A field picture aligns the height to 32 lines: 720x1080 -> 1088 as frames, 1088 as fields; 720x1090 differs.
  EXPECT_EQ(UMC::ReferenceLimit(40, 720, 1090, false), 24576 * 512 / (720 * 1104 * 3 / 2));
  EXPECT_EQ(UMC::ReferenceLimit(40, 720, 1090, true), 24576 * 512 / (720 * 1120 * 3 / 2));
}

TEST(H264ParamCheck, ReplacesBadValuesInOrder) {
  TeamSizeGuard guard;
  H264EncoderParams p = Sized(176, 144);
  p.codingType = 5;
  p.rateControlMethod = 3;
  p.keyFrameInterval = 0;
  p.keyFrameMethod = 4;
  p.idrInterval = -2;
  p.bFrameRate = -1;
  p.treatBAsReference = 9;
  p.numRefFrames = 40;
  p.levelIdc = 14;
  p.quantI = 52;
  p.quantP = -1;
  p.quantB = 30;
  p.mvSearchMethod = 40;
  p.meSplitMode = 4;
  p.directPredMode = 3;
  p.deblockingFilterIdc = 3;
  p.deblockingFilterAlpha = 13;
  p.deblockingFilterBeta = -13;
  p.cabacInitIdc = 3;
  p.entropyCodingMode = 7;
  p.useWeightedPred = 5;
  ASSERT_EQ(UMC::CheckEncoderParams(p), UMC::UMC_OK);
  EXPECT_EQ(p.codingType, 0);
  EXPECT_EQ(p.rateControlMethod, 0);
  EXPECT_EQ(p.keyFrameInterval, 250);
  EXPECT_EQ(p.keyFrameMethod, 1);
  EXPECT_EQ(p.idrInterval, 4);
  EXPECT_EQ(p.bFrameRate, 0);
  EXPECT_EQ(p.treatBAsReference, 2);
  EXPECT_EQ(p.levelIdc, 11);  // unknown level: derived
  EXPECT_EQ(p.numRefFrames, 9);  // 16, then the level-11 limit for 176x144
  EXPECT_EQ(p.quantI, 0);
  EXPECT_EQ(p.quantP, 0);
  EXPECT_EQ(p.quantB, 30);
  EXPECT_EQ(p.mvSearchMethod, 2);
  EXPECT_EQ(p.meSplitMode, 1);
  EXPECT_EQ(p.directPredMode, 1);
  EXPECT_EQ(p.deblockingFilterIdc, 0);
  EXPECT_EQ(p.deblockingFilterAlpha, 6);
  EXPECT_EQ(p.deblockingFilterBeta, 6);
  EXPECT_EQ(p.cabacInitIdc, 0);
  EXPECT_EQ(p.entropyCodingMode, 1);
  EXPECT_EQ(p.useWeightedPred, 1);
  EXPECT_EQ(p.profileIdc, 100);  // 77 with the 8x8 transform on
}

TEST(H264ParamCheck, SizesThreadsSlicesAndRates) {
  TeamSizeGuard guard;
  H264EncoderParams empty = Sized(0, 16);
  EXPECT_EQ(UMC::CheckEncoderParams(empty), UMC::UMC_ERR_INIT);

  H264EncoderParams noRate = Sized(64, 64);
  noRate.info.bitRate = 0;
  noRate.rateControlMethod = 1;
  ASSERT_EQ(UMC::CheckEncoderParams(noRate), UMC::UMC_OK);
  EXPECT_EQ(noRate.rateControlMethod, 0);

  H264EncoderParams oddMethod = Sized(64, 64);
  oddMethod.rateControlMethod = 9;
  ASSERT_EQ(UMC::CheckEncoderParams(oddMethod), UMC::UMC_OK);
  EXPECT_EQ(oddMethod.rateControlMethod, 2);

  H264EncoderParams intra = Sized(64, 64);
  intra.keyFrameInterval = 1;
  intra.bFrameRate = 3;
  intra.numRefFrames = 5;
  ASSERT_EQ(UMC::CheckEncoderParams(intra), UMC::UMC_OK);
  EXPECT_EQ(intra.bFrameRate, 0);
  EXPECT_EQ(intra.numRefFrames, 1);

  H264EncoderParams bFrames = Sized(64, 64);
  bFrames.bFrameRate = 2;
  bFrames.numRefToStartCodeBSlice = 0;
  bFrames.numRefFrames = 1;
  ASSERT_EQ(UMC::CheckEncoderParams(bFrames), UMC::UMC_OK);
  EXPECT_EQ(bFrames.numRefToStartCodeBSlice, 1);
  EXPECT_EQ(bFrames.numRefFrames, 2);

  H264EncoderParams threads = Sized(32, 32);  // 4 macroblocks
  threads.numThreads = 8;
  threads.numSlices = 0;
  ASSERT_EQ(UMC::CheckEncoderParams(threads), UMC::UMC_OK);
  EXPECT_EQ(threads.numSlices, 4);
  EXPECT_EQ(threads.numThreads, 4);
  EXPECT_EQ(kestrelink::platform::TeamSize(), 4);

  H264EncoderParams direct = Sized(720, 576);  // level 30 forces direct inference
  direct.useDirectInference = 0;
  ASSERT_EQ(UMC::CheckEncoderParams(direct), UMC::UMC_OK);
  EXPECT_EQ(direct.useDirectInference, 1);

  H264EncoderParams deep = Sized(64, 64);
  deep.bitDepthLuma = deep.bitDepthChroma = 10;
  deep.quantI = -12;
  deep.quantP = -13;
  ASSERT_EQ(UMC::CheckEncoderParams(deep), UMC::UMC_OK);
  EXPECT_EQ(deep.quantI, -12);
  EXPECT_EQ(deep.quantP, 0);
}

}  // namespace
