// The team size comes from OpenMPThread under the current user's
// Software\Velmor, read at each construction; 2 when absent or mistyped.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageConverter.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "platform/OpenMP.h"
#include "support/TestSupport.h"

namespace {

// Points the current-user hive at a file for the scope.
class ScopedUserHive {
 public:
  explicit ScopedUserHive(const std::string& content) : file_("thread-setup.reg", content) {
    const char* old = std::getenv("KESTRELINK_HKCU");
    if (old) saved_ = old;
    had_ = old != nullptr;
    setenv("KESTRELINK_HKCU", file_.path(), 1);
  }
  ~ScopedUserHive() {
    if (had_)
      setenv("KESTRELINK_HKCU", saved_.c_str(), 1);
    else
      unsetenv("KESTRELINK_HKCU");
  }

 private:
  testsupport::TempFile file_;
  std::string saved_;
  bool had_ = false;
};

std::string Hive(const std::string& value) {
  return "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Velmor]\r\n" + value + "\r\n";
}

TEST(ThreadSetup, TeamSizeFollowsTheStoreAtEachConstruction) {
  const struct {
    const char* name;
    std::string hive;
    int team;
  } cases[] = {
      {"value 6", Hive("\"OpenMPThread\"=dword:00000006"), 6},
      {"no value", Hive("\"Other\"=dword:00000005"), 2},
      {"value 3", Hive("\"OpenMPThread\"=dword:00000003"), 3},
      {"string type", Hive("\"OpenMPThread\"=\"4\""), 2},
      {"binary type", Hive("\"OpenMPThread\"=hex:04,00,00,00"), 2},
      {"value 1", Hive("\"OpenMPThread\"=dword:00000001"), 1},
      {"no file content", "", 2},
  };
  for (const auto& c : cases) {
    ScopedUserHive hive(c.hive);
    CIppImageConverter conv;
    EXPECT_EQ(kestrelink::platform::MeasureTeamSize(), c.team) << c.name;
  }
}

TEST(ThreadSetup, TheLastConstructionWins) {
  std::unique_ptr<CIppImageConverter> first;
  {
    ScopedUserHive hive(Hive("\"OpenMPThread\"=dword:00000005"));
    first = std::make_unique<CIppImageConverter>();
  }
  EXPECT_EQ(kestrelink::platform::MeasureTeamSize(), 5);
  ScopedUserHive hive(Hive("\"OpenMPThread\"=dword:00000003"));
  CIppImageConverter second;
  EXPECT_EQ(kestrelink::platform::MeasureTeamSize(), 3);
  // The first object converts with the process-wide team the second chose.
  uint8_t src[8] = {}, dst[32];
  EXPECT_TRUE(first->Mono8ToBGRx(8, 1, src, dst, false));
  EXPECT_EQ(kestrelink::platform::TeamSize(), 3);
}

}  // namespace
