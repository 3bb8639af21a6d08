#include "jpeg/front/FrontLog.h"

#include <cstdarg>
#include <cstdio>

#include "platform/DebugSink.h"

namespace kestrelink::jpegfront {

void Log(const char* format, ...) {
  char line[512];
  va_list args;
  va_start(args, format);
  std::vsnprintf(line, sizeof line, format, args);
  va_end(args);
  platform::OutputDebugString(line);
}

}  // namespace kestrelink::jpegfront
