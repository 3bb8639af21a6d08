// The .reg text format: sections name keys, the lines below them set or
// delete values. Later lines win; a line that doesn't parse is skipped.
#include "platform/RegFile.h"

#include <cstdint>
#include <set>

#include "platform/Registry.h"

namespace kestrelink::platform {
namespace regfile {

std::string LowerAscii(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return out;
}

std::string NormaliseKeyPath(std::string_view path) {
  while (!path.empty() && path.front() == '\\') path.remove_prefix(1);
  while (!path.empty() && path.back() == '\\') path.remove_suffix(1);
  return LowerAscii(path);
}

namespace {

void AppendUtf8(std::string& out, uint32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

}  // namespace

std::string Utf16LeToUtf8(std::string_view bytes, bool stopAtNul) {
  const size_t units = bytes.size() / 2;
  auto unit = [&](size_t i) -> uint32_t {
    return static_cast<uint8_t>(bytes[2 * i]) | (static_cast<uint32_t>(static_cast<uint8_t>(bytes[2 * i + 1])) << 8);
  };
  std::string out;
  out.reserve(bytes.size());
  for (size_t i = 0; i < units; ++i) {
    uint32_t cp = unit(i);
    if (cp == 0 && stopAtNul) break;
    if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < units && unit(i + 1) >= 0xDC00 && unit(i + 1) <= 0xDFFF) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (unit(i + 1) - 0xDC00);
      ++i;
    } else if (cp >= 0xD800 && cp <= 0xDFFF) {
      cp = 0xFFFD;
    }
    AppendUtf8(out, cp);
  }
  return out;
}

}  // namespace regfile

