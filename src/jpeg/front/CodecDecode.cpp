#include "jpeg/front/CodecDecode.h"

#include <cstring>

#include "jpeg/CJPEGDecoder.h"
#include "jpeg/JpegStreams.h"
#include "jpeg/front/FrontLog.h"

namespace kestrelink::jpegfront {

using namespace kestrelink::jpeg;

bool DecodeWithCodec(const uint8_t* data, uint32_t size, void* dst, uint32_t& position) {
  CMemBuffInput input;
  input.Open(data, size);
  CJPEGDecoder decoder;
  bool ok = false;
  if (JERRCODE s = decoder.SetSource(&input)) {
    Log("Error initialization of decoder - %s", JPEGErrorText(s));
  } else {
    int width = 0, height = 0, channels = 0, precision = 0;
    JCOLOR colour = JC_UNKNOWN;
    JSS sampling = JS_444;
    if (JERRCODE s = decoder.ReadHeader(&width, &height, &channels, &colour, &sampling, &precision)) {
      Log("Error reading JPEG header - %s", JPEGErrorText(s));
    } else if (channels != 1 && channels != 3) {
      Log("Unsupported number of channels - %d", channels);
    } else {
      const JCOLOR out = channels == 1 ? JC_GRAY : JC_BGR;
      JERRCODE s = decoder.SetDestination(static_cast<uint8_t*>(dst), RowStep(channels, uint32_t(width)),
                                          {width, height}, channels, out, JS_444, 8, 0);
      if (s == JPEG_OK) s = decoder.ReadData();
      if (s != JPEG_OK) {
        Log("Error when decoding JPEG data - %s", JPEGErrorText(s));
      } else {
        ok = true;
      }
    }
  }
  input.GetPosition(position);
  return ok;
}

bool DecodeSizedBuffer(const void* src, void* dst) {
  uint32_t size = 0;
  std::memcpy(&size, src, 4);
  if (size == 0) {
    Log("File size is %d", 0);
    return false;
  }
  uint32_t position = 0;
  return DecodeWithCodec(static_cast<const uint8_t*>(src) + 4, StreamBytes(size), dst, position);
}

}  // namespace kestrelink::jpegfront
