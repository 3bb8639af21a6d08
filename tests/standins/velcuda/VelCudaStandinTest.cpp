// The stand-in's 3D-LUT calls, reached through the binding as the look stage
// reaches them: what later tests of the GPU look path rely on.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "StandinLog.h"
#include "platform/DynamicLibrary.h"
#include "platform/VelCudaBinding.h"

namespace {

using kestrelink::platform::VelCudaBinding;

// Node (a, b, c) for blue a, green b, red c holds red, green, blue results.
std::vector<float> IdentityLut(int n) {
  std::vector<float> lut;
  for (int a = 0; a < n; ++a)
    for (int b = 0; b < n; ++b)
      for (int c = 0; c < n; ++c) {
        const float scale = 1.0f / static_cast<float>(n - 1);
        lut.insert(lut.end(), {c * scale, b * scale, a * scale});
      }
  return lut;
}

int LutCount() {
  void* self = kestrelink::platform::LoadLibrary(std::getenv("KESTRELINK_VELCUDA"));
  auto* count = reinterpret_cast<int (*)()>(kestrelink::platform::LibrarySymbol(self, "velcuda_standin_LutCount"));
  const int result = count != nullptr ? count() : -1;
  kestrelink::platform::FreeLibrary(self);
  return result;
}

TEST(VelCudaStandin, LutCallsApplyTrilinearInPlace) {
  VelCudaBinding& binding = VelCudaBinding::Instance();
  ASSERT_TRUE(binding.Usable());
  const auto& e = binding.Entries();
  const std::vector<float> identity = IdentityLut(3);
  const uint32_t id = e.cuda_SetIdi3DLUT(identity.data(), 3);
  ASSERT_NE(id, 0u);

  // An identity LUT keeps BGR, and turns RGB into BGR.
  std::vector<uint8_t> bgr = {10, 200, 255, 0, 128, 77};
  EXPECT_NE(e.cuda_ApplyBGRByIridas3D(id, 2, 1, 8, bgr.data(), bgr.data()), 0);
  EXPECT_EQ(bgr, (std::vector<uint8_t>{10, 200, 255, 0, 128, 77}));
  std::vector<uint8_t> rgbx = {10, 200, 255, 9};
  EXPECT_NE(e.cuda_ApplyRGBxToBGRxByIridas3D(id, 1, 1, 8, rgbx.data(), rgbx.data()), 0);
  EXPECT_EQ(rgbx, (std::vector<uint8_t>{255, 200, 10, 9}));

  // A constant LUT (red 0.2, green 0.6, blue 1.0) at 12 bits: 0.2 * 4095 = 819,
  // 0.6 * 4095 = 2457; the fourth sample stays.
  std::vector<float> constant;
  for (int i = 0; i < 8; ++i) constant.insert(constant.end(), {0.2f, 0.6f, 1.0f});
  EXPECT_NE(e.cuda_ForceUpdateIdi3DLUT(id, constant.data(), 2), 0);
  std::vector<uint16_t> bgrx16 = {1, 2, 3, 4000};
  EXPECT_NE(e.cuda_ApplyBGRxByIridas3D(id, 1, 1, 12, bgrx16.data(), bgrx16.data()), 0);
  EXPECT_EQ(bgrx16, (std::vector<uint16_t>{4095, 2457, 819, 4000}));

  // References: two releases after one AddRef drop the LUT; then it is unknown.
  EXPECT_EQ(e.cuda_AddRefIdi3DLUT(id), 2);
  e.cuda_ReleaseIdi3DLUT(id);
  EXPECT_EQ(LutCount(), 1);
  e.cuda_ReleaseIdi3DLUT(id);
  EXPECT_EQ(LutCount(), 0);
  EXPECT_EQ(e.cuda_ApplyRGBToBGRByIridas3D(id, 1, 1, 8, rgbx.data(), rgbx.data()), 0);
  EXPECT_EQ(e.cuda_ForceUpdateIdi3DLUT(id, constant.data(), 2), 0);

  // ReleaseAllLut drops every LUT.
  ASSERT_NE(e.cuda_SetIdi3DLUT(identity.data(), 3), 0u);
  ASSERT_NE(e.cuda_SetIdi3DLUT(constant.data(), 2), 0u);
  EXPECT_EQ(LutCount(), 2);
  e.cuda_ReleaseAllLut();
  EXPECT_EQ(LutCount(), 0);
}

}  // namespace
