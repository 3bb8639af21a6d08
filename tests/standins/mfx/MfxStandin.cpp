// A CPU stand-in for a Media SDK run-time library: it exports the whole
// function table, records what it is given and writes a small recognisable
// stream for each frame, so that the dispatcher and the encoder back-end can
// be checked without a device.
#include <cstdlib>
#include <initializer_list>
#include <cstring>
#include <new>

#include <mfx/mfxplugin.h>
#include <mfx/mfxsession.h>
#include <mfx/mfxvideo.h>

#include "MfxStandinState.h"

#define STANDIN_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

MfxStandinStateBlock g_state;

struct StandinSession {
  uint32_t magic = 0x53544E44;
  mfxIMPL impl = 0;
  bool encoderReady = false;
  mfxVideoParam params{};
  uint32_t frame = 0;
};

StandinSession* Own(mfxSession session) {
  auto* s = reinterpret_cast<StandinSession*>(session);
  if (s == nullptr || s->magic != 0x53544E44) {
    g_state.record.foreignSessionSeen = 1;
    return nullptr;
  }
  return s;
}

void Put(mfxU8*& out, std::initializer_list<int> bytes) {
  for (int b : bytes) *out++ = mfxU8(b);
}

void PutBig32(mfxU8*& out, uint32_t value) { Put(out, {int(value >> 24), int(value >> 16 & 255), int(value >> 8 & 255), int(value & 255)}); }

void CopySurface(const mfxFrameSurface1* surface) {
  MfxStandinRecord& r = g_state.record;
  r.lastSurfaceInfo = surface->Info;
  r.lastSurfacePitch = surface->Data.Pitch;
  const size_t luma = size_t(surface->Data.Pitch) * surface->Info.Height;
  std::free(r.lastLuma);
  std::free(r.lastChroma);
  r.lastLuma = static_cast<uint8_t*>(std::malloc(luma + 1));
  r.lastChroma = static_cast<uint8_t*>(std::malloc(luma / 2 + 1));
  if (surface->Data.Y != nullptr) std::memcpy(r.lastLuma, surface->Data.Y, luma);
  if (surface->Data.UV != nullptr) std::memcpy(r.lastChroma, surface->Data.UV, luma / 2);
}

}  // namespace

STANDIN_EXPORT MfxStandinStateBlock* MfxStandinState() { return &g_state; }

STANDIN_EXPORT void MfxStandinReset() {
  std::free(g_state.record.lastLuma);
  std::free(g_state.record.lastChroma);
  std::memset(&g_state, 0, sizeof g_state);
}

STANDIN_EXPORT mfxStatus MFXInit(mfxIMPL impl, mfxVersion* version, mfxSession* session) {
  MfxStandinRecord& r = g_state.record;
  if (r.initCalls < 8) r.initImpls[r.initCalls] = impl;
  ++r.initCalls;
  if (version != nullptr) r.lastInitVersion = *version;
  if (g_state.knobs.initStatus != MFX_ERR_NONE) return g_state.knobs.initStatus;
  auto* s = new StandinSession;
  s->impl = impl;
  *session = reinterpret_cast<mfxSession>(s);
  return MFX_ERR_NONE;
}

STANDIN_EXPORT mfxStatus MFXClose(mfxSession session) {
  ++g_state.record.closeCalls;
  StandinSession* s = Own(session);
  if (s == nullptr) return MFX_ERR_INVALID_HANDLE;
  if (g_state.knobs.closeStatus != MFX_ERR_NONE) return g_state.knobs.closeStatus;
  delete s;
  return MFX_ERR_NONE;
}

STANDIN_EXPORT mfxStatus MFXQueryIMPL(mfxSession session, mfxIMPL* impl) {
  StandinSession* s = Own(session);
  if (s == nullptr) return MFX_ERR_INVALID_HANDLE;
  *impl = (s->impl & 0xFF) | g_state.knobs.reportedImplBits;
  return MFX_ERR_NONE;
}

STANDIN_EXPORT mfxStatus MFXQueryVersion(mfxSession session, mfxVersion* version) {
  if (Own(session) == nullptr) return MFX_ERR_INVALID_HANDLE;
  version->Major = 1;
  version->Minor = 3;
  return MFX_ERR_NONE;
}

