// Look kernels, avx2 variant (this file is built with the instruction set's flags).
#include "colour/LookKernels.h"

#include <cstddef>
#include <cstdint>

#include "colour/LookLut.h"

namespace kestrelink::colour {
namespace avx2 {
#include "colour/LookKernelsBody.h"
}  // namespace avx2

const LookKernels kLookKernelsAVX2 = {&avx2::FillPlane};

}  // namespace kestrelink::colour
