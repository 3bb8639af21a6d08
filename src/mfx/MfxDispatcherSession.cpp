#include "mfx/MfxDispatcherSession.h"

#include <algorithm>

#include "platform/DynamicLibrary.h"

namespace kestrelink::mfx {

namespace {

using InitFn = mfxStatus (*)(mfxIMPL, mfxVersion*, mfxSession*);
using CloseFn = mfxStatus (*)(mfxSession);

bool AcceptedImpl(mfxIMPL impl) {
  return impl == MFX_IMPL_SOFTWARE || impl == MFX_IMPL_HARDWARE || impl == MFX_IMPL_HARDWARE2 ||
         impl == MFX_IMPL_HARDWARE3 || impl == MFX_IMPL_HARDWARE4;
}

}  // namespace

mfxStatus MFXDispatcherSession::Load(const char* path, int32_t kind, mfxIMPL rowImpl, mfxIMPL highBits) {
  if ((kind != kHardwareLibrary && kind != kSoftwareLibrary) || !AcceptedImpl(rowImpl)) return MFX_ERR_ABORTED;
  Unload();
  implType = kind;
  impl = rowImpl;
  module = platform::LoadLibrary(path);
  if (module == nullptr) return MFX_ERR_UNSUPPORTED;

  // The library's version: the highest version any present entry point is
  // required from, held down to the lowest cap of any missing one.
  uint32_t highest = PackVersion(0, 0), lowest = PackVersion(32767, 32767);
  for (int row = 0; row < kFunctionCount; ++row) {
    table[row] = reinterpret_cast<AnyFunction>(platform::LibrarySymbol(module, kFunctionTable[row].name));
    if (table[row] != nullptr) {
      highest = std::max(highest, kFunctionTable[row].required);
    } else {
      lowest = std::min(lowest, kFunctionTable[row].cap);
    }
  }
  const uint32_t version = std::min(highest, lowest);
  if (version == 0 || version >> 16 != apiVersionMajorMinor.Major || (version & 0xFFFF) < apiVersionMajorMinor.Minor)
    return MFX_ERR_UNSUPPORTED;
  const auto init = Entry<InitFn>(this, kInit);
  if (init == nullptr) return MFX_ERR_UNSUPPORTED;
  mfxVersion requested = apiVersionMajorMinor;
  return init(impl | highBits, &requested, &session);
}

mfxStatus MFXDispatcherSession::Unload() {
  mfxStatus status = MFX_ERR_NONE;
  if (session != nullptr) {
    const auto close = Entry<CloseFn>(this, kClose);
    status = close != nullptr ? close(session) : MFX_ERR_INVALID_HANDLE;
    if (status == MFX_ERR_NONE) session = nullptr;
  }
  // A library that reports undefined behaviour on close stays loaded.
  if (status == MFX_ERR_UNDEFINED_BEHAVIOR) return status;
  if (module != nullptr) platform::FreeLibrary(module);
  module = nullptr;
  std::fill(std::begin(table), std::end(table), nullptr);
  if (status == MFX_ERR_NONE) {
    const mfxVersion version = apiVersionMajorMinor;
    *this = MFXDispatcherSession{};
    apiVersionMajorMinor = version;  // the request stays with the session for the next library
  }
  return status;
}

}  // namespace kestrelink::mfx
