#pragma once
// The general JPEG library behind CIjlJpegConversion, over libjpeg: a
// property block that describes the frame in memory and the JPEG side, and
// the read and write modes the back-end asks for. Frames in memory have
// tightly packed rows.
//
// Colour codes: 1 RGB, 2 BGR, 3 YCbCr, 4 gray, 5 RGBA, 6 YCbCrA, 255 other
// (samples pass without colour transform). Sampling: 1 4:4:4, 2 4:2:2,
// 3 4:1:1 (2 x 2 subsampling), 0 none (one channel).
//
// What libjpeg can't do by itself is done here: RGBA frames are turned into
// YCbCrA (the full-range transform of the JFIF format, alpha kept) and
// written as four components, Y and A at full size, Cb and Cr subsampled
// 2 x 2; a YCbCr 4:2:2 frame in memory (bytes Y0 Cb Y1 Cr) is written with
// Y at full size and Cb and Cr halved across. Reading does the reverse, and
// takes the first chroma sample of each pair without smoothing.
#include <cstdint>

namespace kestrelink::jpegfront {

enum IjlColour : int { kIjlRgb = 1, kIjlBgr = 2, kIjlYcbcr = 3, kIjlGray = 4, kIjlRgba = 5, kIjlYcbcra = 6,
                       kIjlOther = 255 };
enum IjlSampling : int { kIjlSamplingNone = 0, kIjl444 = 1, kIjl422 = 2, kIjl411 = 3 };
enum IjlMode : int { kIjlReadParamsBuffer = 1, kIjlReadImageBuffer = 3, kIjlWriteFile = 8, kIjlWriteBuffer = 9 };
// Statuses: 0 success, negative otherwise.
enum IjlStatus : int { kIjlOk = 0, kIjlCodecError = -1, kIjlBadParameter = -2, kIjlBufferTooSmall = -3,
                       kIjlFileError = -4 };

struct IjlProperties {
  // The frame in memory.
  uint8_t* dibBytes = nullptr;
  int dibWidth = 0, dibHeight = 0, dibChannels = 0;
  int dibColour = kIjlBgr, dibSampling = kIjl444;
  // The JPEG side: a file, or a buffer of jpgSizeBytes (its capacity when
  // writing; the bytes written after a buffer write).
  const char* jpgFile = nullptr;
  uint8_t* jpgBytes = nullptr;
  uint32_t jpgSizeBytes = 0;
  int jpgWidth = 0, jpgHeight = 0, jpgChannels = 0;
  int jpgColour = kIjlYcbcr, jpgSampling = kIjl411;
  int quality = 75;
};

int IjlWrite(IjlProperties& properties, IjlMode mode);
int IjlRead(IjlProperties& properties, IjlMode mode);

}  // namespace kestrelink::jpegfront