STANDIN_EXPORT mfxStatus MFXJoinSession(mfxSession session, mfxSession child) {
  ++g_state.record.joinCalls;
  if (Own(session) == nullptr || Own(child) == nullptr) return MFX_ERR_INVALID_HANDLE;
  return g_state.knobs.joinStatus;
}
STANDIN_EXPORT mfxStatus MFXCloneSession(mfxSession, mfxSession*) { return MFX_ERR_UNSUPPORTED; }
#ifndef STANDIN_WITHOUT_DISJOIN
STANDIN_EXPORT mfxStatus MFXDisjoinSession(mfxSession) { return MFX_ERR_NONE; }
#endif
STANDIN_EXPORT mfxStatus MFXSetPriority(mfxSession, mfxPriority) { return MFX_ERR_NONE; }
STANDIN_EXPORT mfxStatus MFXGetPriority(mfxSession, mfxPriority*) { return MFX_ERR_NONE; }

STANDIN_EXPORT mfxStatus MFXVideoCORE_SetBufferAllocator(mfxSession, mfxBufferAllocator*) { return MFX_ERR_NONE; }
STANDIN_EXPORT mfxStatus MFXVideoCORE_SetFrameAllocator(mfxSession, mfxFrameAllocator* allocator) {
  if (allocator != nullptr) ++g_state.record.frameAllocatorCalls;
  return MFX_ERR_NONE;
}
STANDIN_EXPORT mfxStatus MFXVideoCORE_SetHandle(mfxSession, mfxHandleType, mfxHDL) { return MFX_ERR_UNSUPPORTED; }
STANDIN_EXPORT mfxStatus MFXVideoCORE_GetHandle(mfxSession, mfxHandleType, mfxHDL*) { return MFX_ERR_UNSUPPORTED; }
STANDIN_EXPORT mfxStatus MFXVideoCORE_SyncOperation(mfxSession session, mfxSyncPoint, mfxU32) {
  ++g_state.record.syncCalls;
  if (Own(session) == nullptr) return MFX_ERR_INVALID_HANDLE;
  if (g_state.knobs.syncInExecution > 0) {
    --g_state.knobs.syncInExecution;
    return MFX_WRN_IN_EXECUTION;
  }
  return g_state.knobs.syncStatus;
}

