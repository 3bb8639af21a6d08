// Look kernels, avx512 variant (this file is built with the instruction set's flags).
#include "colour/LookKernels.h"

#include <cstddef>
#include <cstdint>

#include "colour/LookLut.h"

namespace kestrelink::colour {
namespace avx512 {
#include "colour/LookKernelsBody.h"
}  // namespace avx512

const LookKernels kLookKernelsAVX512 = {&avx512::FillPlane};

}  // namespace kestrelink::colour
