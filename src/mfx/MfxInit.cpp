// The dispatcher's own MFXInit, MFXClose and MFXCloneSession: find a run-time
// library through the registry store or by its default name, load it, and
// hand out a session that forwards to it.
#include <mfx/mfxsession.h>

#include <new>
#include <string>

#include "mfx/MfxAdapter.h"
#include "mfx/MfxDispatcherSession.h"
#include "mfx/MfxLibrarySearch.h"
#include "mfx/MfxSpinLock.h"

using namespace kestrelink::mfx;

namespace {

using JoinFn = mfxStatus (*)(mfxSession, mfxSession);

// Tries the libraries one hive names for one row; true once one opened.
bool TryRegistryRow(MFXDispatcherSession& dispatcher, const ImplRow& row, kestrelink::platform::RegistryHive hive,
                    mfxIMPL highBits, mfxStatus& status) {
  AdapterIds adapter;
  if (row.kind == kHardwareLibrary && !QueryAdapter(row.adapter, adapter)) return false;
  const auto file = kestrelink::platform::RegistryFile::Load(hive);
  if (file.Find(kDispatchKey) == nullptr) return false;
  LibrarySearch search(file, dispatcher.apiVersionMajorMinor, row.kind, adapter);
  std::string path;
  LibraryKind kind = row.kind;
  while (search.Next(path, kind) == MFX_ERR_NONE) {
    status = dispatcher.Load(path.c_str(), kind, row.impl, highBits);
    if (status == MFX_ERR_NONE) return true;
    dispatcher.Unload();
  }
  return false;
}

mfxStatus InitLocked(mfxIMPL impl, mfxVersion* version, mfxSession* session) {
  if (session == nullptr) return MFX_ERR_NULL_PTR;
  ImplRange range{};
  if (!ImplRowRange(impl, range)) return MFX_ERR_UNSUPPORTED;
  const mfxIMPL highBits = impl & ~mfxIMPL(0xFF);

  auto* dispatcher = new (std::nothrow) MFXDispatcherSession;
  if (dispatcher == nullptr) return MFX_ERR_MEMORY_ALLOC;
  dispatcher->apiVersionMajorMinor = version != nullptr ? *version : mfxVersion{{3, 1}};
  *session = nullptr;

  mfxStatus status = MFX_ERR_UNSUPPORTED;
  bool loaded = false;
  for (int r = range.first; r <= range.last && !loaded; ++r)
    for (auto hive : {kestrelink::platform::RegistryHive::CurrentUser, kestrelink::platform::RegistryHive::LocalMachine})
      if ((loaded = TryRegistryRow(*dispatcher, kImplRows[r], hive, highBits, status))) break;

  if (!loaded) {
    status = MFX_ERR_UNSUPPORTED;
    for (int r = range.first; r <= range.last; ++r) {
      const ImplRow& row = kImplRows[r];
      status = dispatcher->Load(DefaultLibraryName(row.kind), row.kind, row.impl, highBits);
      if (status == MFX_ERR_NONE || status == MFX_WRN_PARTIAL_ACCELERATION) {
        loaded = true;
        break;
      }
      dispatcher->Unload();
      if (status >= 0) break;
    }
  }
  if (loaded) {
    *session = reinterpret_cast<mfxSession>(dispatcher);
  } else {
    delete dispatcher;
  }
  return status;
}

}  // namespace

extern "C" {

mfxStatus MFXInit(mfxIMPL impl, mfxVersion* version, mfxSession* session) {
  DispatcherLock lock;
  return InitLocked(impl, version, session);
}

mfxStatus MFXClose(mfxSession session) {
  DispatcherLock lock;
  if (session == nullptr) return MFX_ERR_INVALID_HANDLE;
  MFXDispatcherSession* dispatcher = FromSession(session);
  const mfxStatus status = dispatcher->Unload();
  if (status != MFX_ERR_UNDEFINED_BEHAVIOR) delete dispatcher;
  return status;
}

mfxStatus MFXCloneSession(mfxSession session, mfxSession* clone) {
  if (session == nullptr || clone == nullptr) return MFX_ERR_INVALID_HANDLE;
  MFXDispatcherSession* first = FromSession(session);
  mfxVersion version = first->apiVersionMajorMinor;
  *clone = nullptr;
  mfxStatus status = MFXInit(first->impl, &version, clone);
  if (status != MFX_ERR_NONE) return status;
  MFXDispatcherSession* second = FromSession(*clone);
  if (second->apiVersionMajorMinor.Version == first->apiVersionMajorMinor.Version) {
    const auto join = Entry<JoinFn>(first, kJoinSession);
    status = join != nullptr ? join(first->session, second->session) : MFX_ERR_INVALID_HANDLE;
    if (status != MFX_ERR_NONE) {
      MFXClose(*clone);
      *clone = nullptr;
    }
  }
  return status;
}

}  // extern "C"
