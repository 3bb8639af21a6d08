#include "jpeg2000/CodeBlockCoder.h"

#include "primitives/Variant.h"

namespace kestrelink::j2k {

CodedBlock CodeBlockCoder::Encode(const int32_t* coefficients, size_t stride, uint32_t w, uint32_t h,
                                  BandOrientation band, uint8_t* out) {
  static const BlockEncoder* const slots[kVariantCount] = {&kBlockEncoderPortable, nullptr, nullptr,
                                                           &kBlockEncoderAVX2, nullptr};
  return PickVariant(slots).encode(m_state, coefficients, stride, w, h, band, out);
}

}  // namespace kestrelink::j2k
