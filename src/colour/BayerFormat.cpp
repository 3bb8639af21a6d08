// The image format of CIppBayerCorrector: SetImageInfo4CB fixes it once,
// CheckFormat4CB follows a frame whose format may have changed.
#include <kestrelink/CIppBayerCorrector.h>

#include "colour/BayerCorrectorImpl.h"
#include "colour/ChannelLuts.h"
#include "colour/LookStage.h"

using namespace kestrelink::colour;

namespace {

bool FormatAccepted(uint32_t bitsPerPixel, uint32_t bitDepth, uint32_t formatCode, bool bgr) {
  if (!bgr) return formatCode == kFormatRaw || formatCode == kFormatRawAlt;
  return (formatCode == kFormatBgr && bitsPerPixel == 24 && bitDepth == 8) ||
         (formatCode == kFormatBgr && bitsPerPixel == 48) || (formatCode == kFormatBgrx && bitsPerPixel == 32);
}

bool LookTablesWanted(const CBayerCorrectorImpl& s) {
  return s.correctionMode == CORRECTION_AUTO &&
         (s.cbAlgorithm == CB_ALG_LOOK_3D_TABLE || s.cbAlgorithm == CB_ALG_LOOK_3D_EXACT);
}

// The tables the mode builds for itself: manual ones, or the look's per-sample
// tables; either makes them valid. Other modes leave them as they are.
void BuildTablesOfTheMode(CBayerCorrectorImpl& s) {
  if (s.correctionMode == CORRECTION_MANUAL) {
    BuildManualLut(s);
    s.bLutValid = true;
  } else if (LookTablesWanted(s)) {
    BuildLookTables(s);
    s.bLutValid = true;
  }
}

}  // namespace

bool CIppBayerCorrector::SetImageInfo4CB(uint32_t width, uint32_t height, uint32_t bitsPerPixel, uint32_t bitDepth,
                                         uint32_t formatCode, bool bBGR) {
  CBayerCorrectorImpl& s = *m_pImpl;
  if (s.bInitialised) return false;
  if (!FormatAccepted(bitsPerPixel, bitDepth, formatCode, bBGR)) return false;
  s.bBgrInput = bBGR;
  s.width = width;
  s.height = height;
  s.bitsPerPixel = bitsPerPixel;
  s.bitDepth = bitDepth;
  s.formatCode = formatCode;
  s.lutBits = 8;
  s.bInitialised = true;
  if (!s.bLutValid) BuildTablesOfTheMode(s);  // a loaded predefined table survives here
  return true;
}

// More forgiving than SetImageInfo4CB, with its settled gaps: a change of
// bBGR does not update bBgrInput, and a depth change keeps the old format code.
bool CIppBayerCorrector::CheckFormat4CB(uint32_t width, uint32_t height, uint32_t bitsPerPixel, uint32_t bitDepth,
                                        uint32_t formatCode, bool bBGR) {
  CBayerCorrectorImpl& s = *m_pImpl;
  if (!s.bInitialised || !FormatAccepted(bitsPerPixel, bitDepth, formatCode, bBGR)) return false;
  const bool depthSame = bitDepth == s.bitDepth;
  if (bBGR != s.bBgrInput) {
    s.width = width;
    s.height = height;
    s.bitsPerPixel = bitsPerPixel;
    if (depthSame) {
      s.formatCode = formatCode;
      return true;
    }
  } else if (depthSame) {
    if (width == s.width && height == s.height && bitsPerPixel == s.bitsPerPixel && formatCode == s.formatCode) {
      if (!s.bLutValid) BuildTablesOfTheMode(s);
      return true;
    }
    s.width = width;
    s.height = height;
    s.bitsPerPixel = bitsPerPixel;
    s.formatCode = formatCode;
    return true;
  }
  // The depth differs.
  s.width = width;
  s.height = height;
  s.bitsPerPixel = bitsPerPixel;
  s.bitDepth = bitDepth;
  if (s.correctionMode == CORRECTION_MANUAL) {
    BuildManualLut(s);  // bLutValid stays as it was
  } else if (s.correctionMode == CORRECTION_AUTO) {
    if (LookTablesWanted(s)) {
      BuildLookTables(s);
      s.bLutValid = true;
    } else {
      s.bLutValid = false;
    }
  }
  return true;
}
