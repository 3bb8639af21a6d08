// A stand-in for the GPU companion library, on the processor, for tests only.
// It exports the companion's entry points with C linkage, answers as the
// companion does, and appends one line per call to the file named by
// VELCUDA_STANDIN_LOG (when set): the entry point's name, then its arguments
// in order, integers in decimal, handles in hexadecimal (0x...), pointers as
// printf's %p writes them.
//
// Switches, read from the environment at each call unless said otherwise:
//   VELCUDA_STANDIN_DEVICES=n         devices counted (default 1)
//   VELCUDA_STANDIN_INIT_FAIL=1       device initialisation fails
//   VELCUDA_STANDIN_FERMI_FROM=k      devices below k can't encode JPEG (default 0)
//   VELCUDA_STANDIN_MULTIPROCESSORS=n multiprocessors a device (default 16)
//   VELCUDA_STANDIN_ENCODER_INIT_FAIL=1  no encoder handle
//   VELCUDA_STANDIN_ENCODE_FAIL=1     encoding fails
//   VELCUDA_STANDIN_LUT_FAIL=1        no LUT handle
//   VELCUDA_STANDIN_UPDATE_FAIL=1     LUT updates fail
//
// The JPEG encoder writes a baseline grey JPEG image (libjpeg) of the 8-bit
// frame at the quality asked for. The 3D-LUT calls keep each LUT by handle and
// apply it on the processor by trilinear interpolation between the eight
// nodes around a colour: nodes stand evenly over the sample range 0 to
// 2^depth - 1, node (a * N + b) * N + c holds three floats for blue a,
// green b, red c, giving red, green, blue results at 1.0 full scale, which
// are rounded to the nearest sample and clamped. Depth 8 is one byte a
// sample; depths 9 to 16 are two. Four-byte pixels keep their fourth sample.
#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <vector>

#include <jpeglib.h>  // after <cstdio>: it needs FILE and size_t

#define STANDIN_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

struct Lut {
  std::vector<float> nodes;
  int size = 0;
  int references = 1;
};

struct State {
  std::mutex lock;
  std::map<uint32_t, Lut> luts;
  uint32_t nextLut = 1;
  std::map<uint64_t, int> encoders;  // handle to device
  uint64_t nextEncoder = 1;
};

// Made when the stand-in is loaded and destroyed when it is unloaded, so it is
// there for the binding's teardown calls, which are registered after the load.
State theState;

State& TheState() { return theState; }

int EnvInt(const char* name, int fallback) {
  const char* text = std::getenv(name);
  return text != nullptr && *text != '\0' ? std::atoi(text) : fallback;
}

bool EnvSwitch(const char* name) { return EnvInt(name, 0) != 0; }

void Record(const char* format, ...) {
  const char* path = std::getenv("VELCUDA_STANDIN_LOG");
  if (path == nullptr || *path == '\0') return;
  static std::mutex logLock;
  const std::lock_guard guard(logLock);
  FILE* file = std::fopen(path, "a");
  if (file == nullptr) return;
  va_list args;
  va_start(args, format);
  std::vfprintf(file, format, args);
  va_end(args);
  std::fputc('\n', file);
  std::fclose(file);
}

// Samples of one pixel, read as unsigned integers of the depth's width.
template <typename Sample>
void ApplyPixels(const Lut& lut, int width, int height, int depth, const void* src, void* dst, int channels,
                 bool rgbIn) {
  const int n = lut.size;
  const float top = static_cast<float>((1 << depth) - 1);
  const auto* in = static_cast<const Sample*>(src);
  auto* out = static_cast<Sample*>(dst);
  const size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
  for (size_t p = 0; p < pixels; ++p) {
    const Sample* px = in + p * channels;
    const float blue = rgbIn ? px[2] : px[0];
    const float green = px[1];
    const float red = rgbIn ? px[0] : px[2];
    int low[3];
    float frac[3];
    const float samples[3] = {blue, green, red};  // axes a, b, c
    for (int axis = 0; axis < 3; ++axis) {
      const float pos = std::min(samples[axis], top) * static_cast<float>(n - 1) / top;
      low[axis] = std::min(static_cast<int>(pos), n - 2);
      frac[axis] = pos - static_cast<float>(low[axis]);
    }
    float result[3] = {0, 0, 0};  // red, green, blue
    for (int corner = 0; corner < 8; ++corner) {
      float weight = 1.0f;
      int index[3];
      for (int axis = 0; axis < 3; ++axis) {
        const bool high = (corner >> axis) & 1;
        index[axis] = low[axis] + (high ? 1 : 0);
        weight *= high ? frac[axis] : 1.0f - frac[axis];
      }
      const size_t node = (static_cast<size_t>(index[0]) * n + index[1]) * n + index[2];
      for (int c = 0; c < 3; ++c) result[c] += weight * lut.nodes[node * 3 + c];
    }
    Sample* o = out + p * channels;
    const Sample fourth = channels == 4 ? px[3] : 0;
    for (int c = 0; c < 3; ++c) {
      const float value = std::clamp(std::nearbyint(result[c] * top), 0.0f, top);
      o[2 - c] = static_cast<Sample>(value);  // blue, green, red out
    }
    if (channels == 4) o[3] = fourth;
  }
}

