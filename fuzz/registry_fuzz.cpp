// Arbitrary bytes as a hive file: parsing and looking up keys must never
// crash or read out of bounds, whatever the encoding or line structure.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/Registry.h"

using kestrelink::platform::RegistryFile;
using kestrelink::platform::RegistryHive;
using kestrelink::platform::RegistryType;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  static constexpr std::string_view kKeys[] = {
      "", "Software", "Software\\Velmor", "SOFTWARE\\Intel\\MediaSDK\\Dispatch", "\\k\\", "a\\b\\c"};
  volatile size_t sink = 0;
  for (const RegistryHive hive : {RegistryHive::CurrentUser, RegistryHive::LocalMachine}) {
    const RegistryFile file = RegistryFile::Parse(bytes, hive);
    for (const std::string_view key : kKeys) {
      const auto* values = file.Find(key);
      if (values == nullptr) continue;
      // Touch every value so that a bad string or map entry shows up here.
      for (const auto& [name, value] : *values) {
        sink = sink + name.size() + value.text.size();
        if (value.type == RegistryType::Dword) sink = sink + value.dword;
      }
    }
  }
  return 0;
}
