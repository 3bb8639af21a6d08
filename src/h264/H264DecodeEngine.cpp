#include "h264/H264DecodeEngine.h"

#include <cstring>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
#include <libavutil/log.h>
#include <libavutil/pixfmt.h>
}

namespace UMC {

namespace {

ColorFormat PictureFormat(int format) {
  switch (format) {
    case AV_PIX_FMT_YUV420P: case AV_PIX_FMT_YUVJ420P: return YUV420;
    case AV_PIX_FMT_YUV422P: case AV_PIX_FMT_YUVJ422P: return YUV422;
    case AV_PIX_FMT_GRAY8: return GRAY;
    default: return NONE;
  }
}

}  // namespace

H264DecodeEngine::~H264DecodeEngine() { Close(); }

Status H264DecodeEngine::Open(int32_t threads) {
  Close();
  av_log_set_level(AV_LOG_QUIET);
  const AVCodec* codec = avcodec_find_decoder(AV_CODEC_ID_H264);
  if (!codec) return UMC_ERR_INIT;
  m_context = avcodec_alloc_context3(codec);
  m_frame = av_frame_alloc();
  m_packet = av_packet_alloc();
  if (!m_context || !m_frame || !m_packet) {
    Close();
    return UMC_ERR_ALLOC;
  }
  // Slice threads only: frame threads would hold pictures back.
  m_context->thread_count = threads;
  m_context->thread_type = FF_THREAD_SLICE;
  if (avcodec_open2(m_context, codec, nullptr) < 0) {
    Close();
    return UMC_ERR_INIT;
  }
  return UMC_OK;
}

void H264DecodeEngine::Close() {
  avcodec_free_context(&m_context);
  av_frame_free(&m_frame);
  av_packet_free(&m_packet);
}

Status H264DecodeEngine::Send(const std::vector<uint8_t>& unit) {
  if (!m_context) return UMC_ERR_NOT_INITIALIZED;
  if (unit.empty()) return UMC_OK;
  m_packetBytes.resize(unit.size() + AV_INPUT_BUFFER_PADDING_SIZE);
  std::memcpy(m_packetBytes.data(), unit.data(), unit.size());
  std::memset(m_packetBytes.data() + unit.size(), 0, AV_INPUT_BUFFER_PADDING_SIZE);
  m_packet->data = m_packetBytes.data();
  m_packet->size = int(unit.size());
  int result = avcodec_send_packet(m_context, m_packet);
  if (result == AVERROR(EAGAIN)) {
    // A picture is still waiting; it is dropped so that the unit can go in.
    av_frame_unref(m_frame);
    avcodec_receive_frame(m_context, m_frame);
    av_frame_unref(m_frame);
    result = avcodec_send_packet(m_context, m_packet);
  }
  m_packet->data = nullptr;
  m_packet->size = 0;
  return result < 0 ? UMC_ERR_INVALID_STREAM : UMC_OK;
}

Status H264DecodeEngine::Receive(VideoData& picture) {
  if (!m_context) return UMC_ERR_NOT_INITIALIZED;
  av_frame_unref(m_frame);
  if (avcodec_receive_frame(m_context, m_frame) < 0) return UMC_ERR_NOT_ENOUGH_DATA;
  const ColorFormat format = PictureFormat(m_frame->format);
  if (format == NONE) return UMC_ERR_UNSUPPORTED;
  if (picture.GetWidth() != m_frame->width || picture.GetHeight() != m_frame->height ||
      picture.GetColorFormat() != format) {
    const Status status = picture.Init(m_frame->width, m_frame->height, format, 8);
    if (status != UMC_OK) return status;
  }
  for (int32_t p = 0; p < picture.GetNumPlanes(); ++p) {
    if (m_frame->linesize[p] <= 0) return UMC_ERR_UNSUPPORTED;
    picture.SetPlanePitch(uint64_t(m_frame->linesize[p]), p);
    picture.SetPlanePointer(m_frame->data[p], p);
  }
  return UMC_OK;
}

}  // namespace UMC
