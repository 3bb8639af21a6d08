// The encode pipeline's queued path with its delivery thread, and its
// processing stage, against the stand-in run-time registered as a software
// library. Neither is reached by the encoder back-end, which drives frames
// one at a time without a notifier and with the processing stage unused.
#include <mfx/mfxstructures.h>

#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "h264/INotifier.h"
#include "h264/MediaSdkSession.h"
#include "h264/MfxEncodePipeline.h"
#include "mfx/MfxTestSupport.h"

namespace {

using kestrelink::h264::MfxEncodePipeline;
using mfxtest::StandinCopy;
using mfxtest::StandinStream;
using Bytes = std::vector<uint8_t>;

constexpr uint32_t kApi13 = 0x0103;

// The encoder's parameters for a frame of width by height.
mfxVideoParam EncodeParams(uint32_t width, uint32_t height, uint16_t gop) {
  mfxVideoParam params = kestrelink::h264::DefaultEncodeParams();
  kestrelink::h264::DescribeFrame(params.mfx.FrameInfo, width, height, 30.0);
  params.mfx.GopPicSize = gop;
  return params;
}

// One NV12 frame in system memory, its luma all `value`.
struct Frame {
  Bytes planes;
  mfxFrameSurface1 surface{};
  Frame(const mfxFrameInfo& info, uint8_t value) : planes(size_t(info.Width) * info.Height * 3 / 2, value) {
    surface.Info = info;
    surface.Data.Pitch = info.Width;
    surface.Data.Y = planes.data();
    surface.Data.UV = planes.data() + size_t(info.Width) * info.Height;
  }
  uint32_t LumaSum() const { return uint32_t(surface.Info.Width) * surface.Info.Height * planes[0]; }
};

// Reads a stand-in count that the delivery thread may be changing.
int32_t Watch(const int32_t& count) { return *static_cast<const volatile int32_t*>(&count); }

// Waits for a condition that another thread brings about; gives up after
// ten seconds (a fault, not a timing) and answers whether it came.
template <class Condition>
bool WaitFor(Condition condition) {
  for (int i = 0; i < 10000 && !condition(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return condition();
}

class Collector : public INotifier {
 public:
  int OnBitstream(mfxBitstream* bitstream) override {
    std::lock_guard<std::mutex> lock(lock_);
    const uint8_t* data = bitstream->Data + bitstream->DataOffset;
    streams_.emplace_back(data, data + bitstream->DataLength);
    return 0;
  }
  size_t Count() {
    std::lock_guard<std::mutex> lock(lock_);
    return streams_.size();
  }
  std::vector<Bytes> Streams() {
    std::lock_guard<std::mutex> lock(lock_);
    return streams_;
  }

 private:
  std::mutex lock_;
  std::vector<Bytes> streams_;
};

class MediaSdkPipeline : public ::testing::Test {
 protected:
  StandinCopy lib{"pipeline"};
  mfxtest::ScopedDispatchKeys keys{{{"standin", kApi13, 0, 0, 1, lib.path()}}};
};

// Frames queued with a notifier come out of the delivery thread in order,
// after the syncs that found the first still running; the task's room is
// the frame at 4 bytes a pixel when the parameters name no buffer size.
TEST_F(MediaSdkPipeline, QueuedFramesReachTheNotifierInOrder) {
  lib.knobs().syncInExecution = 5;
  Collector sink;
  mfxVideoParam params = EncodeParams(64, 48, 2);
  std::vector<Frame> frames;
  for (uint8_t n = 0; n < 4; ++n) frames.emplace_back(params.mfx.FrameInfo, uint8_t(10 * n + 1));
  {
    MfxEncodePipeline pipeline;
    ASSERT_EQ(pipeline.Init(&params, nullptr, &sink), MFX_ERR_NONE);
    EXPECT_TRUE(pipeline.DeliveryRunning());
    for (Frame& frame : frames) EXPECT_EQ(pipeline.EncodeFrame(&frame.surface), MFX_ERR_NONE);
    EXPECT_TRUE(WaitFor([&] { return sink.Count() >= frames.size(); }));
    // Without a processing stage the encoder gets the caller's surface.
    EXPECT_EQ(lib.record().lastEncodeSurface, &frames.back().surface);
    // A new set-up without a notifier stops the thread.
    ASSERT_EQ(pipeline.Init(&params, nullptr, nullptr), MFX_ERR_NONE);
    EXPECT_FALSE(pipeline.DeliveryRunning());
  }
  const std::vector<Bytes> streams = sink.Streams();
  ASSERT_EQ(streams.size(), frames.size());
  for (uint32_t n = 0; n < frames.size(); ++n) EXPECT_EQ(streams[n], StandinStream(n, n % 2 == 0, frames[n].LumaSum()));
  EXPECT_EQ(lib.record().syncCalls, 5 + 4);
  EXPECT_EQ(lib.record().lastMaxLength, 64u * 48 * 4);
  EXPECT_EQ(lib.record().vppRunCalls, 0);
}

TEST_F(MediaSdkPipeline, TaskRoomFollowsTheBufferSizeOfTheParameters) {
  Collector sink;
  mfxVideoParam params = EncodeParams(64, 48, 30);
  params.mfx.BufferSizeInKB = 3;
  Frame frame(params.mfx.FrameInfo, 7);
  MfxEncodePipeline pipeline;
  ASSERT_EQ(pipeline.Init(&params, nullptr, &sink), MFX_ERR_NONE);
  ASSERT_EQ(pipeline.EncodeFrame(&frame.surface), MFX_ERR_NONE);
  EXPECT_TRUE(WaitFor([&] { return sink.Count() == 1; }));
  EXPECT_EQ(lib.record().lastMaxLength, 3000u);
}

// A sync that fails closes the encoder and ends the thread: nothing is
// delivered, and later frames meet a closed encoder.
TEST_F(MediaSdkPipeline, FailedSyncClosesTheEncoderAndStopsDelivery) {
  lib.knobs().syncStatus = MFX_ERR_DEVICE_FAILED;
  Collector sink;
  mfxVideoParam params = EncodeParams(32, 32, 30);
  Frame frame(params.mfx.FrameInfo, 1);
  MfxEncodePipeline pipeline;
  ASSERT_EQ(pipeline.Init(&params, nullptr, &sink), MFX_ERR_NONE);
  const int32_t closesBefore = lib.record().encodeCloseCalls;
  ASSERT_EQ(pipeline.EncodeFrame(&frame.surface), MFX_ERR_NONE);
  EXPECT_TRUE(WaitFor([&] { return Watch(lib.record().encodeCloseCalls) > closesBefore; }));
  EXPECT_EQ(pipeline.EncodeFrame(&frame.surface), MFX_ERR_NOT_INITIALIZED);
  EXPECT_EQ(sink.Count(), 0u);
}

class MediaSdkVpp : public MediaSdkPipeline {
 protected:
  // Processing from a 64 by 48 frame to 32 by 32.
  mfxVideoParam enc = EncodeParams(64, 48, 30);
  mfxVideoParam vpp = Processing(enc.mfx.FrameInfo, 32, 32);
  static mfxVideoParam Processing(const mfxFrameInfo& in, uint32_t width, uint32_t height) {
    mfxVideoParam p{};
    p.vpp.In = in;
    p.vpp.Out = in;
    kestrelink::h264::DescribeFrame(p.vpp.Out, width, height, 30.0);
    return p;
  }
};

// Differing descriptions put the processing stage in front of the encoder:
// the encoder takes its output description, the stage gets the do-not-use
// list and system-memory surfaces from the pipeline's own allocator, and
// each frame goes through one of those surfaces to the encoder.
TEST_F(MediaSdkVpp, DifferentDescriptionsPutTheStageBeforeTheEncoder) {
  lib.knobs().vppSuggestedOut = 2;
  MfxEncodePipeline pipeline;
  ASSERT_EQ(pipeline.Init(&enc, &vpp, nullptr), MFX_ERR_NONE);
  const MfxStandinRecord& r = lib.record();
  EXPECT_EQ(r.vppQueryIOSurfCalls, 1);
  EXPECT_EQ(r.frameAllocatorCalls, 1);
  EXPECT_EQ(r.lastInitParams.mfx.FrameInfo.Width, 32);
  EXPECT_EQ(r.lastInitParams.mfx.FrameInfo.Height, 32);
  EXPECT_EQ(r.lastInitParams.IOPattern, 2);
  EXPECT_EQ(r.vppInitCalls, 1);
  EXPECT_EQ(r.lastVppInitParams.IOPattern, 0x22);
  EXPECT_EQ(r.lastVppInitParams.NumExtParam, 1);
  ASSERT_EQ(r.lastVppDoNotUseCount, 2u);
  EXPECT_EQ(r.lastVppDoNotUse[0], mfxU32(MFX_MAKEFOURCC('D', 'N', 'I', 'S')));
  EXPECT_EQ(r.lastVppDoNotUse[1], mfxU32(MFX_MAKEFOURCC('S', 'C', 'L', 'Y')));

  Frame frame(enc.mfx.FrameInfo, 9);
  ASSERT_EQ(pipeline.EncodeFrame(&frame.surface), MFX_ERR_NONE);
  EXPECT_EQ(r.vppRunCalls, 1);
  EXPECT_EQ(r.lastVppIn, &frame.surface);
  ASSERT_NE(r.lastVppOut, &frame.surface);
  EXPECT_EQ(r.lastEncodeSurface, r.lastVppOut);
  const auto* processed = static_cast<const mfxFrameSurface1*>(r.lastVppOut);
  EXPECT_EQ(processed->Info.Width, 32);
  EXPECT_NE(processed->Data.MemId, nullptr);
}

// The stage has the suggested output surfaces plus the encoder's (2 + 1
// here); while the run-time holds all of them locked a frame is refused.
TEST_F(MediaSdkVpp, FrameIsRefusedWhileEveryStageSurfaceIsLocked) {
  lib.knobs().vppSuggestedOut = 2;
  lib.knobs().vppLocksOutput = 1;
  MfxEncodePipeline pipeline;
  ASSERT_EQ(pipeline.Init(&enc, &vpp, nullptr), MFX_ERR_NONE);
  Frame frame(enc.mfx.FrameInfo, 3);
  std::vector<const void*> used;
  for (int n = 0; n < 3; ++n) {
    ASSERT_EQ(pipeline.EncodeFrame(&frame.surface), MFX_ERR_NONE) << n;
    for (const void* earlier : used) EXPECT_NE(lib.record().lastVppOut, earlier);
    used.push_back(lib.record().lastVppOut);
  }
  EXPECT_EQ(pipeline.EncodeFrame(&frame.surface), MFX_ERR_MORE_SURFACE);
  EXPECT_EQ(lib.record().vppRunCalls, 3);
}

// The stage's set-up answer: partial acceleration counts as success and is
// kept; a refusal is the pipeline's answer.
TEST_F(MediaSdkVpp, StageSetUpAnswers) {
  struct Case {
    mfxStatus vppInit, expected;
    bool partial;
  };
  for (const Case& c : {Case{MFX_WRN_PARTIAL_ACCELERATION, MFX_ERR_NONE, true},
                        Case{MFX_ERR_UNSUPPORTED, MFX_ERR_UNSUPPORTED, false}}) {
    SCOPED_TRACE(c.vppInit);
    lib.knobs().vppInitStatus = c.vppInit;
    MfxEncodePipeline pipeline;
    mfxVideoParam params = enc;
    EXPECT_EQ(pipeline.Init(&params, &vpp, nullptr), c.expected);
    EXPECT_EQ(pipeline.PartialAcceleration(), c.partial);
  }
}

}  // namespace
