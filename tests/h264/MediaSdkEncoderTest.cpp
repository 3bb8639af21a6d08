// The hardware back-end against the stand-in run-time registered as a
// software library: parameters that reach the run-time, records, the packing
// of the source into NV12, and the choice of implementation by frame size.
#include <mfx/mfxstructures.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "h264/CIntelMediaEncoder.h"
#include "h264/CIntelMediaH264Conversion.h"
#include "h264/EncodedFrameRecord.h"
#include "mfx/MfxTestSupport.h"

namespace {

using mfxtest::DispatchKey;
using mfxtest::ScopedDispatchKeys;
using mfxtest::StandinCopy;
using mfxtest::StandinStream;

constexpr uint32_t kApi13 = 0x0103;

// Planes of a frame with room for the chroma rows the packing reads past h / 2.
struct Source {
  uint32_t w, h;
  std::vector<uint8_t> y, u, v;
  Source(uint32_t width, uint32_t height, uint32_t seed) : w(width), h(height) {
    const uint32_t chromaRows = ((height + 15) & ~15u) / 2;
    y.resize(size_t(w) * h);
    u.resize(size_t(w / 2) * chromaRows);
    v.resize(u.size());
    for (size_t i = 0; i < y.size(); ++i) y[i] = uint8_t(i * 7 + seed);
    for (size_t i = 0; i < u.size(); ++i) u[i] = uint8_t(i * 3 + 50 + seed);
    for (size_t i = 0; i < v.size(); ++i) v[i] = uint8_t(i * 5 + 90 + seed);
  }
};

// Index of the first byte of got that differs from want; want.size() if none.
size_t FirstDifference(const uint8_t* got, const std::vector<uint8_t>& want) {
  return size_t(std::mismatch(want.begin(), want.end(), got).first - want.begin());
}

class MediaSdkEncoder : public ::testing::Test {
 protected:
  StandinCopy lib{"encoder"};
  ScopedDispatchKeys keys{{{"standin", kApi13, 0, 0, 1, lib.path()}}};
};

TEST_F(MediaSdkEncoder, ParametersThatReachTheRuntime) {
  CIntelMediaH264Conversion backEnd;
  ASSERT_TRUE(backEnd.Initialize(true, 64, 40, H264_SOURCE_YUV_PLANAR, 12, 2500999, 8, 0));
  Source src(64, 40, 1);
  std::vector<uint8_t> record(64 * 40 * 2 + 16);
  ASSERT_TRUE(backEnd.EncodeImage(record.data(), src.y.data(), src.u.data(), src.v.data()));

  const mfxVideoParam& p = lib.record().lastInitParams;
  EXPECT_EQ(p.mfx.CodecId, mfxU32(MFX_MAKEFOURCC('A', 'V', 'C', ' ')));
  EXPECT_EQ(p.mfx.CodecProfile, 77);
  EXPECT_EQ(p.mfx.NumThread, 0);
  EXPECT_EQ(p.mfx.TargetUsage, 4);
  EXPECT_EQ(p.mfx.GopPicSize, 12);
  EXPECT_EQ(p.mfx.GopRefDist, 1);
  EXPECT_EQ(p.mfx.GopOptFlag, 2);
  EXPECT_EQ(p.mfx.IdrInterval, 0);
  EXPECT_EQ(p.mfx.RateControlMethod, 1);
  EXPECT_EQ(p.mfx.TargetKbps, 2500);
  EXPECT_EQ(p.mfx.MaxKbps, 0);
  EXPECT_EQ(p.mfx.BufferSizeInKB, 0);
  EXPECT_EQ(p.mfx.NumSlice, 0);
  EXPECT_EQ(p.mfx.NumRefFrame, 0);
  EXPECT_EQ(p.AsyncDepth, 0);
  EXPECT_EQ(p.IOPattern, 2);
  const mfxFrameInfo& f = p.mfx.FrameInfo;
  EXPECT_EQ(f.FourCC, mfxU32(MFX_MAKEFOURCC('N', 'V', '1', '2')));
  EXPECT_EQ(f.Width, 64);
  EXPECT_EQ(f.CropW, 64);
  EXPECT_EQ(f.Height, 48);
  EXPECT_EQ(f.CropH, 48);  // the aligned size: the picture carries the padding
  EXPECT_EQ(f.CropX, 0);
  EXPECT_EQ(f.PicStruct, 1);
  EXPECT_EQ(f.ChromaFormat, 1);
  EXPECT_EQ(f.FrameRateExtN, 3000u);
  EXPECT_EQ(f.FrameRateExtD, 100u);
  // The pipeline's capability query carries no input record.
  EXPECT_EQ(lib.record().lastQueryInWasNull, 1);
  // The surface describes the same frame, pitch the aligned width.
  EXPECT_EQ(lib.record().lastSurfaceInfo.Width, 64);
  EXPECT_EQ(lib.record().lastSurfaceInfo.Height, 48);
  EXPECT_EQ(lib.record().lastSurfacePitch, 64);
  // Output room is the true size times 3, in the work buffer.
  EXPECT_EQ(lib.record().lastMaxLength, 64u * 40 * 3);
}

TEST_F(MediaSdkEncoder, RecordsCarryTheRuntimeStreamAndKeyFrameFields) {
  CIntelMediaH264Conversion backEnd;
  ASSERT_TRUE(backEnd.Initialize(true, 64, 48, H264_SOURCE_YUV_PLANAR, 3, 4000000, 8, 0));
  std::vector<uint8_t> record(64 * 48 * 2 + 16);
  for (uint32_t n = 0; n < 7; ++n) {
    SCOPED_TRACE(n);
    Source src(64, 48, n);
    ASSERT_TRUE(backEnd.EncodeImage(record.data(), src.y.data(), src.u.data(), src.v.data()));
    uint32_t sum = 0;
    for (uint8_t b : src.y) sum += b;
    const bool key = n % 3 == 0;
    const std::vector<uint8_t> stream = StandinStream(n, key, sum);
    EXPECT_EQ(kestrelink::h264::RecordSize(record.data()), stream.size() + 8);
    EXPECT_EQ(kestrelink::h264::RecordGopSize(record.data()), key ? 3 : 0);
    EXPECT_EQ(kestrelink::h264::RecordFramesSinceKey(record.data()), n % 3);
    EXPECT_EQ(std::vector<uint8_t>(record.begin() + 8, record.begin() + 8 + stream.size()), stream);
  }
}

TEST_F(MediaSdkEncoder, LeadingDelimiterIsDropped) {
  lib.knobs().writeDelimiter = 1;
  CIntelMediaH264Conversion backEnd;
  ASSERT_TRUE(backEnd.Initialize(true, 32, 32, H264_SOURCE_MONO, 30, 1000000, 8, 0));
  std::vector<uint8_t> luma(32 * 32, 10), record(32 * 32 * 2 + 16);
  ASSERT_TRUE(backEnd.EncodeImage(record.data(), luma.data(), nullptr, nullptr));
  const std::vector<uint8_t> stream = StandinStream(0, true, 32 * 32 * 10);
  EXPECT_EQ(kestrelink::h264::RecordSize(record.data()), stream.size() + 8);
  EXPECT_EQ(std::vector<uint8_t>(record.begin() + 8, record.begin() + 8 + stream.size()), stream);
  EXPECT_EQ(kestrelink::h264::RecordGopSize(record.data()), 30);  // byte 12 is the parameter set
}

TEST_F(MediaSdkEncoder, BufferTooSmallIsRetriedOnceWithTheRuntimeSize) {
  lib.knobs().notEnoughBufferOnce = 1;
  lib.knobs().bufferSizeInKB = 50;
  CIntelMediaH264Conversion backEnd;
  ASSERT_TRUE(backEnd.Initialize(true, 32, 32, H264_SOURCE_MONO, 30, 1000000, 8, 0));
  std::vector<uint8_t> luma(32 * 32, 1), record(32 * 32 * 2 + 16);
  ASSERT_TRUE(backEnd.EncodeImage(record.data(), luma.data(), nullptr, nullptr));
  EXPECT_EQ(lib.record().encodeCalls, 2);
  EXPECT_EQ(lib.record().lastMaxLength, 50000u);
  EXPECT_EQ(kestrelink::h264::RecordSize(record.data()), StandinStream(0, true, 1024).size() + 8);
}

TEST_F(MediaSdkEncoder, FailedSetUpGivesEmptyRecordsAndLogs) {
  lib.knobs().encodeInitStatus = MFX_ERR_UNSUPPORTED;
  mfxtest::ScopedDebugLines lines;
  CIntelMediaH264Conversion backEnd;
  ASSERT_TRUE(backEnd.Initialize(true, 32, 32, H264_SOURCE_MONO, 30, 1000000, 8, 0));
  std::vector<uint8_t> luma(32 * 32, 1), record(32 * 32 * 2 + 16);
  for (uint16_t n = 1; n <= 3; ++n) {
    ASSERT_TRUE(backEnd.EncodeImage(record.data(), luma.data(), nullptr, nullptr));
    EXPECT_EQ(kestrelink::h264::RecordSize(record.data()), 8u);
    EXPECT_EQ(kestrelink::h264::RecordGopSize(record.data()), 0);
    EXPECT_EQ(kestrelink::h264::RecordFramesSinceKey(record.data()), n);
  }
  int errors = 0;
  for (const std::string& line : lines.lines()) errors += line == "H264 Encoder encoding Error ===-8";
  EXPECT_EQ(errors, 3);
}

TEST_F(MediaSdkEncoder, UnInitializeLeavesTheObjectInitialisedWithoutAnEncoder) {
  CIntelMediaH264Conversion backEnd;
  std::vector<uint8_t> luma(32 * 32, 1), record(32 * 32 * 2 + 16);
  EXPECT_FALSE(backEnd.EncodeImage(record.data(), luma.data(), nullptr, nullptr));  // before Initialize
  ASSERT_TRUE(backEnd.Initialize(true, 32, 32, H264_SOURCE_MONO, 30, 1000000, 8, 0));
  EXPECT_TRUE(backEnd.SetParamers(H264_PARAM_NONE, 5));
  EXPECT_TRUE(backEnd.UnInitialize());
  EXPECT_TRUE(backEnd.Initialize(true, 32, 32, H264_SOURCE_MONO, 30, 1000000, 8, 0));
  EXPECT_FALSE(backEnd.EncodeImage(record.data(), luma.data(), nullptr, nullptr));
  EXPECT_TRUE(backEnd.Initialize(true, 48, 32, H264_SOURCE_MONO, 30, 1000000, 8, 0));  // a changed value starts again
  std::vector<uint8_t> wider(48 * 32, 1), wideRecord(48 * 32 * 2 + 16);
  EXPECT_TRUE(backEnd.EncodeImage(wideRecord.data(), wider.data(), nullptr, nullptr));
  EXPECT_FALSE(backEnd.InitWithRTSP());
  int consumed = 0;
  EXPECT_EQ(backEnd.DecodeImageFromRTSP(0, nullptr, nullptr, 0, consumed), -1);
  EXPECT_FALSE(backEnd.UnInitWithRTSP());
}

TEST_F(MediaSdkEncoder, BitRateAndGopSettings) {
  struct Case {
    int bitsPerSecond;
    int expectedBitRate;
  };
  for (const Case& c : {Case{2500, 2000}, Case{999, 0}, Case{0, 0}, Case{6000000, 6000000}}) {
    CIntelMediaEncoder encoder;
    EXPECT_EQ(encoder.GetBitRate(), 6000000);  // the default before SetBitRate
    encoder.SetBitRate(c.bitsPerSecond);
    EXPECT_EQ(encoder.GetBitRate(), c.expectedBitRate) << c.bitsPerSecond;
  }
  CIntelMediaEncoder encoder;
  encoder.SetGopSize(0);
  EXPECT_EQ(encoder.GetGopSize(), 30);
  encoder.SetGopSize(7);
  EXPECT_EQ(encoder.GetGopSize(), 7);
  encoder.SetNumThreads(3);
  EXPECT_EQ(encoder.GetNumThreads(), 3);
  EXPECT_TRUE(encoder.IsEncoder());
}

// The planes that reach the run-time, byte for byte: luma rows at the aligned
// pitch padded with the byte after the row, chroma pairs padded with the last
// pair, rows past the frame left as they were (zero on the first frame).
// The large frame's planes are written with streaming stores. The record
// is zero from the stream's end to width * height * 2 bytes, and untouched
// beyond.
TEST_F(MediaSdkEncoder, Nv12PlanesReachTheRuntimeByteForByte) {
  struct Size {
    uint32_t w, h, W, H;
  };
  for (const Size& size : {Size{40, 20, 48, 32}, Size{1921, 1090, 1936, 1104}}) {
    for (bool mono : {false, true}) {
      SCOPED_TRACE(mono ? "mono" : "planar");
      SCOPED_TRACE(size.w);
      CIntelMediaH264Conversion backEnd;
      const uint32_t w = size.w, h = size.h, W = size.W, H = size.H;
      ASSERT_TRUE(backEnd.Initialize(true, w, h, mono ? H264_SOURCE_MONO : H264_SOURCE_YUV_PLANAR, 30, 1000000, 8, 0));
      Source src(w, h, 3);
      std::vector<uint8_t> record(w * h * 2 + 16, 0xEE);
      ASSERT_TRUE(backEnd.EncodeImage(record.data(), src.y.data(), src.u.data(), src.v.data()));
      const size_t end = kestrelink::h264::RecordSize(record.data());
      EXPECT_EQ(std::count(record.begin() + end, record.begin() + w * h * 2, 0), ptrdiff_t(w * h * 2 - end));
      EXPECT_EQ(std::count(record.begin() + w * h * 2, record.end(), 0xEE), 16);
      ASSERT_EQ(lib.record().lastSurfacePitch, W);
      ASSERT_EQ(lib.record().lastSurfaceInfo.Height, H);

      std::vector<uint8_t> luma(W * H, 0), chroma(W * H / 2, 128);
      for (uint32_t r = 0; r < h; ++r)
        for (uint32_t x = 0; x < W; ++x) {
          const size_t at = x < w ? r * w + x : (r + 1 < h ? (r + 1) * w : r * w + w - 1);
          luma[r * W + x] = src.y[at];
        }
      if (!mono)
        for (uint32_t r = 0; r < H / 2; ++r)
          for (uint32_t pair = 0; pair < W / 2; ++pair) {
            const uint32_t from = pair < w / 2 ? pair : w / 2 - 1;
            chroma[r * W + 2 * pair] = src.u[r * (w / 2) + from];
            chroma[r * W + 2 * pair + 1] = src.v[r * (w / 2) + from];
          }
      EXPECT_EQ(FirstDifference(lib.record().lastLuma, luma), luma.size());
      EXPECT_EQ(FirstDifference(lib.record().lastChroma, chroma), chroma.size());
    }
  }
}

// Up to 1920 by 1088 the hardware is tried first; a wider frame opens a
// software session without trying it.
TEST_F(MediaSdkEncoder, FrameSizeChoosesTheImplementation) {
  StandinCopy hardware("encoder-hardware");
  mfxtest::ScopedAdapters adapters({{0x8086, 0x1234}});
  ScopedDispatchKeys both({{"hardware", kApi13, 0x8086, 0x1234, 1, hardware.path()},
                           {"software", kApi13, 0, 0, 1, lib.path()}});
  struct Case {
    uint32_t width, height;
    bool hardwareTried;
  };
  for (const Case& c : {Case{1920, 1080, true}, Case{1921, 1080, false}, Case{1920, 1089, false}}) {
    SCOPED_TRACE(c.width * 10000 + c.height);
    hardware.record().initCalls = lib.record().initCalls = 0;
    CIntelMediaH264Conversion backEnd;
    ASSERT_TRUE(backEnd.Initialize(true, c.width, c.height, H264_SOURCE_MONO, 30, 1000000, 8, 0));
    EXPECT_EQ(hardware.record().initCalls, 1);  // the constructor's session on MFX_IMPL_AUTO
    std::vector<uint8_t> luma(size_t(c.width) * c.height, 5), record(size_t(c.width) * c.height * 2 + 16);
    ASSERT_TRUE(backEnd.EncodeImage(record.data(), luma.data(), nullptr, nullptr));
    if (c.hardwareTried) {
      EXPECT_EQ(hardware.record().initCalls, 2);
      EXPECT_EQ(hardware.record().initImpls[1], mfxIMPL(MFX_IMPL_HARDWARE));
      EXPECT_EQ(lib.record().initCalls, 0);
    } else {
      EXPECT_EQ(hardware.record().initCalls, 1);
      EXPECT_EQ(lib.record().initCalls, 1);
      EXPECT_EQ(lib.record().initImpls[0], mfxIMPL(MFX_IMPL_SOFTWARE));
    }
    EXPECT_GT(kestrelink::h264::RecordSize(record.data()), 8u);
  }
}

}  // namespace
