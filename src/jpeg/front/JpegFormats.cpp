#include "jpeg/front/JpegFormats.h"

namespace kestrelink::jpegfront {

bool FormatAccepted(uint32_t format, uint32_t bitCount, uint32_t sampleBits) {
  switch (format) {
    case 100: case 101: return bitCount == 8 || bitCount == 16;
    case 112: case 113: case 114: case 115: return bitCount == 16;
    case 123: case 124: case 125: return bitCount == 48;
    case 200: return bitCount == 24 || bitCount == 48;
    case 300: return bitCount == 24 || (bitCount == 48 && (sampleBits == 30 || sampleBits == 36 || sampleBits == 42));
    case 400: return bitCount == 24 || bitCount == 48;
    case 500: return bitCount == 32 || bitCount == 64;
    case 600: case 700: return bitCount == 16;
    case 900: return bitCount == 24;
    case 800: case 905: case 906: return true;  // any depth
    default: return false;
  }
}

DecodeInfo DecodeImageInfo(uint32_t format, uint32_t bitCount) {
  switch (format) {
    case 100: case 101: case 112: case 113: case 114: case 115: return {100, 8, 8};
    case 123: case 124: case 125: case 200: case 700: case 800: case 905: case 906: return {200, 24, 8};
    case 300: case 500: return {500, 32, 8};
    case 400: return {bitCount == 24 ? 400u : 200u, 24, 8};
    case 600: return {600, 16, 16};
    case 900: return {900, 24, 8};
    default: return {};
  }
}

}  // namespace kestrelink::jpegfront
