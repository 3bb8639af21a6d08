// One printed line of the dump helpers.
#include "compress/wavelet/WaveletDebug.h"

#include <cstdio>
#include <string>

#include "platform/DebugSink.h"

void CWaveletDebug::DumpLine(const int64_t* values, int count) {
  std::string line;
  char value[24];
  for (int i = 0; i < count; ++i) {
    std::snprintf(value, sizeof value, "%d,", int(values[i]));
    line += value;
  }
  line += "\r\n";
  kestrelink::platform::OutputDebugString(line.c_str());
}
