// The LZSS method of CIppImageCompress. Both directions run the kernels in
// rounds of 64 KiB of output until they stop asking for more room; the
// rounds only cut the work, the bytes are those of one pass.
//
// Encoding needs no bound of its own: a token costs at most 9 bits a byte,
// so a payload never passes 2 * m_size, the room that the caller provides.
// Decoding produces what the stream holds, up to m_size bytes: the caller's
// buffer holds m_size, and a stream written from a frame of that size fills
// it exactly. A stream that holds more stops there with its message (status
// 33); a shorter one shrinks m_size to what it produced.
#include <kestrelink/CIppImageCompress.h>

#include <algorithm>
#include <cstdio>

#include "compress/CompressStatus.h"
#include "compress/LzssKernels.h"

namespace {

constexpr Ipp32s kRound = 0x10000;

// Frees the coder state on every way out.
struct LzssState {
  IppLZSSState_8u* state = nullptr;
  ~LzssState() { ippsLZSSFree_8u(state); }
};

}  // namespace

int32_t CIppImageCompress::EncodeLZ77Image(void* src, void* dst, uint32_t& length) {
  LzssState coder;
  IppStatus status = ippsEncodeLZSSInitAlloc_8u(&coder.state);
  if (status != ippStsNoErr) {
    std::fputs("Error while encode lz77.exiting...\n", stderr);
    return status;
  }
  Ipp8u* in = static_cast<Ipp8u*>(src);
  Ipp32s inLeft = Ipp32s(m_size);  // a size past 31 bits reads as negative: a size error
  Ipp8u* out = static_cast<Ipp8u*>(dst);
  uint32_t written = 0;
  do {
    Ipp32s room = kRound;
    status = ippsEncodeLZSS_8u(&in, &inLeft, &out, &room, coder.state);
    written += uint32_t(kRound - room);
  } while (status == kestrelink::compress::kStsOutputFull);
  if (status != ippStsNoErr) {
    std::fputs("Error while encode lz77.exiting...\n", stderr);
    return status;
  }
  Ipp32s room = kRound;
  status = ippsEncodeLZSSFlush_8u(&out, &room, coder.state);
  written += uint32_t(kRound - room);  // what was flushed stands even after a failure
  if (status != ippStsNoErr) std::fprintf(stderr, "Error <%d> while flushing LZSS endings. Exiting.\n", status);
  length = written;
  return 0;
}

int32_t CIppImageCompress::DecodeLZ77Image(void* src, int32_t srcLen, void* dst) {
  LzssState coder;
  IppStatus status = ippsDecodeLZSSInitAlloc_8u(&coder.state);
  if (status != ippStsNoErr) {
    std::fputs("Error while initalloc 4 decode lz77.exiting...\n", stderr);
    return status;
  }
  Ipp8u* in = static_cast<Ipp8u*>(src);
  Ipp32s inLeft = srcLen;
  Ipp8u* out = static_cast<Ipp8u*>(dst);
  const uint32_t capacity = m_size;
  uint32_t produced = 0;
  do {
    const Ipp32s room = Ipp32s(std::min<uint32_t>(kRound, capacity - produced));
    Ipp32s left = room;
    status = ippsDecodeLZSS_8u(&in, &inLeft, &out, &left, coder.state);
    produced += uint32_t(room - left);
  } while (status == kestrelink::compress::kStsOutputFull && produced < capacity);
  m_size = produced;
  if (status != ippStsNoErr) std::fprintf(stderr, "Error %d while decode lz77.exiting...\n", status);
  return status;
}
