#pragma once
// What an mfxSession handed out by the dispatcher points to: the library
// loaded for it, that library's own session and its function table.
#include <cstdint>

#include <mfx/mfxsession.h>

#include "mfx/MfxFunctionTable.h"
#include "mfx/MfxImplTable.h"

namespace kestrelink::mfx {

struct MFXDispatcherSession {
  int32_t implType = kSoftwareLibrary;
  mfxIMPL impl = MFX_IMPL_SOFTWARE;
  mfxVersion apiVersionMajorMinor{};
  mfxSession session = nullptr;  // the library's own session
  void* module = nullptr;
  AnyFunction table[kFunctionCount] = {};

  // Loads the library at path as a library of `kind` with implementation
  // `rowImpl`, checks its version and opens its session with rowImpl or-ed
  // with `highBits`. The library's MFXInit status, or the dispatcher's refusal.
  mfxStatus Load(const char* path, int32_t kind, mfxIMPL rowImpl, mfxIMPL highBits);
  // Closes the library's session and unloads it; the library's MFXClose status.
  mfxStatus Unload();
};

inline MFXDispatcherSession* FromSession(mfxSession session) {
  return reinterpret_cast<MFXDispatcherSession*>(session);
}

template <typename Fn>
Fn Entry(const MFXDispatcherSession* dispatcher, FunctionRow row) {
  return reinterpret_cast<Fn>(dispatcher->table[row]);
}

}  // namespace kestrelink::mfx
