#include "umc/VideoProcessing.h"

#include <algorithm>
#include <cstring>

#include "frame/RowLoop.h"
#include "primitives/YCbCrToRgb.h"

namespace UMC {

namespace {

bool IsPlanarYuv(ColorFormat format) { return format == YUV420 || format == YUV422 || format == GRAY; }

// Chroma row of a planar picture that serves output luma row `y` (two rows share one in 4:2:0).
const uint8_t* ChromaRow(const VideoData& picture, int32_t plane, int32_t y) {
  const PlaneInfo* info = picture.GetPlaneInfo(plane);
  return info->data + uint64_t(y / info->heightDivider) * info->pitch;
}

}  // namespace

// The kernel converts row pairs: a last odd row goes through a two-row scratch
// that reads the row twice.
Status VideoProcessing::LastOddRow(const VideoData& in, const uint8_t* const chroma[2], const int chromaStep[2],
                                   VideoData& out) {
  const int32_t width = in.GetWidth(), y = in.GetHeight() - 1;
  const size_t rowBytes = size_t(width) * 3;
  if (m_lastRows.size() < 2 * rowBytes) m_lastRows.resize(2 * rowBytes);
  const Ipp8u* src[3] = {in.GetPlanePointer(0) + uint64_t(y) * in.GetPlanePitch(0),
                         chroma[0] + uint64_t(y / 2) * uint32_t(chromaStep[0]),
                         chroma[1] + uint64_t(y / 2) * uint32_t(chromaStep[1])};
  const int steps[3] = {0, 0, 0};
  if (width < 2) return UMC_OK;
  const int status = ippiYCbCr420ToBGR_8u_P3C3R(src, steps, m_lastRows.data(), int(rowBytes), IppiSize{width & ~1, 2});
  std::memcpy(out.GetPlanePointer(0) + uint64_t(y) * out.GetPlanePitch(0), m_lastRows.data(), rowBytes);
  return status == 0 ? UMC_OK : UMC_ERR_FAILED;
}

Status VideoProcessing::Init(BaseCodecParams* params) {
  const Status status = BaseCodec::Init(params);
  return status != UMC_OK ? status : SetParams(params);
}

Status VideoProcessing::SetParams(BaseCodecParams* params) {
  auto* own = dynamic_cast<VideoProcessingParams*>(params);
  if (!own) return UMC_ERR_NULL_PTR;
  m_params = *own;
  m_params.m_pData = nullptr;
  return UMC_OK;
}

Status VideoProcessing::GetInfo(BaseCodecParams* params) {
  auto* own = dynamic_cast<VideoProcessingParams*>(params);
  if (!own) return UMC_ERR_NULL_PTR;
  *own = m_params;
  return UMC_OK;
}

Status VideoProcessing::GetFrame(MediaData* in, MediaData* out) {
  auto* source = dynamic_cast<VideoData*>(in);
  auto* target = dynamic_cast<VideoData*>(out);
  if (!source || !target) return UMC_ERR_NULL_PTR;
  // A larger target takes the source in its top-left corner (the encoder pads the rest).
  if (source->GetWidth() > target->GetWidth() || source->GetHeight() > target->GetHeight())
    return UMC_ERR_INVALID_PARAMS;
  const ColorFormat from = source->GetColorFormat(), to = target->GetColorFormat();
  const int32_t sourcePlanes = to == GRAY || from == GRAY ? 1 : 3;
  if (source->GetNumPlanes() < sourcePlanes || target->GetNumPlanes() < 1) return UMC_ERR_NULL_PTR;
  if (source->GetPlaneInfo(0)->sampleSize != 1) return UMC_ERR_UNSUPPORTED;  // 8-bit samples only
  for (int32_t i = 0; i < sourcePlanes; ++i)
    if (!source->GetPlanePointer(i)) return UMC_ERR_NULL_PTR;
  for (int32_t i = 0; i < target->GetNumPlanes(); ++i)
    if (!target->GetPlanePointer(i)) return UMC_ERR_NULL_PTR;
  if (!IsPlanarYuv(from)) return UMC_ERR_UNSUPPORTED;
  const Status status = to == RGB24 ? ToRgb24(*source, *target)
                        : IsPlanarYuv(to) && (from != GRAY || to == GRAY) ? ToPlanar(*source, *target)
                                                                           : UMC_ERR_UNSUPPORTED;
  if (status == UMC_OK) {
    const uint64_t used = uint64_t(target->GetPlanePointer(0) - target->GetBufferPointer()) + target->GetMappingSize();
    target->SetDataSize(std::min<uint64_t>(used, target->GetBufferSize()));
  }
  return status;
}

// Luma row by row; chroma rows of the output take the source row that covers them.
Status VideoProcessing::ToPlanar(const VideoData& in, VideoData& out) {
  const int32_t height = in.GetHeight(), planes = out.GetNumPlanes();
  kestrelink::ForEachRow(uint32_t(height), false, [&](uint32_t y, uint32_t) {
    for (int32_t p = 0; p < planes; ++p) {
      const PlaneInfo* target = out.GetPlaneInfo(p);
      if (int32_t(y) % target->heightDivider != 0) continue;  // this chroma row was written with its pair
      const uint8_t* src = p == 0 ? in.GetPlanePointer(0) + uint64_t(y) * in.GetPlanePitch(0)
                                  : ChromaRow(in, p, int32_t(y));
      const int32_t columns = (in.GetWidth() + target->widthDivider - 1) / target->widthDivider;
      std::memcpy(target->data + uint64_t(y / target->heightDivider) * target->pitch, src,
                  size_t(columns) * size_t(target->sampleSize));
    }
  });
  return UMC_OK;
}

// Two rows at a time through the 4:2:0 kernel; a 4:2:2 source is read at its
// even chroma rows, and a picture without chroma reads one neutral row.
Status VideoProcessing::ToRgb24(const VideoData& in, VideoData& out) {
  const int32_t width = in.GetWidth(), height = in.GetHeight();
  const ColorFormat from = in.GetColorFormat();
  const uint8_t* chroma[2];
  int chromaStep[2];
  if (width < 2) return UMC_ERR_UNSUPPORTED;
  if (from == GRAY) {
    if (m_neutralChroma.size() < size_t(width)) m_neutralChroma.assign(size_t(width), 128);
    chroma[0] = chroma[1] = m_neutralChroma.data();
    chromaStep[0] = chromaStep[1] = 0;
  } else {
    const int rowsPerPair = from == YUV422 ? 2 : 1;
    for (int p = 0; p < 2; ++p) {
      chroma[p] = in.GetPlanePointer(p + 1);
      chromaStep[p] = int(in.GetPlanePitch(p + 1)) * rowsPerPair;
    }
  }
  const int lumaStep = int(in.GetPlanePitch(0)), outStep = int(out.GetPlanePitch(0));
  uint8_t* const target = out.GetPlanePointer(0);
  const uint32_t pairs = uint32_t(height) / 2;
  int status = kestrelink::ForEachBand(pairs, [&](uint32_t first, uint32_t count) {
    const uint32_t y0 = 2 * first;
    const Ipp8u* src[3] = {in.GetPlanePointer(0) + uint64_t(y0) * uint32_t(lumaStep),
                           chroma[0] + uint64_t(first) * uint32_t(chromaStep[0]),
                           chroma[1] + uint64_t(first) * uint32_t(chromaStep[1])};
    const int steps[3] = {lumaStep, chromaStep[0], chromaStep[1]};
    return ippiYCbCr420ToBGR_8u_P3C3R(src, steps, target + uint64_t(y0) * uint32_t(outStep), outStep,
                                      IppiSize{width & ~1, int32_t(2 * count)});
  });
  if (status == 0 && height % 2 == 1) status = LastOddRow(in, chroma, chromaStep, out);
  if (status == 0 && width % 2 == 1) {
    // The kernel converts pixel pairs; an odd last column repeats its neighbour.
    for (int32_t y = 0; y < height && width > 1; ++y) {
      uint8_t* row = target + uint64_t(y) * uint32_t(outStep) + size_t(width - 1) * 3;
      row[0] = row[-3], row[1] = row[-2], row[2] = row[-1];
    }
  }
  return status == 0 ? UMC_OK : UMC_ERR_FAILED;
}

}  // namespace UMC
