#include "colour/LookGpu.h"

#include "colour/BayerCorrectorImpl.h"
#include "colour/LookLut.h"
#include "platform/VelCudaBinding.h"

namespace kestrelink::colour {

using platform::VelCudaBinding;

bool LookGpuAvailable() { return VelCudaBinding::Instance().Usable(); }

void PlaceLookOnGpu(LookLut& look) {
  if (!LookGpuAvailable()) return;
  const platform::VelCudaEntries& gpu = VelCudaBinding::Instance().Entries();
  if (look.gpuLutId == 0) {
    look.gpuLutId = gpu.cuda_SetIdi3DLUT(look.lut3D.get(), look.size);
  } else if (!gpu.cuda_ForceUpdateIdi3DLUT(look.gpuLutId, look.lut3D.get(), look.size)) {
    gpu.cuda_ReleaseIdi3DLUT(look.gpuLutId);
    look.gpuLutId = 0;
  }
}

bool ApplyLookOnGpu(const LookLut& look, void* image, uint32_t formatCode, uint32_t width, uint32_t height,
                    uint32_t bitDepth) {
  if (look.gpuLutId == 0) return false;
  const platform::VelCudaEntries& gpu = VelCudaBinding::Instance().Entries();
  platform::VelCudaApplyIridas3D apply = nullptr;
  switch (formatCode) {
    case kFormatBgr: apply = gpu.cuda_ApplyBGRByIridas3D; break;
    case kFormatRgb: apply = gpu.cuda_ApplyRGBToBGRByIridas3D; break;
    case kFormatBgrx: apply = gpu.cuda_ApplyBGRxByIridas3D; break;
    case kFormatRgbx: apply = gpu.cuda_ApplyRGBxToBGRxByIridas3D; break;
    default: return false;
  }
  return apply(look.gpuLutId, int(width), int(height), int(bitDepth), image, image) != 0;
}

}  // namespace kestrelink::colour
