#pragma once
// The earlier set-partition block coder, with lists of rectangular sets.
// Each bit plane starts afresh from the low band as one set and the rest of
// the block as one remainder set; a significant set is quartered until its
// samples are reached, and a sample found significant writes its sign and
// all its lower bits at once. Block data, through the arithmetic coder with
// equal probabilities:
//
//   element          coded as
//   top              10 bits: log2 of the highest power of two not above the
//                    largest magnitude, or 1023 when every sample is 0
//                    (nothing follows)
//   planes           for bit lengths top + 1 down to 1, the plane pass
//   end              FinishEncoder
#include <cstdint>
#include <vector>

#include "compress/wavelet/ArithmeticCoder.h"

namespace kestrelink::wavelet {

// A rectangle of one sub-band; depth 0 is the whole band.
struct Speck1Set {
  int16_t width, height, x, y;
  uint8_t depth, band;
  bool significant;
};

// What the encoder's tests need beyond the samples: the levels and, per
// band, the largest bit length still to code.
struct Speck1Params {
  int levels = 1;
  uint8_t bandMax[16] = {};
};

// One thread's work space, reused from block to block.
struct Speck1Scratch {
  uint32_t magnitude[32 * 32];
  uint8_t flags[32 * 32];  // bit 7 sign, bits 6-0 the magnitude's bit length
  std::vector<Speck1Set> work;
};

inline constexpr uint32_t kSpeck1EmptyTop = 1023;
// The most bytes a block's data can take: every plane's set flags and every
// sample's bits once.
uint32_t Speck1BlockBound();

// Levels the coder walks: 1 to 5, the coarsest band one sample at 5.
void EncodeSpeck1Block(ArithmeticEncoder& encoder, int levels, int32_t** rows, Speck1Scratch& scratch);
void DecodeSpeck1Block(ArithmeticDecoder& decoder, int levels, int32_t** rows, Speck1Scratch& scratch);

}  // namespace kestrelink::wavelet
