#pragma once
// Thin wrappers over a dispatcher session: they own nothing but the session
// pointer. The session closes in its destructor; each component calls its
// own Close in its destructor.
#include <mfx/mfxsession.h>
#include <mfx/mfxvideo.h>

class MFXVideoSession {
 public:
  MFXVideoSession() = default;
  virtual ~MFXVideoSession() { Close(); }
  MFXVideoSession(const MFXVideoSession&) = delete;
  MFXVideoSession& operator=(const MFXVideoSession&) = delete;

  mfxStatus Init(mfxIMPL impl, mfxVersion* version) { return MFXInit(impl, version, &m_session); }
  mfxStatus Close() {
    if (m_session == nullptr) return MFX_ERR_NONE;
    const mfxStatus status = MFXClose(m_session);
    m_session = nullptr;
    return status;
  }
  mfxStatus QueryIMPL(mfxIMPL* impl) { return MFXQueryIMPL(m_session, impl); }
  mfxStatus QueryVersion(mfxVersion* version) { return MFXQueryVersion(m_session, version); }
  mfxStatus SetFrameAllocator(mfxFrameAllocator* allocator) {
    return MFXVideoCORE_SetFrameAllocator(m_session, allocator);
  }
  mfxStatus SetHandle(mfxHandleType type, mfxHDL handle) { return MFXVideoCORE_SetHandle(m_session, type, handle); }
  mfxStatus SyncOperation(mfxSyncPoint point, mfxU32 wait) { return MFXVideoCORE_SyncOperation(m_session, point, wait); }
  operator mfxSession() const { return m_session; }

 protected:
  mfxSession m_session = nullptr;
};

class MFXVideoENCODE {
 public:
  explicit MFXVideoENCODE(mfxSession session) : m_session(session) {}
  virtual ~MFXVideoENCODE() { Close(); }
  MFXVideoENCODE(const MFXVideoENCODE&) = delete;
  MFXVideoENCODE& operator=(const MFXVideoENCODE&) = delete;

  mfxStatus Query(mfxVideoParam* in, mfxVideoParam* out) { return MFXVideoENCODE_Query(m_session, in, out); }
  mfxStatus QueryIOSurf(mfxVideoParam* par, mfxFrameAllocRequest* request) {
    return MFXVideoENCODE_QueryIOSurf(m_session, par, request);
  }
  mfxStatus Init(mfxVideoParam* par) { return MFXVideoENCODE_Init(m_session, par); }
  mfxStatus Reset(mfxVideoParam* par) { return MFXVideoENCODE_Reset(m_session, par); }
  mfxStatus Close() { return MFXVideoENCODE_Close(m_session); }
  mfxStatus GetVideoParam(mfxVideoParam* par) { return MFXVideoENCODE_GetVideoParam(m_session, par); }
  mfxStatus GetEncodeStat(mfxEncodeStat* stat) { return MFXVideoENCODE_GetEncodeStat(m_session, stat); }
  mfxStatus EncodeFrameAsync(mfxEncodeCtrl* ctrl, mfxFrameSurface1* surface, mfxBitstream* bs, mfxSyncPoint* point) {
    return MFXVideoENCODE_EncodeFrameAsync(m_session, ctrl, surface, bs, point);
  }

 protected:
  mfxSession m_session;
};

class MFXVideoDECODE {
 public:
  explicit MFXVideoDECODE(mfxSession session) : m_session(session) {}
  virtual ~MFXVideoDECODE() { Close(); }
  MFXVideoDECODE(const MFXVideoDECODE&) = delete;
  MFXVideoDECODE& operator=(const MFXVideoDECODE&) = delete;

  mfxStatus Query(mfxVideoParam* in, mfxVideoParam* out) { return MFXVideoDECODE_Query(m_session, in, out); }
  mfxStatus DecodeHeader(mfxBitstream* bs, mfxVideoParam* par) { return MFXVideoDECODE_DecodeHeader(m_session, bs, par); }
  mfxStatus QueryIOSurf(mfxVideoParam* par, mfxFrameAllocRequest* request) {
    return MFXVideoDECODE_QueryIOSurf(m_session, par, request);
  }
  mfxStatus Init(mfxVideoParam* par) { return MFXVideoDECODE_Init(m_session, par); }
  mfxStatus Reset(mfxVideoParam* par) { return MFXVideoDECODE_Reset(m_session, par); }
  mfxStatus Close() { return MFXVideoDECODE_Close(m_session); }
  mfxStatus GetVideoParam(mfxVideoParam* par) { return MFXVideoDECODE_GetVideoParam(m_session, par); }
  mfxStatus DecodeFrameAsync(mfxBitstream* bs, mfxFrameSurface1* work, mfxFrameSurface1** out, mfxSyncPoint* point) {
    return MFXVideoDECODE_DecodeFrameAsync(m_session, bs, work, out, point);
  }

 protected:
  mfxSession m_session;
};

class MFXVideoVPP {
 public:
  explicit MFXVideoVPP(mfxSession session) : m_session(session) {}
  virtual ~MFXVideoVPP() { Close(); }
  MFXVideoVPP(const MFXVideoVPP&) = delete;
  MFXVideoVPP& operator=(const MFXVideoVPP&) = delete;

  mfxStatus Query(mfxVideoParam* in, mfxVideoParam* out) { return MFXVideoVPP_Query(m_session, in, out); }
  mfxStatus QueryIOSurf(mfxVideoParam* par, mfxFrameAllocRequest request[2]) {
    return MFXVideoVPP_QueryIOSurf(m_session, par, request);
  }
  mfxStatus Init(mfxVideoParam* par) { return MFXVideoVPP_Init(m_session, par); }
  mfxStatus Reset(mfxVideoParam* par) { return MFXVideoVPP_Reset(m_session, par); }
  mfxStatus Close() { return MFXVideoVPP_Close(m_session); }
  mfxStatus GetVideoParam(mfxVideoParam* par) { return MFXVideoVPP_GetVideoParam(m_session, par); }
  mfxStatus RunFrameVPPAsync(mfxFrameSurface1* in, mfxFrameSurface1* out, mfxExtVppAuxData* aux, mfxSyncPoint* point) {
    return MFXVideoVPP_RunFrameVPPAsync(m_session, in, out, aux, point);
  }

 protected:
  mfxSession m_session;
};
