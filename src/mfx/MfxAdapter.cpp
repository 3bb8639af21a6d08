#include "mfx/MfxAdapter.h"

#include <cstdio>
#include <cstdlib>

namespace kestrelink::mfx {

namespace {

std::string& DrmClassRoot() {
  static std::string root = "/sys/class/drm";
  return root;
}

// A sysfs id file holds one hexadecimal number, "0x8086\n".
bool ReadHexFile(const std::string& path, uint32_t& value) {
  FILE* file = std::fopen(path.c_str(), "r");
  if (file == nullptr) return false;
  char text[32] = {};
  const bool read = std::fgets(text, sizeof text, file) != nullptr;
  std::fclose(file);
  if (!read) return false;
  char* end = nullptr;
  const unsigned long parsed = std::strtoul(text, &end, 16);
  if (end == text || parsed > 0xFFFFFFFFul) return false;
  value = uint32_t(parsed);
  return true;
}

}  // namespace

bool QueryAdapter(uint32_t adapter, AdapterIds& ids) {
  const std::string node = DrmClassRoot() + "/renderD" + std::to_string(128 + adapter) + "/device/";
  return ReadHexFile(node + "vendor", ids.vendor) && ReadHexFile(node + "device", ids.device);
}

void SetDrmClassRoot(const std::string& root) { DrmClassRoot() = root.empty() ? "/sys/class/drm" : root; }

}  // namespace kestrelink::mfx
