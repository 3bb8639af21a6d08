// The code-block coder at the x86-64 baseline.
#include "jpeg2000/CodeBlockCoderBody.h"

namespace kestrelink::j2k {
const BlockEncoder kBlockEncoderPortable = {&EncodeBlock};
}  // namespace kestrelink::j2k
