#include "jpeg/JpegStatus.h"

namespace kestrelink::jpeg {

const char* JPEGErrorText(int32_t status) {
  switch (status) {
    case JPEG_OK: return "no error";
    case JPEG_NOT_IMPLEMENTED: return "requested feature is not implemented";
    case JPEG_INTERNAL_ERROR: return "internal error";
    case JPEG_BAD_PARAMETER: return "wrong parameters";
    case JPEG_BUFF_TOO_SMALL: return "buffer too small";
    case JPEG_FILE_IO: return "file io operation failed";
    case JPEG_OUT_OF_MEMORY: return "memory allocation failed";
    case JPEG_BAD_SEGMENT: return "bad segment data";
    case JPEG_BAD_FRAME_SEGMENT: return "bad frame segment";
    case JPEG_BAD_QUANT_SEGMENT: return "bad quant table segment";
    case JPEG_BAD_HUFF_SEGMENT: return "bad huffman table segment";
    case JPEG_BAD_SCAN_SEGMENT: return "bad scan segment";
    case JPEG_BAD_RESTART: return "wrong restart marker";
    default: return "unknown code";
  }
}

}  // namespace kestrelink::jpeg
