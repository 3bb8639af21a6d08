// AVX2 analysis rows: the shared body at 32 bytes a register.
#define ANALYSIS_VECTOR_BYTES 32
#include "primitives/AnalysisRowsBody.h"

namespace kestrelink::analysis {
const AnalysisRowKernels kAnalysisRowsAVX2 = kBodyKernels;
}  // namespace kestrelink::analysis
