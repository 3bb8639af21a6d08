#pragma once
// Statuses of the JPEG codec, its streams and the Exif reader: 0 for success,
// a negative code otherwise, each with its words in JPEGErrorText.
#include <cstdint>

namespace kestrelink::jpeg {

enum JERRCODE : int32_t {
  JPEG_OK = 0,
  JPEG_NOT_IMPLEMENTED = -1,
  JPEG_INTERNAL_ERROR = -2,
  JPEG_BAD_PARAMETER = -3,
  JPEG_BUFF_TOO_SMALL = -4,
  JPEG_FILE_IO = -5,
  JPEG_OUT_OF_MEMORY = -6,
  JPEG_BAD_SEGMENT = -7,
  JPEG_BAD_FRAME_SEGMENT = -8,
  JPEG_BAD_QUANT_SEGMENT = -9,
  JPEG_BAD_HUFF_SEGMENT = -10,
  JPEG_BAD_SCAN_SEGMENT = -11,
  JPEG_BAD_RESTART = -12,
};

// The words of a status; "unknown code" for any value outside the table.
const char* JPEGErrorText(int32_t status);

}  // namespace kestrelink::jpeg
