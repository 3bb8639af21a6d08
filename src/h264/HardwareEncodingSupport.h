#pragma once
// The answer of CH264Conversion::IsHardwareEncodingSupported, kept process-wide.
#include <cstdint>

namespace kestrelink::h264 {

bool HardwareEncodingSupported();

// Forgets the kept answer, so that the next question opens sessions again.
void ForgetHardwareEncodingAnswer();

}  // namespace kestrelink::h264
