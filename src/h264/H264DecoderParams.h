#pragma once
// The H.264 decoder's parameter record.
#include <cstdint>

#include "umc/CodecParams.h"

namespace UMC {

class H264VideoDecoderParams : public VideoDecoderParams {
 public:
  int32_t m_entropyCodingType = 0;
  int32_t m_DPBSize = 16;
  int32_t m_outputDelay = 0;
};

}  // namespace UMC
