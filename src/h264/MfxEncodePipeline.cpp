#include "h264/MfxEncodePipeline.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "h264/H264Log.h"
#include "h264/MediaSdkSession.h"
#include "mfx/D3DFrameAllocator.h"
#include "mfx/SysMemFrameAllocator.h"

namespace kestrelink::h264 {

namespace {
// Bytes of an access unit delimiter behind its start code: 00 00 00 01 09 xx.
constexpr uint32_t kDelimiterBytes = 6;
}  // namespace

MfxEncodePipeline::MfxEncodePipeline() {
  m_doNotUseList[0] = MFX_EXTBUFF_VPP_DENOISE;
  m_doNotUseList[1] = MFX_EXTBUFF_VPP_SCENE_ANALYSIS;
  m_doNotUse.Header.BufferId = MFX_EXTBUFF_VPP_DONOTUSE;
  m_doNotUse.Header.BufferSz = 24;
  m_doNotUse.NumAlg = 2;
  m_doNotUse.AlgList = m_doNotUseList;
  m_extBuffers[0] = &m_doNotUse.Header;
  ResetSession(MFX_IMPL_AUTO, 1920, 1088);
}

MfxEncodePipeline::~MfxEncodePipeline() {
  StopThread();
  FreeAll();
  m_encode.reset();
  m_vpp.reset();
  FreeSurfaces();
  m_session.Close();
}

void MfxEncodePipeline::SetAllocator(MFXFrameAllocator* allocator, bool videoMemory) {
  FreeSurfaces();
  m_allocator = allocator;
  m_videoMemoryAllocator = videoMemory;
}

mfxStatus MfxEncodePipeline::ResetSession(mfxIMPL impl, uint32_t width, uint32_t height) {
  m_encode.reset();
  m_vpp.reset();
  m_session.Close();
  FreeSurfaces();
  mfxVersion version{{1, 1}};
  const mfxStatus status = m_session.Init(impl, &version);
  Log("********m_mfxVideoSession.Init***** sts: %d", status);
  mfxIMPL actual = 0;
  mfxStatus query = m_session.QueryIMPL(&actual);
  Log(IsImpl(actual, MFX_IMPL_HARDWARE) ? "********Encoder run as Hardware Encoding*****sts: %d"
                                        : "********Encoder run as Software Encoding*****sts: %d",
      query);
  if (query == MFX_ERR_NONE) query = QueryAvcEncoder(m_session, width, height) >= 0 ? MFX_ERR_NONE : MFX_ERR_UNSUPPORTED;
  if (query != MFX_ERR_NONE) {
    m_session.Close();
    return query;
  }
  m_encode.reset(new (std::nothrow) MFXVideoENCODE(m_session));
  m_vpp.reset(new (std::nothrow) MFXVideoVPP(m_session));
  if (!m_encode || !m_vpp) return MFX_ERR_MEMORY_ALLOC;
  return MFX_ERR_NONE;
}

void MfxEncodePipeline::FreeSurfaces() {
  m_vppSurfaces.reset();
  m_vppSurfaceCount = 0;
  if (m_allocator != nullptr && m_allocResponse.mids != nullptr) m_allocator->FreeFrames(&m_allocResponse);
  m_allocResponse = mfxFrameAllocResponse{};
  if (m_ownsAllocator) {
    delete m_allocator;
    m_allocator = nullptr;
    m_ownsAllocator = false;
  }
}

void MfxEncodePipeline::FreeAll() {
  if (m_encode) m_encode->Close();
  if (m_vpp) m_vpp->Close();
  m_pendingFrames.clear();
  m_tasks.clear();
  FreeSurfaces();
}

mfxStatus MfxEncodePipeline::Init(mfxVideoParam* encParams, mfxVideoParam* vppParams, INotifier* notifier) {
  StopThread();
  if (encParams == nullptr) return MFX_ERR_NULL_PTR;
  std::lock_guard<std::mutex> lock(m_lock);
  if (!m_encode || !m_vpp) return MFX_ERR_NOT_INITIALIZED;
  FreeAll();

  std::memcpy(&m_encParams, encParams, sizeof m_encParams);
  if (vppParams != nullptr) {
    std::memcpy(&m_vppParams, vppParams, sizeof m_vppParams);
  } else {
    std::memset(&m_vppParams, 0, sizeof m_vppParams);
  }
  mfxIMPL impl = 0;
  m_session.QueryIMPL(&impl);
  const bool videoMemory = IsImpl(impl, MFX_IMPL_HARDWARE) && m_allocator != nullptr && m_videoMemoryAllocator;
  m_encParams.IOPattern = videoMemory ? MFX_IOPATTERN_IN_VIDEO_MEMORY : MFX_IOPATTERN_IN_SYSTEM_MEMORY;
  m_vppParams.IOPattern = videoMemory ? MFX_IOPATTERN_IN_VIDEO_MEMORY | MFX_IOPATTERN_OUT_VIDEO_MEMORY
                                      : MFX_IOPATTERN_IN_SYSTEM_MEMORY | MFX_IOPATTERN_OUT_SYSTEM_MEMORY;

  m_useVpp = std::memcmp(&m_vppParams.vpp.In, &m_vppParams.vpp.Out, sizeof(mfxFrameInfo)) != 0;
  if (m_useVpp) {
    m_encParams.mfx.FrameInfo = m_vppParams.vpp.Out;
    m_vppParams.ExtParam = m_extBuffers;
    m_vppParams.NumExtParam = 1;
    mfxFrameAllocRequest vppRequest[2] = {}, encRequest{};
    if (m_vpp->QueryIOSurf(&m_vppParams, vppRequest) < 0 || m_encode->QueryIOSurf(&m_encParams, &encRequest) < 0) {
      FreeAll();
      return MFX_ERR_UNSUPPORTED;
    }
    m_vppSurfaceCount = std::max<uint32_t>(vppRequest[1].NumFrameSuggested, 1) +
                        std::max<uint32_t>(encRequest.NumFrameSuggested, 1);
    mfxFrameAllocRequest request{};
    request.Info = m_vppParams.vpp.Out;
    request.Type = mfxU16(0x902 | (videoMemory ? MFX_MEMTYPE_DXVA2_PROCESSOR_TARGET : MFX_MEMTYPE_SYSTEM_MEMORY));
    request.NumFrameMin = request.NumFrameSuggested = mfxU16(m_vppSurfaceCount);
    if (m_allocator == nullptr) {
      auto* own = new (std::nothrow) SysMemFrameAllocator;
      if (own == nullptr || own->Init(nullptr) != MFX_ERR_NONE) {
        delete own;
        FreeAll();
        return MFX_ERR_MEMORY_ALLOC;
      }
      m_allocator = own;
      m_ownsAllocator = true;
      m_session.SetFrameAllocator(m_allocator);
    }
    const mfxStatus alloc = m_allocator->AllocFrames(&request, &m_allocResponse);
    if (alloc != MFX_ERR_NONE) {
      FreeAll();
      return alloc;
    }
  }

  mfxVideoParam capability;
  std::memset(&capability, 0, sizeof capability);
  capability.mfx.CodecId = m_encParams.mfx.CodecId;
  mfxStatus status = m_encode->Query(nullptr, &capability);
  if (status < MFX_ERR_NONE) {
    FreeAll();
    return status;
  }
  status = m_encode->Init(&m_encParams);
  if (status == MFX_WRN_PARTIAL_ACCELERATION) m_partialAcceleration = true;
  if (status != MFX_ERR_NONE && status != MFX_WRN_PARTIAL_ACCELERATION && status != MFX_WRN_INCOMPATIBLE_VIDEO_PARAM) {
    FreeAll();
    return status;
  }
  status = m_encode->GetVideoParam(encParams);
  if (status != MFX_ERR_NONE) {
    FreeAll();
    return status;
  }
  if (m_useVpp) {
    status = m_vpp->Init(&m_vppParams);
    if (status == MFX_WRN_PARTIAL_ACCELERATION) m_partialAcceleration = true;
    if (status != MFX_ERR_NONE && status != MFX_WRN_PARTIAL_ACCELERATION &&
        status != MFX_WRN_INCOMPATIBLE_VIDEO_PARAM) {
      FreeAll();
      return status;
    }
    m_vppSurfaces.reset(new (std::nothrow) mfxFrameSurface1[m_vppSurfaceCount]());
    if (!m_vppSurfaces) {
      FreeAll();
      return MFX_ERR_MEMORY_ALLOC;
    }
    for (uint32_t i = 0; i < m_vppSurfaceCount; ++i) {
      m_vppSurfaces[i].Info = m_vppParams.vpp.Out;
      m_vppSurfaces[i].Data.MemId = i < m_allocResponse.NumFrameActual ? m_allocResponse.mids[i] : nullptr;
    }
  }
  if (notifier != nullptr) {
    m_stopRequested = false;
    try {
      m_thread = std::thread([this] { DeliveryLoop(); });
    } catch (...) {
      FreeAll();
      return MFX_ERR_UNKNOWN;
    }
  }
  m_notifier = notifier;
  return MFX_ERR_NONE;
}

mfxStatus MfxEncodePipeline::EncodeOneFrame(mfxFrameSurface1* surface, mfxBitstream* bitstream, WorkBuffer& work) {
  if (!m_encode) return MFX_ERR_NOT_INITIALIZED;
  mfxU8* const callerData = bitstream->Data;
  const mfxU32 callerMax = bitstream->MaxLength;
  if (!work.data) {
    work.data.reset(new (std::nothrow) uint8_t[callerMax]);
    if (!work.data) return MFX_ERR_MEMORY_ALLOC;
    work.size = callerMax;
  }
  auto restore = [&](mfxStatus status) {
    bitstream->Data = callerData;
    bitstream->MaxLength = callerMax;
    if (status != MFX_ERR_NONE) bitstream->DataLength = 0;  // nothing reaches the caller
    return status;
  };
  bitstream->Data = work.data.get();
  bitstream->MaxLength = work.size;

  mfxSyncPoint sync = nullptr;
  mfxStatus status = m_encode->EncodeFrameAsync(nullptr, surface, bitstream, &sync);
  if (status == MFX_ERR_NOT_ENOUGH_BUFFER) {
    work.data.reset();
    work.size = 0;
    mfxVideoParam current;
    std::memset(&current, 0, sizeof current);
    m_encode->GetVideoParam(&current);
    const uint32_t bytes = uint32_t(current.mfx.BufferSizeInKB) * 1000;
    work.data.reset(new (std::nothrow) uint8_t[bytes]);
    if (!work.data) return restore(MFX_ERR_MEMORY_ALLOC);
    work.size = bytes;
    bitstream->Data = work.data.get();
    bitstream->MaxLength = work.size;
    status = m_encode->EncodeFrameAsync(nullptr, surface, bitstream, &sync);
    if (status != MFX_ERR_NONE) return restore(status);
    status = m_session.SyncOperation(sync, 0xFFFFFFFF);
  } else if (status == MFX_ERR_NONE) {
    status = m_session.SyncOperation(sync, 0xFFFFFFFF);
    if (status != MFX_ERR_NONE) return restore(status);
    mfxEncodeStat stat{};
    status = m_encode->GetEncodeStat(&stat);
  }
  if (status == MFX_ERR_NONE) {
    const uint8_t* data = work.data.get() + bitstream->DataOffset;
    uint32_t length = bitstream->DataLength;
    // Never past the work buffer, and never more than the caller's room.
    if (uint64_t(bitstream->DataOffset) + length > work.size) length = 0;
    if (length > kDelimiterBytes && (data[4] & 31) == 9) {
      data += kDelimiterBytes;
      length -= kDelimiterBytes;
    }
    length = std::min(length, callerMax);
    std::memcpy(callerData, data, length);
    bitstream->DataLength = length;
    bitstream->DataOffset = 0;
  }
  return restore(status);
}

}  // namespace kestrelink::h264
