#include "mfx/MfxImplTable.h"

namespace kestrelink::mfx {

const ImplRow kImplRows[kImplRowCount] = {
    {kHardwareLibrary, MFX_IMPL_HARDWARE, 0},  {kSoftwareLibrary, MFX_IMPL_SOFTWARE, 0},
    {kHardwareLibrary, MFX_IMPL_HARDWARE, 0},  {kHardwareLibrary, MFX_IMPL_HARDWARE2, 1},
    {kHardwareLibrary, MFX_IMPL_HARDWARE3, 2}, {kHardwareLibrary, MFX_IMPL_HARDWARE4, 3},
    {kSoftwareLibrary, MFX_IMPL_SOFTWARE, 0},
};

bool ImplRowRange(mfxIMPL impl, ImplRange& range) {
  static constexpr ImplRange kRanges[8] = {{0, 1}, {1, 1}, {0, 0}, {2, 6}, {2, 5}, {3, 3}, {4, 4}, {5, 5}};
  const mfxIMPL base = impl & 0xFF;
  if (base > 7) return false;
  range = kRanges[base];
  return true;
}

const char* DefaultLibraryName(LibraryKind kind) {
  return kind == kHardwareLibrary ? "libmfxhw64.so.1" : "libmfxsw64.so.1";
}

}  // namespace kestrelink::mfx
