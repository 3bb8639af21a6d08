#include "h264/CIntelMediaEncoder.h"

#include <cstring>

#include "h264/H264Log.h"
#include "h264/MediaSdkSession.h"
#include "h264/Nv12Pack.h"

using namespace kestrelink::h264;

namespace {
// Frames larger than this go to the software library; the hardware is never tried on them.
constexpr uint32_t kHardwareMaxWidth = 1920, kHardwareMaxHeight = 1088;
constexpr mfxU64 kUnknownTime = ~mfxU64(0);
}  // namespace

CIntelMediaEncoder::CIntelMediaEncoder() : m_params(DefaultEncodeParams()) {}

int CIntelMediaEncoder::OnBitstream(mfxBitstream*) { return 0; }

int CIntelMediaEncoder::GetBitRate() { return int(m_params.mfx.TargetKbps) * 1000; }
// Truncates towards zero; 0 is taken as it stands.
void CIntelMediaEncoder::SetBitRate(int bitsPerSecond) { m_params.mfx.TargetKbps = mfxU16(bitsPerSecond / 1000); }
int CIntelMediaEncoder::GetGopSize() { return m_params.mfx.GopPicSize; }
void CIntelMediaEncoder::SetGopSize(int gopSize) {
  if (gopSize != 0) m_params.mfx.GopPicSize = mfxU16(gopSize);
}
unsigned short CIntelMediaEncoder::GetNumThreads() { return m_params.mfx.NumThread; }
void CIntelMediaEncoder::SetNumThreads(unsigned short threads) { m_params.mfx.NumThread = threads; }
void CIntelMediaEncoder::Reset() { m_opened = false; }
bool CIntelMediaEncoder::IsEncoder() { return true; }

void CIntelMediaEncoder::OpenSession(uint32_t width, uint32_t height) {
  const mfxFrameInfo& info = m_params.mfx.FrameInfo;
  if (info.Width > kHardwareMaxWidth || info.Height > kHardwareMaxHeight) {
    m_pipeline.ResetSession(MFX_IMPL_SOFTWARE, width, height);
  } else if (m_pipeline.ResetSession(MFX_IMPL_HARDWARE_ANY, width, height) != MFX_ERR_NONE) {
    m_pipeline.ResetSession(MFX_IMPL_AUTO, width, height);
  }
}

void CIntelMediaEncoder::EnsurePlanes(uint32_t alignedWidth, uint32_t alignedHeight) {
  const size_t chroma = size_t(alignedHeight / 2) * alignedWidth;
  if (m_chromaCapacity < chroma) {
    m_chroma.reset(new uint8_t[chroma]());
    m_chromaCapacity = chroma;
  }
  if (m_lumaCapacity < 2 * chroma) {
    m_luma.reset(new uint8_t[2 * chroma]());
    m_lumaCapacity = 2 * chroma;
  }
}

uint32_t CIntelMediaEncoder::Encode(uint32_t width, uint32_t height, bool lumaOnly, const uint8_t* plane0,
                                    const uint8_t* plane1, const uint8_t* plane2, uint8_t* out) {
  mfxFrameInfo& info = m_params.mfx.FrameInfo;
  if (!m_opened) {
    DescribeFrame(info, width, height, m_frameRate);
    std::memset(&m_surface, 0, sizeof m_surface);
    m_surface.Info = info;
    m_surface.Data.Pitch = info.Width;
    m_surface.Data.TimeStamp = kUnknownTime;
    OpenSession(width, height);
    m_surface.Data.TimeStamp = kUnknownTime;
    m_params.mfx.NumThread = 0;  // the library chooses
    info.FrameRateExtD = 100;
    info.FrameRateExtN = mfxU32(int(m_frameRate) * 100);
    mfxVideoParam vpp;
    std::memset(&vpp, 0, sizeof vpp);
    m_pipeline.Init(&m_params, &vpp, nullptr);  // not examined: a failure shows at the encode
    m_surface.Info.FrameRateExtN = info.FrameRateExtN;
    m_surface.Info.FrameRateExtD = info.FrameRateExtD;
    m_surface.Info.ChromaFormat = MFX_CHROMAFORMAT_YUV420;
    m_frameCount = 0;
    m_opened = true;
  }
  const uint32_t alignedWidth = m_surface.Info.Width, alignedHeight = m_surface.Info.Height;
  EnsurePlanes(alignedWidth, alignedHeight);
  const Nv12Frame frame{m_luma.get(), m_chroma.get(), width, height, alignedWidth, alignedHeight};
  if (lumaOnly) {
    PackNv12Mono(plane0, frame);
  } else {
    PackNv12Planar(plane0, plane1, plane2, frame);
  }
  m_surface.Data.Y = m_luma.get();
  m_surface.Data.UV = m_chroma.get();

  std::memset(&m_bitstream, 0, sizeof m_bitstream);
  m_bitstream.Data = out;
  m_bitstream.MaxLength = width * height * 3;  // the true size, not the aligned one
  const mfxStatus status = m_pipeline.EncodeOneFrame(&m_surface, &m_bitstream, m_workBuffer);
  if (status != MFX_ERR_NONE) Log("H264 Encoder encoding Error ===%d", status);
  ++m_frameCount;
  return m_bitstream.DataLength;
}
