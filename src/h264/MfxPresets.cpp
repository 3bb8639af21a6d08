#include "h264/MfxPresets.h"

#include <cstring>
#include <iterator>

namespace kestrelink::h264 {

namespace {

constexpr EncoderPreset kPresets[] = {{1, "Best quality"}, {0, "Normal"}, {2, "High Speed"}, {3, "User Defined..."}};
constexpr uint32_t kUserDefined = 3;

struct CurvePoint {
  double pixels, kbps;
};
constexpr CurvePoint kAvcCurve[] = {{25344, 225}, {101376, 1000}, {414720, 4000}, {2058240, 5000}};
constexpr CurvePoint kVc1Curve[] = {{25344, 250}, {101376, 1500}, {414720, 6000}, {2058240, 7500}};
constexpr CurvePoint kMpeg2Curve[] = {{0, 0}, {414720, 12000}};

// Target usage and bit-rate scale by preset id 0, 1, 2.
constexpr mfxU16 kTargetUsage[] = {4, 1, 7};
constexpr double kRateScale[] = {0.75, 1.0, 0.5};

template <size_t N>
double Interpolate(const CurvePoint (&curve)[N], double pixels) {
  size_t upper = 1;  // the segment whose ends bracket pixels; the end segments reach beyond
  while (upper + 1 < N && pixels > curve[upper].pixels) ++upper;
  const CurvePoint &a = curve[upper - 1], &b = curve[upper];
  return a.kbps + (b.kbps - a.kbps) * (pixels - a.pixels) / (b.pixels - a.pixels);
}

}  // namespace

const EncoderPreset* PresetById(uint32_t id) {
  for (const auto& preset : kPresets)
    if (preset.id == id) return &preset;
  return nullptr;
}

const EncoderPreset* PresetByName(const char* name) {
  if (name == nullptr) return nullptr;
  for (const auto& preset : kPresets)
    if (std::strcmp(preset.name, name) == 0) return &preset;
  return nullptr;
}

bool CurveKbps(mfxU32 codec, double pixelsPer30th, double& kbps) {
  switch (codec) {
    case MFX_CODEC_AVC: kbps = Interpolate(kAvcCurve, pixelsPer30th); return true;
    case MFX_CODEC_VC1: kbps = Interpolate(kVc1Curve, pixelsPer30th); return true;
    case MFX_CODEC_MPEG2: kbps = Interpolate(kMpeg2Curve, pixelsPer30th); return true;
    default: return false;
  }
}

mfxStatus ApplyPreset(uint32_t id, mfxVideoParam& params) {
  if (id == kUserDefined) return MFX_ERR_NONE;
  if (id > kUserDefined) return MFX_ERR_UNSUPPORTED;
  double kbps = 0;
  if (!CurveKbps(params.mfx.CodecId, 0, kbps)) return MFX_ERR_UNSUPPORTED;
  const mfxFrameInfo& in = params.mfx.FrameInfo;
  const double frameRate = in.FrameRateExtD != 0 ? double(in.FrameRateExtN) / in.FrameRateExtD : 0.0;
  if (frameRate == 0) return MFX_ERR_UNSUPPORTED;

  const mfxFrameInfo info = in;
  const mfxU32 codec = params.mfx.CodecId;
  std::memset(&params, 0, sizeof params);
  params.mfx.FrameInfo = info;
  params.mfx.CodecId = codec;
  mfxFrameInfo& frame = params.mfx.FrameInfo;
  if (frame.Width == 0 || frame.Height == 0) {
    frame.Width = 720;
    frame.Height = 576;
  }
  params.mfx.TargetUsage = kTargetUsage[id];
  CurveKbps(codec, double(frame.Width) * frame.Height * frameRate / 30.0, kbps);
  params.mfx.TargetKbps = params.mfx.MaxKbps = mfxU16(kbps * kRateScale[id]);
  params.mfx.GopRefDist = 1;
  if (codec == MFX_CODEC_AVC) params.mfx.GopPicSize = 100;
  return MFX_ERR_NONE;
}

}  // namespace kestrelink::h264
