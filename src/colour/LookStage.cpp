// The look stage and the corrector's side of looks: loading, the 16-bit
// per-sample tables and the reload by file time.
#include "colour/LookStage.h"

#include <kestrelink/CIppBayerCorrector.h>

#include "colour/BayerCorrectorImpl.h"
#include "colour/InPlaceRows.h"
#include "colour/LookGpu.h"
#include "colour/LookLut.h"
#include "colour/LookLutCache.h"
#include "colour/LookRows.h"

namespace kestrelink::colour {
namespace {

// Index into a 1D curve: the sample shifted by the difference of the
// curve's and the samples' bit counts, kept inside the curve.
uint32_t CurveIndex(uint32_t v, int32_t shift, uint32_t last) {
  const uint32_t i = shift >= 0 ? v << shift : v >> -shift;
  return i < last ? i : last;
}

int32_t ClampShift(int64_t shift) { return shift < -31 ? -31 : shift > 15 ? 15 : int32_t(shift); }

float FullScale(uint32_t bitDepth) { return float((uint64_t(1) << (bitDepth < 32 ? bitDepth : 32)) - 1); }

bool Has1D(const LookLut& look) { return look.lut1D[0] && look.lut1D[1] && look.lut1D[2] && look.size1D > 0; }

// The image as `step`-byte pixels of 8-bit samples.
template <int step, bool rgbIn>
bool Apply8(CBayerCorrectorImpl& s, const LookLut& look, void* image, bool flip, int32_t shift1D) {
  const uint32_t w = s.width;
  if (s.cbAlgorithm == CB_ALG_LOOK_3D_TABLE) {
    const uint8_t* table = look.table3D.get();
    if (!table) return false;
    ApplyRowsInPlace(image, w, s.height, step, flip,
                     [&](const uint8_t* in, uint8_t* out) { LookTableRow<step, rgbIn>(in, out, w, table); });
  } else if (s.cbAlgorithm == CB_ALG_LOOK_3D_EXACT) {
    if (!look.cornerWeights[0]) return false;
    ApplyRowsInPlace(image, w, s.height, step, flip,
                     [&](const uint8_t* in, uint8_t* out) { LookExact8Row<step, rgbIn>(in, out, w, look); });
  } else {
    LookCurveBytes t;
    const uint32_t last = uint32_t(look.size1D) - 1;
    for (uint32_t v = 0; v < 256; ++v) {
      const uint32_t i = CurveIndex(v, shift1D, last);
      t.red[v] = ToByte(double(look.lut1D[0][i]) * 255.0);
      t.green[v] = ToByte(double(look.lut1D[1][i]) * 255.0);
      t.blue[v] = ToByte(double(look.lut1D[2][i]) * 255.0);
    }
    ApplyRowsInPlace(image, w, s.height, step, flip,
                     [&](const uint8_t* in, uint8_t* out) { LookCurve8Row<step, rgbIn>(in, out, w, t); });
  }
  return true;
}

// The image as 48-bit pixels; there is no table at 16 bits, so 5 and 6 both
// interpolate at each pixel.
template <bool rgbIn>
bool Apply16(CBayerCorrectorImpl& s, const LookLut& look, void* image, uint32_t bitDepth, bool flip,
             int32_t shift1D) {
  const LookWords p{&look,
                    s.lookCellIndex.get(),
                    s.lookCellRemainder.get(),
                    s.lookFraction.get(),
                    s.lookOneMinusFraction.get(),
                    kLookFractionEntries - 1,
                    FullScale(bitDepth),
                    shift1D};
  const uint32_t w = s.width;
  const bool threeD = s.cbAlgorithm == CB_ALG_LOOK_3D_TABLE || s.cbAlgorithm == CB_ALG_LOOK_3D_EXACT;
  ApplyRowsInPlace(image, w, s.height, 6, flip, [&](const uint8_t* in, uint8_t* out) {
    const auto* from = reinterpret_cast<const uint16_t*>(in);
    auto* to = reinterpret_cast<uint16_t*>(out);
    if (threeD)
      LookExact16Row<rgbIn>(from, to, w, p);
    else
      LookCurve16Row<rgbIn>(from, to, w, p);
  });
  return true;
}

}  // namespace

bool ApplyLookStage(CBayerCorrectorImpl& s, void* image, uint32_t formatCode, uint32_t bitsPerPixel,
                    uint32_t bitDepth, bool flip) {
  const LookLut* look = s.look;
  if (!look || !image) return false;
  // On the GPU only the handle counts: a look whose table the GPU refused
  // fails here though the processor tables exist, and cbAlgorithm and the
  // flip play no part (settled behaviours of the format).
  if (LookGpuAvailable()) return ApplyLookOnGpu(*look, image, formatCode, s.width, s.height, bitDepth);
  const bool threeD = s.cbAlgorithm == CB_ALG_LOOK_3D_TABLE || s.cbAlgorithm == CB_ALG_LOOK_3D_EXACT;
  // CORRECTION_LOOK with any other algorithm takes the 1D table.
  if (threeD ? !look->lut3D : !Has1D(*look)) return false;
  const int32_t log1D = look->size1DLog2;
  // The 1D shift of RGB24 follows the depth given, not 8 (a settled behaviour of the format).
  switch (uint64_t(formatCode) << 8 | bitsPerPixel) {
    case uint64_t(kFormatBgr) << 8 | 24: return Apply8<3, false>(s, *look, image, flip, ClampShift(log1D - 8));
    case uint64_t(kFormatBgrx) << 8 | 32: return Apply8<4, false>(s, *look, image, flip, ClampShift(log1D - 8));
    case uint64_t(kFormatRgb) << 8 | 24:
      return Apply8<3, true>(s, *look, image, flip, ClampShift(int64_t(log1D) - bitDepth));
    case uint64_t(kFormatRgbx) << 8 | 32: return Apply8<4, true>(s, *look, image, flip, ClampShift(log1D - 8));
    case uint64_t(kFormatBgr) << 8 | 48:
      return Apply16<false>(s, *look, image, bitDepth, flip, ClampShift(int64_t(log1D) - bitDepth));
    case uint64_t(kFormatRgb) << 8 | 48:
      return Apply16<true>(s, *look, image, bitDepth, flip, ClampShift(int64_t(log1D) - bitDepth));
    default: return false;
  }
}

void BuildLookTables(CBayerCorrectorImpl& s) {
  const LookLut* look = s.look;
  if (!look || !s.bInitialised || !look->lut3D || s.bitDepth > 16) return;
  const uint32_t total = 1u << s.bitDepth, step = total / uint32_t(look->size);
  if (step == 0) return;
  for (uint32_t v = 0; v < total; ++v) {
    s.lookCellIndex[v] = v / step;
    s.lookCellRemainder[v] = v % step;
  }
  if (s.bitDepth < 9) return;
  // A step past the fraction tables (16 bits with fewer than 8 nodes) fills
  // what fits; the stage reads no further.
  for (uint32_t k = 0; k < step && k < kLookFractionEntries; ++k) {
    s.lookFraction[k] = float(k) / float(step);
    s.lookOneMinusFraction[k] = 1.0f - s.lookFraction[k];
  }
}

void ReloadLookIfNewer(CBayerCorrectorImpl& s) {
  if (s.look) TheLookLutCache().Reload(s.look->path.c_str());
}

}  // namespace kestrelink::colour

using namespace kestrelink::colour;

bool CIppBayerCorrector::LoadIridasLookLUT(const char* path, bool& has3D, bool& has1D) {
  CBayerCorrectorImpl& s = *m_pImpl;
  s.look = TheLookLutCache().Load(path);  // a failed load drops the previous look
  if (!s.look) return false;
  has3D = s.look->lut3D != nullptr;
  has1D = s.look->lut1D[0] && s.look->lut1D[1] && s.look->lut1D[2];
  return true;
}
