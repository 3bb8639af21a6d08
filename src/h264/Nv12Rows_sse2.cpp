// SSE2 NV12 rows: 16 pairs a step, unpacked low and high.
#include "h264/Nv12RowsBody.h"

namespace kestrelink::h264 {

const Nv12RowKernels kNv12RowsSSE2 = nv12body::Kernels<nv12body::Sse2>();

}  // namespace kestrelink::h264
