#pragma once
// Text helpers shared by the .reg parser and the key store.
#include <string>
#include <string_view>

namespace kestrelink::platform::regfile {

// Lower-cases ASCII letters only; other bytes (UTF-8 sequences) are kept, so
// non-ASCII names compare exactly.
std::string LowerAscii(std::string_view text);

// A key path as the store indexes it: lower-cased, with no leading or
// trailing backslashes.
std::string NormaliseKeyPath(std::string_view path);

// UTF-16LE code units to UTF-8, stopping at the first NUL unit when
// stopAtNul; an odd last byte is dropped and a lone surrogate becomes U+FFFD.
std::string Utf16LeToUtf8(std::string_view bytes, bool stopAtNul);

}  // namespace kestrelink::platform::regfile