STANDIN_EXPORT mfxStatus MFXVideoENCODE_Query(mfxSession session, mfxVideoParam* in, mfxVideoParam* out) {
  ++g_state.record.queryCalls;
  if (Own(session) == nullptr) return MFX_ERR_INVALID_HANDLE;
  g_state.record.lastQueryInWasNull = in == nullptr;
  if (in != nullptr) g_state.record.lastQueryIn = *in;
  if (in != nullptr && out != nullptr && in != out) *out = *in;
  return g_state.knobs.queryStatus;
}
STANDIN_EXPORT mfxStatus MFXVideoENCODE_QueryIOSurf(mfxSession, mfxVideoParam*, mfxFrameAllocRequest* request) {
  std::memset(request, 0, sizeof *request);
  request->NumFrameMin = request->NumFrameSuggested = 1;
  return MFX_ERR_NONE;
}
STANDIN_EXPORT mfxStatus MFXVideoENCODE_Init(mfxSession session, mfxVideoParam* par) {
  ++g_state.record.encodeInitCalls;
  StandinSession* s = Own(session);
  if (s == nullptr) return MFX_ERR_INVALID_HANDLE;
  g_state.record.lastInitParams = *par;
  if (g_state.knobs.encodeInitStatus < MFX_ERR_NONE) return g_state.knobs.encodeInitStatus;
  s->params = *par;
  s->encoderReady = true;
  s->frame = 0;
  return g_state.knobs.encodeInitStatus;
}
STANDIN_EXPORT mfxStatus MFXVideoENCODE_Reset(mfxSession, mfxVideoParam*) { return MFX_ERR_NONE; }
STANDIN_EXPORT mfxStatus MFXVideoENCODE_Close(mfxSession session) {
  ++g_state.record.encodeCloseCalls;
  StandinSession* s = Own(session);
  if (s == nullptr) return MFX_ERR_INVALID_HANDLE;
  if (!s->encoderReady) return MFX_ERR_NOT_INITIALIZED;
  s->encoderReady = false;
  return MFX_ERR_NONE;
}
STANDIN_EXPORT mfxStatus MFXVideoENCODE_GetVideoParam(mfxSession session, mfxVideoParam* par) {
  StandinSession* s = Own(session);
  if (s == nullptr) return MFX_ERR_INVALID_HANDLE;
  if (!s->encoderReady) return MFX_ERR_NOT_INITIALIZED;
  mfxExtBuffer** ext = par->ExtParam;
  const mfxU16 extCount = par->NumExtParam;
  *par = s->params;
  par->ExtParam = ext;
  par->NumExtParam = extCount;
  par->mfx.BufferSizeInKB = g_state.knobs.bufferSizeInKB;
  return MFX_ERR_NONE;
}
STANDIN_EXPORT mfxStatus MFXVideoENCODE_GetEncodeStat(mfxSession session, mfxEncodeStat* stat) {
  StandinSession* s = Own(session);
  if (s == nullptr) return MFX_ERR_INVALID_HANDLE;
  std::memset(stat, 0, sizeof *stat);
  stat->NumFrame = s->frame;
  return MFX_ERR_NONE;
}
STANDIN_EXPORT mfxStatus MFXVideoENCODE_EncodeFrameAsync(mfxSession session, mfxEncodeCtrl*, mfxFrameSurface1* surface,
                                                         mfxBitstream* bs, mfxSyncPoint* syncp) {
  ++g_state.record.encodeCalls;
  StandinSession* s = Own(session);
  if (s == nullptr) return MFX_ERR_INVALID_HANDLE;
  if (!s->encoderReady) return MFX_ERR_NOT_INITIALIZED;
  if (surface == nullptr) return MFX_ERR_MORE_DATA;
  g_state.record.lastEncodeSurface = surface;
  g_state.record.lastMaxLength = bs->MaxLength;
  if (g_state.knobs.notEnoughBufferOnce) {
    g_state.knobs.notEnoughBufferOnce = 0;
    return MFX_ERR_NOT_ENOUGH_BUFFER;
  }
  if (!g_state.knobs.quiet) CopySurface(surface);
  const uint32_t needed = 6 + 16 + 13;
  if (bs->MaxLength < bs->DataOffset + bs->DataLength + needed) return MFX_ERR_NOT_ENOUGH_BUFFER;
  mfxU8* out = bs->Data + bs->DataOffset + bs->DataLength;
  mfxU8* const start = out;
  const uint32_t gop = s->params.mfx.GopPicSize ? s->params.mfx.GopPicSize : 1;
  const bool key = s->frame % gop == 0;
  if (g_state.knobs.writeDelimiter) Put(out, {0, 0, 0, 1, 9, 0xF0});
  if (key) Put(out, {0, 0, 0, 1, 0x67, 'S', 'P', 'S', 0, 0, 0, 1, 0x68, 'P', 'P', 'S'});
  Put(out, {0, 0, 0, 1, key ? 0x65 : 0x41});
  PutBig32(out, s->frame);
  uint32_t sum = 0;
  const mfxFrameInfo& info = surface->Info;
  const bool summed = !g_state.knobs.quiet && surface->Data.Y != nullptr;  // a processed surface has no pixels here
  for (uint32_t y = 0; y < info.Height && summed; ++y)
    for (uint32_t x = 0; x < info.Width; ++x) sum += surface->Data.Y[size_t(y) * surface->Data.Pitch + x];
  PutBig32(out, sum);
  bs->DataLength += uint32_t(out - start);
  bs->FrameType = key ? MFX_FRAMETYPE_IDR | MFX_FRAMETYPE_I : MFX_FRAMETYPE_P;
  ++s->frame;
  *syncp = reinterpret_cast<mfxSyncPoint>(s);
  return MFX_ERR_NONE;
}

// Decoding is not stood in for, nor processing beyond its set-up and runs: they refuse.
#define STANDIN_REFUSE(name, ...) \
  STANDIN_EXPORT mfxStatus name(__VA_ARGS__) { return MFX_ERR_UNSUPPORTED; }
