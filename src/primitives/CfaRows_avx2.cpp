// AVX2 rows of the colour-filter-array interpolation: the shared vector
// body at 16 pixels a step (8-bit).
#define CFA_LANES 16
#include "primitives/CfaRowsVector.h"

namespace kestrelink::cfa {
const CfaRowKernels kCfaRowsAVX2 = {Interior8, Interior16, Pack16Loop, Bits16, Pack8x4};
}  // namespace kestrelink::cfa
