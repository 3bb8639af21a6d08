#pragma once
// Enumerations of the codec (32-bit, with the format's values) and the
// description of one colour component that both coders share.
#include <cstdint>

namespace kestrelink::jpeg {

enum JMODE : int32_t { JPEG_BASELINE = 1, JPEG_EXTENDED = 2, JPEG_PROGRESSIVE = 3, JPEG_LOSSLESS = 4 };

enum JCOLOR : int32_t { JC_UNKNOWN = 0, JC_GRAY = 1, JC_RGB = 2, JC_BGR = 3, JC_YCBCR = 4, JC_CMYK = 5, JC_YCCK = 6 };

// 4:1:1 is the format's name for 2 x 2 subsampling here.
enum JSS : int32_t { JS_444 = 0, JS_422 = 1, JS_411 = 3 };

// MCU size of a sampling value: width 8 for 4:4:4, else 16; height 16 for
// 4:1:1, else 8.
inline int McuWidth(int32_t sampling) { return sampling == JS_444 ? 8 : 16; }
inline int McuHeight(int32_t sampling) { return sampling == JS_411 ? 16 : 8; }

struct CJPEGColorComponent {
  int id = 0;
  int h = 1, v = 1;          // sampling factors
  int quantTable = 0;
  int dcTable = 0, acTable = 0;
  int blocksX = 0, blocksY = 0;  // blocks held: whole MCUs of the frame
  int usedBlocksX = 0, usedBlocksY = 0;  // blocks that cover the component's samples
  int width = 0, height = 0;  // samples of the component: ceil(size x factor / largest)
  int32_t lastDc = 0;
};

}  // namespace kestrelink::jpeg
