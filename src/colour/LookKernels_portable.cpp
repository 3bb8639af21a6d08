// Look kernels, portable variant: the reference.
#include "colour/LookKernels.h"

#include <cstddef>
#include <cstdint>

#include "colour/LookLut.h"

namespace kestrelink::colour {
namespace portable {
#include "colour/LookKernelsBody.h"
}  // namespace portable

const LookKernels kLookKernelsPortable = {&portable::FillPlane};

}  // namespace kestrelink::colour
