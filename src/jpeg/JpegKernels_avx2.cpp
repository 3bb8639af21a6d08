// The JPEG kernels built for the AVX2 variant (compile flags come from the file name).
#include "jpeg/JpegKernels.h"

namespace kestrelink::jpeg {
namespace avx2_variant {
#include "jpeg/JpegKernelBody.h"
}  // namespace avx2_variant

const JpegKernels kJpegKernelsAVX2 = avx2_variant::kTable;

}  // namespace kestrelink::jpeg
