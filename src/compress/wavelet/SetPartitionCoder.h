#pragma once
// The block coder of the wavelet frame: a bit-plane walk over quadtrees laid
// out in Morton order, one set a sub-band. When a coefficient becomes
// significant all its lower bits follow at once, so there is no refinement
// pass. Block data, through the arithmetic coder with equal probabilities:
//
//   element                  coded as
//   top                      10 bits: the highest bit of any magnitude, or
//                            1023 when every sample is 0 (nothing follows)
//   planes top .. lowest     the plane passes
//   end                      FinishEncoder
#include <cstdint>

#include "compress/wavelet/ArithmeticCoder.h"
#include "compress/wavelet/MortonTables.h"
#include "compress/wavelet/WaveletDebug.h"

namespace kestrelink::wavelet {

// One sub-band: the coarsest band first, then per level below, right and
// diagonal (3 * levels + 1 sets).
struct Speck2Set {
  uint32_t start;
  int32_t width, height, x, y, index;
  int8_t sideLog;
};

inline constexpr int kMaxSpeck2Sets = 3 * 5 + 1;
// Levels the coder can walk: at 5 the coarsest band is one sample.
inline int Speck2Levels(int levels) { return levels < 1 ? 1 : levels > 5 ? 5 : levels; }
// Builds the sets for `levels` (1 to 5); answers their count.
int BuildSpeck2Sets(int levels, const uint32_t* mortonTable, Speck2Set* sets);

// Planes to code at `ratio` percent of top + 1, and the spread of one more
// cut bit over the samples.
struct Speck2Params {
  int lowestPlane = 0;
  int setCount = 0;
  int extraBits = 0;
  int threshold = 0;
};
Speck2Params PlaneRange(int top, int ratio);
// The lowest bit a newly significant sample codes: the lowest plane, or one
// above it on the samples where the block's counter spreads the extra cut.
inline int LowestBit(const Speck2Params& params, int& counter) {
  int s = params.lowestPlane;
  if (params.extraBits > 0) {
    if (params.extraBits >= counter) {
      ++counter;
    } else {
      counter = 0;
      ++s;
    }
  }
  return s;
}

// A sample's p lower bits (p <= 24) in the order EncodeBits writes them, as
// one field: the lowest byte first, then the next, then the rest, each most
// significant bit first. Lets the direct writer and reader move the bits of
// a sample in one step.
inline constexpr int kFieldPlanes = 24;
inline uint32_t GroupedBits(uint32_t low, int p) {
  if (p <= 8) return low;
  if (p <= 16) return ((low & 0xFF) << (p - 8)) | (low >> 8);
  return ((low & 0xFF) << (p - 8)) | (((low >> 8) & 0xFF) << (p - 16)) | (low >> 16);
}
inline uint32_t UngroupedBits(uint32_t field, int p) {
  if (p <= 8) return field;
  if (p <= 16) return (field >> (p - 8)) | ((field & ((1u << (p - 8)) - 1)) << 8);
  return (field >> (p - 8)) | (((field >> (p - 16)) & 0xFF) << 8) | ((field & ((1u << (p - 16)) - 1)) << 16);
}

// The highest plane a block may code; the most bytes a block's data can take.
inline constexpr int kSpeck2TopLimit = 30;
inline constexpr uint32_t kSpeck2EmptyTop = 1023;
uint32_t Speck2BlockBound();

class StreamBitReader;
class StreamBitWriter;
// EncodeBlock with the bits written directly; the same bytes.
void EncodeSpeck2Block(StreamBitWriter& writer, int ratio, int levels, const uint32_t* mortonTable, int32_t** rows);
// DecodeBlock over the stream's bits read directly; the same result.
void DecodeSpeck2Block(StreamBitReader& reader, int ratio, int levels, const uint32_t* mortonTable,
                       const MortonPosition* positionTable, int32_t** rows);

}  // namespace kestrelink::wavelet

class CSpeck2Coder : public CWaveletDebug {
 public:
  // `ratio` is the percentage of bit planes to code. Both answer 1.
  int EncodeBlock(kestrelink::wavelet::ArithmeticEncoder& writer, int ratio, int width, int height, int levels,
                  const uint32_t* mortonTable, int32_t** rows);
  int DecodeBlock(kestrelink::wavelet::ArithmeticDecoder& reader, int ratio, int width, int height, int levels,
                  const uint32_t* mortonTable, const kestrelink::wavelet::MortonPosition* positionTable,
                  int32_t** rows);
};
