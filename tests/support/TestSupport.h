#pragma once
// Shared helpers of the test program: deterministic frames, the processor
// variants this machine can run, and temporary files.
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/OpenMP.h"
#include "primitives/Variant.h"

namespace testsupport {

inline std::vector<uint8_t> RandomBytes(size_t n, uint32_t seed) {
  std::mt19937 rng(seed);
  std::vector<uint8_t> v(n);
  for (auto& b : v) b = uint8_t(rng());
  return v;
}

// 16-bit little-endian samples, each below `limit`.
inline std::vector<uint8_t> RandomWords(size_t n, uint32_t limit, uint32_t seed) {
  std::mt19937 rng(seed);
  std::vector<uint8_t> v(2 * n);
  for (size_t i = 0; i < n; ++i) {
    const uint32_t s = rng() % limit;
    v[2 * i] = uint8_t(s);
    v[2 * i + 1] = uint8_t(s >> 8);
  }
  return v;
}

inline uint16_t Word(const std::vector<uint8_t>& v, size_t i) { return uint16_t(v[2 * i] | (v[2 * i + 1] << 8)); }

// Every variant the machine can run, portable first.
inline std::vector<kestrelink::CpuVariant> RunnableVariants() {
  std::vector<kestrelink::CpuVariant> out;
  for (int v = 0; v <= kestrelink::MachineVariant(); ++v) out.push_back(kestrelink::CpuVariant(v));
  return out;
}

// Forces a variant for the scope; restores the machine's choice after.
class ScopedVariant {
 public:
  explicit ScopedVariant(kestrelink::CpuVariant v) { kestrelink::ForceVariant(v); }
  ~ScopedVariant() { kestrelink::ForceVariant(kestrelink::kVariantCount); }
};

// Sets the process-wide team size for the scope, or only keeps it (no
// argument) against code under test that sets it; restores the one before.
class ScopedTeam {
 public:
  ScopedTeam() : saved_(kestrelink::platform::TeamSize()) {}
  explicit ScopedTeam(int threads) : ScopedTeam() { kestrelink::platform::SetTeamSize(threads); }
  ~ScopedTeam() { kestrelink::platform::SetTeamSize(saved_); }

 private:
  int saved_;
};

// A file under the test's temporary folder, removed at scope end. The name
// carries the process id: ctest runs tests as parallel processes that share
// the folder, and a table file is read again at every rebuild.
class TempFile {
 public:
  explicit TempFile(const std::string& name, const std::string& content = {}) {
    path_ = ::testing::TempDir() + "kestrelink-" + std::to_string(getpid()) + "-" + name;
    {
      FILE* f = std::fopen(path_.c_str(), "wb");
      if (f) {
        std::fwrite(content.data(), 1, content.size(), f);
        std::fclose(f);
      }
    }
  }
  ~TempFile() { std::remove(path_.c_str()); }
  const char* path() const { return path_.c_str(); }

 private:
  std::string path_;
};

inline std::string ReadFile(const char* path) {
  std::string out;
  FILE* f = std::fopen(path, "rb");
  if (!f) return out;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) out.append(buf, n);
  std::fclose(f);
  return out;
}

}  // namespace testsupport
