// JPEG streams: arbitrary bytes through the decoder's header and data reads.
// Frames up to 2^20 pixels are decoded into a buffer of exactly the output's
// size, grey or BGR and full or reduced as the input's length chooses, so
// any write outside it is caught. The decoder reads only the input's bytes.
#include <cstddef>
#include <cstdint>
#include <memory>

#include "jpeg/CJPEGDecoder.h"
#include "jpeg/JpegStreams.h"

using namespace kestrelink::jpeg;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > (1u << 20)) return 0;
  std::unique_ptr<uint8_t[]> input(new uint8_t[size ? size : 1]);
  for (size_t i = 0; i < size; ++i) input[i] = data[i];
  CMemBuffInput in;
  in.Open(input.get(), uint32_t(size));
  CJPEGDecoder dec;
  if (dec.SetSource(&in) != JPEG_OK) return 0;
  int w = 0, h = 0, channels = 0, precision = 0;
  JCOLOR colour;
  JSS sampling;
  if (dec.ReadHeader(&w, &h, &channels, &colour, &sampling, &precision) != JPEG_OK) return 0;
  if (int64_t(w) * h > (1 << 20)) return 0;
  const int out = channels == 4 ? 4 : (size & 1) ? 3 : 1;
  // 12-bit and lossless frames of more than 8 bits come out in 16-bit words;
  // the input's length also picks full or reduced output (scale 1, 2, 4, 8).
  const int sampleBytes = precision > 8 ? 2 : 1, scale = 1 << ((size >> 1) & 3);
  const int outW = (w + scale - 1) / scale, outH = (h + scale - 1) / scale;
  const int fw = dec.Mode() == JPEG_LOSSLESS ? w : outW, fh = dec.Mode() == JPEG_LOSSLESS ? h : outH;
  std::unique_ptr<uint8_t[]> frame(new uint8_t[size_t(fw) * fh * out * sampleBytes]);
  if (dec.SetDestination(frame.get(), fw * out * sampleBytes, {fw, fh}, out, out == 1 ? JC_GRAY : JC_BGR, JS_444,
                         precision, scale) == JPEG_OK)
    dec.ReadData();
  return 0;
}
