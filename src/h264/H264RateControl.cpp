#include "h264/H264RateControl.h"

#include <algorithm>
#include <cmath>

namespace UMC {

Status H264RateControl::Init(const RateControlSetup& s) {
  int64_t luma = s.luma;
  double frameRate = s.frameRate;
  int32_t windows[3];
  switch (s.method) {
    case 1: case 4: windows[0] = 8, windows[1] = 8, windows[2] = 4; break;
    case 2: case 5: windows[0] = windows[1] = windows[2] = 0; break;
    default: return UMC_ERR_UNSUPPORTED;
  }
  if (s.method == 4 || s.method == 5) {  // per slice
    luma /= std::max(s.numSlices, 1);
    frameRate *= std::max(s.numSlices, 1);
  }
  m_qWindow = windows[0] < 1 ? 100 : windows[0];
  m_bitsWindow = windows[1] < 1 ? 100 : windows[1];
  m_delayFrames = windows[2] < 1 ? 30 : windows[2];

  m_qpOffset = 6 * (s.depth - 8);
  m_qpMax = 51 + m_qpOffset;
  m_bitsPerFrame = int32_t(s.bitRate / frameRate);
  m_bitsDesired = m_bitsEncoded = 0;

  int64_t samples = s.chromaFormatIdc == 0 ? luma
                    : s.chromaFormatIdc == 1 ? luma + luma / 2
                    : s.chromaFormatIdc == 2 ? 2 * luma
                                             : 3 * luma;
  if (s.auxiliaryPlane) samples += luma;
  const double x = double(samples * s.depth / 8) * 2.0 / 3.0 * frameRate / s.bitRate;
  const double first = std::trunc(std::pow(10.0, std::log10(x) * 0.56 / 1.75 + 1.19) * 0.8333333333333334 + 0.5);
  const int32_t qp = int32_t(std::clamp(first, 1.0, double(m_qpMax)));
  m_qpI = m_qpP = m_qpB = m_qpPrev = qp;
  m_q = 1.0 / qp;
  m_averageBits = m_bitsPerFrame;
  return UMC_OK;
}

int32_t H264RateControl::GetQP(FrameType type) const {
  const int32_t qp = type == I_PICTURE ? m_qpI : type == B_PICTURE ? m_qpB : m_qpP;
  return qp - m_qpOffset;
}

void H264RateControl::SetQP(FrameType type, int32_t qp) {
  const int32_t value = std::clamp(qp + m_qpOffset, 1, m_qpMax);
  if (type == B_PICTURE) {
    m_qpB = value;
  } else {
    m_qpI = m_qpP = value;
  }
  if (m_bitsEncoded == 0) {
    m_qpPrev = value;
    m_q = 1.0 / value;
  }
}

void H264RateControl::PostFrame(FrameType type, int64_t bits) {
  const double lowest = 1.0 / m_qpMax;
  m_bitsDesired += m_bitsPerFrame;
  m_bitsEncoded += bits;
  m_q = std::clamp(m_q + (1.0 / Quant(type) - m_q) / m_qWindow, lowest, 1.0);
  if (!(type == I_PICTURE && m_delayFrames >= 30)) m_averageBits += (double(bits) - m_averageBits) / m_delayFrames;
  m_qpB = std::clamp((((m_qpPrev + m_qpP) * 563) >> 10) + 1, 1, m_qpMax);

  const double ratio = m_bitsPerFrame / m_averageBits;
  double y = m_q * ratio * ratio;
  const double dev =
      std::clamp(double(m_bitsEncoded - m_bitsDesired) / m_bitsWindow / m_bitsPerFrame, -1.0, 1.0);
  y = std::clamp(y + (lowest - y) * dev, lowest, 1.0);

  const int32_t t = int32_t(1.0 / y + 0.5), p = m_qpP;
  int32_t next;
  if (t >= p + 5) next = p + 3;
  else if (t >= p + 3) next = p + 2;
  else if (t == p + 2) next = p + 1;
  else if (t <= p - 5) next = p - 3;
  else if (t <= p - 3) next = p - 2;
  else next = std::max(t, p - 1);
  if (type != B_PICTURE) m_qpPrev = p;
  m_qpI = m_qpP = std::clamp(next, 1, m_qpMax);
}

}  // namespace UMC
