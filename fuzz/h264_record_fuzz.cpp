// Encoded frame records into the record decoder: the input is a run of
// records, each a 16-bit length and that many payload bytes; the first byte
// picks the frame-index pattern. Every record is laid out as the format says,
// with the 8 readable bytes its contract asks for behind it, and the image
// buffer holds exactly what DecodeImage may write for the size given.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <kestrelink/CH264Conversion.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  constexpr uint32_t kW = 64, kH = 48;
  const uint8_t pattern = data[0];
  CH264Conversion codec;
  codec.Initialize(false, kW, kH, H264_SOURCE_YUV_PLANAR, 0, 0, 8, 0);
  std::vector<uint8_t> image(((kH + 15) & ~15u) * kW * 3);
  uint32_t index = 1;
  for (size_t at = 1; at + 2 <= size;) {
    const size_t length = std::min<size_t>(size_t(data[at] | data[at + 1] << 8), size - at - 2);
    std::vector<uint8_t> record(8 + length + 8, 0);
    const uint32_t recordSize = uint32_t(length + 8);
    for (int b = 0; b < 4; ++b) record[b] = uint8_t(recordSize >> (8 * b));
    std::copy(data + at + 2, data + at + 2 + length, record.begin() + 8);
    at += 2 + length;
    codec.DecodeImage(index, record.data(), image.data());
    index = pattern & 1 ? index + 1 : pattern & 2 ? 1 : index + 2;
    if (pattern & 4) codec.ReleaseDecodeResource();
  }
  codec.UnInitialize(false);
  return 0;
}
