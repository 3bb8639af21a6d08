#pragma once
// The 44 run-time entry points the dispatcher looks up and forwards to, in
// table order, each with the API version from which it is required and the
// version to which a library that lacks it is capped.
#include <cstdint>

#include <mfx/mfxdefs.h>

namespace kestrelink::mfx {

enum FunctionRow : int {
  kInit, kClose, kJoinSession, kCloneSession, kQueryIMPL, kQueryVersion,
  kCoreSetBufferAllocator, kCoreSetFrameAllocator, kCoreSetHandle, kCoreGetHandle, kCoreSyncOperation,
  kEncodeQuery, kEncodeQueryIOSurf, kEncodeInit, kEncodeReset, kEncodeClose, kEncodeGetVideoParam,
  kEncodeGetEncodeStat, kEncodeFrameAsync,
  kDecodeQuery, kDecodeHeader, kDecodeQueryIOSurf, kDecodeInit, kDecodeReset, kDecodeClose,
  kDecodeGetVideoParam, kDecodeGetDecodeStat, kDecodeSetSkipMode, kDecodeGetPayload, kDecodeFrameAsync,
  kVppQuery, kVppQueryIOSurf, kVppInit, kVppReset, kVppClose, kVppGetVideoParam, kVppGetVPPStat,
  kVppRunFrameVPPAsync,
  kDisjoinSession, kSetPriority, kGetPriority, kUserRegister, kUserUnregister, kUserProcessFrameAsync,
  kFunctionCount
};

// A version as one number, major * 65536 + minor, so that versions compare as integers.
constexpr uint32_t PackVersion(uint32_t major, uint32_t minor) { return major << 16 | minor; }

struct FunctionEntry {
  const char* name;
  uint32_t required;  // packed version from which the library must have it
  uint32_t cap;       // packed version a library without it is held to
};

extern const FunctionEntry kFunctionTable[kFunctionCount];

using AnyFunction = void (*)();

}  // namespace kestrelink::mfx
