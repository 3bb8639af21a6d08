// AVX-512 analysis rows: the shared body at 64 bytes a register.
#define ANALYSIS_VECTOR_BYTES 64
#include "primitives/AnalysisRowsBody.h"

namespace kestrelink::analysis {
const AnalysisRowKernels kAnalysisRowsAVX512 = kBodyKernels;
}  // namespace kestrelink::analysis
