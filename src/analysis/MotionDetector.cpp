// The motion detector's tables, copies, and grey conversion.
#include <kestrelink/CIppMotionDetector.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "analysis/MotionFrame.h"
#include "frame/RowLoop.h"
#include "frame/ThreadSetup.h"
#include "platform/OpenMP.h"
#include "primitives/AnalysisPrimitives.h"

namespace {

constexpr size_t kTableSize = 65536;
constexpr int32_t kLaplacian[9] = {0, -1, 0, -1, 4, -1, 0, -1, 0};

uint16_t* WeightTable(double weight) {
  uint16_t* table = new uint16_t[kTableSize];
  for (size_t i = 0; i < kTableSize; ++i) table[i] = uint16_t(double(i) * weight + 0.5);
  return table;
}

uint16_t* CopyTable(const uint16_t* from) {
  uint16_t* table = new uint16_t[kTableSize];
  std::memcpy(table, from, kTableSize * sizeof(uint16_t));
  return table;
}

// Table grey of pixels `stride` samples apart: red table of the third
// sample, blue table of the second, green table of the first (blue thus
// takes the 0.587 weight: a settled behaviour of the format), clamped to 255.
template <class In, class Out, int Stride>
void TableGreyRow(const In* src, Out* dst, uint32_t n, const uint16_t* red, const uint16_t* green,
                  const uint16_t* blue) {
  for (uint32_t i = 0; i < n; ++i) {
    const In* p = src + size_t(i) * Stride;
    const unsigned sum = red[p[2]] + blue[p[1]] + green[p[0]];
    dst[i] = Out(std::min(sum, 255u));
  }
}

template <class In, class Out, int Stride>
bool TableGrey(unsigned int width, unsigned int height, void* src, void* dst, const uint16_t* red,
               const uint16_t* green, const uint16_t* blue) {
  if (!src || !dst) return false;
  kestrelink::platform::SetBlockTimeZero();
  kestrelink::ForEachRow(height, false, [&](uint32_t y, uint32_t) {
    const In* in = static_cast<const In*>(src) + size_t(y) * width * Stride;
    TableGreyRow<In, Out, Stride>(in, static_cast<Out*>(dst) + size_t(y) * width, width, red, green, blue);
  });
  return true;
}

// The grey primitive over the whole frame, in bands of rows over the team
// (the result does not depend on the bands).
template <class T>
bool BandedRgbGrey(IppStatus (*kernel)(const T*, int, T*, int, IppiSize), unsigned int width, unsigned int height,
                   void* src, void* dst) {
  if (!src || !dst || width < 1 || height < 1) return false;
  kestrelink::platform::SetBlockTimeZero();
  const int inStep = int(3 * width * sizeof(T)), outStep = int(width * sizeof(T));
  return kestrelink::ForEachBand(height, [&](uint32_t first, uint32_t count) {
           return kernel(reinterpret_cast<const T*>(static_cast<const uint8_t*>(src) + int64_t(first) * inStep), inStep,
                         reinterpret_cast<T*>(static_cast<uint8_t*>(dst) + int64_t(first) * outStep), outStep,
                         {int(width), int(count)});
         }) == ippStsNoErr;
}

}  // namespace

CIppMotionDetector::CIppMotionDetector()
    : redWeightTable(WeightTable(0.299)), greenWeightTable(WeightTable(0.587)), blueWeightTable(WeightTable(0.114)) {
  std::copy(std::begin(kLaplacian), std::end(kLaplacian), laplacianKernel);
  kestrelink::SetupThreads(0);
}

CIppMotionDetector::~CIppMotionDetector() {
  delete[] redWeightTable;
  delete[] greenWeightTable;
  delete[] blueWeightTable;
}

CIppMotionDetector::CIppMotionDetector(const CIppMotionDetector& other)
    : redWeightTable(CopyTable(other.redWeightTable)),
      greenWeightTable(CopyTable(other.greenWeightTable)),
      blueWeightTable(CopyTable(other.blueWeightTable)) {
  std::copy(std::begin(other.laplacianKernel), std::end(other.laplacianKernel), laplacianKernel);
}

CIppMotionDetector& CIppMotionDetector::operator=(const CIppMotionDetector& other) {
  if (this != &other) {
    std::memcpy(redWeightTable, other.redWeightTable, kTableSize * sizeof(uint16_t));
    std::memcpy(greenWeightTable, other.greenWeightTable, kTableSize * sizeof(uint16_t));
    std::memcpy(blueWeightTable, other.blueWeightTable, kTableSize * sizeof(uint16_t));
    std::copy(std::begin(other.laplacianKernel), std::end(other.laplacianKernel), laplacianKernel);
  }
  return *this;
}

bool CIppMotionDetector::RGB8GrayConvert(unsigned int width, unsigned int height, void* src, void* dst) {
  return BandedRgbGrey<Ipp8u>(ippiRGBToGray_8u_C3C1R, width, height, src, dst);
}

bool CIppMotionDetector::RGB16GrayConvert(unsigned int width, unsigned int height, void* src, void* dst) {
  return BandedRgbGrey<Ipp16u>(ippiRGBToGray_16u_C3C1R, width, height, src, dst);
}

bool CIppMotionDetector::BGR8GrayConvert(unsigned int width, unsigned int height, void* src, void* dst) {
  return TableGrey<uint8_t, uint8_t, 3>(width, height, src, dst, redWeightTable, greenWeightTable, blueWeightTable);
}

bool CIppMotionDetector::BGRx8GrayConvert(unsigned int width, unsigned int height, void* src, void* dst) {
  return TableGrey<uint8_t, uint8_t, 4>(width, height, src, dst, redWeightTable, greenWeightTable, blueWeightTable);
}

bool CIppMotionDetector::BGR16GrayConvert(unsigned int width, unsigned int height, void* src, void* dst) {
  return TableGrey<uint16_t, uint16_t, 3>(width, height, src, dst, redWeightTable, greenWeightTable, blueWeightTable);
}

bool CIppMotionDetector::BGRx16GrayConvert(unsigned int width, unsigned int height, void* src, void* dst) {
  return TableGrey<uint16_t, uint16_t, 4>(width, height, src, dst, redWeightTable, greenWeightTable, blueWeightTable);
}
