// Code assignment from lengths, shared by writer and reader. It runs the
// reverse of the usual canonical order: counting starts at 0 at the longest
// length, each length's group goes from its highest symbol to its lowest,
// and the count halves on each step to a shorter length. So numerically
// small codes go to the longest lengths and, within a length, to the
// highest symbols; a settled part of the stream format.
#include "compress/CompressStatus.h"
#include "compress/HuffmanCode.h"

namespace kestrelink::compress {

IppStatus AssignCodes(const Ipp32s lengths[256], HuffmanCode& code) {
  uint32_t maxLength = 0;
  for (uint32_t s = 0; s < 256; ++s) {
    if (lengths[s] < 0 || lengths[s] > Ipp32s(kMaxCodeLength)) return kStsCodeLength;
    code.lengths[s] = lengths[s];
    code.codes[s] = 0;
    if (uint32_t(lengths[s]) > maxLength) maxLength = uint32_t(lengths[s]);
  }
  if (maxLength == 0) return kStsCountRange;
  code.maxLength = maxLength;

  uint64_t next = 0;
  bool halvedOdd = false;  // a halving dropped a half code: any shorter code would begin a longer one
  for (uint32_t length = maxLength; length >= 1; --length) {
    for (uint32_t s = 256; s-- > 0;) {
      if (uint32_t(lengths[s]) != length) continue;
      if (halvedOdd) return kStsCodeLength;
      code.codes[s] = uint32_t(next++);
    }
    if (next > (uint64_t(1) << length)) return kStsCodeLength;
    halvedOdd = halvedOdd || (next & 1) != 0;
    next >>= 1;
  }
  return ippStsNoErr;
}

}  // namespace kestrelink::compress
