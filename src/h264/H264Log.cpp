#include "h264/H264Log.h"

#include <cstdio>

#include "platform/DebugSink.h"

namespace kestrelink::h264 {

namespace {
constexpr int kLineBytes = 111;
}

void Log(const char* line) { platform::OutputDebugString(line); }

void Log(const char* format, int value) {
  char line[kLineBytes];
  std::snprintf(line, sizeof line, format, value);
  platform::OutputDebugString(line);
}

void Log(const char* format, int first, int second) {
  char line[kLineBytes];
  std::snprintf(line, sizeof line, format, first, second);
  platform::OutputDebugString(line);
}

}  // namespace kestrelink::h264