STANDIN_REFUSE(MFXVideoDECODE_Query, mfxSession, mfxVideoParam*, mfxVideoParam*)
STANDIN_REFUSE(MFXVideoDECODE_DecodeHeader, mfxSession, mfxBitstream*, mfxVideoParam*)
STANDIN_REFUSE(MFXVideoDECODE_QueryIOSurf, mfxSession, mfxVideoParam*, mfxFrameAllocRequest*)
STANDIN_REFUSE(MFXVideoDECODE_Init, mfxSession, mfxVideoParam*)
STANDIN_REFUSE(MFXVideoDECODE_Reset, mfxSession, mfxVideoParam*)
STANDIN_REFUSE(MFXVideoDECODE_Close, mfxSession)
STANDIN_REFUSE(MFXVideoDECODE_GetVideoParam, mfxSession, mfxVideoParam*)
STANDIN_REFUSE(MFXVideoDECODE_GetDecodeStat, mfxSession, mfxDecodeStat*)
STANDIN_REFUSE(MFXVideoDECODE_SetSkipMode, mfxSession, mfxSkipMode)
STANDIN_REFUSE(MFXVideoDECODE_GetPayload, mfxSession, mfxU64*, mfxPayload*)
STANDIN_REFUSE(MFXVideoDECODE_DecodeFrameAsync, mfxSession, mfxBitstream*, mfxFrameSurface1*, mfxFrameSurface1**,
               mfxSyncPoint*)
STANDIN_REFUSE(MFXVideoVPP_Query, mfxSession, mfxVideoParam*, mfxVideoParam*)
STANDIN_REFUSE(MFXVideoVPP_Reset, mfxSession, mfxVideoParam*)
STANDIN_REFUSE(MFXVideoVPP_GetVideoParam, mfxSession, mfxVideoParam*)
STANDIN_REFUSE(MFXVideoVPP_GetVPPStat, mfxSession, mfxVPPStat*)
STANDIN_REFUSE(MFXVideoUSER_Register, mfxSession, mfxU32, const mfxPlugin*)
STANDIN_REFUSE(MFXVideoUSER_Unregister, mfxSession, mfxU32)
STANDIN_REFUSE(MFXVideoUSER_ProcessFrameAsync, mfxSession, const mfxHDL*, mfxU32, const mfxHDL*, mfxU32, mfxSyncPoint*)
// Processing: the set-up and the surfaces of each run are recorded.
STANDIN_EXPORT mfxStatus MFXVideoVPP_QueryIOSurf(mfxSession session, mfxVideoParam* par,
                                                 mfxFrameAllocRequest request[2]) {
  ++g_state.record.vppQueryIOSurfCalls;
  if (Own(session) == nullptr) return MFX_ERR_INVALID_HANDLE;
  std::memset(request, 0, 2 * sizeof *request);
  request[0].Info = par->vpp.In;
  request[1].Info = par->vpp.Out;
  request[0].NumFrameMin = request[0].NumFrameSuggested = 1;
  request[1].NumFrameMin = 1;
  request[1].NumFrameSuggested = g_state.knobs.vppSuggestedOut;
  return MFX_ERR_NONE;
}
STANDIN_EXPORT mfxStatus MFXVideoVPP_Init(mfxSession session, mfxVideoParam* par) {
  MfxStandinRecord& r = g_state.record;
  ++r.vppInitCalls;
  if (Own(session) == nullptr) return MFX_ERR_INVALID_HANDLE;
  r.lastVppInitParams = *par;
  for (mfxU16 i = 0; i < par->NumExtParam; ++i) {
    if (par->ExtParam[i]->BufferId != MFX_EXTBUFF_VPP_DONOTUSE) continue;
    const auto* list = reinterpret_cast<const mfxExtVPPDoNotUse*>(par->ExtParam[i]);
    r.lastVppDoNotUseCount = list->NumAlg;
    for (mfxU32 a = 0; a < list->NumAlg && a < 4; ++a) r.lastVppDoNotUse[a] = list->AlgList[a];
  }
  return g_state.knobs.vppInitStatus;
}
STANDIN_EXPORT mfxStatus MFXVideoVPP_RunFrameVPPAsync(mfxSession session, mfxFrameSurface1* in, mfxFrameSurface1* out,
                                                      mfxExtVppAuxData*, mfxSyncPoint* syncp) {
  MfxStandinRecord& r = g_state.record;
  ++r.vppRunCalls;
  StandinSession* s = Own(session);
  if (s == nullptr) return MFX_ERR_INVALID_HANDLE;
  r.lastVppIn = in;
  r.lastVppOut = out;
  if (g_state.knobs.vppLocksOutput) ++out->Data.Locked;
  *syncp = reinterpret_cast<mfxSyncPoint>(s);
  return MFX_ERR_NONE;
}
STANDIN_EXPORT mfxStatus MFXVideoVPP_Close(mfxSession) { return MFX_ERR_NOT_INITIALIZED; }
