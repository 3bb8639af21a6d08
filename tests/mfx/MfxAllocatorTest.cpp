// The frame and buffer allocators the run-time calls back into: block
// headers, plane layouts by FourCC, shared responses and refusals.
#include <mfx/mfxvideo.h>

#include <cstring>

#include <gtest/gtest.h>

#include "mfx/D3DFrameAllocator.h"
#include "mfx/SysMemFrameAllocator.h"

namespace {

uint32_t Le32(const uint8_t* p) { return uint32_t(p[0]) | p[1] << 8 | p[2] << 16 | uint32_t(p[3]) << 24; }

mfxFrameAllocRequest Request(mfxU32 fourcc, mfxU16 width, mfxU16 height, mfxU16 type, mfxU16 frames) {
  mfxFrameAllocRequest request{};
  request.Info.FourCC = fourcc;
  request.Info.Width = width;
  request.Info.Height = height;
  request.Type = type;
  request.NumFrameMin = request.NumFrameSuggested = frames;
  return request;
}

TEST(MfxAllocators, BufferBlocksCarryTheirHeaderAndRefuseOtherMemory) {
  SysMemBufferAllocator buffers;
  mfxMemId mid = nullptr;
  EXPECT_EQ(buffers.AllocBuffer(64, MFX_MEMTYPE_DXVA2_DECODER_TARGET, &mid), MFX_ERR_UNSUPPORTED);
  ASSERT_EQ(buffers.AllocBuffer(64, MFX_MEMTYPE_SYSTEM_MEMORY | MFX_MEMTYPE_FROM_ENCODE, &mid), MFX_ERR_NONE);
  const auto* block = static_cast<const uint8_t*>(mid);
  EXPECT_EQ(std::memcmp(block, "BUFF", 4), 0);
  EXPECT_EQ(Le32(block + 4), 64u);
  EXPECT_EQ(block[8] | block[9] << 8, MFX_MEMTYPE_SYSTEM_MEMORY | MFX_MEMTYPE_FROM_ENCODE);
  mfxU8* bytes = nullptr;
  ASSERT_EQ(buffers.LockBuffer(mid, &bytes), MFX_ERR_NONE);
  EXPECT_EQ(bytes, block + 32);
  for (int i = 0; i < 64; ++i) ASSERT_EQ(bytes[i], 0) << i;
  EXPECT_EQ(buffers.UnlockBuffer(mid), MFX_ERR_NONE);
  // The C callbacks reach the same object.
  mfxBufferAllocator& callbacks = buffers;
  EXPECT_EQ(callbacks.Lock(callbacks.pthis, mid, &bytes), MFX_ERR_NONE);

  uint8_t foreign[40] = {'F', 'R', 'M', 'E'};
  EXPECT_EQ(buffers.LockBuffer(foreign, &bytes), MFX_ERR_INVALID_HANDLE);
  EXPECT_EQ(buffers.UnlockBuffer(foreign), MFX_ERR_INVALID_HANDLE);
  EXPECT_EQ(buffers.FreeBuffer(foreign), MFX_ERR_INVALID_HANDLE);
  EXPECT_EQ(buffers.FreeBuffer(mid), MFX_ERR_NONE);
}

TEST(MfxAllocators, FramePlanesByFourcc) {
  // Width and height round up to 32: 40 by 20 becomes 64 by 32.
  constexpr size_t w = 64, h = 32;
  struct Case {
    const char* name;
    mfxU32 fourcc;
    size_t pitch;
    ptrdiff_t y, u, v;  // offsets from the pixels; B, G, R alias V, U, Y
    size_t frameBytes;
  };
  const Case cases[] = {
      {"NV12", MFX_FOURCC_NV12, w, 0, w * h, w * h + 1, w * h * 12 / 8},
      {"YV12", MFX_FOURCC_YV12, w, 0, w * h + (w / 2) * (h / 2), w * h, w * h * 12 / 8},
      {"YUY2", MFX_FOURCC_YUY2, 2 * w, 0, 1, 3, w * h * 2},
      {"RGB3", MFX_FOURCC_RGB3, 3 * w, 2, 1, 0, w * h * 3},
      {"RGB4", MFX_FOURCC_RGB4, 4 * w, 2, 1, 0, w * h * 4},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    SysMemFrameAllocator frames;
    ASSERT_EQ(frames.Init(nullptr), MFX_ERR_NONE);
    mfxFrameAllocRequest request = Request(c.fourcc, 40, 20, MFX_MEMTYPE_SYSTEM_MEMORY, 2);
    mfxFrameAllocResponse response{};
    ASSERT_EQ(frames.AllocFrames(&request, &response), MFX_ERR_NONE);
    ASSERT_EQ(response.NumFrameActual, 2);
    mfxFrameData data{};
    ASSERT_EQ(frames.LockFrame(response.mids[1], &data), MFX_ERR_NONE);
    // The frame block sits in a buffer block: "BUFF" header, then "FRME" header of 96 bytes.
    const auto* block = static_cast<const uint8_t*>(response.mids[1]);
    EXPECT_EQ(Le32(block + 4), 96 + c.frameBytes);
    const uint8_t* frame = block + 32;
    EXPECT_EQ(std::memcmp(frame, "FRME", 4), 0);
    EXPECT_EQ(Le32(frame + 4), c.fourcc);
    EXPECT_EQ(frame[8] | frame[9] << 8, 40);
    EXPECT_EQ(frame[10] | frame[11] << 8, 20);
    const uint8_t* pixels = frame + 96;
    EXPECT_EQ(data.Pitch, c.pitch);
    EXPECT_EQ(data.Y - pixels, c.y);
    EXPECT_EQ(data.U - pixels, c.u);
    EXPECT_EQ(data.V - pixels, c.v);
    if (c.fourcc == MFX_FOURCC_RGB4) {
      EXPECT_EQ(data.A - pixels, 3);
    }
    ASSERT_EQ(frames.UnlockFrame(response.mids[1], &data), MFX_ERR_NONE);
    EXPECT_EQ(data.Y, nullptr);
    EXPECT_EQ(data.Pitch, 0);
    EXPECT_EQ(frames.FreeFrames(&response), MFX_ERR_NONE);
  }
}

TEST(MfxAllocators, FrameAllocatorRefusals) {
  SysMemFrameAllocator frames;
  mfxFrameAllocRequest request = Request(MFX_FOURCC_NV12, 32, 32, MFX_MEMTYPE_SYSTEM_MEMORY, 1);
  mfxFrameAllocResponse response{};
  EXPECT_EQ(frames.AllocFrames(&request, &response), MFX_ERR_NOT_INITIALIZED);  // no Init yet
  mfxAllocatorParams params;
  EXPECT_EQ(frames.Init(&params), MFX_ERR_NOT_INITIALIZED);
  ASSERT_EQ(frames.Init(nullptr), MFX_ERR_NONE);

  request.NumFrameSuggested = 0;
  EXPECT_EQ(frames.AllocFrames(&request, &response), MFX_ERR_MEMORY_ALLOC);
  EXPECT_EQ(frames.AllocFrames(nullptr, &response), MFX_ERR_MEMORY_ALLOC);
  request = Request(MFX_FOURCC_NV12, 32, 32, MFX_MEMTYPE_DXVA2_DECODER_TARGET, 1);
  EXPECT_EQ(frames.AllocFrames(&request, &response), MFX_ERR_UNSUPPORTED);  // not system memory
  request = Request(MFX_FOURCC_P010, 32, 32, MFX_MEMTYPE_SYSTEM_MEMORY, 1);
  EXPECT_EQ(frames.AllocFrames(&request, &response), MFX_ERR_UNSUPPORTED);  // a layout it can't hold
  mfxHDL handle = nullptr;
  EXPECT_EQ(frames.GetFrameHDL(nullptr, &handle), MFX_ERR_UNSUPPORTED);

  // A buffer block that is no frame.
  SysMemBufferAllocator buffers;
  mfxMemId plain = nullptr;
  ASSERT_EQ(buffers.AllocBuffer(200, MFX_MEMTYPE_SYSTEM_MEMORY, &plain), MFX_ERR_NONE);
  mfxFrameData data{};
  EXPECT_EQ(frames.LockFrame(plain, &data), MFX_ERR_INVALID_HANDLE);
  buffers.FreeBuffer(plain);
}

// Requests with the external-frame bit share one response per component
// while it holds enough frames; the frames go when the last user frees them.
TEST(MfxAllocators, ExternalFrameRequestsShareOneResponse) {
  SysMemFrameAllocator frames;
  ASSERT_EQ(frames.Init(nullptr), MFX_ERR_NONE);
  const mfxU16 shared = MFX_MEMTYPE_SYSTEM_MEMORY | MFX_MEMTYPE_EXTERNAL_FRAME | MFX_MEMTYPE_FROM_DECODE;
  mfxFrameAllocRequest request = Request(MFX_FOURCC_NV12, 32, 32, shared, 3);
  mfxFrameAllocResponse first{}, second{}, third{};
  ASSERT_EQ(frames.AllocFrames(&request, &first), MFX_ERR_NONE);
  request.NumFrameMin = 2;
  ASSERT_EQ(frames.AllocFrames(&request, &second), MFX_ERR_NONE);
  EXPECT_EQ(second.mids, first.mids);
  request.NumFrameMin = 4;
  EXPECT_EQ(frames.AllocFrames(&request, &third), MFX_ERR_MEMORY_ALLOC);
  // Another component gets its own.
  request = Request(MFX_FOURCC_NV12, 32, 32, MFX_MEMTYPE_SYSTEM_MEMORY | MFX_MEMTYPE_EXTERNAL_FRAME |
                                                 MFX_MEMTYPE_FROM_ENCODE, 1);
  ASSERT_EQ(frames.AllocFrames(&request, &third), MFX_ERR_NONE);
  EXPECT_NE(third.mids, first.mids);
  // Without the bit every request is its own.
  mfxFrameAllocResponse a{}, b{};
  request = Request(MFX_FOURCC_NV12, 32, 32, MFX_MEMTYPE_SYSTEM_MEMORY | MFX_MEMTYPE_FROM_DECODE, 1);
  ASSERT_EQ(frames.AllocFrames(&request, &a), MFX_ERR_NONE);
  ASSERT_EQ(frames.AllocFrames(&request, &b), MFX_ERR_NONE);
  EXPECT_NE(a.mids, b.mids);

  EXPECT_EQ(frames.FreeFrames(&first), MFX_ERR_NONE);
  mfxFrameData data{};
  EXPECT_EQ(frames.LockFrame(second.mids[0], &data), MFX_ERR_NONE);  // still held by the second user
  frames.UnlockFrame(second.mids[0], &data);
  EXPECT_EQ(frames.FreeFrames(&second), MFX_ERR_NONE);
  EXPECT_EQ(frames.FreeFrames(&second), MFX_ERR_INVALID_HANDLE);  // gone
  EXPECT_EQ(frames.FreeFrames(&a), MFX_ERR_NONE);
  // b and third are freed by Close.
}

TEST(MfxAllocators, VideoMemoryAllocatorRefusesEverything) {
  D3DFrameAllocator video;
  D3DAllocatorParams params;
  EXPECT_EQ(video.Init(&params), MFX_ERR_UNSUPPORTED);
  mfxFrameAllocRequest request = Request(MFX_FOURCC_NV12, 32, 32, MFX_MEMTYPE_DXVA2_DECODER_TARGET, 1);
  mfxFrameAllocResponse response{};
  EXPECT_EQ(video.AllocFrames(&request, &response), MFX_ERR_UNSUPPORTED);
  mfxFrameData data{};
  EXPECT_EQ(video.LockFrame(nullptr, &data), MFX_ERR_UNSUPPORTED);
  mfxFrameAllocator& callbacks = video;
  EXPECT_EQ(callbacks.Alloc(callbacks.pthis, &request, &response), MFX_ERR_UNSUPPORTED);
}

}  // namespace
