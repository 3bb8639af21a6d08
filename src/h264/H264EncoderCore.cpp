#include "h264/H264EncoderCore.h"

#include <algorithm>
#include <cstring>

#include "h264/AnnexB.h"
#include "h264/FrameEdges.h"
#include "h264/H264EngineParams.h"
#include "h264/H264ParamCheck.h"

namespace UMC {

namespace {

int32_t AlignTo16(int32_t value) { return (value + 15) & ~15; }

ColorFormat FrameFormat(int32_t chromaFormatIdc) {
  return chromaFormatIdc == 0 ? GRAY : chromaFormatIdc == 2 ? YUV422 : YUV420;
}

}  // namespace

H264EncoderCore::~H264EncoderCore() { Close(); }

Status H264EncoderCore::Init(const H264EncoderParams& params) {
  Close();
  m_params = params;
  Status status = CheckEncoderParams(m_params);
  if (status != UMC_OK) return status;
  const int32_t width = m_params.info.width, height = m_params.info.height;
  if (m_params.rateControlMethod != 0) {
    RateControlSetup setup;
    setup.method = m_params.rateControlMethod;
    setup.luma = int64_t(width) * height;
    setup.frameRate = m_params.info.frameRate;
    setup.bitRate = m_params.info.bitRate;
    setup.chromaFormatIdc = m_params.chromaFormatIdc;
    setup.auxiliaryPlane = m_params.auxFormatIdc != 0;
    setup.depth = std::max({m_params.bitDepthLuma, m_params.bitDepthChroma, m_params.bitDepthAux});
    setup.numSlices = m_params.numSlices;
    status = m_rateControl.Init(setup);
    if (status != UMC_OK) return status;
  }
  m_keyFrames.Init(m_params.keyFrameInterval, m_params.idrInterval);

  // The frame of the encoder: rows of (aligned width + 191) & ~63 bytes.
  const int32_t alignedWidth = AlignTo16(width), alignedHeight = AlignTo16(height);
  status = m_frame.Init(alignedWidth, alignedHeight, FrameFormat(m_params.chromaFormatIdc), 8);
  if (status != UMC_OK) return status;
  for (int32_t p = 0; p < m_frame.GetNumPlanes(); ++p) {
    const int32_t planeWidth = m_frame.GetPlaneInfo(p)->width;
    m_frame.SetPlanePitch(uint64_t((planeWidth + 191) & ~63), p);
  }
  status = m_frame.Alloc();
  if (status != UMC_OK) return status;
  VideoProcessingParams stage;
  m_inputStage.Init(&stage);
  status = OpenEngine();
  if (status != UMC_OK) Close();
  return status;
}

Status H264EncoderCore::OpenEngine() {
  x264_param_t engineParams;
  FillEngineParams(m_params, engineParams);
  m_engine = x264_encoder_open(&engineParams);
  return m_engine ? UMC_OK : UMC_ERR_INIT;
}

Status H264EncoderCore::GetInfo(H264EncoderParams& params) const {
  if (!m_engine) return UMC_ERR_NOT_INITIALIZED;
  params = m_params;
  return UMC_OK;
}

Status H264EncoderCore::Close() {
  if (m_engine) x264_encoder_close(m_engine);
  m_engine = nullptr;
  m_frame.Close();
  m_frameCount = 0;
  return UMC_OK;
}

Status H264EncoderCore::GetFrame(VideoData* in, MediaData* out) {
  if (!m_engine) return UMC_ERR_NOT_INITIALIZED;
  if (!in) return UMC_ERR_END_OF_STREAM;  // no frame is ever held back
  if (!out) return UMC_ERR_NULL_PTR;
  Status status = m_inputStage.GetFrame(in, &m_frame);
  if (status != UMC_OK) return status;
  RepeatEdges(m_frame, in->GetWidth(), in->GetHeight());

  const KeyFrameKind kind = m_keyFrames.Next();
  const FrameType type = kind == KeyFrameKind::Inter ? P_PICTURE : I_PICTURE;
  const int32_t qp = m_params.rateControlMethod != 0 ? m_rateControl.GetQP(type)
                     : type == I_PICTURE                ? m_params.quantI
                                                        : m_params.quantP;

  x264_picture_t picture, coded;
  x264_picture_init(&picture);
  picture.img.i_csp = EngineColourSpace(m_params.chromaFormatIdc);
  picture.img.i_plane = m_frame.GetNumPlanes();
  for (int32_t p = 0; p < m_frame.GetNumPlanes(); ++p) {
    picture.img.plane[p] = m_frame.GetPlanePointer(p);
    picture.img.i_stride[p] = int(m_frame.GetPlanePitch(p));
  }
  picture.i_type = kind == KeyFrameKind::Idr ? X264_TYPE_IDR : kind == KeyFrameKind::Key ? X264_TYPE_I : X264_TYPE_P;
  picture.i_qpplus1 = std::clamp(qp, 0, 51) + 1;
  picture.i_pts = m_frameCount++;
  x264_nal_t* nals = nullptr;
  int count = 0;
  if (x264_encoder_encode(m_engine, &nals, &count, &picture, &coded) < 0) return UMC_ERR_FAILED;
  m_lastQuantiser = picture.i_qpplus1 - 1;

  status = WriteAccessUnit(nals, count, out);
  if (status == UMC_OK && m_params.rateControlMethod != 0)
    m_rateControl.PostFrame(type, int64_t(out->GetDataSize()) * 8);
  return status;
}

// Copies the parameter sets and slices of one access unit to `out`, and
// writes the profile this encoder settled into each sequence parameter set.
Status H264EncoderCore::WriteAccessUnit(const void* nalList, int count, MediaData* out) const {
  const auto* nals = static_cast<const x264_nal_t*>(nalList);
  uint8_t* target = out->GetDataPointer();
  const size_t capacity = out->GetBufferSize() - size_t(out->GetDataPointer() - out->GetBufferPointer());
  size_t used = 0;
  for (int i = 0; i < count; ++i) {
    const x264_nal_t& nal = nals[i];
    if (nal.i_type != NAL_SPS && nal.i_type != NAL_PPS && nal.i_type != NAL_SLICE && nal.i_type != NAL_IDR_SLICE)
      continue;
    const size_t size = size_t(nal.i_payload);
    if (!target || used + size > capacity) {
      out->SetDataSize(0);
      return UMC_ERR_NOT_ENOUGH_BUFFER;
    }
    std::memcpy(target + used, nal.p_payload, size);
    if (nal.i_type == NAL_SPS) {
      const size_t header = StartCodeLength(target + used, size);
      if (header > 0 && size > header + 1) target[used + header + 1] = uint8_t(m_params.profileIdc);
    }
    used += size;
  }
  out->SetDataSize(used);
  return UMC_OK;
}

}  // namespace UMC
