#pragma once
// What the hardware back-end asks of a Media SDK session on this platform: a
// session counts only when it opens and an AVC encoder query with the
// back-end's parameters succeeds on it (a run-time can open sessions on a
// machine where nothing can encode).
#include <cstdint>

#include <mfx/mfxstructures.h>

#include "mfx/MfxVideoSession.h"

namespace kestrelink::h264 {

// The encoder's parameters as its constructor sets them, with no frame yet.
mfxVideoParam DefaultEncodeParams();

// The first frame's description: aligned size, NV12, progressive 4:2:0.
void DescribeFrame(mfxFrameInfo& info, uint32_t width, uint32_t height, double frameRate);

// The AVC encoder query on an opened session, with the back-end's parameters
// for a frame of width by height.
mfxStatus QueryAvcEncoder(mfxSession session, uint32_t width, uint32_t height);

// True where a session on impl (API 1.1) opens and can encode; the front's
// choice of encoder asks this with MFX_IMPL_AUTO.
bool MediaSdkCanEncode(mfxIMPL impl);

// Whether a session's implementation is the named one: the low 8 bits only,
// the rest names the operating-system interface.
inline bool IsImpl(mfxIMPL impl, mfxIMPL wanted) { return (impl & 0xFF) == wanted; }

}  // namespace kestrelink::h264
