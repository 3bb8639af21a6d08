#pragma once
// The GPU companion library, bound at run time and never linked: one
// process-wide object that loads libvelcuda.so on first use, once a process,
// and holds its entry points. The companion is looked for at the path named by
// KESTRELINK_VELCUDA when that is set (and not empty), else as libvelcuda.so in
// the directory of libkestrelink.so itself.
//
// "The GPU is available" means Usable(): the thirteen required entry points
// exist, the companion counts more than 0 devices, and its device
// initialisation succeeded. A failed load is never retried.
//
// The companion's interface (C linkage). Results that say yes or no are int,
// non-zero for yes. LUT handles are 32-bit, encoder handles 64-bit, 0 for none.
#include <cstdint>
#include <mutex>
#include <string>

namespace kestrelink::platform {

using VelCudaGetCudaDevice = int (*)();                              // number of devices
using VelCudaGetCudaDeviceInfo = int (*)(int device, void* info);   // looked up, not called
using VelCudaInitCudaDevice = int (*)();
using VelCudaUnInitCudaDevice = void (*)();
using VelCudaSetIdi3DLUT = uint32_t (*)(const float* lut, int size);  // handle, 0 on failure
using VelCudaAddRefIdi3DLUT = int (*)(uint32_t handle);               // references now held
using VelCudaReleaseIdi3DLUT = void (*)(uint32_t handle);
using VelCudaForceUpdateIdi3DLUT = int (*)(uint32_t handle, const float* lut, int size);
using VelCudaReleaseAllLut = void (*)();
// handle, width, height, bits a sample, source, destination (the same image: in place)
using VelCudaApplyIridas3D = int (*)(uint32_t handle, int width, int height, int depth, void* src, void* dst);
using VelCudaGetmultiProcessorCount = int (*)(int device, int* count);
using VelCudaIsFermiSupport = int (*)(int device);
using VelCudaJpegEncoderInit = uint64_t (*)(int device);
using VelCudaJpegEncoderUnInit = int (*)(uint64_t handle);  // 0 or more on success
using VelCudaJpegEncoder = int (*)(uint64_t handle, int width, int height, int quality, const void* src,
                                   int srcSize, void* dst, int* encodedSize, void* extra);

// The eighteen entry points, each named as the companion exports it; null
// where the companion lacks it.
struct VelCudaEntries {
  // required
  VelCudaGetCudaDevice cuda_GetCudaDevice = nullptr;
  VelCudaGetCudaDeviceInfo cuda_GetCudaDeviceInfo = nullptr;
  VelCudaInitCudaDevice cuda_InitCudaDevice = nullptr;
  VelCudaUnInitCudaDevice cuda_UnInitCudaDevice = nullptr;
  VelCudaSetIdi3DLUT cuda_SetIdi3DLUT = nullptr;
  VelCudaAddRefIdi3DLUT cuda_AddRefIdi3DLUT = nullptr;
  VelCudaReleaseIdi3DLUT cuda_ReleaseIdi3DLUT = nullptr;
  VelCudaForceUpdateIdi3DLUT cuda_ForceUpdateIdi3DLUT = nullptr;
  VelCudaReleaseAllLut cuda_ReleaseAllLut = nullptr;
  VelCudaApplyIridas3D cuda_ApplyBGRByIridas3D = nullptr;
  VelCudaApplyIridas3D cuda_ApplyRGBToBGRByIridas3D = nullptr;
  VelCudaApplyIridas3D cuda_ApplyBGRxByIridas3D = nullptr;
  VelCudaApplyIridas3D cuda_ApplyRGBxToBGRxByIridas3D = nullptr;
  // optional: the JPEG encoder and what finds its device
  VelCudaGetmultiProcessorCount cuda_GetmultiProcessorCount = nullptr;
  VelCudaIsFermiSupport cuda_IsFermiSupport = nullptr;
  VelCudaJpegEncoderInit cuda_JpegEncoder_Init = nullptr;
  VelCudaJpegEncoderUnInit cuda_JpegEncoder_UnInit = nullptr;
  VelCudaJpegEncoder cuda_JpegEncoder = nullptr;
};

class VelCudaBinding {
 public:
  // The process-wide binding; the first call loads the companion.
  static VelCudaBinding& Instance();

  bool Usable() const { return m_usable; }
  int DeviceCount() const { return m_deviceCount; }
  const std::string& LibraryPath() const { return m_libraryPath; }
  // Valid while Usable(); the 3D-LUT entries are called through it directly.
  const VelCudaEntries& Entries() const { return m_entries; }
  // Held around encoder set-up, encoding and release, so that every encoder
  // of the process goes through the GPU one at a time.
  std::mutex& Lock() { return m_lock; }

  // First device that can encode JPEG images, -1 when none does.
  int FirstFermiDevice() const;
  // Multiprocessors of a device, 0 when the companion can't tell.
  int MultiProcessorCount(int device) const;
  // The encoder calls, under the lock. Without the entry point or a usable
  // binding they fail: handle 0, result -1, result 0.
  uint64_t JpegEncoderInit(int device);
  int JpegEncoderUnInit(uint64_t handle);
  int JpegEncode(uint64_t handle, int width, int height, int quality, const void* src, int srcSize, void* dst,
                 int* encodedSize, void* extra);

  // Teardown at library unload: with a usable binding the companion drops all
  // LUTs and releases its device, then it is unloaded. Afterwards the binding
  // is unusable. Runs once; later calls do nothing.
  void Unload();

  VelCudaBinding(const VelCudaBinding&) = delete;
  VelCudaBinding& operator=(const VelCudaBinding&) = delete;

 private:
  VelCudaBinding();
  void Load();

  void* m_library = nullptr;
  std::string m_libraryPath;
  VelCudaEntries m_entries;
  int m_deviceCount = 0;
  bool m_usable = false;
  std::mutex m_lock;
};

}  // namespace kestrelink::platform
