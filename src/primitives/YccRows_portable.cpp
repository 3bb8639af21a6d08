// Portable YCbCr rows: the reference every vector variant must match.
#include "primitives/YccPixels.h"

namespace kestrelink::ycc {

namespace {

template <class Group>
void DecodeToC3(const uint8_t* src, uint8_t* dst, uint32_t pairs, ChannelOrder order) {
  if (order == kOrderRGB)
    DecodePairsRow<Group>(src, pairs, StoreC3<kOrderRGB>{dst});
  else
    DecodePairsRow<Group>(src, pairs, StoreC3<kOrderBGR>{dst});
}

}  // namespace

void PairsToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t pairs, uint8_t alpha) {
  DecodePairsRow<YuyvGroup>(src, pairs, StoreBgrx{dst, alpha});
}

void PairsToC3Portable(const uint8_t* src, uint8_t* dst, uint32_t pairs, ChannelOrder order) {
  DecodeToC3<YuyvGroup>(src, dst, pairs, order);
}

void UyvyToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t pairs, uint8_t alpha) {
  DecodePairsRow<UyvyGroup>(src, pairs, StoreBgrx{dst, alpha});
}

void UyvyToC3Portable(const uint8_t* src, uint8_t* dst, uint32_t pairs, ChannelOrder order) {
  DecodeToC3<UyvyGroup>(src, dst, pairs, order);
}

void C3ToPlanar422Portable(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w,
                           ChannelOrder order) {
  if (order == kOrderRGB)
    EncodePlanar422Row(C3Pixels<kOrderRGB>{src}, y, cb, cr, w);
  else
    EncodePlanar422Row(C3Pixels<kOrderBGR>{src}, y, cb, cr, w);
}

void BgrxToPlanar422Portable(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w) {
  EncodePlanar422Row(BgrxPixels{src}, y, cb, cr, w);
}

void C3ToPlanar420Portable(const uint8_t* src0, const uint8_t* src1, uint8_t* y0, uint8_t* y1, uint8_t* cb,
                           uint8_t* cr, uint32_t w, ChannelOrder order) {
  if (order == kOrderRGB)
    EncodePlanar420Rows(C3Pixels<kOrderRGB>{src0}, C3Pixels<kOrderRGB>{src1}, y0, y1, cb, cr, w);
  else
    EncodePlanar420Rows(C3Pixels<kOrderBGR>{src0}, C3Pixels<kOrderBGR>{src1}, y0, y1, cb, cr, w);
}

void BgrxToPlanar420Portable(const uint8_t* src0, const uint8_t* src1, uint8_t* y0, uint8_t* y1, uint8_t* cb,
                             uint8_t* cr, uint32_t w) {
  EncodePlanar420Rows(BgrxPixels{src0}, BgrxPixels{src1}, y0, y1, cb, cr, w);
}

const YccRowKernels kYccRowsPortable = {
    PairsToBgrxPortable,   PairsToC3Portable,       UyvyToBgrxPortable,    UyvyToC3Portable,
    C3ToPlanar422Portable, BgrxToPlanar422Portable, C3ToPlanar420Portable, BgrxToPlanar420Portable,
};

}  // namespace kestrelink::ycc
