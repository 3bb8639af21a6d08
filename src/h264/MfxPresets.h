#pragma once
// The encoder presets: four named rows and what applying one does to a
// parameter record, with a bit-rate curve per codec. No encode path uses them.
#include <cstdint>

#include <mfx/mfxstructures.h>

namespace kestrelink::h264 {

struct EncoderPreset {
  uint32_t id;
  const char* name;
};

// The preset of that id or name, or nullptr.
const EncoderPreset* PresetById(uint32_t id);
const EncoderPreset* PresetByName(const char* name);

// Kilobits for a frame of pixelsPer30th = Width * Height * frameRate / 30 on
// the codec's curve, by linear interpolation between its two neighbouring
// points; false for a codec without a curve.
bool CurveKbps(mfxU32 codec, double pixelsPer30th, double& kbps);

// Applies preset id to params. Id 3 leaves them; an id above 3, a codec
// without a curve or a frame rate of 0 is MFX_ERR_UNSUPPORTED.
mfxStatus ApplyPreset(uint32_t id, mfxVideoParam& params);

}  // namespace kestrelink::h264
