// The hive files and opened keys. Every Open reads the file afresh.
#include "platform/Registry.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "platform/RegFile.h"

namespace kestrelink::platform {
namespace {

// Far beyond any real export; a bigger file is treated as unreadable rather
// than parsed in part.
constexpr size_t kMaxHiveBytes = 16u << 20;

// The variable's value, or empty when it is unset or empty.
std::string Env(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? std::string(value) : std::string();
}

// The whole file, or empty when it is missing, not a regular file, or too big.
std::string ReadHiveBytes(const std::string& path) {
  if (path.empty()) return {};
  struct stat info {};
  // Only regular files: a FIFO or device could block or never end.
  if (::stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return {};
  std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
  if (!file) return {};
  std::string bytes;
  char buffer[65536];
  size_t got = 0;
  while ((got = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) {
    if (bytes.size() + got > kMaxHiveBytes) return {};
    bytes.append(buffer, got);
  }
  if (std::ferror(file.get())) return {};
  return bytes;
}

}  // namespace

std::string HiveFilePath(RegistryHive hive) {
  if (hive == RegistryHive::LocalMachine) {
    std::string path = Env("KESTRELINK_HKLM");
    return path.empty() ? std::string("/etc/kestrelink/machine.reg") : path;
  }
  std::string path = Env("KESTRELINK_HKCU");
  if (!path.empty()) return path;
  std::string config = Env("XDG_CONFIG_HOME");
  if (config.empty()) {
    const std::string home = Env("HOME");
    if (home.empty()) return {};  // no home to look in: an empty hive
    config = home + "/.config";
  }
  return config + "/kestrelink/user.reg";
}

RegistryFile RegistryFile::Load(RegistryHive hive) {
  try {
    return Parse(ReadHiveBytes(HiveFilePath(hive)), hive);
  } catch (...) {
    return {};  // out of memory on a hostile file: an empty hive
  }
}

std::optional<RegistryKey> RegistryKey::Open(RegistryHive hive, std::string_view keyPath, bool create) {
  try {
    const RegistryFile file = RegistryFile::Load(hive);
    RegistryKey key;
    if (const auto* values = file.Find(keyPath)) {
      key.values_ = *values;
    } else if (!create) {
      return std::nullopt;
    }
    return key;  // with create, a missing key opens empty; nothing is written
  } catch (...) {
    if (create) return RegistryKey{};
    return std::nullopt;
  }
}

bool RegistryKey::Query(std::string_view name, RegistryValue& out) const {
  try {
    const auto it = values_.find(regfile::LowerAscii(name));
    if (it == values_.end()) return false;
    out = it->second;
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace kestrelink::platform
