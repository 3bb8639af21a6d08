#pragma once
// Which generation of kernel code runs. One process-wide index (0 to 5) names
// it: the detection routine sets it from the processor's feature word when the
// library loads, and the forcing routine sets it from a processor code. The
// index is then served by the widest row-kernel variant of ours (Variant.h)
// that both the index's instruction set and the processor allow.
//
// Index  generation                         our variant
//   0    no SSE3                            SSE2 (portable without SSE2)
//   1    SSE3                               SSE2
//   2    SSSE3                              SSSE3
//   3    SSSE3 with MOVBE (low-power cores) SSSE3
//   4    SSE4.1                             SSSE3
//   5    AVX, saved by the operating system AVX-512 where present, else AVX2
#include <cstdint>

#include "primitives/IppTypes.h"
#include "primitives/Variant.h"

// Detection found none of the extensions it tests: the generic code runs.
inline constexpr IppStatus ippStsNoCpuExtensions = 36;
// The forcing routine was given a processor code outside -1 .. 96.
inline constexpr IppStatus ippStsCpuCodeOutOfRange = 21;

// Bits of the feature word that the detection tests (platform/CpuFeatures.h).
inline constexpr uint64_t ippCpuFeatureSSE3 = 8;
inline constexpr uint64_t ippCpuFeatureSSSE3 = 16;
inline constexpr uint64_t ippCpuFeatureMOVBE = 32;
inline constexpr uint64_t ippCpuFeatureSSE41 = 64;
inline constexpr uint64_t ippCpuFeatureAVX = 256;
inline constexpr uint64_t ippCpuFeatureAVXEnabled = 512;

// Processor codes of the forcing routine: -1 detects this machine again;
// 0 .. 96 name a generation in bands of 16 (0-15 index 0, 16-31 index 1,
// ..., 64-79 index 4, 80-96 index 5).
inline constexpr int ippCpuCodeDetect = -1;
inline constexpr int ippCpuCodeLast = 96;

// Sets the index from a feature word, testing in this order: detection
// failed (index 0, the word kept to its three lowest bits); both AVX bits
// and the operating-system test (5); SSE4.1 (4); MOVBE and SSSE3 (3, and the
// MOVBE flag set); SSSE3 (2); SSE3 (1); otherwise index 0 and status 36.
IppStatus ippSelectCpuFromFeatures(bool detected, uint64_t featureMask, bool osSavesAvx);

// The same on this machine's features; the library's load routine runs it.
IppStatus ippSelectCpu();

// Sets the index from a processor code; 21 outside -1 .. 96, index unchanged.
IppStatus ippForceCpu(int cpuCode);

// What the last detection or forcing settled.
int ippGetCpuIndex();
uint64_t ippGetCpuFeatureMask();
int ippGetCpuMovbeFlag();

namespace kestrelink {

// The variant that serves `index` given the feature word and the widest
// variant the processor can run.
CpuVariant VariantForCpuIndex(int index, uint64_t featureMask, CpuVariant widest);

// The variant the settled index selects (detecting on first use).
CpuVariant DispatchedVariant();

}  // namespace kestrelink
