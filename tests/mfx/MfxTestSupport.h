#pragma once
// Helpers of the Media SDK tests: copies of the stand-in run-time under names
// of their own (each copy loads as a library apart, with its own state),
// dispatcher keys in temporary hive files, and render nodes described in a
// temporary folder.
#include <dlfcn.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "mfx/MfxAdapter.h"
#include "platform/ScopedEnv.h"
#include "standins/mfx/MfxStandinState.h"
#include "support/TestSupport.h"

namespace mfxtest {

class StandinCopy {
 public:
  explicit StandinCopy(const std::string& name, const char* source = KESTRELINK_MFX_STANDIN)
      : file_(name + ".so", testsupport::ReadFile(source)) {
    handle_ = ::dlopen(file_.path(), RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(handle_, nullptr) << ::dlerror();
    if (handle_ == nullptr) return;
    auto state = reinterpret_cast<MfxStandinStateBlock* (*)()>(::dlsym(handle_, "MfxStandinState"));
    reset_ = reinterpret_cast<void (*)()>(::dlsym(handle_, "MfxStandinReset"));
    state_ = state();
    reset_();
  }
  ~StandinCopy() {
    if (handle_ == nullptr) return;
    reset_();
    ::dlclose(handle_);
  }
  StandinCopy(const StandinCopy&) = delete;
  StandinCopy& operator=(const StandinCopy&) = delete;

  const char* path() const { return file_.path(); }
  MfxStandinKnobs& knobs() { return state_->knobs; }
  MfxStandinRecord& record() { return state_->record; }

 private:
  testsupport::TempFile file_;
  void* handle_ = nullptr;
  MfxStandinStateBlock* state_ = nullptr;
  void (*reset_)() = nullptr;
};

struct DispatchKey {
  std::string name;
  uint32_t apiVersion;  // major << 8 | minor
  uint32_t vendor, device, merit;
  std::string path;
};

inline std::string HiveText(const char* root, const std::vector<DispatchKey>& keys) {
  std::string text = "Windows Registry Editor Version 5.00\r\n\r\n";
  char line[160];
  for (const DispatchKey& key : keys) {
    text += std::string("[") + root + "\\Software\\Intel\\MediaSDK\\Dispatch\\" + key.name + "]\r\n";
    std::snprintf(line, sizeof line, "\"APIVersion\"=dword:%08x\r\n\"VendorID\"=dword:%08x\r\n", key.apiVersion,
                  key.vendor);
    text += line;
    std::snprintf(line, sizeof line, "\"DeviceID\"=dword:%08x\r\n\"Merit\"=dword:%08x\r\n", key.device, key.merit);
    text += line;
    text += "\"Path\"=\"" + key.path + "\"\r\n\r\n";
  }
  return text;
}

// The two hives for a scope: the current user's and the local machine's keys.
class ScopedDispatchKeys {
 public:
  ScopedDispatchKeys(const std::vector<DispatchKey>& user, const std::vector<DispatchKey>& machine = {})
      : user_(Name("user"), HiveText("HKEY_CURRENT_USER", user)),
        machine_(Name("machine"), HiveText("HKEY_LOCAL_MACHINE", machine)),
        userEnv_("KESTRELINK_HKCU", user_.path()),
        machineEnv_("KESTRELINK_HKLM", machine_.path()) {}

  // Nested scopes each keep files of their own.
  static std::string Name(const char* hive) {
    static int count = 0;
    return std::string(hive) + "-" + std::to_string(++count) + ".reg";
  }

 private:
  testsupport::TempFile user_, machine_;
  testsupport::ScopedEnv userEnv_, machineEnv_;
};

// Render nodes 128 + n with the given vendor and device ids, for the scope.
class ScopedAdapters {
 public:
  explicit ScopedAdapters(const std::vector<std::pair<uint32_t, uint32_t>>& ids) {
    root_ = ::testing::TempDir() + "kestrelink-drm-" + std::to_string(getpid());
    ::mkdir(root_.c_str(), 0755);
    for (size_t n = 0; n < ids.size(); ++n) {
      const std::string node = root_ + "/renderD" + std::to_string(128 + n);
      ::mkdir(node.c_str(), 0755);
      ::mkdir((node + "/device").c_str(), 0755);
      Write(node + "/device/vendor", ids[n].first);
      Write(node + "/device/device", ids[n].second);
      files_.push_back(node);
    }
    kestrelink::mfx::SetDrmClassRoot(root_);
  }
  ~ScopedAdapters() {
    kestrelink::mfx::SetDrmClassRoot("");
    for (const std::string& node : files_) {
      std::remove((node + "/device/vendor").c_str());
      std::remove((node + "/device/device").c_str());
      ::rmdir((node + "/device").c_str());
      ::rmdir(node.c_str());
    }
    ::rmdir(root_.c_str());
  }

 private:
  static void Write(const std::string& path, uint32_t value) {
    FILE* f = std::fopen(path.c_str(), "w");
    if (f == nullptr) return;
    std::fprintf(f, "0x%04x\n", value);
    std::fclose(f);
  }
  std::string root_;
  std::vector<std::string> files_;
};

// The stand-in's stream for frame n (see MfxStandinState.h), without a delimiter.
inline std::vector<uint8_t> StandinStream(uint32_t n, bool key, uint32_t lumaSum) {
  std::vector<uint8_t> s;
  if (key) s = {0, 0, 0, 1, 0x67, 'S', 'P', 'S', 0, 0, 0, 1, 0x68, 'P', 'P', 'S'};
  for (uint8_t b : {0, 0, 0, 1, key ? 0x65 : 0x41}) s.push_back(b);
  for (uint32_t value : {n, lumaSum})
    for (int shift = 24; shift >= 0; shift -= 8) s.push_back(uint8_t(value >> shift));
  return s;
}

// Debug lines for the scope.
class ScopedDebugLines {
 public:
  ScopedDebugLines();
  ~ScopedDebugLines();
  const std::vector<std::string>& lines() const { return lines_; }

 private:
  std::vector<std::string> lines_;
};

}  // namespace mfxtest

#include <kestrelink/DebugOutput.h>

inline mfxtest::ScopedDebugLines::ScopedDebugLines() {
  kestrelink::SetDebugOutputHandler(
      [](const char* message, void* context) { static_cast<std::vector<std::string>*>(context)->push_back(message); },
      &lines_);
}
inline mfxtest::ScopedDebugLines::~ScopedDebugLines() { kestrelink::SetDebugOutputHandler(nullptr, nullptr); }
