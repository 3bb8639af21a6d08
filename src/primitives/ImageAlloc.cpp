// Image allocation with 64-byte aligned rows, its release, and constant fill.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "primitives/AnalysisPrimitives.h"
#include "primitives/KernelFrame.h"

using kestrelink::prim::StepRow;

namespace {

constexpr int64_t kRowAlign = 64;

void* AllocateImage(int width, int height, int sampleBytes, int* stepBytes) {
  if (!stepBytes || width < 1 || height < 1) return nullptr;
  const int64_t step = (int64_t(width) * sampleBytes + kRowAlign - 1) / kRowAlign * kRowAlign;
  if (step > INT32_MAX) return nullptr;
  void* p = std::aligned_alloc(size_t(kRowAlign), size_t(step) * size_t(height));
  if (p) *stepBytes = int(step);
  return p;
}

template <class T>
IppStatus Fill(T value, T* dst, int step, IppiSize size) {
  if (!dst) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(size, 1, 1)) return s;
  for (int y = 0; y < size.height; ++y) {
    T* row = reinterpret_cast<T*>(StepRow(dst, step, y));
    std::fill_n(row, size.width, value);
  }
  return ippStsNoErr;
}

}  // namespace

Ipp8u* ippiMalloc_8u_C1(int widthPixels, int heightPixels, int* pStepBytes) {
  return static_cast<Ipp8u*>(AllocateImage(widthPixels, heightPixels, 1, pStepBytes));
}
Ipp16s* ippiMalloc_16s_C1(int widthPixels, int heightPixels, int* pStepBytes) {
  return static_cast<Ipp16s*>(AllocateImage(widthPixels, heightPixels, 2, pStepBytes));
}
Ipp16u* ippiMalloc_16u_C1(int widthPixels, int heightPixels, int* pStepBytes) {
  return static_cast<Ipp16u*>(AllocateImage(widthPixels, heightPixels, 2, pStepBytes));
}
void ippiFree(void* ptr) { std::free(ptr); }

IppStatus ippiSet_8u_C1R(Ipp8u value, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
  return Fill(value, pDst, dstStep, roiSize);
}
IppStatus ippiSet_16s_C1R(Ipp16s value, Ipp16s* pDst, int dstStep, IppiSize roiSize) {
  return Fill(value, pDst, dstStep, roiSize);
}
IppStatus ippiSet_16u_C1R(Ipp16u value, Ipp16u* pDst, int dstStep, IppiSize roiSize) {
  return Fill(value, pDst, dstStep, roiSize);
}
