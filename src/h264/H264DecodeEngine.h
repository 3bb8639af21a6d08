#pragma once
// libavcodec's H.264 decoder behind one small face: whole access units in,
// decoded pictures out as planar VideoData views (4:2:0, 4:2:2 or luma alone,
// 8 bits), valid until the next call.
#include <cstdint>
#include <vector>

#include "umc/UmcStatus.h"
#include "umc/VideoData.h"

struct AVCodecContext;
struct AVFrame;
struct AVPacket;

namespace UMC {

class H264DecodeEngine {
 public:
  H264DecodeEngine() = default;
  ~H264DecodeEngine();
  H264DecodeEngine(const H264DecodeEngine&) = delete;
  H264DecodeEngine& operator=(const H264DecodeEngine&) = delete;

  Status Open(int32_t threads);
  void Close();
  bool IsOpen() const { return m_context != nullptr; }

  // Hands one access unit to the decoder; UMC_ERR_INVALID_STREAM when it refuses it.
  Status Send(const std::vector<uint8_t>& unit);
  // The next decoded picture, if one is ready: UMC_OK with `picture` laid over
  // it, UMC_ERR_NOT_ENOUGH_DATA if none, UMC_ERR_UNSUPPORTED for a sample
  // format other than 8-bit planar.
  Status Receive(VideoData& picture);

 private:
  AVCodecContext* m_context = nullptr;
  AVFrame* m_frame = nullptr;
  AVPacket* m_packet = nullptr;
  std::vector<uint8_t> m_packetBytes;  // the unit with the decoder's zero padding behind it
};

}  // namespace UMC
