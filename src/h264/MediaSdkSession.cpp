#include "h264/MediaSdkSession.h"

#include <cstring>

namespace kestrelink::h264 {

namespace {
// The largest frame the hardware is given; the probe describes one of it.
constexpr uint32_t kProbeWidth = 1920, kProbeHeight = 1088;
}  // namespace

mfxVideoParam DefaultEncodeParams() {
  mfxVideoParam params;
  std::memset(&params, 0, sizeof params);
  params.mfx.CodecId = MFX_CODEC_AVC;
  params.mfx.CodecProfile = MFX_PROFILE_AVC_MAIN;
  params.mfx.NumThread = 1;
  params.mfx.TargetUsage = MFX_TARGETUSAGE_BALANCED;
  params.mfx.GopPicSize = 30;
  params.mfx.GopRefDist = 1;
  params.mfx.GopOptFlag = MFX_GOP_STRICT;
  params.mfx.IdrInterval = 0;
  params.mfx.RateControlMethod = MFX_RATECONTROL_CBR;
  params.mfx.TargetKbps = 6000;
  params.mfx.EncodedOrder = 0;
  params.IOPattern = MFX_IOPATTERN_IN_SYSTEM_MEMORY;
  return params;
}

void DescribeFrame(mfxFrameInfo& info, uint32_t width, uint32_t height, double frameRate) {
  info.FourCC = MFX_FOURCC_NV12;
  info.Width = info.CropW = mfxU16((width + 15) & 0xFFF0);
  info.Height = info.CropH = mfxU16((height + 15) & 0xFFF0);
  info.CropX = info.CropY = 0;
  info.PicStruct = MFX_PICSTRUCT_PROGRESSIVE;
  info.ChromaFormat = MFX_CHROMAFORMAT_YUV420;
  info.FrameRateExtN = mfxU32(int(frameRate) * 100);
  info.FrameRateExtD = 100;
}

mfxStatus QueryAvcEncoder(mfxSession session, uint32_t width, uint32_t height) {
  mfxVideoParam in = DefaultEncodeParams(), out;
  DescribeFrame(in.mfx.FrameInfo, width, height, 30.0);
  in.mfx.NumThread = 0;
  std::memcpy(&out, &in, sizeof out);
  return MFXVideoENCODE_Query(session, &in, &out);
}

bool MediaSdkCanEncode(mfxIMPL impl) {
  mfxVersion version{{1, 1}};
  mfxSession session = nullptr;
  if (MFXInit(impl, &version, &session) < MFX_ERR_NONE || session == nullptr) return false;
  const bool encodes = QueryAvcEncoder(session, kProbeWidth, kProbeHeight) >= MFX_ERR_NONE;
  MFXClose(session);
  return encodes;
}

}  // namespace kestrelink::h264
