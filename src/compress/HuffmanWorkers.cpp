// The Huffman payload: the packed code-length table (compress/HuffmanTablePack.cpp)
// immediately followed by the code bits (compress/HuffmanEncode.cpp). The
// table delimits itself; the code bits have no end symbol, so a decoder
// stops after the frame's bytes or when the bits run out.
//
// Each numbered step is a kernel, and the place where its message arises.
#include <algorithm>
#include <climits>
#include <cstdio>

#include "compress/HuffmanCode.h"
#include "compress/HuffmanKernels.h"
#include "compress/HuffmanWorkers.h"

namespace kestrelink::compress {

namespace {

// Frees the coder state on every way out.
struct HuffState {
  IppHuffState_8u* state = nullptr;
  ~HuffState() { ippsHuffFree_8u(state); }
};

Ipp32s Room(uint32_t length) { return Ipp32s(std::min<uint32_t>(length, INT_MAX)); }

}  // namespace

int32_t EncodeHuffman(const uint8_t* src, uint32_t size, uint8_t* dst, uint32_t& length) {
  // 1. Count the source bytes. A size past 31 bits can't be counted: the
  // coder build below refuses it as a sum of counts out of range.
  if (!src || !dst) return ippStsNullPtrErr;
  Ipp32s counts[256];
  if (size <= uint32_t(INT_MAX)) {
    CountBytes(src, size, counts);
  } else {
    std::fill(counts, counts + 256, -1);
  }
  // 2. The coder from the counts.
  HuffState coder;
  if (ippsEncodeHuffInitAlloc_8u(counts, &coder.state) != ippStsNoErr) {
    std::fputs("Error while trying to init the frequency table for huffman. Exiting.\n", stderr);
    return 0;
  }
  // 3. Its code lengths.
  Ipp32s lengths[256];
  if (ippsHuffGetLenCodeTable_8u(lengths, coder.state) != ippStsNoErr) {
    std::fputs("Error while trying to get the code length 4 huffman. Exiting.\n", stderr);
    return 0;
  }
  // 4. The packed table at the start of the output.
  const Ipp32s room = Room(length);
  Ipp32s tableBytes = room;
  if (const IppStatus status = ippsHuffLenCodeTablePack_8u(lengths, dst, &tableBytes); status != ippStsNoErr) {
    std::fprintf(stderr, "Error <%d> while trying to flush code lengths. Exiting.\n", status);
    return status;
  }
  // 5. The code bits behind it, in whole words, within the room left (a
  // short room ends here instead of in a write past the buffer). The
  // message of this step and the next prints 0, not the status: settled.
  Ipp32s wordBytes = room - tableBytes;
  if (ippsEncodeHuff_8u(src, Ipp32s(size), dst + tableBytes, &wordBytes, coder.state) != ippStsNoErr) {
    std::fprintf(stderr, "Error <%d> while trying to encode huffman. Exiting.\n", 0);
    return 0;
  }
  // 6. The last bits, padded to a byte.
  Ipp32s finalBytes = room - tableBytes - wordBytes;
  if (ippsEncodeHuffFinal_8u(dst + tableBytes + wordBytes, &finalBytes, coder.state) != ippStsNoErr) {
    std::fprintf(stderr, "Error <%d> while trying to finalize ecoding huffman. Exiting.\n", 0);
    return 0;
  }
  // 7. The payload is the three together.
  length = uint32_t(tableBytes + wordBytes + finalBytes);
  return 0;
}

int32_t DecodeHuffman(const uint8_t* src, int32_t srcLen, uint8_t* dst, uint32_t& size) {
  Ipp32s lengths[256];
  Ipp32s tableBytes = srcLen;
  if (const IppStatus status = ippsHuffLenCodeTableUnpack_8u(src, &tableBytes, lengths); status != ippStsNoErr) {
    std::fprintf(stderr, "Error <%d> while decoding Huffman (Unpack Table)\n", status);
    return status;
  }
  HuffState coder;
  if (const IppStatus status = ippsDecodeHuffInitAlloc_8u(lengths, &coder.state); status != ippStsNoErr) {
    std::fprintf(stderr, "Error <%d> while decoding Huffman (Init)\n", status);
    return status;
  }
  // A size past 31 bits reads as negative, a size error, as the kernels take lengths.
  Ipp32s decoded = Ipp32s(size);
  const IppStatus status = ippsDecodeHuff_8u(src + tableBytes, srcLen - tableBytes, dst, &decoded, coder.state);
  size = uint32_t(decoded);
  if (status != ippStsNoErr) std::fprintf(stderr, "Error <%d> while decoding HUFFMAN\n", status);
  return status;
}

}  // namespace kestrelink::compress
