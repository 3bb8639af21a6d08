#pragma once
// Parameter records of the codecs. Each class adds to its base; a codec
// tells them apart with dynamic_cast, so the base is polymorphic.
#include <cstdint>

#include "umc/ColorFormat.h"
#include "umc/VideoData.h"

namespace UMC {

class MediaData;
class MemoryAllocator;
class VideoProcessing;

inline constexpr int32_t kH264VideoStream = 0x180;  // the stream type of H.264 video

class BaseCodecParams {
 public:
  virtual ~BaseCodecParams() = default;

  MediaData* m_pData = nullptr;  // data for the codec to look at during Init
  MemoryAllocator* m_memoryAllocator = nullptr;
  uint32_t m_suggestedInputSize = 0;
  uint32_t m_suggestedOutputSize = 0;
  int32_t numThreads = 0;
  int32_t profiles = 0;
};

// The stream's picture, common to both directions.
struct VideoStreamInfo {
  int32_t width = 0;
  int32_t height = 0;
  ColorFormat colorFormat = YUV420;
  int32_t bitRate = 0;
  int32_t aspectRatioX = 1;
  int32_t aspectRatioY = 1;
  double frameRate = 30.0;
  int32_t streamType = kH264VideoStream;
  int32_t streamSubtype = 0;
};

class VideoDecoderParams : public BaseCodecParams {
 public:
  VideoStreamInfo info;
  uint32_t lFlags = 0;
  double playbackRate = 1.0;
  VideoProcessing* m_pPostProcessing = nullptr;  // not owned; null: the decoder makes its own
};

class VideoEncoderParams : public BaseCodecParams {
 public:
  VideoStreamInfo info;
  int32_t numEncodedFrames = 0;
  int32_t qualityMeasure = 51;
};

class VideoProcessingParams : public BaseCodecParams {
 public:
  int32_t interpolationMethod = 0;
  int32_t deinterlacingMethod = 0;
  CropRect rect;  // all zero: no cropping
};

}  // namespace UMC
