// AVX512 rows of the colour-filter-array interpolation: the shared vector
// body at 32 pixels a step.
#define CFA_LANES 32
#include "primitives/CfaRowsVector.h"

namespace kestrelink::cfa {
const CfaRowKernels kCfaRowsAVX512 = {Interior8, Interior16};
}  // namespace kestrelink::cfa
