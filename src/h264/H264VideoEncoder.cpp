#include "h264/H264VideoEncoder.h"

namespace UMC {

H264VideoEncoder::~H264VideoEncoder() { H264VideoEncoder::Close(); }

Status H264VideoEncoder::Init(BaseCodecParams* params) {
  if (!params) return UMC_ERR_NULL_PTR;
  Close();
  H264EncoderParams full;
  if (auto* own = dynamic_cast<H264EncoderParams*>(params)) {
    full = *own;
  } else if (auto* video = dynamic_cast<VideoEncoderParams*>(params)) {
    full.info.width = video->info.width;
    full.info.height = video->info.height;
    full.info.bitRate = video->info.bitRate;
    full.info.frameRate = video->info.frameRate;
    full.numThreads = video->numThreads;
  } else {
    return UMC_ERR_NULL_PTR;
  }
  full.m_pData = nullptr;
  const Status base = BaseCodec::Init(params);
  if (base != UMC_OK) return base;
  const bool deep = full.bitDepthLuma >= 9 || full.bitDepthChroma >= 9 || (full.auxFormatIdc != 0 && full.bitDepthAux >= 9);
  // Deeper samples need a libx264 built for them; this build codes 8 bits.
  if (deep) return UMC_ERR_UNSUPPORTED;
  auto core = std::make_unique<H264EncoderCore>();
  const Status status = core->Init(full);
  if (status != UMC_OK) return status;
  m_core8u = std::move(core);
  m_coreKind = kCore8u;
  m_initParams = full;
  return UMC_OK;
}

Status H264VideoEncoder::GetFrame(MediaData* in, MediaData* out) {
  if (m_coreKind != kCore8u) return UMC_ERR_NOT_INITIALIZED;
  if (in && !dynamic_cast<VideoData*>(in)) return UMC_ERR_NULL_PTR;
  return m_core8u->GetFrame(static_cast<VideoData*>(in), out);
}

Status H264VideoEncoder::GetInfo(BaseCodecParams* params) {
  if (m_coreKind != kCore8u) return UMC_ERR_NOT_INITIALIZED;
  H264EncoderParams checked;
  const Status status = m_core8u->GetInfo(checked);
  if (status != UMC_OK) return status;
  if (auto* own = dynamic_cast<H264EncoderParams*>(params)) {
    MediaData* data = own->m_pData;
    *own = checked;
    own->m_pData = data;
  } else if (auto* video = dynamic_cast<VideoEncoderParams*>(params)) {
    video->info = checked.info;
    video->numThreads = checked.numThreads;
  } else {
    return UMC_ERR_NULL_PTR;
  }
  return UMC_OK;
}

Status H264VideoEncoder::Close() {
  m_core8u.reset();
  m_coreKind = kNoCore;
  return BaseCodec::Close();
}

Status H264VideoEncoder::Reset() {
  if (m_coreKind != kCore8u) return UMC_ERR_NOT_INITIALIZED;
  return m_core8u->Init(m_initParams);
}

}  // namespace UMC
