// The JPEG front's own readers of encoded bytes: the general library's
// decoding into each frame layout it offers (the first byte picks one), into
// a frame of exactly the size the stream's header gives, and the search for
// the end of the headers where the file form puts its metadata segment.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "jpeg/front/App1Segment.h"
#include "jpeg/front/IjlCore.h"

using namespace kestrelink::jpegfront;

namespace {

struct Layout {
  int channels, colour, sampling, bytesPerPixelTimes2;
};
constexpr size_t kGuard = 64;
constexpr uint8_t kGuardByte = 0xA5;

constexpr Layout kLayouts[] = {
    {1, kIjlGray, kIjlSamplingNone, 2}, {3, kIjlBgr, kIjl444, 6},  {3, kIjlRgb, kIjl444, 6},
    {4, kIjlRgba, kIjl411, 8},          {3, kIjlYcbcr, kIjl422, 4}, {3, kIjlOther, kIjl444, 6},
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2 || size > (1u << 20)) return 0;
  std::unique_ptr<uint8_t[]> input(new uint8_t[size - 1]);
  for (size_t i = 1; i < size; ++i) input[i - 1] = data[i];
  HeaderEnd(input.get(), size - 1);

  const Layout& layout = kLayouts[data[0] % 6];
  IjlProperties p;
  p.jpgBytes = input.get();
  p.jpgSizeBytes = uint32_t(size - 1);
  p.dibChannels = layout.channels, p.dibColour = layout.colour, p.dibSampling = layout.sampling;
  if (IjlRead(p, kIjlReadParamsBuffer) != kIjlOk) return 0;
  if (int64_t(p.jpgWidth) * p.jpgHeight > (1 << 20)) return 0;
  const size_t bytes = size_t(p.jpgWidth) * p.jpgHeight * layout.bytesPerPixelTimes2 / 2;
  // libjpeg itself is not instrumented: a guard behind the frame catches its
  // writes past the frame's last byte.
  std::unique_ptr<uint8_t[]> frame(new uint8_t[bytes + kGuard]);
  std::memset(frame.get() + bytes, kGuardByte, kGuard);
  p.dibBytes = frame.get();
  IjlRead(p, kIjlReadImageBuffer);
  for (size_t i = 0; i < kGuard; ++i)
    if (frame[bytes + i] != kGuardByte) std::abort();
  return 0;
}
