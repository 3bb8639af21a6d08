#include "h264/H264KeyFrames.h"

#include <algorithm>

namespace UMC {

void H264KeyFrames::Init(int32_t interval, int32_t idr) {
  m_interval = std::max(interval, 1);
  m_idr = std::max(idr, 1);
  m_untilKey = m_interval + 1;
  m_untilIdr = m_idr + 1;
  m_started = false;
}

KeyFrameKind H264KeyFrames::Next() {
  if (!m_started) {
    m_started = true;
    return KeyFrameKind::Idr;
  }
  if (--m_untilKey > 1) return KeyFrameKind::Inter;
  m_untilKey = m_interval + 1;
  if (--m_untilIdr > 1) return KeyFrameKind::Key;
  m_untilIdr = m_idr + 1;
  return KeyFrameKind::Idr;
}

}  // namespace UMC
