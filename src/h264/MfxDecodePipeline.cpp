#include "h264/MfxDecodePipeline.h"

#include <chrono>
#include <cstring>
#include <new>
#include <thread>

#include "h264/MediaSdkSession.h"

namespace kestrelink::h264 {

namespace {
constexpr int kSurfaceTries = 10000;  // 1 ms apart
constexpr mfxU32 kSyncWaitMs = 65535;
bool Succeeded(mfxStatus s) { return s == MFX_ERR_NONE || s == MFX_WRN_PARTIAL_ACCELERATION || s == MFX_WRN_INCOMPATIBLE_VIDEO_PARAM; }
}  // namespace

MfxDecodePipeline::~MfxDecodePipeline() {
  Close();
  m_decode.reset();
  m_session.Close();
}

bool MfxDecodePipeline::IsHardware() {
  mfxIMPL impl = 0;
  return m_session.QueryIMPL(&impl) == MFX_ERR_NONE && IsImpl(impl, MFX_IMPL_HARDWARE);
}

mfxStatus MfxDecodePipeline::ResetSession(mfxIMPL impl, MFXFrameAllocator* allocator) {
  Close();
  m_decode.reset();
  m_session.Close();
  mfxVersion version{{1, 1}};
  mfxStatus status = m_session.Init(impl, &version);
  if (status != MFX_ERR_NONE) return status;
  m_allocator = allocator;
  if (allocator != nullptr) m_session.SetFrameAllocator(allocator);
  m_decode.reset(new (std::nothrow) MFXVideoDECODE(m_session));
  return m_decode ? MFX_ERR_NONE : MFX_ERR_MEMORY_ALLOC;
}

void MfxDecodePipeline::FreeSurfaces() {
  m_surfaces.reset();
  m_surfaceCount = 0;
  if (m_allocator != nullptr && m_allocResponse.mids != nullptr) m_allocator->FreeFrames(&m_allocResponse);
  m_allocResponse = mfxFrameAllocResponse{};
}

void MfxDecodePipeline::Close() {
  if (m_decode) m_decode->Close();
  FreeSurfaces();
  m_headerParsed = false;
}

mfxStatus MfxDecodePipeline::AllocSurfaces() {
  mfxFrameAllocRequest request{};
  mfxVideoParam query = m_params;
  query.mfx.FrameInfo.Width = mfxU16((query.mfx.FrameInfo.Width + 15) & ~15);
  query.mfx.FrameInfo.Height = mfxU16((query.mfx.FrameInfo.Height + 15) & ~15);
  mfxStatus status = m_decode->QueryIOSurf(&query, &request);
  if (status == MFX_ERR_UNSUPPORTED) {
    request.NumFrameSuggested = 1;
  } else if (!Succeeded(status)) {
    return status;
  }
  request.Info = query.mfx.FrameInfo;
  request.Type = MFX_MEMTYPE_SYSTEM_MEMORY | MFX_MEMTYPE_FROM_DECODE | MFX_MEMTYPE_EXTERNAL_FRAME;
  request.NumFrameSuggested = mfxU16(request.NumFrameSuggested + m_extraSurfaces);
  request.NumFrameMin = request.NumFrameSuggested;
  if (m_allocator == nullptr) return MFX_ERR_NOT_INITIALIZED;
  status = m_allocator->AllocFrames(&request, &m_allocResponse);
  if (status != MFX_ERR_NONE) return status;
  m_surfaceCount = m_allocResponse.NumFrameActual;
  m_surfaces.reset(new (std::nothrow) mfxFrameSurface1[m_surfaceCount]());
  if (!m_surfaces) return MFX_ERR_MEMORY_ALLOC;
  for (uint32_t i = 0; i < m_surfaceCount; ++i) {
    m_surfaces[i].Info = query.mfx.FrameInfo;
    m_surfaces[i].Data.MemId = m_allocResponse.mids[i];
  }
  return MFX_ERR_NONE;
}

mfxStatus MfxDecodePipeline::Open(mfxBitstream* bitstream, uint32_t width, uint32_t height) {
  if (!m_decode) return MFX_ERR_NOT_INITIALIZED;
  std::memset(&m_params, 0, sizeof m_params);
  m_params.mfx.CodecId = MFX_CODEC_AVC;
  mfxStatus status = m_decode->DecodeHeader(bitstream, &m_params);
  m_headerParsed = Succeeded(status);
  if (!m_headerParsed) {
    std::memset(&m_params, 0, sizeof m_params);
    m_params.mfx.CodecId = MFX_CODEC_AVC;
    mfxFrameInfo& info = m_params.mfx.FrameInfo;
    info.Width = mfxU16((width + 15) & 0xFFF0);
    info.Height = mfxU16((height + 31) & 0xFFE0);
    info.FourCC = MFX_FOURCC_NV12;
    info.ChromaFormat = MFX_CHROMAFORMAT_YUV420;
  }
  m_params.IOPattern = MFX_IOPATTERN_OUT_SYSTEM_MEMORY;
  FreeSurfaces();
  status = AllocSurfaces();
  if (status != MFX_ERR_NONE) return status;
  status = m_decode->Init(&m_params);
  if (status == MFX_WRN_PARTIAL_ACCELERATION) m_partialAcceleration = true;
  return Succeeded(status) ? MFX_ERR_NONE : status;
}

mfxFrameSurface1* MfxDecodePipeline::FreeSurface() {
  for (int attempt = 0; attempt < kSurfaceTries; ++attempt) {
    for (uint32_t i = 0; i < m_surfaceCount; ++i)
      if (m_surfaces[i].Data.Locked == 0) return &m_surfaces[i];
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return nullptr;
}

mfxStatus MfxDecodePipeline::DecodeFrame(mfxBitstream* bitstream, mfxFrameSurface1** out) {
  std::lock_guard<std::mutex> lock(m_lock);
  if (!m_decode || m_surfaceCount == 0) return MFX_ERR_NOT_INITIALIZED;
  mfxFrameSurface1* work = FreeSurface();
  if (work == nullptr) return MFX_ERR_MEMORY_ALLOC;
  if (!m_headerParsed) {
    mfxVideoParam header;
    std::memset(&header, 0, sizeof header);
    header.mfx.CodecId = MFX_CODEC_AVC;
    if (Succeeded(m_decode->DecodeHeader(bitstream, &header))) {
      m_headerParsed = true;
      const mfxFrameInfo &now = header.mfx.FrameInfo, &was = m_params.mfx.FrameInfo;
      if (now.CropW != was.CropW || now.CropH != was.CropH || now.Width != was.Width || now.Height != was.Height) {
        m_decode->Close();
        m_params = header;
        m_params.IOPattern = MFX_IOPATTERN_OUT_SYSTEM_MEMORY;
        FreeSurfaces();
        mfxStatus status = AllocSurfaces();
        if (status == MFX_ERR_NONE) status = m_decode->Init(&m_params);
        if (!Succeeded(status)) return status;
        work = &m_surfaces[0];
      }
    }
  }
  mfxSyncPoint sync = nullptr;
  mfxStatus status;
  while ((status = m_decode->DecodeFrameAsync(bitstream, work, out, &sync)) == MFX_WRN_DEVICE_BUSY)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  if (status == MFX_ERR_INCOMPATIBLE_VIDEO_PARAM) m_headerParsed = false;
  if (status != MFX_ERR_NONE) return status;
  return m_session.SyncOperation(sync, kSyncWaitMs);
}

}  // namespace kestrelink::h264
