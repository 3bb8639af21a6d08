#pragma once
// Adapter n is the n-th DRM render node, /dev/dri/renderD<128+n>; its vendor
// and device ids come from sysfs. A node without them matches no library.
#include <cstdint>
#include <string>

namespace kestrelink::mfx {

struct AdapterIds {
  uint32_t vendor = 0;
  uint32_t device = 0;
};

// True and the ids when adapter n can be identified.
bool QueryAdapter(uint32_t adapter, AdapterIds& ids);

// The folder that stands for /sys/class/drm, for tests that describe adapters
// of their own; an empty path puts the system's back.
void SetDrmClassRoot(const std::string& root);

}  // namespace kestrelink::mfx
