#pragma once
// Processor variants of the vectorised kernels. Every kernel family keeps a
// portable table and one table per instruction set that it has code for;
// callers take the table of the active variant at each call, so tests can
// force each variant in turn and compare it with the portable one.
namespace kestrelink {

enum CpuVariant : int {
  kVariantPortable = 0,  // plain C++, the reference every other variant must match
  kVariantSSE2 = 1,
  kVariantSSSE3 = 2,
  kVariantAVX2 = 3,
  kVariantAVX512 = 4,    // AVX-512 F, BW and VL
  kVariantCount = 5,
};

// The widest variant this processor and operating system can run.
CpuVariant MachineVariant();

// The variant in use: the one the kernel index selects (CpuDispatch.h),
// or the one forced here.
CpuVariant ActiveVariant();

// Forces a variant (limited to what the machine can run); kVariantCount
// returns to the kernel index's choice. Process-wide; meant for tests and benches.
void ForceVariant(CpuVariant variant);

const char* VariantName(CpuVariant variant);

// Picks the table of the active variant from slots indexed by CpuVariant;
// an empty slot falls back to the next narrower variant.
template <class Table>
const Table& PickVariant(const Table* const (&slots)[kVariantCount]) {
  for (int v = ActiveVariant(); v > 0; --v)
    if (slots[v]) return *slots[v];
  return *slots[kVariantPortable];
}

}  // namespace kestrelink
