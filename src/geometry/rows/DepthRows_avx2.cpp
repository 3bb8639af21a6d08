// Depth-change row kernels built for -mavx2.
#include <cstring>

#include "geometry/rows/DepthRows.h"

namespace kestrelink::rows {
namespace avx2_depth {
#include "geometry/rows/DepthRowsBody.h"
}  // namespace avx2_depth

const DepthRowKernels kDepthRowsAVX2 = avx2_depth::kTable;

}  // namespace kestrelink::rows
