// The dispatcher against copies of the stand-in run-time registered through
// the registry store: search order, version checks, refusals and forwarding.
#include <mfx/mfxsession.h>
#include <mfx/mfxvideo.h>

#include <gtest/gtest.h>

#include "mfx/MfxTestSupport.h"

namespace {

using mfxtest::DispatchKey;
using mfxtest::ScopedDispatchKeys;
using mfxtest::StandinCopy;

constexpr uint32_t kApi13 = 0x0103;

mfxVersion Version(uint16_t major, uint16_t minor) {
  mfxVersion v{};
  v.Major = major;
  v.Minor = minor;
  return v;
}

// Opens a session; closes it at scope end.
struct Session {
  mfxSession session = nullptr;
  mfxStatus status;
  Session(mfxIMPL impl, mfxVersion version) { status = MFXInit(impl, &version, &session); }
  ~Session() {
    if (session != nullptr) MFXClose(session);
  }
};

TEST(MfxDispatcher, RefusesBadArgumentsBeforeSearching) {
  StandinCopy lib("refuse");
  ScopedDispatchKeys keys({{"lib", kApi13, 0, 0, 1, lib.path()}});
  mfxVersion v = Version(1, 1);
  mfxSession session = nullptr;
  EXPECT_EQ(MFXInit(8, &v, &session), MFX_ERR_UNSUPPORTED);
  EXPECT_EQ(MFXInit(MFX_IMPL_SOFTWARE, &v, nullptr), MFX_ERR_NULL_PTR);
  EXPECT_EQ(lib.record().initCalls, 0);
  EXPECT_EQ(MFXClose(nullptr), MFX_ERR_INVALID_HANDLE);
  mfxIMPL impl;
  EXPECT_EQ(MFXQueryIMPL(nullptr, &impl), MFX_ERR_INVALID_HANDLE);
}

TEST(MfxDispatcher, SoftwareKeyLoadsLibraryWithHighBitsAndForwards) {
  StandinCopy lib("forward");
  ScopedDispatchKeys keys({{"lib", kApi13, 0, 0, 1, lib.path()}});
  Session s(MFX_IMPL_SOFTWARE | MFX_IMPL_VIA_ANY, Version(1, 1));
  ASSERT_EQ(s.status, MFX_ERR_NONE);
  ASSERT_EQ(lib.record().initCalls, 1);
  EXPECT_EQ(lib.record().initImpls[0], mfxIMPL(MFX_IMPL_SOFTWARE | MFX_IMPL_VIA_ANY));
  EXPECT_EQ(lib.record().lastInitVersion.Major, 1);
  EXPECT_EQ(lib.record().lastInitVersion.Minor, 1);
  mfxIMPL impl = 0;
  EXPECT_EQ(MFXQueryIMPL(s.session, &impl), MFX_ERR_NONE);
  EXPECT_EQ(impl, mfxIMPL(MFX_IMPL_SOFTWARE));
  EXPECT_EQ(MFXVideoCORE_SyncOperation(s.session, nullptr, 0), MFX_ERR_NONE);
  EXPECT_EQ(lib.record().foreignSessionSeen, 0);  // the library's own session is what it gets
  EXPECT_EQ(MFXClose(s.session), MFX_ERR_NONE);
  s.session = nullptr;
  EXPECT_EQ(lib.record().closeCalls, 1);
}

TEST(MfxDispatcher, NoVersionAsksForOneThree) {
  StandinCopy lib("noversion");
  ScopedDispatchKeys keys({{"lib", kApi13, 0, 0, 1, lib.path()}});
  mfxSession session = nullptr;
  ASSERT_EQ(MFXInit(MFX_IMPL_SOFTWARE, nullptr, &session), MFX_ERR_NONE);
  EXPECT_EQ(lib.record().lastInitVersion.Major, 1);
  EXPECT_EQ(lib.record().lastInitVersion.Minor, 3);
  MFXClose(session);
}

// Libraries come in descending merit; equal merits in index (name) order;
// one that fails to open is unloaded and the next best is tried.
TEST(MfxDispatcher, TriesLibrariesByMeritThenIndex) {
  StandinCopy low("merit-low"), firstHigh("merit-high-a"), secondHigh("merit-high-b");
  ScopedDispatchKeys keys({{"a-low", kApi13, 0, 0, 5, low.path()},
                           {"b-high", kApi13, 0, 0, 9, firstHigh.path()},
                           {"c-high", kApi13, 0, 0, 9, secondHigh.path()}});
  firstHigh.knobs().initStatus = MFX_ERR_UNSUPPORTED;
  {
    Session s(MFX_IMPL_SOFTWARE, Version(1, 1));
    EXPECT_EQ(s.status, MFX_ERR_NONE);
    EXPECT_EQ(firstHigh.record().initCalls, 1);
    EXPECT_EQ(secondHigh.record().initCalls, 1);
    EXPECT_EQ(low.record().initCalls, 0);
  }
  secondHigh.knobs().initStatus = MFX_ERR_UNSUPPORTED;
  {
    Session s(MFX_IMPL_SOFTWARE, Version(1, 1));
    EXPECT_EQ(s.status, MFX_ERR_NONE);
    EXPECT_EQ(firstHigh.record().initCalls, 2);
    EXPECT_EQ(secondHigh.record().initCalls, 2);
    EXPECT_EQ(low.record().initCalls, 1);
  }
}

TEST(MfxDispatcher, CurrentUserHiveComesBeforeLocalMachine) {
  StandinCopy user("hive-user"), machine("hive-machine");
  ScopedDispatchKeys keys({{"lib", kApi13, 0, 0, 1, user.path()}}, {{"lib", kApi13, 0, 0, 100, machine.path()}});
  {
    Session s(MFX_IMPL_SOFTWARE, Version(1, 1));
    EXPECT_EQ(s.status, MFX_ERR_NONE);
    EXPECT_EQ(user.record().initCalls, 1);
    EXPECT_EQ(machine.record().initCalls, 0);
  }
  user.knobs().initStatus = MFX_ERR_UNSUPPORTED;
  Session s(MFX_IMPL_SOFTWARE, Version(1, 1));
  EXPECT_EQ(s.status, MFX_ERR_NONE);
  EXPECT_EQ(machine.record().initCalls, 1);
}

// Only a key of the requested major version with at least its minor qualifies,
// and the library's own table must reach the request too.
TEST(MfxDispatcher, VersionChecksOfKeysAndLibraries) {
  struct Case {
    const char* name;
    uint32_t keyVersion;
    const char* library;
    uint16_t major, minor;
    bool opens;
  };
  const Case cases[] = {
      {"key 1.3, asks 1.1", 0x0103, KESTRELINK_MFX_STANDIN, 1, 1, true},
      {"key 1.0, asks 1.1", 0x0100, KESTRELINK_MFX_STANDIN, 1, 1, false},
      {"key 2.1, asks 1.1", 0x0201, KESTRELINK_MFX_STANDIN, 1, 1, false},
      {"key 1.1, asks 1.1", 0x0101, KESTRELINK_MFX_STANDIN, 1, 1, true},
      {"library without MFXDisjoinSession, asks 1.1", 0x0103, KESTRELINK_MFX_STANDIN_NODISJOIN, 1, 1, false},
      {"library without MFXDisjoinSession, asks 1.0", 0x0103, KESTRELINK_MFX_STANDIN_NODISJOIN, 1, 0, true},
      {"full library, asks 1.4", 0x0104, KESTRELINK_MFX_STANDIN, 1, 4, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    StandinCopy lib("version", c.library);
    ScopedDispatchKeys keys({{"lib", c.keyVersion, 0, 0, 1, lib.path()}});
    Session s(MFX_IMPL_SOFTWARE, Version(c.major, c.minor));
    EXPECT_EQ(lib.record().initCalls, c.opens ? 1 : 0);
    EXPECT_EQ(s.status == MFX_ERR_NONE, c.opens);  // no software run-time under the default name here
  }
}

// Hardware rows take the keys of their adapter's vendor and device, and pass
// on the implementation of their row.
TEST(MfxDispatcher, HardwareRowsMatchTheirAdapter) {
  StandinCopy first("adapter-0"), second("adapter-1");
  mfxtest::ScopedAdapters adapters({{0x8086, 0x1234}, {0x8086, 0x5678}});
  ScopedDispatchKeys keys({{"first", kApi13, 0x8086, 0x1234, 1, first.path()},
                           {"second", kApi13, 0x8086, 0x5678, 1, second.path()}});
  {
    Session s(MFX_IMPL_HARDWARE_ANY, Version(1, 1));
    EXPECT_EQ(s.status, MFX_ERR_NONE);
    ASSERT_EQ(first.record().initCalls, 1);
    EXPECT_EQ(first.record().initImpls[0], mfxIMPL(MFX_IMPL_HARDWARE));
  }
  {
    Session s(MFX_IMPL_HARDWARE2, Version(1, 1));
    EXPECT_EQ(s.status, MFX_ERR_NONE);
    ASSERT_EQ(second.record().initCalls, 1);
    EXPECT_EQ(second.record().initImpls[0], mfxIMPL(MFX_IMPL_HARDWARE2));
  }
  first.knobs().initStatus = MFX_ERR_UNSUPPORTED;
  {
    Session s(MFX_IMPL_HARDWARE_ANY, Version(1, 1));  // adapter 0 fails, so adapter 1's row comes next
    EXPECT_EQ(s.status, MFX_ERR_NONE);
    ASSERT_EQ(second.record().initCalls, 2);
    EXPECT_EQ(second.record().initImpls[1], mfxIMPL(MFX_IMPL_HARDWARE2));
  }
}

TEST(MfxDispatcher, HardwareKeyWithoutItsAdapterIsNotLoaded) {
  StandinCopy lib("no-adapter");
  mfxtest::ScopedAdapters adapters({{0x8086, 0x9999}});
  ScopedDispatchKeys keys({{"lib", kApi13, 0x8086, 0x1234, 1, lib.path()}});
  Session s(MFX_IMPL_HARDWARE, Version(1, 1));
  EXPECT_EQ(lib.record().initCalls, 0);
}

// A library that answers MFX_ERR_UNDEFINED_BEHAVIOR on close stays loaded, and
// the session stays valid for another close.
TEST(MfxDispatcher, CloseWithUndefinedBehaviourKeepsTheSession) {
  StandinCopy lib("close");
  ScopedDispatchKeys keys({{"lib", kApi13, 0, 0, 1, lib.path()}});
  mfxVersion v = Version(1, 1);
  mfxSession session = nullptr;
  ASSERT_EQ(MFXInit(MFX_IMPL_SOFTWARE, &v, &session), MFX_ERR_NONE);
  lib.knobs().closeStatus = MFX_ERR_UNDEFINED_BEHAVIOR;
  EXPECT_EQ(MFXClose(session), MFX_ERR_UNDEFINED_BEHAVIOR);
  lib.knobs().closeStatus = MFX_ERR_NONE;
  EXPECT_EQ(MFXClose(session), MFX_ERR_NONE);
  EXPECT_EQ(lib.record().closeCalls, 2);
}

TEST(MfxDispatcher, CloneOpensASecondSessionAndJoinsIt) {
  StandinCopy lib("clone");
  ScopedDispatchKeys keys({{"lib", kApi13, 0, 0, 1, lib.path()}});
  Session s(MFX_IMPL_SOFTWARE, Version(1, 1));
  ASSERT_EQ(s.status, MFX_ERR_NONE);
  mfxSession clone = nullptr;
  EXPECT_EQ(MFXCloneSession(s.session, &clone), MFX_ERR_NONE);
  ASSERT_NE(clone, nullptr);
  EXPECT_EQ(lib.record().initCalls, 2);
  EXPECT_EQ(lib.record().joinCalls, 1);
  EXPECT_EQ(lib.record().foreignSessionSeen, 0);
  EXPECT_EQ(MFXClose(clone), MFX_ERR_NONE);

  lib.knobs().joinStatus = MFX_ERR_UNSUPPORTED;
  clone = nullptr;
  EXPECT_EQ(MFXCloneSession(s.session, &clone), MFX_ERR_UNSUPPORTED);
  EXPECT_EQ(clone, nullptr);
  EXPECT_EQ(lib.record().closeCalls, 2);  // the failed clone was closed
}

}  // namespace
