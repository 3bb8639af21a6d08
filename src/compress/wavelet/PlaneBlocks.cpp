// Debug lines of the block coders' frame flow.
#include "compress/wavelet/PlaneBlocks.h"

#include <cstdio>

#include "platform/DebugSink.h"

namespace kestrelink::wavelet {

void ReportOverCapacity(uint32_t produced, uint32_t nominal) {
  for (uint32_t position = nominal; position < produced; ++position) {
    char line[64];
    std::snprintf(line, sizeof line, "OutputBit %d ******* %d\r\n", int(position), int(nominal));
    platform::OutputDebugString(line);
  }
}

void ReportEncodeLength(uint32_t total) {
  char line[80];
  std::snprintf(line, sizeof line, "*********Encode length is %d**************", int(total));
  platform::OutputDebugString(line);
}

}  // namespace kestrelink::wavelet
