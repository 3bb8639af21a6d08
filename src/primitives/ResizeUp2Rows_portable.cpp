// Portable rows of the exact 2x bilinear enlargement: the reference every
// vector variant must match.
#include "primitives/ResizeUp2.h"

namespace kestrelink::resize {

namespace {

void Rows8(const uint8_t* a, const uint8_t* b, uint32_t m, uint8_t* outA, uint8_t* outB) {
  Up2RowsPortable(a, b, 0, m, outA, outB);
}
void Rows16(const uint16_t* a, const uint16_t* b, uint32_t m, uint16_t* outA, uint16_t* outB) {
  Up2RowsPortable(a, b, 0, m, outA, outB);
}

}  // namespace

const Up2RowKernels kUp2RowsPortable = {Rows8, Rows16};

}  // namespace kestrelink::resize
