// The motion detector's tables, copies, and grey conversion.
#include <kestrelink/CIppMotionDetector.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>

#include "analysis/GreyFit.h"
#include "analysis/MotionFrame.h"
#include "frame/RowLoop.h"
#include "frame/ThreadSetup.h"
#include "platform/OpenMP.h"
#include "primitives/AnalysisPrimitives.h"
#include "primitives/AnalysisRows.h"

namespace {

using kestrelink::analysis::GreyWeights;

constexpr size_t kTableSize = 65536;
constexpr double kRedWeight = 0.299, kGreenWeight = 0.587, kBlueWeight = 0.114;
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

// Fixed-point stand-ins of the three tables in the order the samples take
// them (green table for the first, blue for the second, red for the third),
// checked against every entry a sample of the width can reach.
struct GreyFits {
  bool found8 = false, found16 = false;
  GreyWeights weights8, weights16;
};

GreyFits FitTables() {
  using kestrelink::analysis::FitGreyWeight;
  using kestrelink::analysis::kGrey8Form;
  GreyFits fits;
  const std::unique_ptr<uint16_t[]> red(WeightTable(kRedWeight)), green(WeightTable(kGreenWeight)),
      blue(WeightTable(kBlueWeight));
  for (const bool deep : {false, true}) {
    GreyWeights& w = deep ? fits.weights16 : fits.weights8;
    const uint32_t top = deep ? 65535 : 255;
    const kestrelink::analysis::GreyForm form = deep ? kestrelink::analysis::GreyForm{} : kGrey8Form;
    (deep ? fits.found16 : fits.found8) = FitGreyWeight(green.get(), kGreenWeight, top, deep, w.first, form) &&
                                          FitGreyWeight(blue.get(), kBlueWeight, top, deep, w.second, form) &&
                                          FitGreyWeight(red.get(), kRedWeight, top, deep, w.third, form);
  }
  return fits;
}

// The detector's tables never change after construction and are the same
// for every detector, so one check serves the process.
const GreyFits& TableFits() {
  static const GreyFits fits = FitTables();
  return fits;
}

// Grey through the fixed-point weights where they reproduce the tables,
// through the tables otherwise.
template <class T, int Stride>
bool WeighedGrey(unsigned int width, unsigned int height, void* src, void* dst, const uint16_t* red,
                 const uint16_t* green, const uint16_t* blue) {
  const GreyFits& fits = TableFits();
  constexpr bool kDeep = sizeof(T) > 1;
  if (!(kDeep ? fits.found16 : fits.found8)) return TableGrey<T, T, Stride>(width, height, src, dst, red, green, blue);
  if (!src || !dst) return false;
  const auto& rows = kestrelink::analysis::AnalysisRows();
  void (*row)(const T*, T*, uint32_t, const GreyWeights&);
  if constexpr (kDeep)
    row = Stride == 3 ? rows.weighGrey16C3 : rows.weighGrey16C4;
  else
    row = Stride == 3 ? rows.weighGrey8C3 : rows.weighGrey8C4;
  const GreyWeights& weights = kDeep ? fits.weights16 : fits.weights8;
  kestrelink::platform::SetBlockTimeZero();
  kestrelink::ForEachRow(height, false, [&](uint32_t y, uint32_t) {
    row(static_cast<const T*>(src) + size_t(y) * width * Stride, static_cast<T*>(dst) + size_t(y) * width, width,
        weights);
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
    : redWeightTable(WeightTable(kRedWeight)),
      greenWeightTable(WeightTable(kGreenWeight)),
      blueWeightTable(WeightTable(kBlueWeight)) {
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
  return WeighedGrey<uint8_t, 3>(width, height, src, dst, redWeightTable, greenWeightTable, blueWeightTable);
}

bool CIppMotionDetector::BGRx8GrayConvert(unsigned int width, unsigned int height, void* src, void* dst) {
  return WeighedGrey<uint8_t, 4>(width, height, src, dst, redWeightTable, greenWeightTable, blueWeightTable);
}

bool CIppMotionDetector::BGR16GrayConvert(unsigned int width, unsigned int height, void* src, void* dst) {
  return WeighedGrey<uint16_t, 3>(width, height, src, dst, redWeightTable, greenWeightTable, blueWeightTable);
}

bool CIppMotionDetector::BGRx16GrayConvert(unsigned int width, unsigned int height, void* src, void* dst) {
  return WeighedGrey<uint16_t, 4>(width, height, src, dst, redWeightTable, greenWeightTable, blueWeightTable);
}
