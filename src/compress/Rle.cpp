// The RLE payload: bytes, with no header.
//
//   bytes      stands for
//   b          one b, when the byte after it differs (or there is none)
//   b b n      n + 2 copies of b (2 to 257)
//
// Two equal bytes are always followed by a count, so a pair costs one byte
// more than it saves and the worst case is 1.5 times the source. The
// decoder reads triples while at least three bytes are left and copies the
// last one or two bytes as they stand.
#include "compress/CompressStatus.h"
#include "compress/RleKernels.h"
#include "compress/kernels/RleCoder.h"

namespace {

using Loop = size_t (*)(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken);

IppStatus Run(Loop loop, const Ipp8u** ppSrc, Ipp32s* pSrcLen, Ipp8u* pDst, Ipp32s* pDstLen) {
  if (!ppSrc || !*ppSrc || !pSrcLen || !pDst || !pDstLen) return ippStsNullPtrErr;
  if (*pSrcLen <= 0 || *pDstLen <= 0) return ippStsSizeErr;
  size_t taken = 0;
  const size_t written = loop(*ppSrc, size_t(*pSrcLen), pDst, size_t(*pDstLen), &taken);
  const bool full = taken < size_t(*pSrcLen);
  *ppSrc += taken;
  *pSrcLen -= Ipp32s(taken);
  *pDstLen = Ipp32s(written);
  return full ? kestrelink::compress::kStsOutputFull : ippStsNoErr;
}

}  // namespace

IppStatus ippsEncodeRLE_8u(const Ipp8u** ppSrc, Ipp32s* pSrcLen, Ipp8u* pDst, Ipp32s* pDstLen) {
  return Run(kestrelink::compress::RleCoder().encode, ppSrc, pSrcLen, pDst, pDstLen);
}

IppStatus ippsDecodeRLE_8u(const Ipp8u** ppSrc, Ipp32s* pSrcLen, Ipp8u* pDst, Ipp32s* pDstLen) {
  return Run(kestrelink::compress::RleCoder().decode, ppSrc, pSrcLen, pDst, pDstLen);
}
