#include "h264/H264VideoDecoder.h"

#include <cmath>
#include <new>

#include <omp.h>

namespace UMC {

H264VideoDecoder::~H264VideoDecoder() { H264VideoDecoder::Close(); }

Status H264VideoDecoder::Init(BaseCodecParams* params) {
  auto* own = dynamic_cast<H264VideoDecoderParams*>(params);
  if (!own) return UMC_ERR_NULL_PTR;
  Close();
  Status status = BaseCodec::Init(params);
  if (status != UMC_OK) return status;
  m_postProcessing = own->m_pPostProcessing;
  if (!m_postProcessing) {
    m_postProcessing = new VideoProcessing;
    m_ownsPostProcessing = true;
  }
  m_threads = own->numThreads <= 0 ? omp_get_num_procs() : own->numThreads > 8 ? 8 : own->numThreads;
  m_deliveryMode = std::fabs(own->playbackRate - 1.0) > 0.0001 ? 2 : 1;
  // Annex B start codes only; length-prefixed streams (streamSubtype 8) are not read.
  status = m_engine.Open(m_threads);
  if (status != UMC_OK) return status;
  m_splitter.Reset();
  m_initialized = true;
  if (own->m_pData && own->m_pData->GetDataSize() > 0) m_splitter.WalkHeaders(*own->m_pData);
  return UMC_OK;
}

Status H264VideoDecoder::Close() {
  m_engine.Close();
  m_splitter.Reset();
  if (m_ownsPostProcessing) delete m_postProcessing;
  m_postProcessing = nullptr;
  m_ownsPostProcessing = false;
  m_initialized = false;
  return BaseCodec::Close();
}

Status H264VideoDecoder::Reset() {
  if (!m_initialized) return UMC_ERR_NOT_INITIALIZED;
  m_splitter.Reset();
  return m_engine.Open(m_threads);
}

Status H264VideoDecoder::GetInfo(BaseCodecParams* params) {
  auto* own = dynamic_cast<VideoDecoderParams*>(params);
  if (!own) return UMC_ERR_NULL_PTR;
  if (!m_initialized) return UMC_ERR_NOT_INITIALIZED;
  if (!m_splitter.HasSps()) return UMC_ERR_NOT_ENOUGH_DATA;
  const H264SpsInfo& sps = m_splitter.Sps();
  own->info.width = sps.width;
  own->info.height = sps.height;
  own->info.colorFormat = sps.chromaFormatIdc == 0 ? GRAY : sps.chromaFormatIdc == 2 ? YUV422
                          : sps.chromaFormatIdc == 3                                 ? YUV444
                                                                                     : YUV420;
  own->info.streamType = kH264VideoStream;
  own->profiles = sps.profileIdc;
  own->numThreads = m_threads;
  return UMC_OK;
}

Status H264VideoDecoder::Deliver(VideoData& out) {
  const Status status = m_engine.Receive(m_picture);
  if (status != UMC_OK) return status;
  if (out.GetWidth() != m_picture.GetWidth() || out.GetHeight() != m_picture.GetHeight()) {
    // The stream changed its size: the output keeps its format and buffer, and takes the new size if it fits.
    uint8_t* buffer = out.GetBufferPointer();
    const size_t capacity = out.GetBufferSize();
    const Status sized = out.Init(m_picture.GetWidth(), m_picture.GetHeight(), out.GetColorFormat(), 0);
    if (sized != UMC_OK) return sized;
    const Status laid = out.SetBufferPointer(buffer, capacity);
    if (laid != UMC_OK) return laid;
  }
  return m_postProcessing->GetFrame(&m_picture, &out);
}

Status H264VideoDecoder::Decode(VideoData& out) {
  const Status sent = m_engine.Send(m_unit);
  m_unit.clear();
  const Status delivered = Deliver(out);
  return delivered == UMC_ERR_NOT_ENOUGH_DATA && sent != UMC_OK ? sent : delivered;
}

Status H264VideoDecoder::GetFrame(MediaData* in, MediaData* out) {
  if (!m_initialized) return UMC_ERR_NOT_INITIALIZED;
  auto* picture = dynamic_cast<VideoData*>(out);
  if (!picture) return UMC_ERR_NULL_PTR;
  try {
    return GetFrameUnguarded(in, *picture);
  } catch (const std::bad_alloc&) {
    return UMC_ERR_ALLOC;
  }
}

Status H264VideoDecoder::GetFrameUnguarded(MediaData* in, VideoData& out) {
  out.SetDataSize(0);
  if (!in) {
    if (m_splitter.Flush(m_unit)) return Decode(out);
    const Status waiting = Deliver(out);
    return waiting == UMC_ERR_NOT_ENOUGH_DATA ? UMC_ERR_END_OF_STREAM : waiting;
  }
  if (in->GetDataSize() < 4) {
    in->MoveDataPointer(int64_t(in->GetDataSize()));
    return UMC_ERR_NOT_ENOUGH_DATA;
  }
  Status status = Deliver(out);  // a picture the decoder still held
  while (status == UMC_ERR_NOT_ENOUGH_DATA && in->GetDataSize() > 4) {
    if (!m_splitter.NextAccessUnit(*in, m_unit)) break;
    status = Decode(out);
  }
  if (status != UMC_OK) return status == 1 ? UMC_ERR_NOT_ENOUGH_DATA : status;
  if (out.GetDataSize() == 1) {
    out.SetDataSize(0);
    return UMC_ERR_NOT_ENOUGH_DATA;
  }
  return out.GetDataSize() != 0 ? UMC_OK : UMC_ERR_NOT_ENOUGH_DATA;
}

}  // namespace UMC
