// The front's use of Media SDK: with only the system's run-time (which opens
// a session on this kind of machine but cannot encode) the front keeps the
// software encoder and the hardware answer is false with its log lines; with
// the stand-in registered the front encodes through it.
#include <dlfcn.h>

#include <kestrelink/CH264Conversion.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "h264/EncodedFrameRecord.h"
#include "h264/HardwareEncodingSupport.h"
#include "h264/MediaSdkSession.h"
#include "mfx/MfxTestSupport.h"

namespace {

using mfxtest::ScopedDispatchKeys;
using mfxtest::StandinCopy;

constexpr uint32_t kApi13 = 0x0103;
const char* const kInitOk = "********m_mfxVideoSession.Init***** sts: 0";
const char* const kRunsOnHardware = "********Encoder run as Hardware Encoding*****sts: 0";
const char* const kRunsInSoftware = "********Encoder run as Software Encoding*****sts: 0";
const char* const kAutoDetect = "*****Try to auto detect*****";

class HardwareAnswer : public ::testing::Test {
 protected:
  void SetUp() override { kestrelink::h264::ForgetHardwareEncodingAnswer(); }
  void TearDown() override { kestrelink::h264::ForgetHardwareEncodingAnswer(); }
};

// Whether the system's hardware run-time is installed here at all.
bool SystemRuntimeInstalled() {
  void* handle = ::dlopen("libmfxhw64.so.1", RTLD_NOW | RTLD_LOCAL);
  if (handle != nullptr) ::dlclose(handle);
  return handle != nullptr;
}

TEST_F(HardwareAnswer, SystemRuntimeWithoutAnEncoderAnswersFalse) {
  ScopedDispatchKeys none({});
  mfxtest::ScopedDebugLines lines;
  EXPECT_FALSE(CH264Conversion::IsHardwareEncodingSupported());
  EXPECT_FALSE(kestrelink::h264::MediaSdkCanEncode(MFX_IMPL_AUTO));
  const std::vector<std::string>& got = lines.lines();
  ASSERT_GE(got.size(), 3u);
  if (SystemRuntimeInstalled() && got[0] == kInitOk) {
    // The session opens (on the hardware interface) but can't encode: the second try is for the log only.
    const std::vector<std::string> expected = {kInitOk, kRunsOnHardware, kAutoDetect, kInitOk, kRunsOnHardware};
    EXPECT_EQ(got, expected);
  } else {
    EXPECT_EQ(got[1], kAutoDetect);
  }
}

TEST_F(HardwareAnswer, FrontKeepsTheSoftwareEncoderWithoutARuntimeThatEncodes) {
  ScopedDispatchKeys none({});
  CH264Conversion front;
  ASSERT_TRUE(front.Initialize(true, 64, 48, H264_SOURCE_MONO, 10, 1000000, 8, 0));
  std::vector<uint8_t> luma(64 * 48, 100), record(64 * 48 * 2 + 16);
  ASSERT_TRUE(front.EncodeImage(record.data(), luma.data(), nullptr, nullptr));
  // The software encoder's first record opens with its own parameter set, not the stand-in's 'S' 'P' 'S'.
  EXPECT_EQ(record[12] & 31, 7);
  EXPECT_NE(record[13], 'S');
}

TEST_F(HardwareAnswer, FrontEncodesThroughARuntimeThatCan) {
  StandinCopy lib("front");
  ScopedDispatchKeys keys({{"standin", kApi13, 0, 0, 1, lib.path()}});
  CH264Conversion front;
  ASSERT_TRUE(front.Initialize(true, 64, 48, H264_SOURCE_MONO, 10, 1000000, 8, 0));
  std::vector<uint8_t> luma(64 * 48, 100), record(64 * 48 * 2 + 16);
  ASSERT_TRUE(front.EncodeImage(record.data(), luma.data(), nullptr, nullptr));
  EXPECT_EQ(lib.record().encodeCalls, 1);
  EXPECT_EQ(std::string(record.begin() + 12, record.begin() + 16), "gSPS");
  EXPECT_EQ(kestrelink::h264::RecordGopSize(record.data()), 10);
  // A software library is no hardware: the answer stays false.
  EXPECT_FALSE(CH264Conversion::IsHardwareEncodingSupported());
}

// The front asks once a process whether a run-time can encode: a second
// front opens no probe session of its own, and still encodes through it.
TEST_F(HardwareAnswer, FrontAsksOnceAProcessWhetherARuntimeEncodes) {
  StandinCopy lib("front-once");
  ScopedDispatchKeys keys({{"standin", kApi13, 0, 0, 1, lib.path()}});
  { CH264Conversion first; }
  EXPECT_EQ(lib.record().initCalls, 1);
  CH264Conversion second;
  EXPECT_EQ(lib.record().initCalls, 1);
  ASSERT_TRUE(second.Initialize(true, 32, 32, H264_SOURCE_MONO, 10, 1000000, 8, 0));
  std::vector<uint8_t> luma(32 * 32, 1), record(32 * 32 * 2 + 16);
  ASSERT_TRUE(second.EncodeImage(record.data(), luma.data(), nullptr, nullptr));
  EXPECT_EQ(lib.record().encodeCalls, 1);
}

// Only a session on the first adapter counts, and the answer is kept: no
// second session is opened after it.
TEST_F(HardwareAnswer, HardwareSessionOnTheFirstAdapterIsKept) {
  struct Case {
    const char* name;
    uint32_t reportedBits;
    size_t adapter;
    bool expected;
  };
  const Case cases[] = {
      {"first adapter", 0, 0, true},
      {"first adapter through the video interface bits", MFX_IMPL_VIA_VAAPI, 0, true},
      {"second adapter", 0, 1, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    kestrelink::h264::ForgetHardwareEncodingAnswer();
    StandinCopy lib("hardware-answer");
    lib.knobs().reportedImplBits = c.reportedBits;
    std::vector<std::pair<uint32_t, uint32_t>> ids = {{0x8086, 0x1111}, {0x8086, 0x2222}};
    mfxtest::ScopedAdapters adapters(ids);
    ScopedDispatchKeys keys({{"hw", kApi13, ids[c.adapter].first, ids[c.adapter].second, 1, lib.path()}});
    EXPECT_EQ(CH264Conversion::IsHardwareEncodingSupported(), c.expected);
    const int sessions = lib.record().initCalls;
    EXPECT_GE(sessions, 1);
    EXPECT_EQ(CH264Conversion::IsHardwareEncodingSupported(), c.expected);
    EXPECT_EQ(lib.record().initCalls, sessions);
  }
}

}  // namespace
