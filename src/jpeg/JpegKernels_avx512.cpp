// The JPEG kernels built for the AVX512 variant (compile flags come from the file name).
#include "jpeg/JpegKernels.h"

namespace kestrelink::jpeg {
namespace avx512_variant {
#include "jpeg/JpegKernelBody.h"
}  // namespace avx512_variant

const JpegKernels kJpegKernelsAVX512 = avx512_variant::kTable;

}  // namespace kestrelink::jpeg
