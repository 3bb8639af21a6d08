// SSE2 rows of the colour-filter-array interpolation: the shared vector
// body at 16 pixels a step.
#define CFA_LANES 16
#include "primitives/CfaRowsVector.h"

namespace kestrelink::cfa {
const CfaRowKernels kCfaRowsSSE2 = {Interior8, Interior16};
}  // namespace kestrelink::cfa
