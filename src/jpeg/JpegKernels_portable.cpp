// The JPEG kernels built for the Portable variant (compile flags come from the file name).
#include "jpeg/JpegKernels.h"

namespace kestrelink::jpeg {
namespace portable_variant {
#include "jpeg/JpegKernelBody.h"
}  // namespace portable_variant

const JpegKernels kJpegKernelsPortable = portable_variant::kTable;

}  // namespace kestrelink::jpeg
