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
  struct Head {
    uint32_t position;  // latest biased position with the hash
    uint32_t number;    // its number among the positions of its three bytes
  };
  bool encoder = false;
  const Ipp8u* inputBase = nullptr;    // first byte of the input, set by the first round
  uint32_t hashBits = 0;               // of both tables, from the first round's input
  std::unique_ptr<Head[]> head3;       // [hash of three bytes]
  std::unique_ptr<uint32_t[]> head4;   // [hash of four bytes]: latest biased position
  struct Link {
    uint32_t prev4;   // the biased position before it on its four-byte chain
    uint32_t number;  // its number among the positions of its three bytes
  };
  std::unique_ptr<uint32_t[]> prev3;   // [position % window]: the position before it on its three-byte chain
  std::unique_ptr<Link[]> links;       // [position % window]
  kestrelink::compress::PendingBits bits;  // bits short of a whole 32-bit word

  // Decoder.
  Ipp8u* outputBase = nullptr;  // first byte of the output, set by the first round
  uint32_t bitOffset = 0;       // bits of the next input byte already read
  uint32_t matchLeft = 0;       // bytes of a match cut short by the room
  uint32_t matchOffset = 0;
};
