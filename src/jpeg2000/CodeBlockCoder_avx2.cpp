// The code-block coder built with -mavx2 -mbmi2.
#include "jpeg2000/CodeBlockCoderBody.h"

namespace kestrelink::j2k {
const BlockEncoder kBlockEncoderAVX2 = {&EncodeBlock};
}  // namespace kestrelink::j2k
