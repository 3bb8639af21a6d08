// Placeholder until the store lands: every hive is empty.
#include "platform/Registry.h"

namespace kestrelink::platform {

RegistryFile RegistryFile::Parse(std::string_view, RegistryHive) { return {}; }
RegistryFile RegistryFile::Load(RegistryHive) { return {}; }
const std::map<std::string, RegistryValue>* RegistryFile::Find(std::string_view) const { return nullptr; }
std::string HiveFilePath(RegistryHive) { return {}; }
std::optional<RegistryKey> RegistryKey::Open(RegistryHive, std::string_view, bool create) {
  if (create) return RegistryKey{};
  return std::nullopt;
}
bool RegistryKey::Query(std::string_view, RegistryValue&) const { return false; }

}  // namespace kestrelink::platform
