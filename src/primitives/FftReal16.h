#pragma once
// Forward real FFT of signed 16-bit samples in fixed point, with the packed
// conjugate-symmetric output form and its expansion.
//
// The transform is ours: N = 1 << order real samples go as N/2 complex
// values through one radix-4 pass and radix-2 passes (decimation in time,
// 32-bit lanes, twiddles in Q15 with 1.0 held exactly as 32768, every
// product rounded to nearest), then one split pass gives bins 0 .. N/2.
// Samples enter with 14 - order guard bits, so no lane overflows for any
// input (orders 15 and 16 drop one and two low bits of each sample instead).
//
// Output bin k is X[k] * norm / 2^scaleFactor, rounded to nearest and
// saturated to 16 bits, where X is the exact DFT (sum of x[n] e^{-2 pi i kn/N})
// and norm follows the flag: 1 divides by N, 4 by sqrt(N), 2 and 8 not at all
// (a forward transform). Error bound, each component of each bin, for orders
// 1 to 14 (see FftErrorBound):
//   |ours - exact| <= 1 + norm / 2^scaleFactor * (order + 1) * 2^-14 * sum |x[n]|
//                       + norm / 2^scaleFactor * N * 2^-(14 - order) / 2
// the first term the final rounding, the second the Q15 twiddles, the third
// the rounding of the products inside (a worst case that all of them lean
// one way). The hint is accepted and changes nothing: there is one path.
//
// CCS form: N + 2 values, re0, im0 (always 0), re1, im1, ..., re(N/2),
// im(N/2) (always 0).
#include <cstddef>
#include <cstdint>

#include "primitives/IppTypes.h"

enum IppHintAlgorithm { ippAlgHintNone = 0, ippAlgHintFast = 1, ippAlgHintAccurate = 2 };

inline constexpr int IPP_FFT_DIV_FWD_BY_N = 1;
inline constexpr int IPP_FFT_DIV_INV_BY_N = 2;
inline constexpr int IPP_FFT_DIV_BY_SQRTN = 4;
inline constexpr int IPP_FFT_NODIV_BY_ANY = 8;

inline constexpr IppStatus ippStsFftOrderErr = -15;
inline constexpr IppStatus ippStsFftFlagErr = -16;
inline constexpr IppStatus ippStsContextMatchErr = -17;

struct Ipp16sc {
  Ipp16s re;
  Ipp16s im;
};

struct IppsFFTSpec_R_16s;

// Orders 1 to 16; flags 1, 2, 4, 8.
IppStatus ippsFFTInitAlloc_R_16s(IppsFFTSpec_R_16s** spec, int order, int flag, IppHintAlgorithm hint);
IppStatus ippsFFTFree_R_16s(IppsFFTSpec_R_16s* spec);
// Bytes of work buffer that a transform needs.
IppStatus ippsFFTGetBufSize_R_16s(const IppsFFTSpec_R_16s* spec, int* size);
// src: N samples; dst: N + 2 values in the CCS form; buffer: at least the
// size that the query gives, 4-byte aligned.
IppStatus ippsFFTFwd_RToCCS_16s_Sfs(const Ipp16s* src, Ipp16s* dst, const IppsFFTSpec_R_16s* spec, int scaleFactor,
                                    Ipp8u* buffer);
// Expands the CCS form of a real transform of length dstLen to dstLen complex
// values: entries 0 .. dstLen/2 as they stand, entry dstLen - k the
// conjugate of entry k.
IppStatus ippsConjCcs_16sc(const Ipp16s* src, Ipp16sc* dst, int dstLen);
IppStatus ippsZero_16sc(Ipp16sc* dst, int len);

namespace kestrelink::fft {

// The stated bound above, for a row whose absolute samples sum to `sumAbs`.
double FftErrorBound(int order, int flag, int scaleFactor, double sumAbs);

// ippsFFTFwd_RToCCS_16s_Sfs, asking meanwhile for `ahead` (a row of the same
// length, or null) to be fetched into the cache: for callers that run
// through many rows.
IppStatus ForwardFetchingAhead(const Ipp16s* src, Ipp16s* dst, const IppsFFTSpec_R_16s* spec, int scaleFactor,
                               Ipp8u* buffer, const Ipp16s* ahead);

}  // namespace kestrelink::fft
