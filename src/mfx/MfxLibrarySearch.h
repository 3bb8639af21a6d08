#pragma once
// The registry walk that names run-time libraries: the sub-keys of
// Software\Intel\MediaSDK\Dispatch in one hive, best merit first, each
// library at most once.
#include <cstdint>
#include <string>

#include <mfx/mfxcommon.h>

#include "mfx/MfxAdapter.h"
#include "mfx/MfxImplTable.h"
#include "platform/Registry.h"

namespace kestrelink::mfx {

inline constexpr const char* kDispatchKey = "Software\\Intel\\MediaSDK\\Dispatch";

class LibrarySearch {
 public:
  // `kind` and `adapter` are the row's: a software row takes sub-keys whose
  // vendor and device are both 0, a hardware row those of its adapter.
  LibrarySearch(const platform::RegistryFile& hive, mfxVersion requested, LibraryKind kind, AdapterIds adapter)
      : hive_(hive), requested_(requested), kind_(kind), adapter_(adapter) {}

  // The next library in merit order: its path and kind (software when vendor
  // or device is 0); MFX_ERR_NOT_FOUND when none is left.
  mfxStatus Next(std::string& path, LibraryKind& kind);

 private:
  const platform::RegistryFile& hive_;
  mfxVersion requested_;
  LibraryKind kind_;
  AdapterIds adapter_;
  int64_t lastMerit_ = 0x7FFFFFFF;
  int64_t lastIndex_ = -1;
};

}  // namespace kestrelink::mfx
