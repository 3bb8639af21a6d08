// Construction, settings and release of CIppBayerCorrector.
#include <kestrelink/CIppBayerCorrector.h>

#include "colour/BayerCorrectorImpl.h"
#include "colour/ChannelLuts.h"
#include "colour/LookStage.h"
#include "frame/ThreadSetup.h"

using namespace kestrelink::colour;

CBayerCorrectorImpl::CBayerCorrectorImpl()
    : redLut(new uint32_t[kLutEntries]),
      greenLut(new uint32_t[kLutEntries]),
      blueLut(new uint32_t[kLutEntries]),
      lookCellIndex(new uint32_t[kLutEntries]()),
      lookCellRemainder(new uint32_t[kLutEntries]()),
      lookOneMinusFraction(new float[kLookFractionEntries]()),
      lookFraction(new float[kLookFractionEntries]()) {
  ResetToIdentity(*this);
}

CIppBayerCorrector::CIppBayerCorrector() : m_pImpl(std::make_shared<CBayerCorrectorImpl>()) {
  kestrelink::SetupThreads(0);
}

CIppBayerCorrector::~CIppBayerCorrector() {
  if (m_pImpl.use_count() == 1) ReleaseCBResources();
}

void CIppBayerCorrector::SetBayerPattern(BAYERPATTERN pattern) {
  m_pImpl->bayerPattern = pattern;
  m_pImpl->bLutValid = false;
}

BAYERPATTERN CIppBayerCorrector::GetBayerPattern() { return m_pImpl->bayerPattern; }

void CIppBayerCorrector::SetColorCorrectionMode(CORRECTION_MODE mode) { m_pImpl->correctionMode = mode; }

CORRECTION_MODE CIppBayerCorrector::GetColorCorrectionMode() { return m_pImpl->correctionMode; }

bool CIppBayerCorrector::IsInitCBImageInfo() { return m_pImpl->bInitialised; }

// Frees nothing: size, depth, format, look and table contents stay; the
// pattern and mode go back to their first values and must be set again.
void CIppBayerCorrector::ReleaseCBResources() {
  CBayerCorrectorImpl& s = *m_pImpl;
  s.correctionMode = CORRECTION_MANUAL;
  s.lutBits = 8;
  s.bIdentityLut = s.bLutValid = s.bBgrInput = s.bInitialised = false;
  s.bayerPattern = BAYERPATTERN(0);
  s.cbAlgorithm = CORRECTIONAL_ALG(0);
  s.redOffset = s.greenOffset = s.blueOffset = 0;
}

void CIppBayerCorrector::SetColorBalance(int red, int green, int blue) {
  m_pImpl->redOffset = red;
  m_pImpl->greenOffset = green;
  m_pImpl->blueOffset = blue;
  m_pImpl->bLutValid = false;
}

void CIppBayerCorrector::GetColorBalance(int& red, int& green, int& blue) {
  red = m_pImpl->redOffset;
  green = m_pImpl->greenOffset;
  blue = m_pImpl->blueOffset;
}

void CIppBayerCorrector::SetCBAlgorithm(CORRECTIONAL_ALG algorithm) {
  m_pImpl->cbAlgorithm = algorithm;
  m_pImpl->bLutValid = false;
}

CORRECTIONAL_ALG CIppBayerCorrector::GetCBAlgorithm() { return m_pImpl->cbAlgorithm; }

bool CIppBayerCorrector::ForceRecalcAutoLUT() {
  if (m_pImpl->correctionMode != CORRECTION_AUTO) return false;
  m_pImpl->bLutValid = false;
  ReloadLookIfNewer(*m_pImpl);
  return true;
}
