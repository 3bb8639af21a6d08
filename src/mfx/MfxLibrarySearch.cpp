#include "mfx/MfxLibrarySearch.h"

#include <vector>

namespace kestrelink::mfx {

namespace {

constexpr size_t kMaxPathChars = 1024;

bool QueryDword(const std::map<std::string, platform::RegistryValue>& values, const char* name, uint32_t& out) {
  const auto it = values.find(name);  // value names are stored lower-cased
  if (it == values.end() || it->second.type != platform::RegistryType::Dword) return false;
  out = it->second.dword;
  return true;
}

}  // namespace

mfxStatus LibrarySearch::Next(std::string& path, LibraryKind& kind) {
  const std::vector<std::string> subKeys = hive_.SubKeys(kDispatchKey);
  int64_t bestMerit = -1, bestIndex = -1;
  uint32_t bestVendor = 0, bestDevice = 0;
  std::string bestPath;
  for (size_t index = 0; index < subKeys.size(); ++index) {
    const auto* values = hive_.Find(std::string(kDispatchKey) + '\\' + subKeys[index]);
    if (values == nullptr) continue;
    uint32_t api = 0, vendor = 0, device = 0, merit = 0;
    if (!QueryDword(*values, "apiversion", api)) continue;
    if ((api >> 8 & 0xFF) != requested_.Major || (api & 0xFF) < requested_.Minor) continue;
    if (!QueryDword(*values, "vendorid", vendor) || !QueryDword(*values, "deviceid", device) ||
        !QueryDword(*values, "merit", merit))
      continue;
    if (kind_ == kSoftwareLibrary ? (vendor != 0 || device != 0)
                                  : (vendor != adapter_.vendor || device != adapter_.device))
      continue;
    const int64_t m = merit, i = int64_t(index);
    const bool afterLast = m < lastMerit_ || (m == lastMerit_ && i > lastIndex_);
    if (!afterLast || m <= bestMerit) continue;
    const auto pathValue = values->find("path");
    if (pathValue == values->end() || pathValue->second.type != platform::RegistryType::String ||
        pathValue->second.text.empty() || pathValue->second.text.size() > kMaxPathChars)
      continue;
    bestMerit = m;
    bestIndex = i;
    bestVendor = vendor;
    bestDevice = device;
    bestPath = pathValue->second.text;
  }
  if (bestIndex < 0) return MFX_ERR_NOT_FOUND;
  lastMerit_ = bestMerit;
  lastIndex_ = bestIndex;
  path = bestPath;
  kind = (bestVendor == 0 || bestDevice == 0) ? kSoftwareLibrary : kHardwareLibrary;
  return MFX_ERR_NONE;
}

}  // namespace kestrelink::mfx
