// Raw colour-filter-array frames to BGR24, BGRx and BGR48, each followed by
// the correction stage the object is set up for. The interpolation writes
// blue-first planes and the flipped row order itself, which gives the same
// image as interpolating to RGB and exchanging red and blue on the way out.
#include <kestrelink/CIppBayerCorrector.h>

#include "colour/BayerCorrectorImpl.h"
#include "colour/ChannelLuts.h"
#include "colour/LookStage.h"
#include "convert/rows/ColourRowsPlanar.h"
#include "primitives/CfaDemosaic.h"
#include "primitives/CfaPack.h"
#include "platform/OpenMP.h"

using namespace kestrelink::colour;
using kestrelink::RowAt;
using kestrelink::cfa::Demosaic;
using kestrelink::cfa::PackPlanes;

namespace {

enum class FrameKind { Plain, Table, Look };

FrameKind KindOf(const CBayerCorrectorImpl& s) {
  const int mode = s.correctionMode, alg = s.cbAlgorithm;
  if (mode == CORRECTION_NONE) return FrameKind::Plain;
  if (mode != CORRECTION_MANUAL && mode != CORRECTION_AUTO) return FrameKind::Look;
  if (mode == CORRECTION_AUTO && alg >= CB_ALG_LOOK_1D && alg <= CB_ALG_LOOK_3D_EXACT) return FrameKind::Look;
  return FrameKind::Table;
}

IppiBayerGrid GridOf(BAYERPATTERN pattern) {
  switch (pattern) {
    case BAYER_GRBG: return ippiBayerGRBG;
    case BAYER_BGGR: return ippiBayerBGGR;
    case BAYER_RGGB: return ippiBayerRGGB;
    default: return ippiBayerGBRG;  // BAYER_GBRG, and any value out of the list
  }
}

bool Ready(const CBayerCorrectorImpl& s, const void* src, const void* dst) {
  return src && dst && s.bInitialised && s.width > 0 && s.height > 0;
}

// Right shift that narrows samples of the depth to bytes; depths up to 8 keep their bits.
uint32_t NarrowingShift(uint32_t bitDepth) { return bitDepth > 8 ? bitDepth - 8 : 0; }

// Interpolated rows packed by `pack(outRow, p0, p1, p2)`, planes blue first
// or red first; output row height-1-y with flip.
template <class Sample, class Pack>
void Interpolate(const CBayerCorrectorImpl& s, const void* src, bool blueFirst, bool flip, Pack pack) {
  const uint32_t h = s.height;
  Demosaic<Sample>(static_cast<const Sample*>(src), int64_t(s.width) * sizeof(Sample), s.width, h, GridOf(s.bayerPattern),
                   blueFirst, [&](uint32_t y, const Sample* p0, const Sample* p1, const Sample* p2) {
                     pack(flip ? h - 1 - y : y, p0, p1, p2);
                   });
}

template <class Sample>
void InterpolateToPixels(const CBayerCorrectorImpl& s, const void* src, void* dst, bool blueFirst, bool flip) {
  const size_t rowBytes = size_t(s.width) * 3 * sizeof(Sample);
  const uint32_t w = s.width;
  Interpolate<Sample>(s, src, blueFirst, flip, [&](uint32_t row, const Sample* p0, const Sample* p1, const Sample* p2) {
    PackPlanes(p0, p1, p2, RowAt(dst, rowBytes, row), w);
  });
}

// 16-bit samples narrowed by the depth into BGR24 pixels, or into the first
// three bytes of BGRx pixels.
void InterpolateNarrowed(const CBayerCorrectorImpl& s, const void* src, void* dst, bool flip, bool fourBytes) {
  const uint32_t w = s.width, shift = NarrowingShift(s.bitDepth);
  const auto& rows = kestrelink::rows::PlanarRows();
  const size_t rowBytes = size_t(w) * (fourBytes ? 4 : 3);
  Interpolate<uint16_t>(s, src, true, flip, [&](uint32_t row, const uint16_t* b, const uint16_t* g, const uint16_t* r) {
    const auto* d0 = reinterpret_cast<const uint8_t*>(b);
    const auto* d1 = reinterpret_cast<const uint8_t*>(g);
    const auto* d2 = reinterpret_cast<const uint8_t*>(r);
    if (fourBytes)
      rows.words_shift_to_bgrx(d0, d1, d2, RowAt(dst, rowBytes, row), w, shift);
    else
      rows.words_shift_to_bgr24(d0, d1, d2, RowAt(dst, rowBytes, row), w, shift);
  });
}

// 8-bit samples into the first three bytes of BGRx pixels.
void InterpolateExpanded(const CBayerCorrectorImpl& s, const void* src, void* dst, bool flip) {
  const uint32_t w = s.width;
  const auto pack = kestrelink::cfa::CfaRows().pack8x4;
  Interpolate<uint8_t>(s, src, true, flip, [&](uint32_t row, const uint8_t* b, const uint8_t* g, const uint8_t* r) {
    pack(b, g, r, RowAt(dst, size_t(w) * 4, row), w);
  });
}

}  // namespace