int Apply(const char* name, uint32_t handle, int width, int height, int depth, void* src, void* dst, int channels,
          bool rgbIn) {
  Record("%s 0x%x %d %d %d %p %p", name, handle, width, height, depth, src, dst);
  State& state = TheState();
  const std::lock_guard guard(state.lock);
  const auto found = state.luts.find(handle);
  if (found == state.luts.end() || width <= 0 || height <= 0 || depth < 1 || depth > 16 || src == nullptr ||
      dst == nullptr || found->second.size < 2)
    return 0;
  if (depth <= 8) {
    ApplyPixels<uint8_t>(found->second, width, height, depth, src, dst, channels, rgbIn);
  } else {
    ApplyPixels<uint16_t>(found->second, width, height, depth, src, dst, channels, rgbIn);
  }
  return 1;
}

bool CopyLut(Lut& lut, const float* nodes, int size) {
  if (nodes == nullptr || size < 2 || size > 256) return false;
  const size_t count = static_cast<size_t>(size) * size * size * 3;
  lut.nodes.assign(nodes, nodes + count);
  lut.size = size;
  return true;
}

}  // namespace

STANDIN_EXPORT int cuda_GetCudaDevice() {
  Record("cuda_GetCudaDevice");
  return EnvInt("VELCUDA_STANDIN_DEVICES", 1);
}

STANDIN_EXPORT int cuda_GetCudaDeviceInfo(int device, void* info) {
  Record("cuda_GetCudaDeviceInfo %d %p", device, info);
  return device >= 0 && device < EnvInt("VELCUDA_STANDIN_DEVICES", 1);
}

STANDIN_EXPORT int cuda_InitCudaDevice() {
  Record("cuda_InitCudaDevice");
  return EnvSwitch("VELCUDA_STANDIN_INIT_FAIL") ? 0 : 1;
}

STANDIN_EXPORT void cuda_UnInitCudaDevice() { Record("cuda_UnInitCudaDevice"); }

STANDIN_EXPORT uint32_t cuda_SetIdi3DLUT(const float* lut, int size) {
  Record("cuda_SetIdi3DLUT %p %d", static_cast<const void*>(lut), size);
  if (EnvSwitch("VELCUDA_STANDIN_LUT_FAIL")) return 0;
  Lut fresh;
  if (!CopyLut(fresh, lut, size)) return 0;
  State& state = TheState();
  const std::lock_guard guard(state.lock);
  const uint32_t handle = state.nextLut++;
  state.luts.emplace(handle, std::move(fresh));
  return handle;
}

STANDIN_EXPORT int cuda_ForceUpdateIdi3DLUT(uint32_t handle, const float* lut, int size) {
  Record("cuda_ForceUpdateIdi3DLUT 0x%x %p %d", handle, static_cast<const void*>(lut), size);
  if (EnvSwitch("VELCUDA_STANDIN_UPDATE_FAIL")) return 0;
  State& state = TheState();
  const std::lock_guard guard(state.lock);
  const auto found = state.luts.find(handle);
  return found != state.luts.end() && CopyLut(found->second, lut, size) ? 1 : 0;
}

STANDIN_EXPORT int cuda_AddRefIdi3DLUT(uint32_t handle) {
  Record("cuda_AddRefIdi3DLUT 0x%x", handle);
  State& state = TheState();
  const std::lock_guard guard(state.lock);
  const auto found = state.luts.find(handle);
  return found == state.luts.end() ? 0 : ++found->second.references;
}

STANDIN_EXPORT void cuda_ReleaseIdi3DLUT(uint32_t handle) {
  Record("cuda_ReleaseIdi3DLUT 0x%x", handle);
  State& state = TheState();
  const std::lock_guard guard(state.lock);
  const auto found = state.luts.find(handle);
  if (found != state.luts.end() && --found->second.references <= 0) state.luts.erase(found);
}

#ifndef VELCUDA_STANDIN_WITHOUT_RELEASE_ALL
STANDIN_EXPORT void cuda_ReleaseAllLut() {
  Record("cuda_ReleaseAllLut");
  State& state = TheState();
  const std::lock_guard guard(state.lock);
  state.luts.clear();
}
#endif

STANDIN_EXPORT int cuda_ApplyBGRByIridas3D(uint32_t handle, int width, int height, int depth, void* src, void* dst) {
  return Apply("cuda_ApplyBGRByIridas3D", handle, width, height, depth, src, dst, 3, false);
}

STANDIN_EXPORT int cuda_ApplyRGBToBGRByIridas3D(uint32_t handle, int width, int height, int depth, void* src,
                                                void* dst) {
  return Apply("cuda_ApplyRGBToBGRByIridas3D", handle, width, height, depth, src, dst, 3, true);
}

