// Set-up, release and entry points of the real 16-bit transform; the passes
// themselves are in FftReal16Body.h, one copy per processor variant.
#include "primitives/FftReal16.h"

#include <cmath>
#include <cstring>
#include <new>

#include "primitives/FftReal16Plan.h"

struct IppsFFTSpec_R_16s {
  kestrelink::fft::FftPlan plan;
};

namespace kestrelink::fft {
namespace {

constexpr int kMaxOrder = 16;

int32_t Q15(double v) { return int32_t(std::lround(v * 32768.0)); }

void BuildPlan(FftPlan& plan, int order, int flag, int hint) {
  plan.order = order, plan.flag = flag, plan.hint = hint;
  plan.n = 1u << order;
  plan.half = plan.n / 2;
  plan.guard = 14 - order;
  const uint32_t m = plan.half;
  int bits = 0;
  while ((1u << bits) < m) ++bits;
  plan.reversed.resize(m);
  for (uint32_t i = 0; i < m; ++i) {
    uint32_t r = 0;
    for (int b = 0; b < bits; ++b) r |= ((i >> b) & 1u) << (bits - 1 - b);
    plan.reversed[i] = r;
  }
  plan.passRe.assign(m > 1 ? m - 1 : 1, 0);
  plan.passIm.assign(m > 1 ? m - 1 : 1, 0);
  for (uint32_t h = 1; h < m; h <<= 1)
    for (uint32_t j = 0; j < h; ++j) {
      const double a = -M_PI * double(j) / double(h);
      plan.passRe[h - 1 + j] = Q15(std::cos(a));
      plan.passIm[h - 1 + j] = Q15(std::sin(a));
    }
  plan.splitRe.resize(m + 1);
  plan.splitIm.resize(m + 1);
  for (uint32_t k = 0; k <= m; ++k) {
    const double a = -2.0 * M_PI * double(k) / double(plan.n);
    plan.splitRe[k] = Q15(std::cos(a));
    plan.splitIm[k] = Q15(std::sin(a));
  }
  // The split pass gives 2 X[k] with `guard` bits more: one bit and the
  // guard come off, then the flag's normalisation.
  plan.multiplier = 1;
  plan.shift = 1 + plan.guard;
  if (flag == IPP_FFT_DIV_FWD_BY_N) {
    plan.shift += order;
  } else if (flag == IPP_FFT_DIV_BY_SQRTN) {
    plan.multiplier = std::llround(std::ldexp(1.0, 30) / std::sqrt(double(plan.n)));
    plan.shift += 30;
  }
}

}  // namespace

double FftErrorBound(int order, int flag, int scaleFactor, double sumAbs) {
  const double n = std::ldexp(1.0, order);
  double norm = std::ldexp(1.0, -scaleFactor);
  if (flag == IPP_FFT_DIV_FWD_BY_N) norm /= n;
  if (flag == IPP_FFT_DIV_BY_SQRTN) norm /= std::sqrt(n);
  const double twiddles = norm * (order + 1) * std::ldexp(sumAbs, -14);
  const double products = norm * n * std::ldexp(1.0, -(14 - order)) / 2.0;
  return 1.0 + twiddles + products;
}

}  // namespace kestrelink::fft

IppStatus ippsFFTInitAlloc_R_16s(IppsFFTSpec_R_16s** spec, int order, int flag, IppHintAlgorithm hint) {
  if (!spec) return ippStsNullPtrErr;
  *spec = nullptr;
  if (order < 1 || order > kestrelink::fft::kMaxOrder) return ippStsFftOrderErr;
  if (flag != IPP_FFT_DIV_FWD_BY_N && flag != IPP_FFT_DIV_INV_BY_N && flag != IPP_FFT_DIV_BY_SQRTN &&
      flag != IPP_FFT_NODIV_BY_ANY)
    return ippStsFftFlagErr;
  auto* made = new (std::nothrow) IppsFFTSpec_R_16s;
  if (!made) return ippStsNullPtrErr;
  kestrelink::fft::BuildPlan(made->plan, order, flag, int(hint));
  *spec = made;
  return ippStsNoErr;
}

IppStatus ippsFFTFree_R_16s(IppsFFTSpec_R_16s* spec) {
  if (!spec) return ippStsNullPtrErr;
  delete spec;
  return ippStsNoErr;
}

IppStatus ippsFFTGetBufSize_R_16s(const IppsFFTSpec_R_16s* spec, int* size) {
  if (!spec || !size) return ippStsNullPtrErr;
  *size = int(2 * spec->plan.half * sizeof(int32_t));
  return ippStsNoErr;
}

IppStatus ippsFFTFwd_RToCCS_16s_Sfs(const Ipp16s* src, Ipp16s* dst, const IppsFFTSpec_R_16s* spec, int scaleFactor,
                                    Ipp8u* buffer) {
  return kestrelink::fft::ForwardFetchingAhead(src, dst, spec, scaleFactor, buffer, nullptr);
}

IppStatus kestrelink::fft::ForwardFetchingAhead(const Ipp16s* src, Ipp16s* dst, const IppsFFTSpec_R_16s* spec,
                                                int scaleFactor, Ipp8u* buffer, const Ipp16s* ahead) {
  if (!src || !dst || !spec || !buffer) return ippStsNullPtrErr;
  // Beyond +-40 every bin is 0 or saturated; the bound keeps the shifts defined.
  scaleFactor = scaleFactor < -40 ? -40 : scaleFactor > 40 ? 40 : scaleFactor;
  kestrelink::fft::ActiveFftKernels().forward(spec->plan, src, ahead, dst, scaleFactor,
                                              reinterpret_cast<int32_t*>(buffer));
  return ippStsNoErr;
}

IppStatus ippsConjCcs_16sc(const Ipp16s* src, Ipp16sc* dst, int dstLen) {
  if (!src || !dst) return ippStsNullPtrErr;
  if (dstLen < 1) return ippStsSizeErr;
  kestrelink::fft::ActiveFftKernels().conjCcs(src, dst, uint32_t(dstLen));
  return ippStsNoErr;
}

IppStatus ippsZero_16sc(Ipp16sc* dst, int len) {
  if (!dst) return ippStsNullPtrErr;
  if (len < 1) return ippStsSizeErr;
  std::memset(static_cast<void*>(dst), 0, size_t(len) * sizeof(Ipp16sc));
  return ippStsNoErr;
}
