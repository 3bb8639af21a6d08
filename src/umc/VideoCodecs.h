#pragma once
// The two kinds of video codec; each is a BaseCodec that takes its own
// parameter class.
#include "umc/BaseCodec.h"

namespace UMC {

class VideoEncoder : public BaseCodec {};

class VideoDecoder : public BaseCodec {};

}  // namespace UMC
