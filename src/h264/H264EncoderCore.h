#pragma once
// The 8-bit encoder core: checks and completes the parameters, places key
// frames, runs the rate control, brings each source picture into a padded
// frame of the stream's chroma format, and has libx264 code the macroblocks
// of that frame with the quantiser chosen here. One frame in, one access unit
// out, with only the stream's own NAL units (parameter sets and slices).
#include <cstdint>

#include "h264/H264EncoderParams.h"
#include "h264/H264KeyFrames.h"
#include "h264/H264RateControl.h"
#include "umc/UmcStatus.h"
#include "umc/VideoData.h"
#include "umc/VideoProcessing.h"

struct x264_t;

namespace UMC {

class H264EncoderCore {
 public:
  H264EncoderCore() = default;
  ~H264EncoderCore();
  H264EncoderCore(const H264EncoderCore&) = delete;
  H264EncoderCore& operator=(const H264EncoderCore&) = delete;

  Status Init(const H264EncoderParams& params);
  // `in` null: nothing is held back, so UMC_ERR_END_OF_STREAM.
  Status GetFrame(VideoData* in, MediaData* out);
  Status GetInfo(H264EncoderParams& params) const;
  Status Close();

  // The quantiser the last frame was coded with.
  int32_t LastQuantiser() const { return m_lastQuantiser; }

 private:
  Status OpenEngine();
  Status WriteAccessUnit(const void* nals, int count, MediaData* out) const;

  H264EncoderParams m_params;
  H264KeyFrames m_keyFrames;
  H264RateControl m_rateControl;
  VideoProcessing m_inputStage;
  VideoData m_frame;  // padded to whole macroblocks, in the stream's chroma format
  x264_t* m_engine = nullptr;
  int64_t m_frameCount = 0;
  int32_t m_lastQuantiser = 0;
};

}  // namespace UMC
