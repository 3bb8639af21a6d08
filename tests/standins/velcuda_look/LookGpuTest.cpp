// Looks on the GPU companion, against the stand-in (which grades by
// trilinear interpolation with rounding). Each test runs in a process of its
// own (see CMakeLists.txt).
#include <gtest/gtest.h>

#include <vector>

#include <kestrelink/CIppBayerCorrector.h>

#include "LookTestSupport.h"
#include "StandinLog.h"
#include "colour/LookLut.h"

namespace {

using namespace looktest;
using velcudatest::Call;
using velcudatest::CallNames;
using velcudatest::ClearLog;
using velcudatest::Ptr;
using velcudatest::ReadLog;
using Names = std::vector<std::string>;

// Four nodes that invert each axis: a sample v comes back as full - v.
std::string Inverting() {
  return LookDocument(Lut3DElement(4, [](int a, int b, int c, int comp) {
           return 1.0f - float(comp == 0 ? c : comp == 1 ? b : a) / 3;
         }) +
         Lut1DElement(2, [](int, int) { return 0.0f; }));
}

std::string Identity() {
  return LookDocument(
      Lut3DElement(4, [](int a, int b, int c, int comp) { return float(comp == 0 ? c : comp == 1 ? b : a) / 3; }));
}

LookLut* Cached(const std::string& path) { return kestrelink::colour::TheLookLutCache().Load(path.c_str()); }

// A corrector in automatic mode with this look, set up for one-row BGR24 frames.
void Prepare(CIppBayerCorrector& c, const std::string& path, CORRECTIONAL_ALG alg, uint32_t width) {
  bool has3D = false, has1D = false;
  ASSERT_TRUE(c.LoadIridasLookLUT(path.c_str(), has3D, has1D));
  EXPECT_TRUE(has3D);
  c.SetColorCorrectionMode(CORRECTION_AUTO);
  c.SetCBAlgorithm(alg);
  ASSERT_TRUE(c.SetImageInfo4CB(width, 1, 24, 8, 200, true));
}

TEST(LookGpu, LooksLiveOnTheGpuAndFramesAreGradedThere) {
  ClearLog();
  const std::string path = KeptLookFile("gpu-inverting", Inverting());
  CIppBayerCorrector c;
  Prepare(c, path, CB_ALG_LOOK_1D, 2);
  const LookLut* look = Cached(path);
  ASSERT_TRUE(look);
  EXPECT_EQ(look->gpuLutId, 1u);
  EXPECT_FALSE(look->table3D);  // no processor table for a look on the GPU
  EXPECT_FALSE(look->cornerWeights[0]);
  EXPECT_EQ(ReadLog().back(), (Call{"cuda_SetIdi3DLUT", Ptr(look->lut3D.get()), "4"}));

  // The 1D algorithm and the flip play no part: the GPU grades in place.
  uint8_t image[6] = {0, 100, 255, 10, 20, 30};
  ASSERT_TRUE(c.BGRApplyColorBalance(image, true));
  EXPECT_EQ(std::vector<int>(image, image + 6), (std::vector<int>{255, 155, 0, 245, 235, 225}));
  EXPECT_EQ(ReadLog().back(), (Call{"cuda_ApplyBGRByIridas3D", "0x1", "2", "1", "8", Ptr(image), Ptr(image)}));

  // Each format has its entry; the depth is passed as it is.
  struct Case {
    uint32_t format, bitsPerPixel, depth;
    const char* entry;
  } cases[] = {{200, 24, 8, "cuda_ApplyBGRByIridas3D"},
               {400, 24, 8, "cuda_ApplyRGBToBGRByIridas3D"},
               {500, 32, 8, "cuda_ApplyBGRxByIridas3D"},
               {100000, 32, 8, "cuda_ApplyRGBxToBGRxByIridas3D"},
               {400, 48, 12, "cuda_ApplyRGBToBGRByIridas3D"}};
  for (const Case& k : cases) {
    uint16_t pixel[4] = {1, 2, 3, 4};
    EXPECT_TRUE(Stage(path, CB_ALG_LOOK_3D_TABLE, k.format, k.bitsPerPixel, k.depth, 1, 1, pixel)) << k.entry;
    EXPECT_EQ(ReadLog().back(), (Call{k.entry, "0x1", "1", "1", std::to_string(k.depth), Ptr(pixel), Ptr(pixel)}));
  }
  const size_t calls = ReadLog().size();
  uint8_t other[3] = {1, 2, 3};
  EXPECT_FALSE(Stage(path, CB_ALG_LOOK_3D_TABLE, 300, 24, 8, 1, 1, other));
  EXPECT_EQ(ReadLog().size(), calls);
}

TEST(LookGpu, ReloadUpdatesTheHandle) {
  const std::string path = KeptLookFile("gpu-update", Inverting());
  CIppBayerCorrector c;
  Prepare(c, path, CB_ALG_LOOK_3D_EXACT, 1);
  ClearLog();
  Rewrite(path, Identity(), 3600);
  ASSERT_TRUE(c.ForceRecalcAutoLUT());
  const LookLut* look = Cached(path);
  EXPECT_EQ(ReadLog(), (std::vector<Call>{{"cuda_ForceUpdateIdi3DLUT", "0x1", Ptr(look->lut3D.get()), "4"}}));
  EXPECT_EQ(look->gpuLutId, 1u);
  EXPECT_FALSE(look->table3D);
  uint8_t pixel[3] = {7, 8, 9};
  ASSERT_TRUE(c.BGRApplyColorBalance(pixel, false));
  EXPECT_EQ(std::vector<int>(pixel, pixel + 3), (std::vector<int>{7, 8, 9}));
}

TEST(LookGpu, RefusedHandleFailsTheStageThoughProcessorTablesExist) {
  const std::string path = KeptLookFile("gpu-refused", Inverting());
  CIppBayerCorrector c;
  Prepare(c, path, CB_ALG_LOOK_3D_TABLE, 1);
  const LookLut* look = Cached(path);
  EXPECT_EQ(look->gpuLutId, 0u);
  EXPECT_TRUE(look->table3D);
  uint8_t pixel[3] = {7, 8, 9};
  EXPECT_FALSE(c.BGRApplyColorBalance(pixel, false));
  c.SetCBAlgorithm(CB_ALG_LOOK_1D);  // the 1D table is there, but the GPU is
  EXPECT_FALSE(c.BGRApplyColorBalance(pixel, false));
  EXPECT_EQ(std::vector<int>(pixel, pixel + 3), (std::vector<int>{7, 8, 9}));
  EXPECT_EQ(CallNames(ReadLog()).back(), "cuda_SetIdi3DLUT");
}

TEST(LookGpu, RefusedUpdateReleasesTheHandleAndFallsBack) {
  const std::string path = KeptLookFile("gpu-update-refused", Inverting());
  CIppBayerCorrector c;
  Prepare(c, path, CB_ALG_LOOK_3D_TABLE, 1);
  ClearLog();
  Rewrite(path, Identity(), 3600);
  ASSERT_TRUE(c.ForceRecalcAutoLUT());
  const LookLut* look = Cached(path);
  EXPECT_EQ(CallNames(ReadLog()), (Names{"cuda_ForceUpdateIdi3DLUT", "cuda_ReleaseIdi3DLUT"}));
  EXPECT_EQ(look->gpuLutId, 0u);
  EXPECT_TRUE(look->table3D);
  uint8_t pixel[3] = {7, 8, 9};
  EXPECT_FALSE(c.BGRApplyColorBalance(pixel, false));
}

}  // namespace