bool CIppBayerCorrector::RawConvertToBGR24(void* src, void* dst, bool bFlip) {
  kestrelink::platform::SetBlockTimeZero();
  CBayerCorrectorImpl& s = *m_pImpl;
  if (!Ready(s, src, dst)) return false;
  const FrameKind kind = KindOf(s);
  if (s.bitsPerPixel == 8) {
    if (kind == FrameKind::Look) {  // the look stage reads RGB and writes BGR in place
      InterpolateToPixels<uint8_t>(s, src, dst, false, false);
      return ApplyLookStage(s, dst, kFormatRgb, 24, 8, bFlip);
    }
    InterpolateToPixels<uint8_t>(s, src, dst, true, bFlip);
  } else if (s.bitsPerPixel == 16) {
    InterpolateNarrowed(s, src, dst, bFlip, false);
    if (kind == FrameKind::Look) return ApplyLookStage(s, dst, kFormatBgr, 24, 8, false);
  } else {
    return false;
  }
  return kind == FrameKind::Plain || ApplyChannelLuts(s, dst, kFormatBgr, 24, 8, false);
}

// On a look frame the flip has been done by the expansion and is asked of
// the look stage again, so a flipped request comes out unflipped there (a
// settled behaviour of the BGRx path).
bool CIppBayerCorrector::RawConvertToBGRx(void* src, void* dst, bool bFlip) {
  kestrelink::platform::SetBlockTimeZero();
  CBayerCorrectorImpl& s = *m_pImpl;
  if (!Ready(s, src, dst)) return false;
  if (s.bitsPerPixel == 8)
    InterpolateExpanded(s, src, dst, bFlip);
  else if (s.bitsPerPixel == 16)
    InterpolateNarrowed(s, src, dst, bFlip, true);
  else
    return false;
  switch (KindOf(s)) {
    case FrameKind::Plain: return true;
    case FrameKind::Look: return ApplyLookStage(s, dst, kFormatBgrx, 32, 8, bFlip);
    default: return ApplyChannelLuts(s, dst, kFormatBgrx, 32, 8, false);
  }
}

bool CIppBayerCorrector::RawConvertToBGR48(void* src, void* dst, bool bFlip) {
  kestrelink::platform::SetBlockTimeZero();
  CBayerCorrectorImpl& s = *m_pImpl;
  if (!Ready(s, src, dst) || s.bitsPerPixel != 16) return false;
  switch (KindOf(s)) {
    case FrameKind::Look:
      InterpolateToPixels<uint16_t>(s, src, dst, false, false);
      return ApplyLookStage(s, dst, kFormatRgb, 48, s.bitDepth, bFlip);
    case FrameKind::Plain: InterpolateToPixels<uint16_t>(s, src, dst, true, bFlip); return true;
    default:
      InterpolateToPixels<uint16_t>(s, src, dst, true, bFlip);
      return ApplyChannelLuts(s, dst, kFormatBgr, 48, s.bitDepth, false);
  }
}
