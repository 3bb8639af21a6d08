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
#include <algorithm>
#include <cstring>

#include "compress/CompressStatus.h"
#include "compress/RleKernels.h"
#include "compress/kernels/ByteScan.h"

using kestrelink::compress::kStsOutputFull;

namespace {

constexpr size_t kMaxRepeats = 256;  // copies after the first that one triple carries

bool BadArguments(const Ipp8u* const* ppSrc, const Ipp32s* pSrcLen, const Ipp8u* pDst, const Ipp32s* pDstLen,
                  IppStatus& status) {
  if (!ppSrc || !*ppSrc || !pSrcLen || !pDst || !pDstLen) {
    status = ippStsNullPtrErr;
  } else if (*pSrcLen <= 0 || *pDstLen <= 0) {
    status = ippStsSizeErr;
  } else {
    return false;
  }
  return true;
}

}  // namespace

IppStatus ippsEncodeRLE_8u(const Ipp8u** ppSrc, Ipp32s* pSrcLen, Ipp8u* pDst, Ipp32s* pDstLen) {
  IppStatus status = ippStsNoErr;
  if (BadArguments(ppSrc, pSrcLen, pDst, pDstLen, status)) return status;
  const auto& scan = kestrelink::compress::ByteScan();
  const Ipp8u* src = *ppSrc;
  const size_t n = size_t(*pSrcLen), room = size_t(*pDstLen);
  size_t i = 0, o = 0;
  while (i < n) {
    // Bytes not followed by their equal stand for themselves.
    const size_t literals = scan.find_equal_pair(src + i, n - i);
    const size_t fits = std::min(literals, room - o);
    std::memcpy(pDst + o, src + i, fits);
    o += fits;
    i += fits;
    if (fits < literals) {
      status = kStsOutputFull;
      break;
    }
    if (i == n) break;
    if (room - o < 3) {
      status = kStsOutputFull;
      break;
    }
    const Ipp8u b = src[i];
    const size_t repeats = scan.count_equal(src + i + 1, std::min(kMaxRepeats, n - i - 1), b);  // 1 or more
    pDst[o] = b;
    pDst[o + 1] = b;
    pDst[o + 2] = Ipp8u(repeats - 1);
    o += 3;
    i += 1 + repeats;
  }
  *ppSrc = src + i;
  *pSrcLen = Ipp32s(n - i);
  *pDstLen = Ipp32s(o);
  return status;
}

IppStatus ippsDecodeRLE_8u(const Ipp8u** ppSrc, Ipp32s* pSrcLen, Ipp8u* pDst, Ipp32s* pDstLen) {
  IppStatus status = ippStsNoErr;
  if (BadArguments(ppSrc, pSrcLen, pDst, pDstLen, status)) return status;
  const auto& scan = kestrelink::compress::ByteScan();
  const Ipp8u* src = *ppSrc;
  const size_t n = size_t(*pSrcLen), room = size_t(*pDstLen);
  size_t i = 0, o = 0;
  for (;;) {
    // A triple may start only where three bytes are left: look for the pair
    // among the bytes before the last one. Without one, the rest is literal.
    const size_t pair = n - i >= 3 ? i + scan.find_equal_pair(src + i, n - 1 - i) : n - 1;
    const size_t literalEnd = pair == n - 1 ? n : pair;
    const size_t fits = std::min(literalEnd - i, room - o);
    std::memcpy(pDst + o, src + i, fits);
    o += fits;
    i += fits;
    if (i < literalEnd) {
      status = kStsOutputFull;
      break;
    }
    if (i == n) break;
    const size_t copies = size_t(src[i + 2]) + 2;
    const size_t filled = std::min(copies, room - o);
    std::memset(pDst + o, src[i], filled);
    o += filled;
    if (filled < copies) {
      status = kStsOutputFull;
      break;
    }
    i += 3;
  }
  *ppSrc = src + i;
  *pSrcLen = Ipp32s(n - i);
  *pDstLen = Ipp32s(o);
  return status;
}
