#pragma once
// The encoder's rate control: one quantiser per frame type, steered by a
// running count of the bits spent against the bits the rate allows. Inside,
// quantisers carry an offset of 6 per bit of depth above 8; readers and
// writers of a frame's quantiser see them without it.
#include <cstdint>

#include "umc/UmcStatus.h"

namespace UMC {

enum FrameType : int32_t { NONE_PICTURE = -1, I_PICTURE = 1, P_PICTURE = 2, B_PICTURE = 3 };

struct RateControlSetup {
  int32_t method = 2;  // 1, 2, 4 or 5
  int64_t luma = 0;    // luma samples of a frame
  double frameRate = 30.0;
  int32_t bitRate = 0;
  int32_t chromaFormatIdc = 1;
  bool auxiliaryPlane = false;
  int32_t depth = 8;  // the largest of the bit depths
  int32_t numSlices = 1;
};

class H264RateControl {
 public:
  // UMC_ERR_UNSUPPORTED for a method it does not run.
  Status Init(const RateControlSetup& setup);
  int32_t GetQP(FrameType type) const;
  void SetQP(FrameType type, int32_t qp);
  // Books a coded frame of `type` that took `bits` and picks the next quantiser.
  void PostFrame(FrameType type, int64_t bits);

  int32_t QpMax() const { return m_qpMax; }
  int32_t BitsPerFrame() const { return m_bitsPerFrame; }

 private:
  int32_t& Quant(FrameType type) { return type == I_PICTURE ? m_qpI : type == B_PICTURE ? m_qpB : m_qpP; }

  int32_t m_bitsPerFrame = 0;
  int64_t m_bitsDesired = 0;
  int64_t m_bitsEncoded = 0;
  int32_t m_qpI = 0, m_qpP = 0, m_qpB = 0, m_qpPrev = 0, m_qpMax = 51, m_qpOffset = 0;
  double m_q = 0, m_averageBits = 0;
  int32_t m_qWindow = 100, m_bitsWindow = 100, m_delayFrames = 30;
};

}  // namespace UMC
