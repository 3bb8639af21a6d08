// Channel reordering of three-channel 8- and 16-bit images.
#include "convert/rows/ColourRowsCopy.h"
#include "primitives/CopyPrimitives.h"
#include "primitives/KernelFrame.h"

using kestrelink::prim::CheckSize;
using kestrelink::prim::StepRow;
using kestrelink::rows::ChannelOrder;

namespace {

// The order as the row kernels take it; false when an entry names no channel.
bool ToChannelOrder(const int dstOrder[3], ChannelOrder& order) {
  for (int i = 0; i < 3; ++i) {
    if (dstOrder[i] < 0 || dstOrder[i] > 2) return false;
    order.c[i] = uint8_t(dstOrder[i]);
  }
  return true;
}

template <class Sample, class Row>
IppStatus Reorder(const Sample* pSrc, int srcStep, Sample* pDst, int dstStep, IppiSize roiSize, const int dstOrder[3],
                  Row row) {
  if (!pSrc || !pDst || !dstOrder) return ippStsNullPtrErr;
  if (const IppStatus status = CheckSize(roiSize, 1, 1)) return status;
  ChannelOrder order;
  if (!ToChannelOrder(dstOrder, order)) return ippStsChannelOrderErr;
  for (int y = 0; y < roiSize.height; ++y)
    row(StepRow(pSrc, srcStep, y), StepRow(pDst, dstStep, y), uint32_t(roiSize.width), order);
  return ippStsNoErr;
}

}  // namespace

IppStatus ippiSwapChannels_8u_C3R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize,
                                  const int dstOrder[3]) {
  return Reorder(pSrc, srcStep, pDst, dstStep, roiSize, dstOrder, kestrelink::rows::CopyRows().reorder3x8);
}

IppStatus ippiSwapChannels_16u_C3R(const Ipp16u* pSrc, int srcStep, Ipp16u* pDst, int dstStep, IppiSize roiSize,
                                   const int dstOrder[3]) {
  return Reorder(pSrc, srcStep, pDst, dstStep, roiSize, dstOrder, kestrelink::rows::CopyRows().reorder3x16);
}
