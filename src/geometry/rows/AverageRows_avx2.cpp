// Average row kernels built for -mavx2.
#include <cstring>

#include "geometry/rows/AverageRows.h"

namespace kestrelink::rows {
namespace avx2_average {
#include "geometry/rows/AverageRowsBody.h"
}  // namespace avx2_average

const AverageRowKernels kAverageRowsAVX2 = avx2_average::kTable;

}  // namespace kestrelink::rows
