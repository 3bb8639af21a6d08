// Average row kernels built for the AVX-512 flags.
#include <cstring>

#include "geometry/rows/AverageRows.h"

namespace kestrelink::rows {
namespace avx512_average {
#include "geometry/rows/AverageRowsBody.h"
}  // namespace avx512_average

const AverageRowKernels kAverageRowsAVX512 = avx512_average::kTable;

}  // namespace kestrelink::rows
