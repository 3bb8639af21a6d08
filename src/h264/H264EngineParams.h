#pragma once
// The encoder's checked parameters in libx264's terms.
#include <cstdint>

extern "C" {
#include <x264.h>
}

#include "h264/H264EncoderParams.h"

namespace UMC {

// X264_CSP_I400, I420 or I422 for chroma_format_idc 0, 1 or 2.
int EngineColourSpace(int32_t chromaFormatIdc);

// libx264's settings for checked parameters. Its own rate control only ever
// sees a quantiser forced per frame (a mode that honours the whole range);
// look-ahead, frame threads, B frames, scene cuts and adaptive quantisation
// are off, so that each frame comes back at once with one quantiser.
void FillEngineParams(const H264EncoderParams& params, x264_param_t& engine);

}  // namespace UMC
