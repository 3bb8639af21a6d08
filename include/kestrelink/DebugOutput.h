#pragma once
#include <kestrelink/Export.h>

namespace kestrelink {

// Receives every diagnostic line the library writes, exactly as worded, with
// no prefix, level or newline added.
using DebugOutputHandler = void (*)(const char* message, void* context);

// Installs the process-wide sink. nullptr restores the default, which writes
// to standard error when KESTRELINK_DEBUG is set and discards otherwise.
KESTRELINK_API void SetDebugOutputHandler(DebugOutputHandler handler, void* context);

}  // namespace kestrelink
