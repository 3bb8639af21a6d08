#include "mfx/MfxFunctionTable.h"

namespace kestrelink::mfx {

namespace {
constexpr uint32_t k00 = PackVersion(0, 0), k10 = PackVersion(1, 0), k12 = PackVersion(1, 2), k13 = PackVersion(1, 3);
}

const FunctionEntry kFunctionTable[kFunctionCount] = {
    {"MFXInit", k10, k00},
    {"MFXClose", k10, k00},
    {"MFXJoinSession", k12, k10},
    {"MFXCloneSession", k12, k10},
    {"MFXQueryIMPL", k10, k00},
    {"MFXQueryVersion", k10, k00},
    {"MFXVideoCORE_SetBufferAllocator", k10, k00},
    {"MFXVideoCORE_SetFrameAllocator", k10, k00},
    {"MFXVideoCORE_SetHandle", k10, k00},
    {"MFXVideoCORE_GetHandle", k10, k00},
    {"MFXVideoCORE_SyncOperation", k10, k00},
    {"MFXVideoENCODE_Query", k10, k00},
    {"MFXVideoENCODE_QueryIOSurf", k10, k00},
    {"MFXVideoENCODE_Init", k10, k00},
    {"MFXVideoENCODE_Reset", k10, k00},
    {"MFXVideoENCODE_Close", k10, k00},
    {"MFXVideoENCODE_GetVideoParam", k10, k00},
    {"MFXVideoENCODE_GetEncodeStat", k10, k00},
    {"MFXVideoENCODE_EncodeFrameAsync", k10, k00},
    {"MFXVideoDECODE_Query", k10, k00},
    {"MFXVideoDECODE_DecodeHeader", k10, k00},
    {"MFXVideoDECODE_QueryIOSurf", k10, k00},
    {"MFXVideoDECODE_Init", k10, k00},
    {"MFXVideoDECODE_Reset", k10, k00},
    {"MFXVideoDECODE_Close", k10, k00},
    {"MFXVideoDECODE_GetVideoParam", k10, k00},
    {"MFXVideoDECODE_GetDecodeStat", k10, k00},
    {"MFXVideoDECODE_SetSkipMode", k10, k00},
    {"MFXVideoDECODE_GetPayload", k10, k00},
    {"MFXVideoDECODE_DecodeFrameAsync", k10, k00},
    {"MFXVideoVPP_Query", k10, k00},
    {"MFXVideoVPP_QueryIOSurf", k10, k00},
    {"MFXVideoVPP_Init", k10, k00},
    {"MFXVideoVPP_Reset", k10, k00},
    {"MFXVideoVPP_Close", k10, k00},
    {"MFXVideoVPP_GetVideoParam", k10, k00},
    {"MFXVideoVPP_GetVPPStat", k10, k00},
    {"MFXVideoVPP_RunFrameVPPAsync", k10, k00},
    {"MFXDisjoinSession", k13, k10},
    {"MFXSetPriority", k13, k10},
    {"MFXGetPriority", k13, k10},
    {"MFXVideoUSER_Register", k13, k10},
    {"MFXVideoUSER_Unregister", k13, k10},
    {"MFXVideoUSER_ProcessFrameAsync", k13, k10},
};

}  // namespace kestrelink::mfx
