// The process-wide binding of the GPU companion library.
#include "platform/VelCudaBinding.h"

#include <cstdlib>

#include "platform/DebugSink.h"
#include "platform/DynamicLibrary.h"

namespace kestrelink::platform {
namespace {

constexpr const char* kCompanionFileName = "libvelcuda.so";

template <typename Fn>
bool Bind(void* library, const char* name, Fn& slot) {
  slot = reinterpret_cast<Fn>(LibrarySymbol(library, name));
  return slot != nullptr;
}

// Bound to the load: at exit (or when the library is unloaded) its destructor
// tears the binding down. It is made after the companion has loaded, so it is
// destroyed before anything the companion set up for itself.
struct TeardownAtUnload {
  VelCudaBinding* binding;
  ~TeardownAtUnload() { binding->Unload(); }
};

}  // namespace

VelCudaBinding& VelCudaBinding::Instance() {
  // Never deleted: the lock and the "unusable" answer outlive the teardown
  // for objects that are destroyed later still.
  static VelCudaBinding* const binding = new VelCudaBinding();
  static const TeardownAtUnload teardown{binding};
  return *binding;
}

VelCudaBinding::VelCudaBinding() { Load(); }

void VelCudaBinding::Load() {
  const std::string self = SelfPath();
  OutputDebugString(self.c_str());
  const char* named = std::getenv("KESTRELINK_VELCUDA");
  if (named != nullptr && *named != '\0') {
    m_libraryPath = named;
  } else {
    const size_t slash = self.rfind('/');
    // Without our own directory the load fails rather than search the system.
    if (slash != std::string::npos) m_libraryPath = self.substr(0, slash + 1) + kCompanionFileName;
  }
  // dlopen shows no error dialogs, so there is no error mode to set around it.
  m_library = LoadLibrary(m_libraryPath.c_str());
  OutputDebugString(m_libraryPath.c_str());
  if (m_library == nullptr) return;

  VelCudaEntries& e = m_entries;
  bool required = true;
  required &= Bind(m_library, "cuda_GetCudaDevice", e.cuda_GetCudaDevice);
  required &= Bind(m_library, "cuda_GetCudaDeviceInfo", e.cuda_GetCudaDeviceInfo);
  required &= Bind(m_library, "cuda_InitCudaDevice", e.cuda_InitCudaDevice);
  required &= Bind(m_library, "cuda_UnInitCudaDevice", e.cuda_UnInitCudaDevice);
  required &= Bind(m_library, "cuda_SetIdi3DLUT", e.cuda_SetIdi3DLUT);
  required &= Bind(m_library, "cuda_AddRefIdi3DLUT", e.cuda_AddRefIdi3DLUT);
  required &= Bind(m_library, "cuda_ReleaseIdi3DLUT", e.cuda_ReleaseIdi3DLUT);
  required &= Bind(m_library, "cuda_ForceUpdateIdi3DLUT", e.cuda_ForceUpdateIdi3DLUT);
  required &= Bind(m_library, "cuda_ReleaseAllLut", e.cuda_ReleaseAllLut);
  required &= Bind(m_library, "cuda_ApplyBGRByIridas3D", e.cuda_ApplyBGRByIridas3D);
  required &= Bind(m_library, "cuda_ApplyRGBToBGRByIridas3D", e.cuda_ApplyRGBToBGRByIridas3D);
  required &= Bind(m_library, "cuda_ApplyBGRxByIridas3D", e.cuda_ApplyBGRxByIridas3D);
  required &= Bind(m_library, "cuda_ApplyRGBxToBGRxByIridas3D", e.cuda_ApplyRGBxToBGRxByIridas3D);
  Bind(m_library, "cuda_GetmultiProcessorCount", e.cuda_GetmultiProcessorCount);
  Bind(m_library, "cuda_IsFermiSupport", e.cuda_IsFermiSupport);
  Bind(m_library, "cuda_JpegEncoder_Init", e.cuda_JpegEncoder_Init);
  Bind(m_library, "cuda_JpegEncoder_UnInit", e.cuda_JpegEncoder_UnInit);
  Bind(m_library, "cuda_JpegEncoder", e.cuda_JpegEncoder);
  if (!required) return;

  m_deviceCount = e.cuda_GetCudaDevice();
  m_usable = m_deviceCount > 0 && e.cuda_InitCudaDevice() != 0;
}

int VelCudaBinding::FirstFermiDevice() const {
  if (!m_usable || m_entries.cuda_IsFermiSupport == nullptr) return -1;
  for (int device = 0; device < m_deviceCount; ++device) {
    if (m_entries.cuda_IsFermiSupport(device) != 0) return device;
  }
  return -1;
}

int VelCudaBinding::MultiProcessorCount(int device) const {
  int count = 0;
  if (m_usable && m_entries.cuda_GetmultiProcessorCount != nullptr) {
    m_entries.cuda_GetmultiProcessorCount(device, &count);
  }
  return count;
}

uint64_t VelCudaBinding::JpegEncoderInit(int device) {
  const std::lock_guard guard(m_lock);
  if (!m_usable || m_entries.cuda_JpegEncoder_Init == nullptr) return 0;
  return m_entries.cuda_JpegEncoder_Init(device);
}

int VelCudaBinding::JpegEncoderUnInit(uint64_t handle) {
  const std::lock_guard guard(m_lock);
  if (!m_usable || m_entries.cuda_JpegEncoder_UnInit == nullptr) return -1;
  return m_entries.cuda_JpegEncoder_UnInit(handle);
}

int VelCudaBinding::JpegEncode(uint64_t handle, int width, int height, int quality, const void* src, int srcSize,
                               void* dst, int* encodedSize, void* extra) {
  const std::lock_guard guard(m_lock);
  if (!m_usable || m_entries.cuda_JpegEncoder == nullptr) return 0;
  return m_entries.cuda_JpegEncoder(handle, width, height, quality, src, srcSize, dst, encodedSize, extra);
}

void VelCudaBinding::Unload() {
  const std::lock_guard guard(m_lock);
  if (m_usable) {
    m_entries.cuda_ReleaseAllLut();
    m_entries.cuda_UnInitCudaDevice();
  }
  m_usable = false;
  m_entries = VelCudaEntries{};
  FreeLibrary(m_library);
  m_library = nullptr;
}

}  // namespace kestrelink::platform
