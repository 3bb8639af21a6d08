// Portable analysis rows: the shared body as plain loops at the baseline
// instruction set; the reference every other variant must match.
#define ANALYSIS_VECTOR_BYTES 0
#include "primitives/AnalysisRowsBody.h"

namespace kestrelink::analysis {
const AnalysisRowKernels kAnalysisRowsPortable = kBodyKernels;
}  // namespace kestrelink::analysis
