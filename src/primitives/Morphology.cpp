// 3 x 3 dilation and erosion in place. The element is separable: each row's
// three-pixel maximum (minimum) goes to a ring of three row buffers, and an
// output row is the maximum of three of them. A row's buffer is made before
// the row above it is overwritten, so the ring always holds source values.
// Outside the region the nearest region pixel stands in (replicated border).
#include <algorithm>
#include <vector>

#include "primitives/AnalysisPrimitives.h"
#include "primitives/AnalysisRows.h"
#include "primitives/KernelFrame.h"

namespace kestrelink::analysis {
namespace {

template <class T>
using ColsKernel = void (*)(const T* in, T* out, uint32_t n);
template <class T>
using RowsKernel = void (*)(const T* a, const T* b, const T* c, T* out, uint32_t n);

template <class T, class Pick>
IppStatus Morph3x3(T* image, int step, IppiSize size, ColsKernel<T> cols, RowsKernel<T> rows, Pick pick) {
  if (!image) return ippStsNullPtrErr;
  if (const IppStatus s = prim::CheckSize(size, 1, 1)) return s;
  const uint32_t w = uint32_t(size.width);
  const int h = size.height;
  std::vector<T> ring(3 * size_t(w));
  T* slot[3] = {ring.data(), ring.data() + w, ring.data() + 2 * size_t(w)};
  auto across = [&](int y, T* out) {
    const T* in = reinterpret_cast<const T*>(prim::StepRow(image, step, y));
    if (w == 1) {
      out[0] = in[0];
      return;
    }
    out[0] = pick(in[0], in[1]);
    out[w - 1] = pick(in[w - 2], in[w - 1]);
    if (w > 2) cols(in, out + 1, w - 2);
  };
  across(0, slot[0]);
  const T* above = slot[0];
  const T* centre = slot[0];
  for (int y = 0; y < h; ++y) {
    const T* below = centre;
    if (y + 1 < h) {
      T* next = slot[(y + 1) % 3];
      across(y + 1, next);
      below = next;
    }
    rows(above, centre, below, reinterpret_cast<T*>(prim::StepRow(image, step, y)), w);
    above = centre;
    centre = below;
  }
  return ippStsNoErr;
}

template <class T>
T Larger(T a, T b) {
  return std::max(a, b);
}
template <class T>
T Smaller(T a, T b) {
  return std::min(a, b);
}

}  // namespace
}  // namespace kestrelink::analysis

using namespace kestrelink::analysis;

IppStatus ippiDilate3x3_8u_C1IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize) {
  const AnalysisRowKernels& k = AnalysisRows();
  return Morph3x3<uint8_t>(pSrcDst, srcDstStep, roiSize, k.max3Cols8, k.max3Rows8, Larger<uint8_t>);
}

IppStatus ippiErode3x3_8u_C1IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize) {
  const AnalysisRowKernels& k = AnalysisRows();
  return Morph3x3<uint8_t>(pSrcDst, srcDstStep, roiSize, k.min3Cols8, k.min3Rows8, Smaller<uint8_t>);
}

IppStatus ippiErode3x3_16u_C1IR(Ipp16u* pSrcDst, int srcDstStep, IppiSize roiSize) {
  const AnalysisRowKernels& k = AnalysisRows();
  return Morph3x3<uint16_t>(pSrcDst, srcDstStep, roiSize, k.min3Cols16, k.min3Rows16, Smaller<uint16_t>);
}
