// Wavelet frames: arbitrary bytes decoded at a set-up the input chooses.
// Input: one byte of set-up (levels 1 to 4 in bits 0-1, 12-bit pixels in
// bit 2, width 1 to 96 from bits 3-7 times 3), one byte of height (1 to
// 96), then the frame. The decoder reads only the frame's bytes and writes
// only the image.
#include <kestrelink/CIppWavletCompression.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  static CIppWavletCompression codec;  // one thread setup for the whole run
  const int levels = 1 + (data[0] & 3);
  const int bits = (data[0] & 4) ? 12 : 8;
  const int width = 1 + (data[0] >> 3) * 3;
  const int height = 1 + data[1] % 96;
  if (!codec.Initialize(100, width, height, bits, bits, levels, 1, 1, 0)) std::abort();
  const size_t frameBytes = size - 2;
  std::unique_ptr<uint8_t[]> frame(new uint8_t[frameBytes ? frameBytes : 1]);
  for (size_t i = 0; i < frameBytes; ++i) frame[i] = data[2 + i];
  const size_t imageBytes = size_t(width) * size_t(height) * (bits == 8 ? 1 : 2);
  std::unique_ptr<uint8_t[]> image(new uint8_t[imageBytes]);
  codec.Decode(frame.get(), uint32_t(frameBytes), image.get());
  // The unbounded call trusts the total: only where the bytes cover it.
  if (frameBytes >= 4) {
    const uint32_t total = uint32_t(data[2]) | uint32_t(data[3]) << 8 | uint32_t(data[4]) << 16 | uint32_t(data[5]) << 24;
    if (total <= frameBytes) codec.Decode(frame.get(), nullptr, nullptr, image.get());
  }
  return 0;
}
