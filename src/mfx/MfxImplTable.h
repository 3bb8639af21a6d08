#pragma once
// Which libraries an mfxIMPL value asks for: the low 8 bits pick a range of
// rows, and each row names a library kind, the implementation passed on to the
// library and the adapter it must sit on.
#include <cstdint>

#include <mfx/mfxcommon.h>

namespace kestrelink::mfx {

enum LibraryKind : int32_t { kHardwareLibrary = 0, kSoftwareLibrary = 1 };

struct ImplRow {
  LibraryKind kind;
  mfxIMPL impl;      // passed on to the library's own MFXInit
  uint32_t adapter;  // adapter number a hardware library must match
};

struct ImplRange {
  int first, last;  // rows of kImplRows, inclusive
};

constexpr uint32_t kImplRowCount = 7;
extern const ImplRow kImplRows[kImplRowCount];

// The row range for impl's low 8 bits; false for a value above 7.
bool ImplRowRange(mfxIMPL impl, ImplRange& range);

// The file tried when the registry names no library: the hardware or software run-time.
const char* DefaultLibraryName(LibraryKind kind);

}  // namespace kestrelink::mfx
