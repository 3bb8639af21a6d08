#pragma once
// The registry store: Windows registry export files (.reg) stand in for the
// two hives the library reads. Nothing here ever writes the store.
//
//   current user : $KESTRELINK_HKCU, else ${XDG_CONFIG_HOME:-$HOME/.config}/kestrelink/user.reg
//   local machine: $KESTRELINK_HKLM, else /etc/kestrelink/machine.reg
//
// A missing or unreadable file is an empty hive. Files are read at each Open,
// never cached, so a changed value takes effect at the next read.
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrelink::platform {

enum class RegistryHive { CurrentUser, LocalMachine };

// dword: values are Dword, "..." values are String, any other type is Other.
enum class RegistryType { Dword, String, Other };

struct RegistryValue {
  RegistryType type = RegistryType::Other;
  uint32_t dword = 0;
  std::string text;
};

// The parsed content of one hive file: key path (below the hive root,
// backslash-separated, compared without regard to case) to its values.
class RegistryFile {
 public:
  // Parses the bytes of a .reg file (UTF-8, or UTF-16LE with its byte-order
  // mark). Sections whose root names another hive are ignored. Never fails:
  // lines that don't parse are skipped.
  static RegistryFile Parse(std::string_view bytes, RegistryHive hive);
  static RegistryFile Load(RegistryHive hive);  // reads the hive's file

  // Values of a key, or nullptr when the file has no such key.
  const std::map<std::string, RegistryValue>* Find(std::string_view keyPath) const;

  // Lower-cased names of the keys directly below keyPath, in name order (the
  // index order of an enumeration of sub-keys).
  std::vector<std::string> SubKeys(std::string_view keyPath) const;

 private:
  std::map<std::string, std::map<std::string, RegistryValue>> keys_;  // lower-cased names
};

// Path of the file that holds a hive, after the environment overrides.
std::string HiveFilePath(RegistryHive hive);

class RegistryKey {
 public:
  // Opens keyPath (e.g. "Software\\Velmor"). With create, a key the store
  // lacks opens as an empty key; without it, the open fails.
  static std::optional<RegistryKey> Open(RegistryHive hive, std::string_view keyPath, bool create);

  // True and the value when the key holds it (names compare without case).
  bool Query(std::string_view name, RegistryValue& out) const;

 private:
  std::map<std::string, RegistryValue> values_;
};

}  // namespace kestrelink::platform