STANDIN_EXPORT int cuda_ApplyBGRxByIridas3D(uint32_t handle, int width, int height, int depth, void* src, void* dst) {
  return Apply("cuda_ApplyBGRxByIridas3D", handle, width, height, depth, src, dst, 4, false);
}

STANDIN_EXPORT int cuda_ApplyRGBxToBGRxByIridas3D(uint32_t handle, int width, int height, int depth, void* src,
                                                  void* dst) {
  return Apply("cuda_ApplyRGBxToBGRxByIridas3D", handle, width, height, depth, src, dst, 4, true);
}

#ifndef VELCUDA_STANDIN_WITHOUT_ENCODER
namespace {

bool CanEncode(int device) {
  return device >= EnvInt("VELCUDA_STANDIN_FERMI_FROM", 0) && device < EnvInt("VELCUDA_STANDIN_DEVICES", 1);
}

}  // namespace

STANDIN_EXPORT int cuda_GetmultiProcessorCount(int device, int* count) {
  Record("cuda_GetmultiProcessorCount %d %p", device, static_cast<void*>(count));
  if (count == nullptr || device < 0 || device >= EnvInt("VELCUDA_STANDIN_DEVICES", 1)) return 0;
  *count = EnvInt("VELCUDA_STANDIN_MULTIPROCESSORS", 16);
  return 1;
}

STANDIN_EXPORT int cuda_IsFermiSupport(int device) {
  Record("cuda_IsFermiSupport %d", device);
  return CanEncode(device) ? 1 : 0;
}

STANDIN_EXPORT uint64_t cuda_JpegEncoder_Init(int device) {
  Record("cuda_JpegEncoder_Init %d", device);
  if (EnvSwitch("VELCUDA_STANDIN_ENCODER_INIT_FAIL") || !CanEncode(device)) return 0;
  State& state = TheState();
  const std::lock_guard guard(state.lock);
  // Above 32 bits, so that a caller who narrows the handle loses it.
  const uint64_t handle = 0x5EC0DE0000000000ull + (state.nextEncoder++);
  state.encoders.emplace(handle, device);
  return handle;
}

STANDIN_EXPORT int cuda_JpegEncoder_UnInit(uint64_t handle) {
  Record("cuda_JpegEncoder_UnInit 0x%llx", static_cast<unsigned long long>(handle));
  State& state = TheState();
  const std::lock_guard guard(state.lock);
  return state.encoders.erase(handle) == 1 ? 0 : -1;
}

STANDIN_EXPORT int cuda_JpegEncoder(uint64_t handle, int width, int height, int quality, const void* src,
                                    int srcSize, void* dst, int* encodedSize, void* extra) {
  Record("cuda_JpegEncoder 0x%llx %d %d %d %p %d %p %p %p", static_cast<unsigned long long>(handle), width, height,
         quality, src, srcSize, dst, static_cast<void*>(encodedSize), extra);
  {
    State& state = TheState();
    const std::lock_guard guard(state.lock);
    if (state.encoders.count(handle) == 0) return 0;
  }
  if (EnvSwitch("VELCUDA_STANDIN_ENCODE_FAIL") || width <= 0 || height <= 0 || src == nullptr || dst == nullptr ||
      encodedSize == nullptr || srcSize < width * height)
    return 0;
  jpeg_compress_struct cinfo{};
  jpeg_error_mgr jerr{};
  cinfo.err = jpeg_std_error(&jerr);
  jpeg_create_compress(&cinfo);
  unsigned char* out = nullptr;
  unsigned long outSize = 0;
  jpeg_mem_dest(&cinfo, &out, &outSize);
  cinfo.image_width = static_cast<JDIMENSION>(width);
  cinfo.image_height = static_cast<JDIMENSION>(height);
  cinfo.input_components = 1;
  cinfo.in_color_space = JCS_GRAYSCALE;
  jpeg_set_defaults(&cinfo);
  jpeg_set_quality(&cinfo, quality, TRUE);
  jpeg_start_compress(&cinfo, TRUE);
  const auto* rows = static_cast<const unsigned char*>(src);
  while (cinfo.next_scanline < cinfo.image_height) {
    JSAMPROW row = const_cast<unsigned char*>(rows + static_cast<size_t>(cinfo.next_scanline) * width);
    jpeg_write_scanlines(&cinfo, &row, 1);
  }
  jpeg_finish_compress(&cinfo);
  jpeg_destroy_compress(&cinfo);
  std::memcpy(dst, out, outSize);
  *encodedSize = static_cast<int>(outSize);
  std::free(out);
  return 1;
}
#endif

// For tests: LUTs the stand-in holds now.
STANDIN_EXPORT int velcuda_standin_LutCount() {
  State& state = TheState();
  const std::lock_guard guard(state.lock);
  return static_cast<int>(state.luts.size());
}
