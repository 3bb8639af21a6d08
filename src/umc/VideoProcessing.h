#pragma once
// Copies a picture into another with the output's colour format: the
// encoder's input stage (4:2:0 to 4:2:0, 4:2:2 or luma alone) and the
// decoder's output stage (4:2:0, 4:2:2 and luma alone to RGB24, bytes B G R).
// Rows run over the process-wide team.
#include <cstdint>
#include <vector>

#include "umc/BaseCodec.h"
#include "umc/VideoData.h"

namespace UMC {

class VideoProcessing : public BaseCodec {
 public:
  Status Init(BaseCodecParams* params) override;
  Status SetParams(BaseCodecParams* params);
  // Both must be VideoData of one size; UMC_ERR_UNSUPPORTED for a pair of
  // formats it does not convert. Sets the output's data size on success.
  Status GetFrame(MediaData* in, MediaData* out) override;
  Status GetInfo(BaseCodecParams* params) override;
  Status Reset() override { return UMC_OK; }

 private:
  Status ToRgb24(const VideoData& in, VideoData& out);
  Status ToPlanar(const VideoData& in, VideoData& out);
  Status LastOddRow(const VideoData& in, const uint8_t* const chroma[2], const int chromaStep[2], VideoData& out);

  VideoProcessingParams m_params;
  std::vector<uint8_t> m_neutralChroma;  // one row of 128s for pictures with no chroma
  std::vector<uint8_t> m_lastRows;       // scratch for an odd last row
};

}  // namespace UMC
