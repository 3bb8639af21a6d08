#pragma once
// Inside of IppHuffState_8u, shared by the encoding and decoding kernels.
#include <cstdint>
#include <memory>

#include "compress/BitIo.h"
#include "compress/HuffmanCode.h"
#include "compress/HuffmanKernels.h"

namespace kestrelink::compress {

// Lookup tables of a decoder. The fast table is indexed by the next
// kFastBits bits and gives up to three whole codes found in them; codes
// longer than that go by the per-length ranges.
struct HuffmanDecodeTables {
  static constexpr uint32_t kFastBits = 14;
  // Entry: bits taken in bits 0-5 (so that the entry's low six bits are the
  // shift count as the processor takes it), symbol count in 6-7, symbols in
  // 8-31, the first in bits 8-15.
  // A count of 0 sends the decoder to the ranges.
  uint32_t fast[1u << kFastBits];

  // Codes of one length fill [first, first + count) of the length's codes,
  // which left-aligned in 32 bits begin at `floor`; shorter codes lie above.
  struct Length {
    uint32_t length;
    uint32_t first;
    uint32_t count;
    uint32_t floor;
    uint32_t symbolIndex;  // into symbols[]: the group, highest symbol first
  };
  Length lengths[kMaxCodeLength];
  uint32_t lengthCount;  // lengths in use, shortest first
  uint8_t symbols[256];
};

}  // namespace kestrelink::compress

struct IppHuffState_8u {
  kestrelink::compress::HuffmanCode code;
  kestrelink::compress::PendingBits pending;  // encoder: bits short of a whole word
  std::unique_ptr<kestrelink::compress::HuffmanDecodeTables> decode;
};
