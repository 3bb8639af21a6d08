#pragma once
// Where key frames fall: the first frame of a stream opens it as an IDR
// frame; after it, every `interval`-th frame is a key frame, and every
// `idr`-th key frame an IDR frame. With an interval of 12 the key frames are
// frames 1, 13, 25, ...; never by content.
#include <cstdint>

namespace UMC {

enum class KeyFrameKind { Inter, Key, Idr };

class H264KeyFrames {
 public:
  void Init(int32_t interval, int32_t idr);
  KeyFrameKind Next();

 private:
  int32_t m_interval = 1, m_idr = 1;
  int32_t m_untilKey = 2, m_untilIdr = 2;
  bool m_started = false;
};

}  // namespace UMC
