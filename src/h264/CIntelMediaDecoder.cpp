#include "h264/CIntelMediaDecoder.h"

#include <cstring>

#include "frame/RowLoop.h"
#include "primitives/YCbCrToRgb.h"

namespace {
// After the first round the loop stops once fewer bytes are left than a NAL unit's start code and header.
constexpr mfxU32 kLeftoverBytes = 5;
constexpr uint32_t kHardwareMaxWidth = 1920, kHardwareMaxHeight = 1088;
}  // namespace

CIntelMediaDecoder::CIntelMediaDecoder() { m_allocator.Init(nullptr); }

CIntelMediaDecoder::~CIntelMediaDecoder() { Close(); }

void CIntelMediaDecoder::Close() {
  m_pipeline.Close();
  m_open = false;
  m_planeY.reset();
  m_planeU.reset();
  m_planeV.reset();
  m_planeBytes = 0;
}

void CIntelMediaDecoder::OpenDecoder(mfxBitstream* bitstream, uint32_t width, uint32_t height) {
  m_pipeline.Close();
  if (width <= kHardwareMaxWidth && height <= kHardwareMaxHeight) {
    if (m_pipeline.ResetSession(MFX_IMPL_HARDWARE_ANY, &m_allocator) != MFX_ERR_NONE)
      m_pipeline.ResetSession(MFX_IMPL_AUTO, &m_allocator);
  } else {
    m_pipeline.ResetSession(MFX_IMPL_SOFTWARE, &m_allocator);
  }
  m_open = m_pipeline.Open(bitstream, width, height) == MFX_ERR_NONE;
}

bool CIntelMediaDecoder::Decode(uint32_t width, uint32_t height, uint32_t size, uint8_t* data, uint8_t* image) {
  std::memset(&m_bitstream, 0, sizeof m_bitstream);
  m_bitstream.Data = data;
  m_bitstream.DataLength = m_bitstream.MaxLength = size;
  m_bitstream.TimeStamp = ~mfxU64(0);
  if (!m_open) OpenDecoder(&m_bitstream, width, height);
  for (bool first = true; m_bitstream.DataLength > 0; first = false) {
    if (!first && m_bitstream.DataLength < kLeftoverBytes) break;
    mfxFrameSurface1* out = nullptr;
    const mfxStatus status = m_pipeline.DecodeFrame(&m_bitstream, &out);
    if (status == MFX_ERR_NONE) {
      if (out != nullptr) Convert(*out, image);
      continue;
    }
    if (status == MFX_ERR_MORE_SURFACE || status == MFX_WRN_DEVICE_BUSY || status == MFX_WRN_VIDEO_PARAM_CHANGED)
      continue;
    break;
  }
  return false;  // settled: the answer is false even when images were delivered
}

bool CIntelMediaDecoder::Convert(const mfxFrameSurface1& surface, uint8_t* image) {
  const mfxFrameInfo& info = surface.Info;
  if (info.FourCC != MFX_FOURCC_NV12 || surface.Data.Y == nullptr || surface.Data.UV == nullptr) return false;
  const uint32_t width = info.CropW ? info.CropW : info.Width, height = info.CropH ? info.CropH : info.Height;
  const uint32_t pitch = surface.Data.Pitch, half = width / 2;
  const size_t lumaBytes = size_t(width) * height;
  if (m_planeBytes < lumaBytes) {
    m_planeY.reset(new uint8_t[lumaBytes]);
    m_planeU.reset(new uint8_t[lumaBytes / 4 + 1]);
    m_planeV.reset(new uint8_t[lumaBytes / 4 + 1]);
    m_planeBytes = lumaBytes;
  }
  const uint8_t* luma = surface.Data.Y;
  const uint8_t* chroma = surface.Data.UV;
  kestrelink::ForEachRow(height / 2, false, [&](uint32_t r, uint32_t) {
    const uint8_t* pairs = chroma + size_t(r) * pitch;
    uint8_t* u = m_planeU.get() + size_t(r) * half;
    uint8_t* v = m_planeV.get() + size_t(r) * half;
    for (uint32_t i = 0; i < half; ++i) {
      u[i] = pairs[2 * i];
      v[i] = pairs[2 * i + 1];
    }
  });
  kestrelink::ForEachRow(height, false, [&](uint32_t r, uint32_t) {
    std::memcpy(m_planeY.get() + size_t(r) * width, luma + size_t(r) * pitch, width);
  });
  const Ipp8u* planes[3] = {m_planeY.get(), m_planeU.get(), m_planeV.get()};
  const int steps[3] = {int(width), int(half), int(half)};
  return ippiYCbCr420ToBGR_8u_P3C3R(planes, steps, image, int(width * 3), IppiSize{int(width), int(height)}) == 0;
}
