#pragma once
// The answer of CH264Conversion::IsHardwareEncodingSupported, and whether the
// front encodes through Media SDK, both kept process-wide.
#include <cstdint>

namespace kestrelink::h264 {

bool HardwareEncodingSupported();

// Whether a Media SDK session (MFX_IMPL_AUTO, API 1.1) can encode here: asked
// by the first CH264Conversion of the process, under a lock, and kept, as the
// system it stands for doesn't change while the process runs.
bool MediaSdkEncodesHere();

// Forgets both kept answers, so that the next questions open sessions again.
void ForgetHardwareEncodingAnswer();

}  // namespace kestrelink::h264
