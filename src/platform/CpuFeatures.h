#pragma once
// What the processor and the operating system let us run, read once.
#include <cstdint>

namespace kestrelink::platform {

struct CpuFeatures {
  bool detected = false;  // cpuid answered
  bool sse2 = false, sse3 = false, ssse3 = false, sse41 = false, sse42 = false;
  bool movbe = false;
  bool avx = false;       // the processor has AVX
  bool osAvx = false;     // and the OS saves the YMM state
  bool avx2 = false, bmi2 = false, fma = false;
  bool avx512f = false, avx512bw = false, avx512vl = false, avx512dq = false, avx512vbmi = false;
  bool avx512vnni = false;
  bool osAvx512 = false;  // the OS saves the ZMM and mask state
  // Feature word in the bit order of the classic processor-dispatch masks:
  // 1 MMX, 2 SSE, 4 SSE2, 8 SSE3, 16 SSSE3, 32 MOVBE, 64 SSE4.1, 128 SSE4.2,
  // 256 AVX, 512 AVX enabled by the OS, 1024 AES, 2048 CLMUL, 32768 AVX2.
  uint64_t mask = 0;
};

const CpuFeatures& GetCpuFeatures();

}  // namespace kestrelink::platform
