// Average row kernels built for the x86-64 baseline (SSE2).
#include <cstring>

#include "geometry/rows/AverageRows.h"

namespace kestrelink::rows {
namespace portable_average {
#include "geometry/rows/AverageRowsBody.h"
}  // namespace portable_average

const AverageRowKernels kAverageRowsPortable = portable_average::kTable;

}  // namespace kestrelink::rows
