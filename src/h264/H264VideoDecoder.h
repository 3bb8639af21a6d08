#pragma once
// The software H.264 decoder. Annex B bytes are gathered into access units
// by our splitter and decoded by libavcodec on the configured threads; each
// picture goes out through the post-processing object, converted to the
// colour format of the output VideoData.
#include <cstdint>
#include <vector>

#include "h264/H264DecodeEngine.h"
#include "h264/H264DecoderParams.h"
#include "h264/NalUnitSplitter.h"
#include "umc/VideoCodecs.h"
#include "umc/VideoProcessing.h"

namespace UMC {

class H264VideoDecoder : public VideoDecoder {
 public:
  H264VideoDecoder() = default;
  ~H264VideoDecoder() override;

  // Needs H264VideoDecoderParams. Reads the headers in m_pData, if any; not
  // finding a sequence parameter set there is no failure (GetInfo reports it).
  Status Init(BaseCodecParams* params) override;
  // One picture per call at most. `in` null: what is gathered is decoded as
  // the stream's last access unit; UMC_ERR_END_OF_STREAM when nothing is left.
  Status GetFrame(MediaData* in, MediaData* out) override;
  // The stream's size and format from its sequence parameter set.
  Status GetInfo(BaseCodecParams* params) override;
  Status Close() override;
  Status Reset() override;

  int32_t GetThreadCount() const { return m_threads; }
  int32_t GetDeliveryMode() const { return m_deliveryMode; }

 private:
  Status Decode(VideoData& out);
  Status Deliver(VideoData& out);
  Status GetFrameUnguarded(MediaData* in, VideoData& out);

  bool m_initialized = false;
  int32_t m_threads = 1;
  int32_t m_deliveryMode = 1;
  NalUnitSplitter m_splitter;
  H264DecodeEngine m_engine;
  VideoProcessing* m_postProcessing = nullptr;
  bool m_ownsPostProcessing = false;
  VideoData m_picture;
  std::vector<uint8_t> m_unit;
};

}  // namespace UMC
