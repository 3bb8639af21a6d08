// The automatic colour-balance estimators. Each measures the image in double
// precision, single-threaded, and rewrites table entries 0 .. 2^lutBits - 1
// (0 .. 255), clamped to 0 .. 255; on a 16-bit image the entries above keep
// what they held (a settled limit of the estimators). One that finds nothing
// to do leaves the tables exactly as they were.
#include <cmath>

#include "colour/BayerCorrectorImpl.h"
#include "colour/ChannelLuts.h"

namespace kestrelink::colour {
namespace {

struct ChannelStats {
  double sum[3] = {0, 0, 0};   // blue, green, red
  double mean[3] = {0, 0, 0};
  double sigma[3] = {0, 0, 0};  // population deviation
  double count = 0;
};

// Walks every pixel's blue, green, red samples.
template <class Sample, int step, class Visit>
void ForEachPixel(const void* image, size_t pixels, Visit visit) {
  const Sample* p = static_cast<const Sample*>(image);
  for (size_t i = 0; i < pixels; ++i, p += step) visit(double(p[0]), double(p[1]), double(p[2]));
}

template <class Sample, int step>
ChannelStats Measure(const void* image, size_t pixels, bool deviation) {
  ChannelStats st;
  st.count = double(pixels);
  ForEachPixel<Sample, step>(image, pixels, [&](double b, double g, double r) {
    st.sum[0] += b;
    st.sum[1] += g;
    st.sum[2] += r;
  });
  for (int c = 0; c < 3; ++c) st.mean[c] = st.sum[c] / st.count;
  if (!deviation) return st;
  double squares[3] = {0, 0, 0};
  ForEachPixel<Sample, step>(image, pixels, [&](double b, double g, double r) {
    squares[0] += (b - st.mean[0]) * (b - st.mean[0]);
    squares[1] += (g - st.mean[1]) * (g - st.mean[1]);
    squares[2] += (r - st.mean[2]) * (r - st.mean[2]);
  });
  for (int c = 0; c < 3; ++c) st.sigma[c] = std::sqrt(squares[c] / st.count);
  return st;
}

uint32_t ClampByte(double v) { return uint32_t(v < 0 ? 0 : v > 255 ? 255 : v); }  // after truncation toward 0

void GrayOffset(CBayerCorrectorImpl& s, const ChannelStats& st, int entries) {
  const float dR = float(st.mean[1] - st.mean[2]), dB = float(st.mean[1] - st.mean[0]);
  if (dR == 0.0f && dB == 0.0f) return;
  const int offR = int(dR), offB = int(dB);
  for (int i = 0; i < entries; ++i) {
    s.redLut[i] = ClampByte(i + offR);
    s.greenLut[i] = uint32_t(i);
    s.blueLut[i] = ClampByte(i + offB);
  }
}

void GrayGain(CBayerCorrectorImpl& s, const ChannelStats& st, int entries) {
  const double gainR = st.sum[2] != 0 ? st.sum[1] / st.sum[2] : 1.0;
  const double gainB = st.sum[0] != 0 ? st.sum[1] / st.sum[0] : 1.0;
  if (gainR == 1.0 && gainB == 1.0) return;
  for (int i = 0; i < entries; ++i) {
    s.redLut[i] = ClampByte(std::trunc(i * gainR));
    s.greenLut[i] = uint32_t(i);
    s.blueLut[i] = ClampByte(std::trunc(i * gainB));
  }
}

// Each channel scaled about its mean to a deviation of 0.27 of the range,
// centred on its own mean or on mid grey.
void Contrast(CBayerCorrectorImpl& s, const ChannelStats& st, int entries, bool midGrey) {
  if (st.sigma[0] * st.sigma[1] * st.sigma[2] == 0) return;
  uint32_t* const luts[3] = {s.blueLut.get(), s.greenLut.get(), s.redLut.get()};
  for (int c = 0; c < 3; ++c) {
    const double gain = 256 * 0.27 / st.sigma[c];
    const double centre = midGrey ? entries / 2 : st.mean[c];
    for (int i = 0; i < entries; ++i) luts[c][i] = ClampByte(std::trunc((i - st.mean[c]) * gain + centre));
  }
}

}  // namespace

bool RunEstimator(CBayerCorrectorImpl& s, const void* image, uint32_t formatCode, uint32_t bitsPerPixel,
                  uint32_t bitDepth) {
  if (!image || !s.bInitialised) return false;
  const CORRECTIONAL_ALG alg = s.cbAlgorithm;
  if (alg < CB_ALG_GRAY_OFFSET || alg > CB_ALG_CONTRAST_MID) return false;
  const size_t pixels = size_t(s.width) * s.height;
  if (pixels == 0) return false;  // no statistics to take
  const bool deviation = alg == CB_ALG_CONTRAST_MEAN || alg == CB_ALG_CONTRAST_MID;
  ChannelStats st;
  if (formatCode == kFormatBgr && bitsPerPixel == 24 && bitDepth == 8)
    st = Measure<uint8_t, 3>(image, pixels, deviation);
  else if (formatCode == kFormatBgr && bitsPerPixel == 48)
    st = Measure<uint16_t, 3>(image, pixels, deviation);
  else if (formatCode == kFormatBgrx && bitsPerPixel == 32)
    st = Measure<uint8_t, 4>(image, pixels, deviation);
  else
    return false;
  const int entries = 1 << s.lutBits;
  switch (alg) {
    case CB_ALG_GRAY_OFFSET: GrayOffset(s, st, entries); break;
    case CB_ALG_GRAY_GAIN: GrayGain(s, st, entries); break;
    case CB_ALG_CONTRAST_MEAN: Contrast(s, st, entries, false); break;
    default: Contrast(s, st, entries, true); break;
  }
  return true;
}

}  // namespace kestrelink::colour
