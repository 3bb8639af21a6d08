// Beside the Media SDK encode path: the presets table with its bit-rate
// curve, and the decoder half, which the front never reaches.
#include <mfx/mfxstructures.h>

#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "h264/CIntelMediaDecoder.h"
#include "h264/CIntelMediaH264Conversion.h"
#include "h264/MfxPresets.h"
#include "mfx/MfxTestSupport.h"

namespace {

using kestrelink::h264::ApplyPreset;

mfxVideoParam Params(mfxU32 codec, mfxU16 width, mfxU16 height, mfxU32 rateN, mfxU32 rateD) {
  mfxVideoParam p;
  std::memset(&p, 0, sizeof p);
  p.mfx.CodecId = codec;
  p.mfx.FrameInfo.Width = width;
  p.mfx.FrameInfo.Height = height;
  p.mfx.FrameInfo.FrameRateExtN = rateN;
  p.mfx.FrameInfo.FrameRateExtD = rateD;
  p.mfx.NumSlice = 4;  // cleared by every preset but the user's
  p.AsyncDepth = 3;
  return p;
}

TEST(MediaSdkPresets, NamesAndIds) {
  EXPECT_STREQ(kestrelink::h264::PresetById(1)->name, "Best quality");
  EXPECT_STREQ(kestrelink::h264::PresetById(0)->name, "Normal");
  EXPECT_STREQ(kestrelink::h264::PresetById(2)->name, "High Speed");
  EXPECT_STREQ(kestrelink::h264::PresetById(3)->name, "User Defined...");
  EXPECT_EQ(kestrelink::h264::PresetById(4), nullptr);
  EXPECT_EQ(kestrelink::h264::PresetByName("High Speed")->id, 2u);
  EXPECT_EQ(kestrelink::h264::PresetByName("Fast"), nullptr);
}

// 720x576 at 25 frames a second is 414720 * 25 / 30 = 345600 pixels a 1/30 s,
// between the AVC points 101376 (1000 kbit) and 414720 (4000 kbit):
// 1000 + 3000 * 244224 / 313344 = 3338.2 kbit, then scaled by the preset.
TEST(MediaSdkPresets, BitRateFromTheCurveScaledByPreset) {
  struct Case {
    uint32_t id;
    mfxU16 targetUsage;
    mfxU16 kbps;
  };
  for (const Case& c : {Case{0, 4, 2503}, Case{1, 1, 3338}, Case{2, 7, 1669}}) {
    SCOPED_TRACE(c.id);
    mfxVideoParam p = Params(MFX_CODEC_AVC, 720, 576, 25, 1);
    ASSERT_EQ(ApplyPreset(c.id, p), MFX_ERR_NONE);
    EXPECT_EQ(p.mfx.TargetUsage, c.targetUsage);
    EXPECT_EQ(p.mfx.TargetKbps, c.kbps);
    EXPECT_EQ(p.mfx.MaxKbps, c.kbps);
    EXPECT_EQ(p.mfx.GopRefDist, 1);
    EXPECT_EQ(p.mfx.GopPicSize, 100);
    EXPECT_EQ(p.mfx.NumSlice, 0);
    EXPECT_EQ(p.AsyncDepth, 0);
    EXPECT_EQ(p.mfx.FrameInfo.Width, 720);  // the frame description stays
    EXPECT_EQ(p.mfx.FrameInfo.FrameRateExtN, 25u);
  }
  // A frame of no size is taken as 720x576: at 30 frames a second 414720 pixels, the 4000 kbit point.
  mfxVideoParam p = Params(MFX_CODEC_VC1, 0, 0, 30, 1);
  ASSERT_EQ(ApplyPreset(1, p), MFX_ERR_NONE);
  EXPECT_EQ(p.mfx.FrameInfo.Width, 720);
  EXPECT_EQ(p.mfx.FrameInfo.Height, 576);
  EXPECT_EQ(p.mfx.TargetKbps, 6000);  // VC-1's point there
  EXPECT_EQ(p.mfx.GopPicSize, 0);     // only H.264 gets a GOP of 100
}

TEST(MediaSdkPresets, RefusalsAndTheUserPreset) {
  mfxVideoParam p = Params(MFX_CODEC_AVC, 720, 576, 25, 1);
  EXPECT_EQ(ApplyPreset(3, p), MFX_ERR_NONE);
  EXPECT_EQ(p.mfx.NumSlice, 4);  // left as it was
  EXPECT_EQ(ApplyPreset(4, p), MFX_ERR_UNSUPPORTED);
  mfxVideoParam hevc = Params(MFX_CODEC_HEVC, 720, 576, 25, 1);
  EXPECT_EQ(ApplyPreset(0, hevc), MFX_ERR_UNSUPPORTED);
  mfxVideoParam still = Params(MFX_CODEC_AVC, 720, 576, 0, 1);
  EXPECT_EQ(ApplyPreset(0, still), MFX_ERR_UNSUPPORTED);
  EXPECT_EQ(still.mfx.NumSlice, 4);
}

// NV12 to BGR24: black (16), white (235) and mid grey with neutral chroma,
// rows of width * 3 bytes.
TEST(MediaSdkDecoder, ConvertsNv12SurfacesToBgr24) {
  const uint32_t w = 4, h = 2, pitch = 8;
  std::vector<uint8_t> luma = {16, 16, 235, 235, 0, 0, 0, 0, 16, 16, 235, 235, 0, 0, 0, 0};
  std::vector<uint8_t> chroma(pitch, 128);
  mfxFrameSurface1 surface{};
  surface.Info.FourCC = MFX_FOURCC_NV12;
  surface.Info.Width = surface.Info.CropW = w;
  surface.Info.Height = surface.Info.CropH = h;
  surface.Data.Pitch = pitch;
  surface.Data.Y = luma.data();
  surface.Data.UV = chroma.data();
  CIntelMediaDecoder decoder;
  std::vector<uint8_t> image(w * h * 3, 7);
  ASSERT_TRUE(decoder.Convert(surface, image.data()));
  for (uint32_t r = 0; r < h; ++r)
    for (uint32_t x = 0; x < w; ++x)
      for (uint32_t c = 0; c < 3; ++c) EXPECT_EQ(image[(r * w + x) * 3 + c], x < 2 ? 0 : 255) << r << x << c;
  surface.Info.FourCC = MFX_FOURCC_YV12;
  EXPECT_FALSE(decoder.Convert(surface, image.data()));
}

// The decoder half answers false in every case, as the back-end settles it.
TEST(MediaSdkDecoder, DecodeAnswersFalse) {
  mfxtest::StandinCopy lib("decoder");
  mfxtest::ScopedDispatchKeys keys({{"standin", 0x0103, 0, 0, 1, lib.path()}});
  CIntelMediaH264Conversion backEnd;
  std::vector<uint8_t> record(64, 0), image(64 * 48 * 3);
  EXPECT_FALSE(backEnd.DecodeImage(1, record.data(), image.data()));  // not initialised
  ASSERT_TRUE(backEnd.Initialize(false, 64, 48, H264_SOURCE_YUV_PLANAR, 0, 0, 8, 0));
  EXPECT_FALSE(backEnd.DecodeImage(0, record.data(), image.data()));
  const uint8_t sps[] = {12, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0x67, 0x42};
  std::copy(std::begin(sps), std::end(sps), record.begin());
  EXPECT_FALSE(backEnd.DecodeImage(1, record.data(), image.data()));
  EXPECT_EQ(backEnd.GetLastDecodeFrameIndex(), 0u);
  backEnd.ReleaseDecodeResource();
}

}  // namespace
