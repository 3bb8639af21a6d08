#pragma once
// Our codec driven as its callers drive it, for the JPEG tests.
#include <vector>

#include "jpeg/CJPEGDecoder.h"
#include "jpeg/CJPEGEncoder.h"
#include "jpeg/JpegStreams.h"
#include "jpeg/JpegTypes.h"
#include "jpeg/JpegPeer.h"

namespace jpegtest {

using namespace kestrelink::jpeg;

struct OurOptions {
  JMODE mode = JPEG_BASELINE;
  JSS sampling = JS_411;
  int quality = 85;
  int restartInterval = 0;
  bool optimise = false;
};

// Encodes a peer image (grey, or R, G, B handed over as BGR pixels).
inline std::vector<uint8_t> EncodeOurs(const jpegpeer::Image& im, const OurOptions& o, JERRCODE* status = nullptr) {
  const std::vector<uint8_t> src = jpegpeer::Swapped(im);
  std::vector<uint8_t> out(size_t(im.width) * im.height * im.channels * 2 + 4096);
  CMemBuffOutput stream;
  stream.Open(out.data(), uint32_t(out.size()));
  CJPEGEncoder enc;
  JERRCODE s = enc.SetSource(src.data(), im.width * im.channels, {im.width, im.height}, im.channels,
                             im.channels == 1 ? JC_GRAY : JC_BGR, JS_444, 8);
  if (s == JPEG_OK) s = enc.SetDestination(&stream);
  if (s == JPEG_OK)
    s = enc.SetParams(o.mode, im.channels == 1 ? JC_GRAY : JC_YCBCR, o.sampling, o.restartInterval, o.optimise,
                      o.quality);
  if (s == JPEG_OK) s = enc.WriteHeader();
  if (s == JPEG_OK) s = enc.WriteData();
  if (status) *status = s;
  out.resize(s == JPEG_OK ? stream.m_position : 0);
  return out;
}

// Decodes with our decoder from any input stream to grey or R, G, B pixels.
inline JERRCODE DecodeOursFrom(CBaseStreamInput& stream, jpegpeer::Image& out, int channels = 0) {
  CJPEGDecoder dec;
  JERRCODE s = dec.SetSource(&stream);
  int w = 0, h = 0, ch = 0, precision = 0;
  JCOLOR colour = JC_UNKNOWN;
  JSS sampling = JS_444;
  if (s == JPEG_OK) s = dec.ReadHeader(&w, &h, &ch, &colour, &sampling, &precision);
  if (s != JPEG_OK) return s;
  out.width = w;
  out.height = h;
  out.channels = channels ? channels : (ch == 1 ? 1 : 3);
  const JCOLOR outColour = out.channels == 1 ? JC_GRAY : out.channels == 4 ? JC_CMYK : JC_RGB;
  out.pixels.assign(size_t(w) * h * out.channels, 0);
  s = dec.SetDestination(out.pixels.data(), w * out.channels, {w, h}, out.channels,
                         outColour, JS_444, precision, 1);
  if (s == JPEG_OK) s = dec.ReadData();
  return s;
}

inline JERRCODE DecodeOurs(const std::vector<uint8_t>& stream, jpegpeer::Image& out, int channels = 0) {
  CMemBuffInput in;
  static const uint8_t empty = 0;
  in.Open(stream.empty() ? &empty : stream.data(), uint32_t(stream.size()));
  return DecodeOursFrom(in, out, channels);
}

inline jpegpeer::EncodeOptions PeerOptions(JSS sampling, int quality) {
  jpegpeer::EncodeOptions o;
  o.quality = quality;
  o.hSamp = sampling == JS_444 ? 1 : 2;
  o.vSamp = sampling == JS_411 ? 2 : 1;
  return o;
}

}  // namespace jpegtest
