// Depth-change row kernels built for the x86-64 baseline (SSE2).
#include <cstring>

#include "geometry/rows/DepthRows.h"

namespace kestrelink::rows {
namespace portable_depth {
#include "geometry/rows/DepthRowsBody.h"
}  // namespace portable_depth

const DepthRowKernels kDepthRowsPortable = portable_depth::kTable;

}  // namespace kestrelink::rows
