// Every other entry point of the dispatcher: check the session and its table
// entry, then call the loaded library with the library's own session.
#include <mfx/mfxplugin.h>
#include <mfx/mfxsession.h>
#include <mfx/mfxvideo.h>

#include "mfx/MfxDispatcherSession.h"

using namespace kestrelink::mfx;

namespace {

template <FunctionRow Row, typename... Args>
mfxStatus Forward(mfxSession session, Args... args) {
  if (session == nullptr) return MFX_ERR_INVALID_HANDLE;
  const MFXDispatcherSession* dispatcher = FromSession(session);
  const auto fn = Entry<mfxStatus (*)(mfxSession, Args...)>(dispatcher, Row);
  if (fn == nullptr) return MFX_ERR_INVALID_HANDLE;
  return fn(dispatcher->session, args...);
}

}  // namespace

#define KESTRELINK_MFX_FORWARD(name, row, params, args) \
  mfxStatus name params { return Forward<row> args; }

extern "C" {

KESTRELINK_MFX_FORWARD(MFXQueryIMPL, kQueryIMPL, (mfxSession s, mfxIMPL* impl), (s, impl))
KESTRELINK_MFX_FORWARD(MFXQueryVersion, kQueryVersion, (mfxSession s, mfxVersion* v), (s, v))
KESTRELINK_MFX_FORWARD(MFXDisjoinSession, kDisjoinSession, (mfxSession s), (s))
KESTRELINK_MFX_FORWARD(MFXSetPriority, kSetPriority, (mfxSession s, mfxPriority p), (s, p))
KESTRELINK_MFX_FORWARD(MFXGetPriority, kGetPriority, (mfxSession s, mfxPriority* p), (s, p))

mfxStatus MFXJoinSession(mfxSession session, mfxSession child) {
  if (child == nullptr) return MFX_ERR_INVALID_HANDLE;
  return Forward<kJoinSession>(session, FromSession(child)->session);
}

KESTRELINK_MFX_FORWARD(MFXVideoCORE_SetBufferAllocator, kCoreSetBufferAllocator,
                       (mfxSession s, mfxBufferAllocator* a), (s, a))
KESTRELINK_MFX_FORWARD(MFXVideoCORE_SetFrameAllocator, kCoreSetFrameAllocator, (mfxSession s, mfxFrameAllocator* a),
                       (s, a))
KESTRELINK_MFX_FORWARD(MFXVideoCORE_SetHandle, kCoreSetHandle, (mfxSession s, mfxHandleType t, mfxHDL h), (s, t, h))
KESTRELINK_MFX_FORWARD(MFXVideoCORE_GetHandle, kCoreGetHandle, (mfxSession s, mfxHandleType t, mfxHDL* h), (s, t, h))
KESTRELINK_MFX_FORWARD(MFXVideoCORE_SyncOperation, kCoreSyncOperation, (mfxSession s, mfxSyncPoint p, mfxU32 w),
                       (s, p, w))

KESTRELINK_MFX_FORWARD(MFXVideoENCODE_Query, kEncodeQuery, (mfxSession s, mfxVideoParam* in, mfxVideoParam* out),
                       (s, in, out))
KESTRELINK_MFX_FORWARD(MFXVideoENCODE_QueryIOSurf, kEncodeQueryIOSurf,
                       (mfxSession s, mfxVideoParam* p, mfxFrameAllocRequest* r), (s, p, r))
KESTRELINK_MFX_FORWARD(MFXVideoENCODE_Init, kEncodeInit, (mfxSession s, mfxVideoParam* p), (s, p))
KESTRELINK_MFX_FORWARD(MFXVideoENCODE_Reset, kEncodeReset, (mfxSession s, mfxVideoParam* p), (s, p))
KESTRELINK_MFX_FORWARD(MFXVideoENCODE_Close, kEncodeClose, (mfxSession s), (s))
KESTRELINK_MFX_FORWARD(MFXVideoENCODE_GetVideoParam, kEncodeGetVideoParam, (mfxSession s, mfxVideoParam* p), (s, p))
KESTRELINK_MFX_FORWARD(MFXVideoENCODE_GetEncodeStat, kEncodeGetEncodeStat, (mfxSession s, mfxEncodeStat* st),
                       (s, st))
KESTRELINK_MFX_FORWARD(MFXVideoENCODE_EncodeFrameAsync, kEncodeFrameAsync,
                       (mfxSession s, mfxEncodeCtrl* c, mfxFrameSurface1* f, mfxBitstream* b, mfxSyncPoint* p),
                       (s, c, f, b, p))

KESTRELINK_MFX_FORWARD(MFXVideoDECODE_Query, kDecodeQuery, (mfxSession s, mfxVideoParam* in, mfxVideoParam* out),
                       (s, in, out))
KESTRELINK_MFX_FORWARD(MFXVideoDECODE_DecodeHeader, kDecodeHeader, (mfxSession s, mfxBitstream* b, mfxVideoParam* p),
                       (s, b, p))
KESTRELINK_MFX_FORWARD(MFXVideoDECODE_QueryIOSurf, kDecodeQueryIOSurf,
                       (mfxSession s, mfxVideoParam* p, mfxFrameAllocRequest* r), (s, p, r))
KESTRELINK_MFX_FORWARD(MFXVideoDECODE_Init, kDecodeInit, (mfxSession s, mfxVideoParam* p), (s, p))
KESTRELINK_MFX_FORWARD(MFXVideoDECODE_Reset, kDecodeReset, (mfxSession s, mfxVideoParam* p), (s, p))
KESTRELINK_MFX_FORWARD(MFXVideoDECODE_Close, kDecodeClose, (mfxSession s), (s))
KESTRELINK_MFX_FORWARD(MFXVideoDECODE_GetVideoParam, kDecodeGetVideoParam, (mfxSession s, mfxVideoParam* p), (s, p))
KESTRELINK_MFX_FORWARD(MFXVideoDECODE_GetDecodeStat, kDecodeGetDecodeStat, (mfxSession s, mfxDecodeStat* st),
                       (s, st))
KESTRELINK_MFX_FORWARD(MFXVideoDECODE_SetSkipMode, kDecodeSetSkipMode, (mfxSession s, mfxSkipMode m), (s, m))
KESTRELINK_MFX_FORWARD(MFXVideoDECODE_GetPayload, kDecodeGetPayload, (mfxSession s, mfxU64* t, mfxPayload* p),
                       (s, t, p))
KESTRELINK_MFX_FORWARD(MFXVideoDECODE_DecodeFrameAsync, kDecodeFrameAsync,
                       (mfxSession s, mfxBitstream* b, mfxFrameSurface1* w, mfxFrameSurface1** o, mfxSyncPoint* p),
                       (s, b, w, o, p))

KESTRELINK_MFX_FORWARD(MFXVideoVPP_Query, kVppQuery, (mfxSession s, mfxVideoParam* in, mfxVideoParam* out),
                       (s, in, out))
KESTRELINK_MFX_FORWARD(MFXVideoVPP_QueryIOSurf, kVppQueryIOSurf,
                       (mfxSession s, mfxVideoParam* p, mfxFrameAllocRequest r[2]), (s, p, r))
KESTRELINK_MFX_FORWARD(MFXVideoVPP_Init, kVppInit, (mfxSession s, mfxVideoParam* p), (s, p))
KESTRELINK_MFX_FORWARD(MFXVideoVPP_Reset, kVppReset, (mfxSession s, mfxVideoParam* p), (s, p))
KESTRELINK_MFX_FORWARD(MFXVideoVPP_Close, kVppClose, (mfxSession s), (s))
KESTRELINK_MFX_FORWARD(MFXVideoVPP_GetVideoParam, kVppGetVideoParam, (mfxSession s, mfxVideoParam* p), (s, p))
KESTRELINK_MFX_FORWARD(MFXVideoVPP_GetVPPStat, kVppGetVPPStat, (mfxSession s, mfxVPPStat* st), (s, st))
KESTRELINK_MFX_FORWARD(MFXVideoVPP_RunFrameVPPAsync, kVppRunFrameVPPAsync,
                       (mfxSession s, mfxFrameSurface1* in, mfxFrameSurface1* out, mfxExtVppAuxData* a,
                        mfxSyncPoint* p),
                       (s, in, out, a, p))

KESTRELINK_MFX_FORWARD(MFXVideoUSER_Register, kUserRegister, (mfxSession s, mfxU32 t, const mfxPlugin* p), (s, t, p))
KESTRELINK_MFX_FORWARD(MFXVideoUSER_Unregister, kUserUnregister, (mfxSession s, mfxU32 t), (s, t))
KESTRELINK_MFX_FORWARD(MFXVideoUSER_ProcessFrameAsync, kUserProcessFrameAsync,
                       (mfxSession s, const mfxHDL* in, mfxU32 inNum, const mfxHDL* out, mfxU32 outNum,
                        mfxSyncPoint* p),
                       (s, in, inNum, out, outNum, p))

}  // extern "C"
