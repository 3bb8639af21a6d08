#pragma once
// How the encoder completes and corrects its parameters before it opens:
// the ordered check, the profile walk, the level from size and rate, and the
// reference limit of the level.
#include <cstdint>

#include "h264/H264EncoderParams.h"
#include "umc/UmcStatus.h"

namespace UMC {

// Replaces bad values silently, in a fixed order; fails only on a size below
// 1 (UMC_ERR_INIT) and on what the profile walk rejects. Sets the process-wide
// team size to the checked thread count.
Status CheckEncoderParams(H264EncoderParams& params);

// Raises profile_idc until it admits the tools and formats asked for.
Status WalkProfile(H264EncoderParams& params);

// The first level whose macroblock and macroblock-rate limits fit.
int32_t DeriveLevel(int32_t width, int32_t height, double frameRate);

// Reference frames the level's decoded picture buffer holds, at most 16.
int32_t ReferenceLimit(int32_t levelIdc, int32_t width, int32_t height, bool fieldCoding);

}  // namespace UMC
