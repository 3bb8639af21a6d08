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

uint32_t MaxBlockFrameBytes(int planeCount, WaveletPlane** planes, uint32_t room) {
  uint64_t total = kFrameHeaderBytes;
  for (int p = 0; p < planeCount && p < 3; ++p) total += uint64_t(planes[p]->blockCount) * (kBlockHeaderBytes + room);
  return total > UINT32_MAX ? UINT32_MAX : uint32_t(total);
}

void ReportEncodeLength(uint32_t total) {
  char line[80];
  std::snprintf(line, sizeof line, "*********Encode length is %d**************", int(total));
  platform::OutputDebugString(line);
}

}  // namespace kestrelink::wavelet
