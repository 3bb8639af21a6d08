#pragma once
// Inside of IppLZSSState_8u, shared by the encoding and decoding kernels.
#include <cstdint>
#include <memory>

#include "compress/BitIo.h"
#include "compress/LzssKernels.h"
#include "compress/LzssTokens.h"

struct IppLZSSState_8u {
  // Encoder: positions are kept biased by the window, so that 0 means none
  // and a distance test alone ends every chain.
  static constexpr uint32_t kHashBits = 16;
  const Ipp8u* inputBase = nullptr;         // first byte of the input, set by the first round
  std::unique_ptr<uint32_t[]> head;         // [hash]: latest biased position with that hash
  std::unique_ptr<uint32_t[]> chain;        // [position % window]: the biased position before it
  kestrelink::compress::PendingBits bits;  // bits short of a whole 32-bit word

  // Decoder.
  Ipp8u* outputBase = nullptr;  // first byte of the output, set by the first round
  uint32_t bitOffset = 0;       // bits of the next input byte already read
  uint32_t matchLeft = 0;       // bytes of a match cut short by the room
  uint32_t matchOffset = 0;
};
