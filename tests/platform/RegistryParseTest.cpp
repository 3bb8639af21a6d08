// The .reg text format as the parser reads it, one file's bytes at a time.
#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>

#include "platform/Registry.h"

namespace {

using kestrelink::platform::RegistryFile;
using kestrelink::platform::RegistryHive;
using kestrelink::platform::RegistryType;
using kestrelink::platform::RegistryValue;

constexpr const char* kHeader = "Windows Registry Editor Version 5.00\n\n";

// The value `name` of `key`, if the parsed file holds it.
std::optional<RegistryValue> Lookup(const RegistryFile& file, std::string_view key, const std::string& name) {
  const auto* values = file.Find(key);
  if (values == nullptr) return std::nullopt;
  const auto it = values->find(name);
  if (it == values->end()) return std::nullopt;
  return it->second;
}

std::optional<RegistryValue> ParseOne(const std::string& valueLine) {
  const std::string text = std::string(kHeader) + "[HKEY_CURRENT_USER\\Software\\Velmor]\n" + valueLine + "\n";
  return Lookup(RegistryFile::Parse(text, RegistryHive::CurrentUser), "Software\\Velmor", "v");
}

struct ValueCase {
  const char* line;
  bool present;
  RegistryType type;
  uint32_t dword;
  std::string text;
};

void PrintTo(const ValueCase& c, std::ostream* os) { *os << c.line; }

class RegistryValueLine : public ::testing::TestWithParam<ValueCase> {};

TEST_P(RegistryValueLine, ParsesAsTheFormatSays) {
  const ValueCase& c = GetParam();
  const auto value = ParseOne(c.line);
  ASSERT_EQ(value.has_value(), c.present) << c.line;
  if (!c.present) return;
  EXPECT_EQ(value->type, c.type) << c.line;
  if (c.type == RegistryType::Dword) {
    EXPECT_EQ(value->dword, c.dword) << c.line;
  } else {
    EXPECT_EQ(value->text, c.text) << c.line;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Registry, RegistryValueLine,
    ::testing::Values(
        // dword: one to eight hex digits, any case.
        ValueCase{R"("v"=dword:0000000a)", true, RegistryType::Dword, 10, ""},
        ValueCase{R"("v"=dword:FFFFFFFF)", true, RegistryType::Dword, 0xFFFFFFFFu, ""},
        ValueCase{R"("v"=DWORD:6)", true, RegistryType::Dword, 6, ""},
        ValueCase{R"("v"=dword:00000006 ; six threads)", true, RegistryType::Dword, 6, ""},
        ValueCase{R"("v" = dword:00000001)", true, RegistryType::Dword, 1, ""},
        ValueCase{R"("v"=dword:000000001)", false, {}, 0, ""},
        ValueCase{R"("v"=dword:0000000g)", false, {}, 0, ""},
        ValueCase{R"("v"=dword:)", false, {}, 0, ""},
        ValueCase{R"("v"=dword:0x10)", false, {}, 0, ""},
        // Strings: \\ and \" are the only escapes.
        ValueCase{R"("v"="plain")", true, RegistryType::String, 0, "plain"},
        ValueCase{R"("v"="C:\\Program Files\\Velmor\\")", true, RegistryType::String, 0, R"(C:\Program Files\Velmor\)"},
        ValueCase{R"("v"="say \"hi\"")", true, RegistryType::String, 0, R"(say "hi")"},
        ValueCase{R"("v"="a\b")", true, RegistryType::String, 0, R"(a\b)"},
        ValueCase{R"("v"="a;b=c")", true, RegistryType::String, 0, "a;b=c"},
        ValueCase{R"("v"="x" ; note)", true, RegistryType::String, 0, "x"},
        ValueCase{R"("v"="unterminated)", false, {}, 0, ""},
        ValueCase{R"("v"="escaped end\")", false, {}, 0, ""},
        ValueCase{R"("v"="x" junk)", false, {}, 0, ""},
        // Other types keep their bytes; hex(4) and hex(1) are a dword and a string.
        ValueCase{R"("v"=hex:01,02,ff)", true, RegistryType::Other, 0, "\x01\x02\xff"},
        ValueCase{R"("v"=hex(b):01,00,00,00,00,00,00,00)", true, RegistryType::Other, 0,
                  std::string("\x01\0\0\0\0\0\0\0", 8)},
        ValueCase{R"("v"=hex(2):25,00,41,00,00,00)", true, RegistryType::Other, 0, std::string("%\0A\0\0\0", 6)},
        ValueCase{R"("v"=hex(4):0a,01,00,00)", true, RegistryType::Dword, 0x10a, ""},
        ValueCase{R"("v"=hex(1):68,00,69,00,00,00)", true, RegistryType::String, 0, "hi"},
        ValueCase{R"("v"=hex:01,zz)", false, {}, 0, ""},
        ValueCase{R"("v"=hex:123)", false, {}, 0, ""},
        ValueCase{R"("v"=hex(:01)", false, {}, 0, ""},
        // Neither a known type nor a deletion.
        ValueCase{R"("v"=qword:1)", false, {}, 0, ""},
        ValueCase{R"("v"=)", false, {}, 0, ""},
        ValueCase{R"("v"dword:1)", false, {}, 0, ""}));

TEST(RegistryParse, HexDataRunsOnOverBackslashLines) {
  const std::string text = std::string(kHeader) +
                           "[HKCU\\K]\n"
                           "\"wide\"=hex(2):25,00,\\\r\n  41,00,\\\n  00,00\n"
                           "\"bin\"=hex:01,\\\n"
                           "\"fake\"=dword:1\n"  // joined to the bin data, which then fails
                           "\"after\"=dword:2\n";
  const auto file = RegistryFile::Parse(text, RegistryHive::CurrentUser);
  const auto wide = Lookup(file, "K", "wide");
  ASSERT_TRUE(wide);
  EXPECT_EQ(wide->type, RegistryType::Other);
  EXPECT_EQ(wide->text, std::string("%\0A\0\0\0", 6));
  EXPECT_FALSE(Lookup(file, "K", "bin"));
  EXPECT_FALSE(Lookup(file, "K", "fake"));
  EXPECT_TRUE(Lookup(file, "K", "after"));
}

TEST(RegistryParse, DefaultAndEscapedNames) {
  const std::string text = std::string(kHeader) +
                           "[HKEY_CURRENT_USER\\K]\n"
                           "@=\"default\"\n"
                           "\"a\\\"b\"=dword:1\n"
                           "\"back\\\\slash\"=dword:2\n"
                           "@junk\n";
  const auto file = RegistryFile::Parse(text, RegistryHive::CurrentUser);
  ASSERT_TRUE(Lookup(file, "K", ""));
  EXPECT_EQ(Lookup(file, "K", "")->text, "default");
  ASSERT_TRUE(Lookup(file, "K", "a\"b"));
  ASSERT_TRUE(Lookup(file, "K", "back\\slash"));
  EXPECT_EQ(file.Find("K")->size(), 3u);
}

TEST(RegistryParse, NamesAreStoredWithoutCase) {
  const std::string text = std::string(kHeader) +
                           "[HKEY_CURRENT_USER\\Software\\VELMOR]\n"
                           "\"OpenMPThread\"=dword:00000004\n";
  const auto file = RegistryFile::Parse(text, RegistryHive::CurrentUser);
  ASSERT_NE(file.Find("software\\velmor"), nullptr);
  ASSERT_NE(file.Find("SOFTWARE\\Velmor"), nullptr);
  ASSERT_NE(file.Find("\\Software\\Velmor\\"), nullptr);
  EXPECT_TRUE(Lookup(file, "Software\\Velmor", "openmpthread"));
}

TEST(RegistryParse, LaterLinesWinAndDeleteValuesAndKeys) {
  const std::string text = std::string(kHeader) +
                           "[HKEY_CURRENT_USER\\Software\\Velmor]\n"
                           "\"a\"=dword:1\n"
                           "\"b\"=dword:2\n"
                           "\"c\"=dword:3\n"
                           "[HKEY_CURRENT_USER\\Software\\Velmor\\Sub]\n"
                           "\"s\"=dword:4\n"
                           "[HKEY_CURRENT_USER\\Software\\Velmorx]\n"
                           "\"x\"=dword:5\n"
                           "[hkey_current_user\\software\\velmor]\n"
                           "\"A\"=dword:9\n"
                           "\"b\"=-\n"
                           "\"never\"=-\n"
                           "[-HKEY_CURRENT_USER\\Software\\Velmor\\Sub]\n"
                           "\"lost\"=dword:6\n"
                           "[HKCU\\Software\\Other\\Deep]\n"
                           "[-HKCU\\Software\\Other]\n"  // takes its subkeys along
                           "[HKCU\\Software\\Gone\\Deep]\n"
                           "[-HKCU\\Software\\Gone]\n"
                           "[HKCU\\Software\\Gone]\n"  // and may come back
                           "\"back\"=dword:7\n";
  const auto file = RegistryFile::Parse(text, RegistryHive::CurrentUser);
  ASSERT_TRUE(Lookup(file, "Software\\Velmor", "a"));
  EXPECT_EQ(Lookup(file, "Software\\Velmor", "a")->dword, 9u);
  EXPECT_FALSE(Lookup(file, "Software\\Velmor", "b"));
  EXPECT_TRUE(Lookup(file, "Software\\Velmor", "c"));
  EXPECT_EQ(file.Find("Software\\Velmor\\Sub"), nullptr);
  // A sibling whose name merely starts the same survives the deletion.
  EXPECT_TRUE(Lookup(file, "Software\\Velmorx", "x"));
  EXPECT_FALSE(Lookup(file, "Software\\Velmor", "lost"));
  EXPECT_EQ(file.Find("Software\\Other\\Deep"), nullptr);
  EXPECT_EQ(file.Find("Software\\Other"), nullptr);
  EXPECT_EQ(file.Find("Software\\Gone\\Deep"), nullptr);
  EXPECT_TRUE(Lookup(file, "Software\\Gone", "back"));
}

TEST(RegistryParse, ParentsOfKeysExistWithoutValues) {
  const std::string text = std::string(kHeader) + "[HKEY_CURRENT_USER\\Software\\Velmor\\Sub]\n\"x\"=dword:1\n";
  const auto file = RegistryFile::Parse(text, RegistryHive::CurrentUser);
  ASSERT_NE(file.Find("Software"), nullptr);
  EXPECT_TRUE(file.Find("Software")->empty());
  ASSERT_NE(file.Find(""), nullptr);
  EXPECT_EQ(file.Find("Soft"), nullptr);
  EXPECT_EQ(file.Find("Software\\Velmor\\Sub\\More"), nullptr);
}

TEST(RegistryParse, EachHiveTakesOnlyItsOwnRoot) {
  const std::string text = std::string(kHeader) +
                           "[HKEY_CURRENT_USER\\K]\n\"user\"=dword:1\n"
                           "[HKEY_LOCAL_MACHINE\\K]\n\"machine\"=dword:2\n"
                           "[HKLM\\K]\n\"short\"=dword:3\n"
                           "[HKEY_CLASSES_ROOT\\K]\n\"classes\"=dword:4\n"
                           "[HKEY_USERS\\K]\n\"users\"=dword:5\n"
                           "[HKEY_CURRENT_USERX\\K]\n\"lookalike\"=dword:6\n";
  const auto user = RegistryFile::Parse(text, RegistryHive::CurrentUser);
  const auto machine = RegistryFile::Parse(text, RegistryHive::LocalMachine);
  ASSERT_NE(user.Find("K"), nullptr);
  ASSERT_NE(machine.Find("K"), nullptr);
  EXPECT_EQ(user.Find("K")->size(), 1u);
  EXPECT_TRUE(Lookup(user, "K", "user"));
  EXPECT_EQ(machine.Find("K")->size(), 2u);
  EXPECT_TRUE(Lookup(machine, "K", "machine"));
  EXPECT_TRUE(Lookup(machine, "K", "short"));
}

TEST(RegistryParse, MalformedLinesAreSkippedAndNeighboursKept) {
  const std::string text = std::string(kHeader) +
                           "\"orphan\"=dword:1\n"  // before any section
                           "[HKEY_CURRENT_USER\\K]\n"
                           "\"a\"=dword:1\n"
                           "this is not a value\n"
                           "=dword:5\n"
                           "\"\n"
                           "; \"commented\"=dword:7\n"
                           "  \"b\" = dword:2  \n"
                           "[HKEY_CURRENT_USER\\Broken\n"  // no closing bracket
                           "\"c\"=dword:3\n"
                           "[]\n"
                           "\"d\"=dword:4\n";
  const auto file = RegistryFile::Parse(text, RegistryHive::CurrentUser);
  ASSERT_NE(file.Find("K"), nullptr);
  EXPECT_EQ(file.Find("K")->size(), 2u);
  EXPECT_TRUE(Lookup(file, "K", "a"));
  EXPECT_TRUE(Lookup(file, "K", "b"));
  EXPECT_EQ(file.Find("Broken"), nullptr);
  EXPECT_FALSE(Lookup(file, "", "orphan"));
}

struct EncodingCase {
  const char* name;
  std::string bytes;
};

void PrintTo(const EncodingCase& c, std::ostream* os) { *os << c.name; }

class RegistryEncoding : public ::testing::TestWithParam<EncodingCase> {};

// The same file in each accepted form yields dword 10 and string "ok".
TEST_P(RegistryEncoding, ReadsTheSameValues) {
  const auto file = RegistryFile::Parse(GetParam().bytes, RegistryHive::CurrentUser);
  const auto d = Lookup(file, "Software\\Velmor", "openmpthread");
  const auto s = Lookup(file, "Software\\Velmor", "name");
  ASSERT_TRUE(d);
  ASSERT_TRUE(s);
  EXPECT_EQ(d->dword, 10u);
  EXPECT_EQ(s->text, "ok");
}

std::string Body(const char* eol) {
  return std::string("[HKEY_CURRENT_USER\\Software\\Velmor]") + eol + "\"OpenMPThread\"=dword:0000000a" + eol +
         "\"Name\"=\"ok\"" + eol;
}

// ASCII text as UTF-16LE code units, byte by byte.
std::string AsciiToUtf16Le(const std::string& ascii) {
  std::string out;
  for (char c : ascii) {
    out += c;
    out += '\0';
  }
  return out;
}

INSTANTIATE_TEST_SUITE_P(
    Registry, RegistryEncoding,
    ::testing::Values(EncodingCase{"Lf", std::string(kHeader) + Body("\n")},
                      EncodingCase{"CrLf", "Windows Registry Editor Version 5.00\r\n\r\n" + Body("\r\n")},
                      EncodingCase{"NoFinalNewline", Body("\n").substr(0, Body("\n").size() - 1)},
                      EncodingCase{"NoHeader", Body("\n")},
                      EncodingCase{"Regedit4", "REGEDIT4\n\n" + Body("\n")},
                      EncodingCase{"Utf8Bom", "\xEF\xBB\xBF" + std::string(kHeader) + Body("\r\n")},
                      EncodingCase{"Utf16LeBom",
                                   "\xFF\xFE" + AsciiToUtf16Le("Windows Registry Editor Version 5.00\r\n\r\n" +
                                                               Body("\r\n"))}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(RegistryParse, Utf16LeTextBecomesUtf8) {
  // U+00E9 is one unit, U+1F600 the pair D83D DE00; a lone D800 becomes U+FFFD.
  std::string bytes = "\xFF\xFE" + AsciiToUtf16Le("[HKCU\\K]\r\n\"n\"=\"");
  bytes += std::string("\xE9\x00\x3D\xD8\x00\xDE\x00\xD8", 8);
  bytes += AsciiToUtf16Le("\"\r\n");
  bytes += 'x';  // half a code unit, dropped
  const auto value = Lookup(RegistryFile::Parse(bytes, RegistryHive::CurrentUser), "K", "n");
  ASSERT_TRUE(value);
  EXPECT_EQ(value->text, "\xC3\xA9\xF0\x9F\x98\x80\xEF\xBF\xBD");
}

}  // namespace
