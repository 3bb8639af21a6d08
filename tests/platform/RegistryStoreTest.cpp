// Hive files on disk: where they are looked for, and keys opened from them.
#include <gtest/gtest.h>

#include <cstdio>
#include <ostream>
#include <string>

#include "platform/Registry.h"
#include "ScopedEnv.h"
#include "support/TestSupport.h"

namespace {

using kestrelink::platform::HiveFilePath;
using kestrelink::platform::RegistryHive;
using kestrelink::platform::RegistryKey;
using kestrelink::platform::RegistryType;
using kestrelink::platform::RegistryValue;
using testsupport::ScopedEnv;
using testsupport::TempFile;

void Overwrite(const char* path, const std::string& content) {
  FILE* f = std::fopen(path, "wb");
  ASSERT_NE(f, nullptr);
  std::fwrite(content.data(), 1, content.size(), f);
  std::fclose(f);
}

TEST(RegistryStore, MissingFileIsAnEmptyHive) {
  const std::string missing = ::testing::TempDir() + "registry-store-no-such-file.reg";
  const ScopedEnv user("KESTRELINK_HKCU", missing.c_str());
  const ScopedEnv machine("KESTRELINK_HKLM", missing.c_str());
  for (const RegistryHive hive : {RegistryHive::CurrentUser, RegistryHive::LocalMachine}) {
    const auto created = RegistryKey::Open(hive, "Software\\Velmor", /*create=*/true);
    ASSERT_TRUE(created.has_value());
    RegistryValue value;
    EXPECT_FALSE(created->Query("OpenMPThread", value));
    EXPECT_FALSE(RegistryKey::Open(hive, "Software\\Velmor", /*create=*/false).has_value());
  }
  // Opening with create writes nothing.
  EXPECT_EQ(std::fopen(missing.c_str(), "rb"), nullptr);
}

TEST(RegistryStore, EachHiveReadsItsOwnFile) {
  const TempFile userFile("registry-store-user.reg",
                          "Windows Registry Editor Version 5.00\r\n\r\n"
                          "[HKEY_CURRENT_USER\\Software\\Velmor]\r\n"
                          "\"OpenMPThread\"=dword:00000006\r\n"
                          "[HKEY_LOCAL_MACHINE\\Software\\Velmor]\r\n"
                          "\"OpenMPThread\"=dword:00000007\r\n");
  const TempFile machineFile("registry-store-machine.reg",
                             "Windows Registry Editor Version 5.00\n\n"
                             "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Intel\\MediaSDK\\Dispatch]\n"
                             "\"Path\"=\"/opt/mfx/libmfxhw64.so.1\"\n");
  const ScopedEnv user("KESTRELINK_HKCU", userFile.path());
  const ScopedEnv machine("KESTRELINK_HKLM", machineFile.path());

  const auto velmor = RegistryKey::Open(RegistryHive::CurrentUser, "software\\velmor", false);
  ASSERT_TRUE(velmor.has_value());
  RegistryValue value;
  ASSERT_TRUE(velmor->Query("openmpthread", value));
  EXPECT_EQ(value.type, RegistryType::Dword);
  EXPECT_EQ(value.dword, 6u);

  // The machine section of the user's file is not the machine hive.
  EXPECT_FALSE(RegistryKey::Open(RegistryHive::LocalMachine, "Software\\Velmor", false).has_value());
  const auto dispatch = RegistryKey::Open(RegistryHive::LocalMachine, "Software\\Intel\\MediaSDK\\Dispatch", false);
  ASSERT_TRUE(dispatch.has_value());
  ASSERT_TRUE(dispatch->Query("PATH", value));
  EXPECT_EQ(value.type, RegistryType::String);
  EXPECT_EQ(value.text, "/opt/mfx/libmfxhw64.so.1");
  EXPECT_FALSE(RegistryKey::Open(RegistryHive::CurrentUser, "Software\\Intel", false).has_value());
}

TEST(RegistryStore, ValuesAreReadAtEachOpen) {
  const TempFile file("registry-store-reread.reg", "[HKCU\\Software\\Velmor]\n\"OpenMPThread\"=dword:1\n");
  const ScopedEnv user("KESTRELINK_HKCU", file.path());
  RegistryValue value;
  const auto first = RegistryKey::Open(RegistryHive::CurrentUser, "Software\\Velmor", true);
  ASSERT_TRUE(first && first->Query("OpenMPThread", value));
  EXPECT_EQ(value.dword, 1u);

  Overwrite(file.path(), "[HKCU\\Software\\Velmor]\n\"OpenMPThread\"=\"three\"\n");
  const auto second = RegistryKey::Open(RegistryHive::CurrentUser, "Software\\Velmor", true);
  ASSERT_TRUE(second && second->Query("OpenMPThread", value));
  EXPECT_EQ(value.type, RegistryType::String);
  EXPECT_EQ(value.text, "three");
  // A key already opened keeps what it read.
  ASSERT_TRUE(first->Query("OpenMPThread", value));
  EXPECT_EQ(value.type, RegistryType::Dword);
}

TEST(RegistryStore, ADirectoryIsAnEmptyHive) {
  const ScopedEnv user("KESTRELINK_HKCU", ::testing::TempDir().c_str());
  EXPECT_FALSE(RegistryKey::Open(RegistryHive::CurrentUser, "Software\\Velmor", false).has_value());
  EXPECT_TRUE(RegistryKey::Open(RegistryHive::CurrentUser, "Software\\Velmor", true).has_value());
}

struct PathCase {
  const char* hkcu;
  const char* hklm;
  const char* xdg;
  const char* home;
  const char* wantUser;
  const char* wantMachine;
};

void PrintTo(const PathCase& c, std::ostream* os) {
  auto show = [](const char* s) { return s != nullptr ? '"' + std::string(s) + '"' : std::string("unset"); };
  *os << "HKCU=" << show(c.hkcu) << " HKLM=" << show(c.hklm) << " XDG=" << show(c.xdg) << " HOME=" << show(c.home);
}

class RegistryHivePath : public ::testing::TestWithParam<PathCase> {};

TEST_P(RegistryHivePath, FollowsTheEnvironment) {
  const PathCase& c = GetParam();
  const ScopedEnv hkcu("KESTRELINK_HKCU", c.hkcu);
  const ScopedEnv hklm("KESTRELINK_HKLM", c.hklm);
  const ScopedEnv xdg("XDG_CONFIG_HOME", c.xdg);
  const ScopedEnv home("HOME", c.home);
  EXPECT_EQ(HiveFilePath(RegistryHive::CurrentUser), c.wantUser);
  EXPECT_EQ(HiveFilePath(RegistryHive::LocalMachine), c.wantMachine);
}

INSTANTIATE_TEST_SUITE_P(
    Registry, RegistryHivePath,
    ::testing::Values(
        PathCase{"/a/u.reg", "/b/m.reg", "/xdg", "/home/k", "/a/u.reg", "/b/m.reg"},
        PathCase{nullptr, nullptr, "/xdg", "/home/k", "/xdg/kestrelink/user.reg", "/etc/kestrelink/machine.reg"},
        PathCase{nullptr, nullptr, nullptr, "/home/k", "/home/k/.config/kestrelink/user.reg",
                 "/etc/kestrelink/machine.reg"},
        // Empty counts as unset, as ${VAR:-default} reads it.
        PathCase{"", "", "", "/home/k", "/home/k/.config/kestrelink/user.reg", "/etc/kestrelink/machine.reg"},
        PathCase{nullptr, nullptr, nullptr, nullptr, "", "/etc/kestrelink/machine.reg"}));

}  // namespace
