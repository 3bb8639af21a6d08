// The RLE method of CIppImageCompress: one kernel call each way. A full
// output (status 33) is no error in either direction and prints nothing.
#include <kestrelink/CIppImageCompress.h>

#include <algorithm>
#include <climits>
#include <cstdio>

#include "compress/CompressStatus.h"
#include "compress/RleKernels.h"

using kestrelink::compress::kStsOutputFull;

int32_t CIppImageCompress::EncodeRLEImage(void* src, void* dst, uint32_t& length) {
  const Ipp8u* in = static_cast<const Ipp8u*>(src);
  Ipp32s inLeft = Ipp32s(m_size);  // a size past 31 bits reads as negative: a size error
  Ipp32s written = Ipp32s(std::min<uint32_t>(length, INT_MAX));
  const IppStatus status = ippsEncodeRLE_8u(&in, &inLeft, static_cast<Ipp8u*>(dst), &written);
  if (status != ippStsNoErr && status != kStsOutputFull) {
    std::fprintf(stderr, "Error <%d> while trying RLE encoding. Exiting.\n", status);
    return 0;
  }
  length = uint32_t(written);
  return 0;
}

int32_t CIppImageCompress::DecodeRLEImage(void* src, int32_t srcLen, void* dst) {
  const Ipp8u* in = static_cast<const Ipp8u*>(src);
  Ipp32s inLeft = srcLen;
  Ipp32s decoded = Ipp32s(m_size);
  const IppStatus status = ippsDecodeRLE_8u(&in, &inLeft, static_cast<Ipp8u*>(dst), &decoded);
  m_size = uint32_t(decoded);  // untouched by a kernel that refused its arguments
  if (status != ippStsNoErr && status != kStsOutputFull) {
    std::fprintf(stderr, "Error <%d> while trying RLE decoding. Exiting.\n", status);
    return status;
  }
  return 0;
}
