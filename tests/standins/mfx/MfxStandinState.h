#pragma once
// What the stand-in run-time lets a test set before a session opens, and what
// it records of the calls it gets. A test reaches it through the library's
// exported MfxStandinState(), after loading the same file itself.
#include <cstdint>

#include <mfx/mfxstructures.h>

extern "C" {

struct MfxStandinKnobs {
  mfxStatus initStatus;         // answer of MFXInit
  mfxStatus closeStatus;        // answer of MFXClose
  mfxStatus joinStatus;         // answer of MFXJoinSession
  mfxStatus queryStatus;        // answer of MFXVideoENCODE_Query
  mfxStatus encodeInitStatus;   // answer of MFXVideoENCODE_Init
  mfxStatus syncStatus;         // answer of MFXVideoCORE_SyncOperation
  uint32_t reportedImplBits;   // or-ed into what MFXQueryIMPL reports
  int32_t writeDelimiter;      // each frame opens with an access unit delimiter
  int32_t notEnoughBufferOnce; // the next encode asks for a bigger buffer once
  uint16_t bufferSizeInKB;     // what GetVideoParam reports
  int32_t quiet;               // neither copy the surface nor sum its luma (timing runs)
  int32_t syncInExecution;     // this many syncs answer MFX_WRN_IN_EXECUTION before syncStatus
  uint16_t vppSuggestedOut;    // NumFrameSuggested of the VPP's output request
  mfxStatus vppInitStatus;     // answer of MFXVideoVPP_Init
  int32_t vppLocksOutput;      // each processed surface stays locked (the encoder never releases it)
};

struct MfxStandinRecord {
  int32_t initCalls, closeCalls, joinCalls, queryCalls, encodeInitCalls, encodeCalls, syncCalls;
  mfxIMPL initImpls[8];        // impl of each MFXInit, the first eight
  mfxVersion lastInitVersion;
  int32_t lastQueryInWasNull;  // the last Query had no input record
  mfxVideoParam lastQueryIn;   // the last Query's input, when it had one
  mfxVideoParam lastInitParams;
  int32_t foreignSessionSeen;  // a call came with a session this library didn't open
  // The last surface given to EncodeFrameAsync: its description and its planes, copied.
  mfxFrameInfo lastSurfaceInfo;
  uint16_t lastSurfacePitch;
  uint8_t* lastLuma;           // Pitch * Height bytes
  uint8_t* lastChroma;         // Pitch * Height / 2 bytes
  uint32_t lastMaxLength;      // MaxLength of the bitstream of the last encode
  int32_t encodeCloseCalls;
  int32_t frameAllocatorCalls; // MFXVideoCORE_SetFrameAllocator with an allocator
  const void* lastEncodeSurface;   // the surface of the last EncodeFrameAsync
  // The processing component: its set-up and the surfaces of its last run.
  int32_t vppQueryIOSurfCalls, vppInitCalls, vppRunCalls;
  mfxVideoParam lastVppInitParams;
  uint32_t lastVppDoNotUse[4];  // the algorithm list of a do-not-use buffer given to MFXVideoVPP_Init
  uint32_t lastVppDoNotUseCount;
  const void* lastVppIn;
  const void* lastVppOut;
};

struct MfxStandinStateBlock {
  MfxStandinKnobs knobs;
  MfxStandinRecord record;
};

// The library's state; MfxStandinReset puts knobs and record back to zero.
MfxStandinStateBlock* MfxStandinState();
void MfxStandinReset();
}

// Processing is stood in for in its set-up only: a run hands the output
// surface on unchanged (locked with vppLocksOutput) and writes no pixels.
//
// The stream the stand-in writes for frame n of a session with GOP size g:
//   [00 00 00 01 09 F0]                          with writeDelimiter
//   00 00 00 01 67 'S' 'P' 'S'  00 00 00 01 68 'P' 'P' 'S'   when n % g == 0
//   00 00 00 01 65|41  n as 4 bytes big-endian  sum of the luma bytes as 4 bytes big-endian
