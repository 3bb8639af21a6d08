// The process-wide binding of the GPU companion, against the stand-in. Each
// test runs in a process of its own (see CMakeLists.txt).
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <thread>
#include <vector>

#include "StandinLog.h"
#include "platform/VelCudaBinding.h"

namespace {

using kestrelink::platform::VelCudaBinding;
using velcudatest::CallNames;
using velcudatest::ClearLog;
using velcudatest::ReadLog;
using Names = std::vector<std::string>;

std::string ProgramPath() {
  char* exe = ::realpath("/proc/self/exe", nullptr);
  std::string path = exe != nullptr ? exe : "";
  std::free(exe);
  return path;
}

int CountEntries(const kestrelink::platform::VelCudaEntries& e) {
  const void* all[] = {
      reinterpret_cast<const void*>(e.cuda_GetCudaDevice), reinterpret_cast<const void*>(e.cuda_GetCudaDeviceInfo),
      reinterpret_cast<const void*>(e.cuda_InitCudaDevice), reinterpret_cast<const void*>(e.cuda_UnInitCudaDevice),
      reinterpret_cast<const void*>(e.cuda_SetIdi3DLUT), reinterpret_cast<const void*>(e.cuda_AddRefIdi3DLUT),
      reinterpret_cast<const void*>(e.cuda_ReleaseIdi3DLUT), reinterpret_cast<const void*>(e.cuda_ForceUpdateIdi3DLUT),
      reinterpret_cast<const void*>(e.cuda_ReleaseAllLut), reinterpret_cast<const void*>(e.cuda_ApplyBGRByIridas3D),
      reinterpret_cast<const void*>(e.cuda_ApplyRGBToBGRByIridas3D),
      reinterpret_cast<const void*>(e.cuda_ApplyBGRxByIridas3D),
      reinterpret_cast<const void*>(e.cuda_ApplyRGBxToBGRxByIridas3D),
      reinterpret_cast<const void*>(e.cuda_GetmultiProcessorCount), reinterpret_cast<const void*>(e.cuda_IsFermiSupport),
      reinterpret_cast<const void*>(e.cuda_JpegEncoder_Init), reinterpret_cast<const void*>(e.cuda_JpegEncoder_UnInit),
      reinterpret_cast<const void*>(e.cuda_JpegEncoder)};
  int count = 0;
  for (const void* p : all) count += p != nullptr ? 1 : 0;
  return count;
}

TEST(VelCudaBinding, LoadsNamedCompanionOnce) {
  ClearLog();
  velcudatest::DebugLines debug;
  VelCudaBinding& binding = VelCudaBinding::Instance();
  EXPECT_EQ(&VelCudaBinding::Instance(), &binding);
  EXPECT_TRUE(binding.Usable());
  EXPECT_EQ(binding.DeviceCount(), 1);
  EXPECT_EQ(binding.LibraryPath(), std::getenv("KESTRELINK_VELCUDA"));
  EXPECT_EQ(CountEntries(binding.Entries()), 18);
  // Our own path, then the companion's, each once: the load is not repeated.
  EXPECT_EQ(debug.Lines(), (Names{ProgramPath(), std::getenv("KESTRELINK_VELCUDA")}));
  EXPECT_EQ(CallNames(ReadLog()), (Names{"cuda_GetCudaDevice", "cuda_InitCudaDevice"}));
}

TEST(VelCudaBinding, FindsCompanionBesideItself) {
  ASSERT_EQ(std::getenv("KESTRELINK_VELCUDA"), nullptr);
  const std::string program = ProgramPath();
  VelCudaBinding& binding = VelCudaBinding::Instance();
  EXPECT_EQ(binding.LibraryPath(), program.substr(0, program.rfind('/') + 1) + "libvelcuda.so");
  EXPECT_TRUE(binding.Usable());
}

TEST(VelCudaBinding, MissingCompanionIsUnusable) {
  velcudatest::DebugLines debug;
  VelCudaBinding& binding = VelCudaBinding::Instance();
  EXPECT_FALSE(binding.Usable());
  EXPECT_EQ(CountEntries(binding.Entries()), 0);
  EXPECT_EQ(debug.Lines(), (Names{ProgramPath(), std::getenv("KESTRELINK_VELCUDA")}));
  EXPECT_EQ(binding.FirstFermiDevice(), -1);
  EXPECT_EQ(binding.MultiProcessorCount(0), 0);
  EXPECT_EQ(binding.JpegEncoderInit(0), 0u);
  EXPECT_EQ(binding.JpegEncoderUnInit(1), -1);
  int size = 0;
  EXPECT_EQ(binding.JpegEncode(1, 128, 128, 75, nullptr, 0, nullptr, &size, nullptr), 0);
}

// Without devices, initialisation is not tried; the JPEG calls then fail
// without reaching the companion.
TEST(VelCudaBinding, NoDeviceIsUnusable) {
  ClearLog();
  VelCudaBinding& binding = VelCudaBinding::Instance();
  EXPECT_FALSE(binding.Usable());
  EXPECT_EQ(binding.FirstFermiDevice(), -1);
  EXPECT_EQ(binding.JpegEncoderInit(0), 0u);
  EXPECT_EQ(CallNames(ReadLog()), (Names{"cuda_GetCudaDevice"}));
}

TEST(VelCudaBinding, FailedInitialisationIsUnusable) {
  ClearLog();
  EXPECT_FALSE(VelCudaBinding::Instance().Usable());
  EXPECT_EQ(CallNames(ReadLog()), (Names{"cuda_GetCudaDevice", "cuda_InitCudaDevice"}));
}

TEST(VelCudaBinding, MissingRequiredEntryIsUnusable) {
  ClearLog();
  VelCudaBinding& binding = VelCudaBinding::Instance();
  EXPECT_FALSE(binding.Usable());
  EXPECT_EQ(binding.Entries().cuda_ReleaseAllLut, nullptr);
  EXPECT_EQ(CountEntries(binding.Entries()), 17);
  EXPECT_TRUE(ReadLog().empty());  // not even the device count is asked for
}

TEST(VelCudaBinding, WithoutEncoderEntriesStillUsable) {
  ClearLog();
  VelCudaBinding& binding = VelCudaBinding::Instance();
  EXPECT_TRUE(binding.Usable());
  EXPECT_EQ(CountEntries(binding.Entries()), 13);
  EXPECT_EQ(binding.FirstFermiDevice(), -1);
  EXPECT_EQ(binding.MultiProcessorCount(0), 0);
  EXPECT_EQ(binding.JpegEncoderInit(0), 0u);
  EXPECT_EQ(binding.JpegEncoderUnInit(5), -1);
  EXPECT_EQ(CallNames(ReadLog()), (Names{"cuda_GetCudaDevice", "cuda_InitCudaDevice"}));
}

TEST(VelCudaBinding, FirstFermiDeviceAndItsMultiprocessors) {
  ClearLog();
  VelCudaBinding& binding = VelCudaBinding::Instance();
  ASSERT_TRUE(binding.Usable());
  EXPECT_EQ(binding.DeviceCount(), 3);
  EXPECT_EQ(binding.FirstFermiDevice(), 1);
  EXPECT_EQ(binding.MultiProcessorCount(1), 30);
  const auto calls = ReadLog();
  ASSERT_EQ(calls.size(), 5u);
  EXPECT_EQ(calls[2], (velcudatest::Call{"cuda_IsFermiSupport", "0"}));
  EXPECT_EQ(calls[3], (velcudatest::Call{"cuda_IsFermiSupport", "1"}));
  EXPECT_EQ(calls[4].at(0), "cuda_GetmultiProcessorCount");
  EXPECT_EQ(calls[4].at(1), "1");
}

TEST(VelCudaBinding, EncoderCallsPassArgumentsAndResults) {
  VelCudaBinding& binding = VelCudaBinding::Instance();
  ASSERT_TRUE(binding.Usable());
  ClearLog();
  const uint64_t handle = binding.JpegEncoderInit(0);
  // The handle crosses as all 64 bits.
  EXPECT_GT(handle, 0xFFFFFFFFull);

  std::vector<uint8_t> frame(160 * 128);
  for (size_t i = 0; i < frame.size(); ++i) frame[i] = static_cast<uint8_t>(i % 251);
  std::vector<uint8_t> out(frame.size() + 4096, 0);
  int size = -1;
  int extra = 0;
  EXPECT_NE(binding.JpegEncode(handle, 160, 128, 80, frame.data(), 160 * 128, out.data() + 4, &size, &extra), 0);
  ASSERT_GT(size, 4);
  EXPECT_EQ(out[4], 0xFF);  // a JPEG stream starts with its SOI marker
  EXPECT_EQ(out[5], 0xD8);
  EXPECT_EQ(out[4 + size - 2], 0xFF);
  EXPECT_EQ(out[4 + size - 1], 0xD9);
  EXPECT_EQ(binding.JpegEncoderUnInit(handle), 0);
  EXPECT_EQ(binding.JpegEncoderUnInit(handle), -1);

  const auto calls = ReadLog();
  ASSERT_EQ(calls.size(), 4u);
  EXPECT_EQ(calls[0], (velcudatest::Call{"cuda_JpegEncoder_Init", "0"}));
  EXPECT_EQ(calls[1], (velcudatest::Call{"cuda_JpegEncoder", velcudatest::Hex(handle), "160", "128", "80",
                                         velcudatest::Ptr(frame.data()), "20480", velcudatest::Ptr(out.data() + 4),
                                         velcudatest::Ptr(&size), velcudatest::Ptr(&extra)}));
  EXPECT_EQ(calls[2], (velcudatest::Call{"cuda_JpegEncoder_UnInit", velcudatest::Hex(handle)}));
}

// While someone holds the binding's lock, encoder set-up waits for it.
TEST(VelCudaBinding, EncoderCallsWaitForTheLock) {
  VelCudaBinding& binding = VelCudaBinding::Instance();
  ASSERT_TRUE(binding.Usable());
  std::atomic<bool> done{false};
  uint64_t handle = 0;
  std::thread other;
  {
    const std::lock_guard guard(binding.Lock());
    other = std::thread([&] {
      handle = binding.JpegEncoderInit(0);
      done = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(done.load());
  }
  other.join();
  EXPECT_TRUE(done.load());
  EXPECT_NE(handle, 0u);
}

TEST(VelCudaBinding, UnloadReleasesLutsThenDeviceOnce) {
  VelCudaBinding& binding = VelCudaBinding::Instance();
  ASSERT_TRUE(binding.Usable());
  ClearLog();
  binding.Unload();
  EXPECT_EQ(CallNames(ReadLog()), (Names{"cuda_ReleaseAllLut", "cuda_UnInitCudaDevice"}));
  EXPECT_FALSE(binding.Usable());
  EXPECT_EQ(binding.JpegEncoderInit(0), 0u);
  binding.Unload();
  EXPECT_EQ(ReadLog().size(), 2u);
}

// The teardown runs when the process ends: a child binds and exits.
TEST(VelCudaBinding, TeardownAtProcessExit) {
  for (const char* devices : {"1", "0"}) {
    ClearLog();
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      ::setenv("VELCUDA_STANDIN_DEVICES", devices, 1);
      VelCudaBinding::Instance();
      std::exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    const Names expected = devices[0] == '1' ? Names{"cuda_GetCudaDevice", "cuda_InitCudaDevice",
                                                     "cuda_ReleaseAllLut", "cuda_UnInitCudaDevice"}
                                             : Names{"cuda_GetCudaDevice"};
    EXPECT_EQ(CallNames(ReadLog()), expected) << "devices " << devices;
  }
}

}  // namespace