namespace {

using ValueMap = std::map<std::string, RegistryValue>;

constexpr uint32_t kRegSz = 1;
constexpr uint32_t kRegBinary = 3;
constexpr uint32_t kRegDword = 4;

std::string_view TrimLeft(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  return s;
}

std::string_view Trim(std::string_view s) {
  s = TrimLeft(s);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
  return s;
}

bool StartsWithNoCase(std::string_view s, std::string_view prefix) {
  return s.size() >= prefix.size() && regfile::LowerAscii(s.substr(0, prefix.size())) == prefix;
}

// Cuts a trailing "; comment" and surrounding blanks off a value's data.
std::string_view DropComment(std::string_view s) {
  if (size_t semi = s.find(';'); semi != std::string_view::npos) s = s.substr(0, semi);
  return Trim(s);
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// 1 to 8 hex digits, nothing else.
bool ParseHex32(std::string_view digits, uint32_t& out) {
  if (digits.empty() || digits.size() > 8) return false;
  uint32_t v = 0;
  for (char c : digits) {
    const int d = HexDigit(c);
    if (d < 0) return false;
    v = (v << 4) | static_cast<uint32_t>(d);
  }
  out = v;
  return true;
}

// A quoted name or string at s[pos] == '"'; only \\ and \" are escapes, any
// other backslash stands for itself. pos ends past the closing quote.
bool ParseQuoted(std::string_view s, size_t& pos, std::string& out) {
  if (pos >= s.size() || s[pos] != '"') return false;
  ++pos;
  while (pos < s.size()) {
    const char c = s[pos];
    if (c == '\\' && pos + 1 < s.size() && (s[pos + 1] == '\\' || s[pos + 1] == '"')) {
      out += s[pos + 1];
      pos += 2;
    } else if (c == '"') {
      ++pos;
      return true;
    } else {
      out += c;
      ++pos;
    }
  }
  return false;
}

// Comma-separated byte list of hex: data; a trailing comma is allowed.
bool ParseByteList(std::string_view list, std::string& out) {
  list = DropComment(list);
  while (!list.empty()) {
    const size_t comma = list.find(',');
    const std::string_view token = Trim(list.substr(0, comma));
    if (token.empty() || token.size() > 2) return false;
    uint32_t byte = 0;
    if (!ParseHex32(token, byte)) return false;
    out += static_cast<char>(byte);
    if (comma == std::string_view::npos) break;
    list = TrimLeft(list.substr(comma + 1));
  }
  return true;
}

// hex:..., hex(T):... — the registry type T in hex, plain hex: is binary.
bool ParseHexValue(std::string_view data, bool unicode, RegistryValue& value) {
  data.remove_prefix(3);  // "hex"
  uint32_t type = kRegBinary;
  if (!data.empty() && data.front() == '(') {
    const size_t close = data.find(')');
    if (close == std::string_view::npos || !ParseHex32(data.substr(1, close - 1), type)) return false;
    data.remove_prefix(close + 1);
  }
  if (data.empty() || data.front() != ':') return false;
  std::string bytes;
  if (!ParseByteList(data.substr(1), bytes)) return false;

  // hex(4) and hex(1) are how an exporter writes a dword or string it can't
  // show plainly; they read back as what they are.
  if (type == kRegDword && bytes.size() == 4) {
    value.type = RegistryType::Dword;
    value.dword = static_cast<uint8_t>(bytes[0]) | static_cast<uint32_t>(static_cast<uint8_t>(bytes[1])) << 8 |
                  static_cast<uint32_t>(static_cast<uint8_t>(bytes[2])) << 16 |
                  static_cast<uint32_t>(static_cast<uint8_t>(bytes[3])) << 24;
  } else if (type == kRegSz) {
    value.type = RegistryType::String;
    value.text = unicode ? regfile::Utf16LeToUtf8(bytes, true) : bytes.substr(0, bytes.find('\0'));
  } else {
    value.type = RegistryType::Other;
    value.text = std::move(bytes);
  }
  return true;
}

// Physical lines, without their CR LF or LF.
class LineReader {
 public:
  explicit LineReader(std::string_view text) : text_(text) {}

  bool Next(std::string_view& line) {
    if (pos_ >= text_.size()) return false;
    size_t end = text_.find('\n', pos_);
    if (end == std::string_view::npos) end = text_.size();
    line = text_.substr(pos_, end - pos_);
    pos_ = end + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return true;
  }

 private:
  std::string_view text_;
  size_t pos_ = 0;
};

class Parser {
 public:
  Parser(RegistryHive hive, std::map<std::string, ValueMap>& keys) : hive_(hive), keys_(keys) {}

  void Run(std::string_view text) {
    LineReader reader(text);
    std::string_view raw;
    bool first = true;
    while (reader.Next(raw)) {
      const std::string_view line = Trim(raw);
      if (line.empty() || line.front() == ';') continue;
      if (first) {
        first = false;
        if (line == "Windows Registry Editor Version 5.00") continue;
        if (line == "REGEDIT4") {
          unicode_ = false;  // that format's hex(1) strings are 8-bit
          continue;
        }
      }
      if (line.front() == '[') {
        Section(line);
      } else if (line.front() == '"' || line.front() == '@') {
        Value(line, reader);
      }
    }
  }

 private:
  bool RootIsOurs(std::string_view root) const {
    const std::string lower = regfile::LowerAscii(root);
    if (hive_ == RegistryHive::CurrentUser) return lower == "hkey_current_user" || lower == "hkcu";
    return lower == "hkey_local_machine" || lower == "hklm";
  }

  void Section(std::string_view line) {
    current_ = nullptr;  // until this line names a key of our hive
    if (line.size() < 2 || line.back() != ']') return;
    std::string_view inner = line.substr(1, line.size() - 2);
    const bool erase = !inner.empty() && inner.front() == '-';
    if (erase) inner.remove_prefix(1);
    const size_t slash = inner.find('\\');
    if (!RootIsOurs(inner.substr(0, slash))) return;
    const std::string path = regfile::NormaliseKeyPath(slash == std::string_view::npos ? "" : inner.substr(slash + 1));
    if (!erase) {
      current_ = &keys_[path];
      return;
    }
    if (path.empty()) return;  // a hive root can't be deleted
    keys_.erase(path);
    const std::string prefix = path + '\\';
    for (auto it = keys_.lower_bound(prefix); it != keys_.end() && it->first.starts_with(prefix);) {
      it = keys_.erase(it);
    }
  }

  void Value(std::string_view line, LineReader& reader) {
    std::string name;
    size_t pos = 0;
    if (line.front() == '@') {
      pos = 1;
    } else if (!ParseQuoted(line, pos, name)) {
      return;
    }
    std::string_view rest = TrimLeft(line.substr(pos));
    if (rest.empty() || rest.front() != '=') return;
    std::string_view data = TrimLeft(rest.substr(1));

    // Long hex data runs on over lines that end in a backslash.
    std::string joined;
    if (StartsWithNoCase(data, "hex") && data.back() == '\\') {
      joined.assign(data.substr(0, data.size() - 1));
      std::string_view next;
      while (reader.Next(next)) {
        next = Trim(next);
        const bool more = !next.empty() && next.back() == '\\';
        joined.append(more ? next.substr(0, next.size() - 1) : next);
        if (!more) break;
      }
      data = joined;
    }
    if (current_ == nullptr) return;  // outside any section of this hive

    name = regfile::LowerAscii(name);
    if (DropComment(data) == "-") {
      current_->erase(name);
      return;
    }
    RegistryValue value;
    if (!ParseData(data, value)) return;
    current_->insert_or_assign(std::move(name), std::move(value));
  }

  bool ParseData(std::string_view data, RegistryValue& value) const {
    if (!data.empty() && data.front() == '"') {
      size_t pos = 0;
      if (!ParseQuoted(data, pos, value.text) || !DropComment(data.substr(pos)).empty()) return false;
      value.type = RegistryType::String;
      return true;
    }
    if (StartsWithNoCase(data, "dword:")) {
      if (!ParseHex32(DropComment(data.substr(6)), value.dword)) return false;
      value.type = RegistryType::Dword;
      return true;
    }
    if (StartsWithNoCase(data, "hex")) return ParseHexValue(data, unicode_, value);
    return false;
  }

  RegistryHive hive_;
  std::map<std::string, ValueMap>& keys_;
  ValueMap* current_ = nullptr;
  bool unicode_ = true;
};

}  // namespace

RegistryFile RegistryFile::Parse(std::string_view bytes, RegistryHive hive) {
  RegistryFile file;
  std::string decoded;
  if (bytes.starts_with("\xFF\xFE")) {
    decoded = regfile::Utf16LeToUtf8(bytes.substr(2), /*stopAtNul=*/false);
    bytes = decoded;
  } else if (bytes.starts_with("\xEF\xBB\xBF")) {
    bytes.remove_prefix(3);
  }
  Parser(hive, file.keys_).Run(bytes);
  return file;
}

const std::map<std::string, RegistryValue>* RegistryFile::Find(std::string_view keyPath) const {
  static const ValueMap kNoValues;
  const std::string path = regfile::NormaliseKeyPath(keyPath);
  if (auto it = keys_.find(path); it != keys_.end()) return &it->second;
  if (path.empty()) return &kNoValues;  // the hive root is always there
  // A key named only as the parent of another exists, with no values.
  const std::string prefix = path + '\\';
  auto it = keys_.lower_bound(prefix);
  if (it != keys_.end() && it->first.starts_with(prefix)) return &kNoValues;
  return nullptr;
}

}  // namespace kestrelink::platform

namespace kestrelink::platform {

std::vector<std::string> RegistryFile::SubKeys(std::string_view keyPath) const {
  const std::string path = regfile::NormaliseKeyPath(keyPath);
  const std::string prefix = path.empty() ? std::string() : path + '\\';
  std::set<std::string, std::less<>> names;
  for (auto it = keys_.lower_bound(prefix); it != keys_.end() && it->first.starts_with(prefix); ++it) {
    const std::string_view rest = std::string_view(it->first).substr(prefix.size());
    const std::string_view child = rest.substr(0, rest.find('\\'));
    if (!child.empty()) names.emplace(child);
  }
  return {names.begin(), names.end()};
}

}  // namespace kestrelink::platform
