// The processor detection's order of tests on synthetic feature words, the
// index-to-variant map, and the forcing routine's codes.
#include <gtest/gtest.h>

#include "platform/CpuFeatures.h"
#include "primitives/CpuDispatch.h"
#include "support/TestSupport.h"

namespace {

using kestrelink::CpuVariant;

// Bits of the feature word: 1 MMX, 2 SSE, 4 SSE2, 8 SSE3, 16 SSSE3, 32 MOVBE,
// 64 SSE4.1, 128 SSE4.2, 256 AVX, 512 AVX enabled by the system.
constexpr uint64_t kBase = 1 | 2 | 4, kSse3 = 8, kSsse3 = 16, kMovbe = 32, kSse41 = 64, kSse42 = 128;
constexpr uint64_t kAvx = 256, kAvxOn = 512;

// Each test leaves the process with this machine's own detection.
class CpuDispatch : public testing::Test {
 protected:
  void TearDown() override { ippSelectCpu(); }
};

TEST_F(CpuDispatch, DetectionTestsInItsOrder) {
  struct Row {
    const char* what;
    bool detected;
    uint64_t mask;
    bool osAvx;
    int index;
    IppStatus status;
    int movbe;
    uint64_t keptMask;
  };
  const uint64_t all = kBase | kSse3 | kSsse3 | kMovbe | kSse41 | kSse42 | kAvx | kAvxOn;
  const Row rows[] = {
      {"detection failed", false, all, true, 0, ippStsNoErr, 0, 7},
      {"everything", true, all, true, 5, ippStsNoErr, 0, all},
      {"the two AVX bits alone", true, kAvx | kAvxOn, true, 5, ippStsNoErr, 0, kAvx | kAvxOn},
      {"AVX, system test fails", true, all, false, 4, ippStsNoErr, 0, all},
      {"AVX not enabled", true, all & ~kAvxOn, true, 4, ippStsNoErr, 0, all & ~kAvxOn},
      {"SSE4.1 before MOVBE", true, kBase | kSse3 | kSsse3 | kMovbe | kSse41, true, 4, ippStsNoErr, 0,
       kBase | kSse3 | kSsse3 | kMovbe | kSse41},
      {"MOVBE and SSSE3", true, kBase | kSse3 | kSsse3 | kMovbe, true, 3, ippStsNoErr, 1,
       kBase | kSse3 | kSsse3 | kMovbe},
      {"AVX bits, system fails, MOVBE", true, kBase | kSsse3 | kMovbe | kAvx | kAvxOn, false, 3, ippStsNoErr, 1,
       kBase | kSsse3 | kMovbe | kAvx | kAvxOn},
      {"SSSE3", true, kBase | kSse3 | kSsse3, true, 2, ippStsNoErr, 0, kBase | kSse3 | kSsse3},
      {"MOVBE without SSSE3", true, kBase | kSse3 | kMovbe, true, 1, ippStsNoErr, 0, kBase | kSse3 | kMovbe},
      {"SSE3", true, kBase | kSse3, true, 1, ippStsNoErr, 0, kBase | kSse3},
      {"SSE4.2 alone counts for nothing", true, kBase | kSse42, true, 0, ippStsNoCpuExtensions, 0, kBase | kSse42},
      {"nothing", true, kBase, true, 0, ippStsNoCpuExtensions, 0, kBase},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.what);
    EXPECT_EQ(ippSelectCpuFromFeatures(r.detected, r.mask, r.osAvx), r.status);
    EXPECT_EQ(ippGetCpuIndex(), r.index);
    EXPECT_EQ(ippGetCpuMovbeFlag(), r.movbe);
    EXPECT_EQ(ippGetCpuFeatureMask(), r.keptMask);
  }
}

TEST_F(CpuDispatch, IndexMapsOntoTheWidestVariantAllowed) {
  using namespace kestrelink;
  struct Row {
    int index;
    uint64_t mask;
    CpuVariant widest, want;
  };
  const uint64_t ssse3 = kBase | kSse3 | kSsse3;
  const Row rows[] = {
      {5, ssse3 | kSse41 | kAvx | kAvxOn, kVariantAVX512, kVariantAVX512},
      {5, ssse3 | kSse41 | kAvx | kAvxOn, kVariantAVX2, kVariantAVX2},
      {5, ssse3 | kSse41 | kAvx | kAvxOn, kVariantSSSE3, kVariantSSSE3},  // AVX without AVX2
      {4, ssse3 | kSse41, kVariantAVX512, kVariantSSSE3},
      {3, ssse3 | kMovbe, kVariantAVX2, kVariantSSSE3},
      {2, ssse3, kVariantAVX512, kVariantSSSE3},
      {2, ssse3, kVariantSSE2, kVariantSSE2},
      {1, kBase | kSse3, kVariantAVX512, kVariantSSE2},
      {0, kBase, kVariantAVX512, kVariantSSE2},
      {0, 1 | 2, kVariantAVX512, kVariantPortable},
      {5, ssse3 | kAvx | kAvxOn, kVariantPortable, kVariantPortable},
  };
  for (const Row& r : rows)
    EXPECT_EQ(VariantForCpuIndex(r.index, r.mask, r.widest), r.want)
        << "index " << r.index << " mask " << r.mask << " widest " << VariantName(r.widest);
}

TEST_F(CpuDispatch, MachineDetectionSelectsItsWidestVariant) {
  const auto& f = kestrelink::platform::GetCpuFeatures();
  EXPECT_EQ(ippSelectCpu(), ippSelectCpuFromFeatures(f.detected, f.mask, f.osAvx));
  EXPECT_EQ(kestrelink::ActiveVariant(), kestrelink::MachineVariant());
}

TEST_F(CpuDispatch, ForcingACodeChangesTheActiveVariant) {
  const uint64_t mask = kestrelink::platform::GetCpuFeatures().mask;
  const CpuVariant machine = kestrelink::MachineVariant();
  struct Row {
    int code, index;
  };
  const Row rows[] = {{0, 0}, {15, 0}, {16, 1}, {32, 2}, {47, 2}, {48, 3}, {64, 4}, {79, 4}, {80, 5}, {96, 5}};
  for (const Row& r : rows) {
    SCOPED_TRACE(testing::Message() << "code " << r.code);
    ASSERT_EQ(ippForceCpu(r.code), ippStsNoErr);
    EXPECT_EQ(ippGetCpuIndex(), r.index);
    EXPECT_EQ(ippGetCpuMovbeFlag(), r.index == 3 ? 1 : 0);
    EXPECT_EQ(kestrelink::ActiveVariant(), kestrelink::VariantForCpuIndex(r.index, mask, machine));
  }
  ASSERT_EQ(ippForceCpu(0), ippStsNoErr);
  for (int code : {-2, 97, 1000, -1000}) {
    EXPECT_EQ(ippForceCpu(code), ippStsCpuCodeOutOfRange) << code;
    EXPECT_EQ(ippGetCpuIndex(), 0) << "index kept after code " << code;
  }
  ippForceCpu(ippCpuCodeDetect);
  EXPECT_EQ(kestrelink::ActiveVariant(), machine);
}

TEST_F(CpuDispatch, ForcedVariantOutranksTheIndex) {
  ippForceCpu(0);
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    EXPECT_EQ(kestrelink::ActiveVariant(), v);
  }
}

}  // namespace
