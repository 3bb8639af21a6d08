// CJpegConversion's GPU back-end against the stand-in companion: the device
// search and its message, the encoder handle, the arguments of each encode,
// the size word left alone, and the handle released with the back-end.
#include <gtest/gtest.h>
#include <kestrelink/CJpegConversion.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "StandinLog.h"
#include "platform/ScopedEnv.h"

namespace {

using velcudatest::Call;
using velcudatest::CallNames;
using velcudatest::ClearLog;
using velcudatest::Hex;
using velcudatest::Ptr;
using velcudatest::ReadLog;
using Names = std::vector<std::string>;
using Lines = std::vector<std::string>;

const std::string kDetected = "*****Cuda fermi video card detected(index 0):multiProcessor 16.*****";

std::vector<uint8_t> SmoothMono(int w, int h) {
  std::vector<uint8_t> f(size_t(w) * h);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) f[size_t(y) * w + x] = uint8_t(128 + 100 * std::sin(x * 0.05 + y * 0.03));
  return f;
}

TEST(CudaJpegConversion, EncodesThroughTheCompanion) {
  std::vector<uint8_t> frame = SmoothMono(160, 128);
  std::vector<uint8_t> out(frame.size() + 4096, 0xAB);
  int size = -1;
  int extra = 0;
  uint64_t handle = 0;
  {
    CJpegConversion jpeg;
    testsupport::DebugLines debug;
    ClearLog();
    ASSERT_EQ(jpeg.InitConverter(160, 128, 8, 8, 100, 85, false), 2);
    // The binding's load lines come first in a fresh process.
    ASSERT_FALSE(debug.Lines().empty());
    EXPECT_EQ(debug.Lines().back(), kDetected);
    auto calls = ReadLog();
    ASSERT_FALSE(calls.empty());
    ASSERT_EQ(calls.back().front(), "cuda_JpegEncoder_Init");
    EXPECT_EQ(calls.back()[1], "0");

    ClearLog();
    ASSERT_TRUE(jpeg.EncodeJpeg(nullptr, nullptr, frame.data(), out.data(), &size, &extra));
    calls = ReadLog();
    ASSERT_EQ(calls.size(), 1u);
    ASSERT_EQ(calls[0].size(), 10u);
    handle = std::stoull(calls[0][1], nullptr, 16);
    EXPECT_EQ(calls[0], (Call{"cuda_JpegEncoder", Hex(handle), "160", "128", "85", Ptr(frame.data()), "20480",
                              Ptr(out.data() + 4), Ptr(&size), Ptr(&extra)}));
    // The size word is the caller's; the length comes through encodedSize.
    EXPECT_EQ(out[0], 0xAB);
    EXPECT_EQ(out[3], 0xAB);
    ASSERT_GT(size, 0);
    EXPECT_EQ(out[4], 0xFF);
    EXPECT_EQ(out[5], 0xD8);

    // Decoding goes through the library's own codec, from the sized form.
    const uint32_t word = uint32_t(size) + 4;
    std::memcpy(out.data(), &word, 4);
    std::vector<uint8_t> decoded(frame.size());
    ASSERT_TRUE(jpeg.DecodeJpeg(out.data(), decoded.data()));
    int worst = 0;
    for (size_t i = 0; i < frame.size(); ++i) worst = std::max(worst, std::abs(decoded[i] - frame[i]));
    EXPECT_LE(worst, 12);

    // No file form and no stream decoding on this back-end.
    EXPECT_FALSE(jpeg.WriteJpegToFile("/tmp/never.jpg", nullptr, nullptr, frame.data(), nullptr, 0));
    int used = 5;
    EXPECT_FALSE(jpeg.DecodeJpegFromRTSP(size, out.data() + 4, decoded.data(), 0, used));

    // A failing encoder answers false.
    testsupport::ScopedEnv failing("VELCUDA_STANDIN_ENCODE_FAIL", "1");
    EXPECT_FALSE(jpeg.EncodeJpeg(nullptr, nullptr, frame.data(), out.data(), &size, &extra));
    ClearLog();
  }
  // The back-end released its encoder.
  EXPECT_EQ(ReadLog(), (std::vector<Call>{{"cuda_JpegEncoder_UnInit", Hex(handle)}}));
}

struct RefusedCase {
  const char* name;
  uint32_t width, height, bitCount, format;
  const char* envName;  // a switch of the stand-in, or null
  Lines messages;
};

// Each refusal prints what the device search found, then the front's line,
// and leaves no back-end.
TEST(CudaJpegConversion, RefusalsPrintTheirMessages) {
  const RefusedCase cases[] = {
      {"width 127", 127, 256, 8, 100, nullptr, {kDetected, "Apply cuda JPEG encoding failed"}},
      {"height 127", 256, 127, 8, 101, nullptr, {kDetected, "Apply cuda JPEG encoding failed"}},
      {"16-bit mono", 256, 256, 16, 100, nullptr, {kDetected, "Apply cuda JPEG encoding failed"}},
      {"colour", 256, 256, 24, 200, nullptr, {kDetected, "Apply cuda JPEG encoding failed"}},
      {"no encoder", 256, 256, 8, 100, "VELCUDA_STANDIN_ENCODER_INIT_FAIL",
       {kDetected, "Apply cuda JPEG encoding failed"}},
      {"no capable device", 256, 256, 8, 100, "VELCUDA_STANDIN_FERMI_FROM",
       {"Cuda video card not detected.", "Apply cuda JPEG encoding failed"}},
  };
  for (const RefusedCase& c : cases) {
    testsupport::ScopedEnv env(c.envName != nullptr ? c.envName : "VELCUDA_STANDIN_UNUSED", "1");
    CJpegConversion jpeg;
    jpeg.InitConverter(16, 16, 8, 8, 100, 80, true);  // a software back-end to be replaced
    testsupport::DebugLines debug;
    ClearLog();
    EXPECT_EQ(jpeg.InitConverter(c.width, c.height, c.bitCount, 8, c.format, 80, false), 0) << c.name;
    EXPECT_EQ(debug.Lines(), c.messages) << c.name;
    // An encoder handle got for a frame that doesn't fit is released at once.
    const Names names = CallNames(ReadLog());
    const bool gotHandle = c.envName == nullptr;
    EXPECT_EQ(std::count(names.begin(), names.end(), "cuda_JpegEncoder_UnInit"), gotHandle ? 1 : 0) << c.name;
    std::vector<uint8_t> frame(size_t(c.width) * c.height * 3), out(frame.size() + 64);
    int size = 0;
    EXPECT_FALSE(jpeg.EncodeJpeg(nullptr, nullptr, frame.data(), out.data(), &size, nullptr)) << c.name;
  }
}

}  // namespace
