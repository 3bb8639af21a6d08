// Live Annex B bytes into the stream decoder, cut into pieces whose sizes
// follow the first byte, with the caller's loop of keeping what was not
// consumed. The image buffer holds exactly the size handed over.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <kestrelink/CH264Conversion.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  uint32_t state = data[0] | 1u;
  CH264Conversion codec;
  codec.InitWithRTSP();
  std::vector<uint8_t> image(64 * 48 * 3), pending;
  for (size_t at = 1; at < size;) {
    state = state * 1103515245u + 12345u;
    const size_t piece = std::min<size_t>(1 + (state >> 16) % 512, size - at);
    pending.insert(pending.end(), data + at, data + at + piece);
    at += piece;
    for (int calls = 0; calls < 64 && !pending.empty(); ++calls) {
      int consumed = 0;
      const int result =
          codec.DecodeImageFromRTSP(int(pending.size()), pending.data(), image.data(), int(image.size()), consumed);
      if (consumed < 0 || size_t(consumed) > pending.size()) std::abort();
      pending.erase(pending.begin(), pending.begin() + consumed);
      if (result != 1 && consumed == 0) break;
    }
  }
  codec.UnInitWithRTSP();
  return 0;
}
