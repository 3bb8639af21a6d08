// The channel table stage and BGRApplyColorBalance.
#include <kestrelink/CIppBayerCorrector.h>

#include "colour/BayerCorrectorImpl.h"
#include "colour/ChannelLuts.h"
#include "colour/InPlaceRows.h"
#include "colour/LookStage.h"
#include "platform/OpenMP.h"

namespace kestrelink::colour {
namespace {

// Byte tables of one call: the low 8 bits of the first 256 entries.
struct ByteLuts {
  uint8_t b[256], g[256], r[256];
  explicit ByteLuts(const CBayerCorrectorImpl& s) {
    for (int i = 0; i < 256; ++i) {
      b[i] = uint8_t(s.blueLut[i]);
      g[i] = uint8_t(s.greenLut[i]);
      r[i] = uint8_t(s.redLut[i]);
    }
  }
};

template <int step>
void MapBytes(const uint8_t* in, uint8_t* out, uint32_t w, const ByteLuts& t) {
  for (uint32_t x = 0; x < w; ++x, in += step, out += step) {
    out[0] = t.b[in[0]];
    out[1] = t.g[in[1]];
    out[2] = t.r[in[2]];
  }
}

void MapWords(const uint16_t* in, uint16_t* out, uint32_t w, const CBayerCorrectorImpl& s) {
  for (uint32_t x = 0; x < w; ++x, in += 3, out += 3) {
    out[0] = uint16_t(s.blueLut[in[0]]);
    out[1] = uint16_t(s.greenLut[in[1]]);
    out[2] = uint16_t(s.redLut[in[2]]);
  }
}

}  // namespace

bool ApplyChannelLuts(CBayerCorrectorImpl& s, void* image, uint32_t formatCode, uint32_t bitsPerPixel,
                      uint32_t bitDepth, bool flip) {
  if (!s.bLutValid) {
    RunEstimator(s, image, formatCode, bitsPerPixel, bitDepth);
    s.bLutValid = true;
  }
  const uint32_t w = s.width, h = s.height;
  if (formatCode == kFormatBgr && bitsPerPixel == 24) {
    const ByteLuts t(s);
    ApplyRowsInPlace(image, w, h, 3, flip, [&](const uint8_t* in, uint8_t* out) { MapBytes<3>(in, out, w, t); });
  } else if (formatCode == kFormatBgr && bitsPerPixel == 48) {
    ApplyRowsInPlace(image, w, h, 6, flip, [&](const uint8_t* in, uint8_t* out) {
      MapWords(reinterpret_cast<const uint16_t*>(in), reinterpret_cast<uint16_t*>(out), w, s);
    });
  } else if (formatCode == kFormatBgrx && bitsPerPixel == 32) {
    const ByteLuts t(s);
    ApplyRowsInPlace(image, w, h, 4, flip, [&](const uint8_t* in, uint8_t* out) { MapBytes<4>(in, out, w, t); });
  } else {
    return false;
  }
  return true;
}

}  // namespace kestrelink::colour

using namespace kestrelink::colour;

// correctionMode plays no part here: a BGR image is corrected in every mode.
bool CIppBayerCorrector::BGRApplyColorBalance(void* image, bool bFlip) {
  kestrelink::platform::SetBlockTimeZero();
  CBayerCorrectorImpl& s = *m_pImpl;
  if (!image || !s.bInitialised) return false;
  if (s.bIdentityLut) return true;
  if (s.cbAlgorithm == CB_ALG_LOOK_1D || s.cbAlgorithm == CB_ALG_LOOK_3D_TABLE || s.cbAlgorithm == CB_ALG_LOOK_3D_EXACT)
    return ApplyLookStage(s, image, s.formatCode, s.bitsPerPixel, s.bitDepth, bFlip);
  return ApplyChannelLuts(s, image, s.formatCode, s.bitsPerPixel, s.bitDepth, bFlip);
}
