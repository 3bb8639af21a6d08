#pragma once
// Tier-1 coding of one code-block: the magnitude bit-planes from the most
// significant one down, a cleanup pass on the first plane and then the
// significance propagation, magnitude refinement and cleanup passes on each
// plane below, in stripes of four rows, through one MQ coder terminated
// once at the end.
//
// The state is one word per stripe column: the significance of the column
// and of its left and right neighbours over the six rows from the one above
// the stripe to the one below it, the visited and refined marks of its four
// rows, and the signs of its six rows. A coefficient's eight neighbours are
// then nine bits of the word at a shift of three bits per row, and a
// context is one table lookup on them.
#include <cstddef>
#include <cstdint>

#include "jpeg2000/MqEncoder.h"

namespace kestrelink::j2k {

// Sub-band orientations; they choose the zero-coding context table.
enum BandOrientation : uint8_t { kBandLL = 0, kBandHL = 1, kBandLH = 2, kBandHH = 3 };

inline constexpr uint32_t kMaxBlockSide = 64;
inline constexpr uint32_t kMaxStripes = kMaxBlockSide / 4;
// Stripe column words a stripe: a border word on each side.
inline constexpr uint32_t kColumnWords = kMaxBlockSide + 2;

struct CodedBlock {
  uint32_t planes = 0;  // magnitude bit-planes, 0 for an all-zero block
  uint32_t passes = 0;
  size_t bytes = 0;
};

// The coder's working state: the block's coefficients as signs and
// magnitudes, the stripe column words and the MQ coder with its contexts.
struct BlockCoderState {
  uint32_t width = 0, height = 0;
  const uint8_t* zeroContexts = nullptr;
  MqEncoder mq;
  MqContext contexts[kContextCount];
  // Sign (bit 31) and magnitude of each coefficient, stripe by stripe, the
  // four rows of a stripe column side by side; rows past the foot are 0.
  uint32_t magnitudes[kMaxBlockSide * kMaxBlockSide];
  // Stripe column words with a border stripe above and below and a border
  // column left and right.
  uint32_t columns[(kMaxStripes + 2) * kColumnWords];
};

// One variant of the coder, built for its instruction set.
struct BlockEncoder {
  CodedBlock (*encode)(BlockCoderState& state, const int32_t* coefficients, size_t stride, uint32_t w, uint32_t h,
                       BandOrientation band, uint8_t* out);
};
extern const BlockEncoder kBlockEncoderPortable;
extern const BlockEncoder kBlockEncoderAVX2;

class CodeBlockCoder {
 public:
  // Worst-case bytes for a block of `samples` coefficients with up to 31 planes.
  static size_t OutputBound(size_t samples) { return samples * 31 * 4 + 64; }

  // Codes the w by h coefficients at `coefficients` (rows `stride` apart,
  // w and h at most 64) into out + 1 (out[0] is the coder's leading byte),
  // with the active variant.
  CodedBlock Encode(const int32_t* coefficients, size_t stride, uint32_t w, uint32_t h, BandOrientation band,
                    uint8_t* out);

 private:
  BlockCoderState m_state;
};

}  // namespace kestrelink::j2k
