#pragma once
// The software H.264 encoder: an 8-bit core and a deep one, chosen at Init
// by the bit depths; every operation goes to the chosen core.
#include <cstdint>
#include <memory>

#include "h264/H264EncoderCore.h"
#include "h264/H264EncoderParams.h"
#include "umc/VideoCodecs.h"

namespace UMC {

class H264VideoEncoder : public VideoEncoder {
 public:
  enum CoreKind : int32_t { kCore8u = 0, kCoreDeep = 1, kNoCore = 2 };

  H264VideoEncoder() = default;
  ~H264VideoEncoder() override;

  // H264EncoderParams in full; any other class gives width, height, bit
  // rate, frame rate and thread count over the defaults.
  Status Init(BaseCodecParams* params) override;
  // `in` is the source VideoData (null drains), `out` receives one access unit.
  Status GetFrame(MediaData* in, MediaData* out) override;
  Status GetInfo(BaseCodecParams* params) override;
  Status Close() override;
  Status Reset() override;

  CoreKind GetCoreKind() const { return m_coreKind; }
  int32_t LastQuantiser() const { return m_core8u ? m_core8u->LastQuantiser() : 0; }

 private:
  CoreKind m_coreKind = kNoCore;
  std::unique_ptr<H264EncoderCore> m_core8u;
  H264EncoderParams m_initParams;
};

}  // namespace UMC
