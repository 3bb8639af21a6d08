// Run-time loading of libraries and their entry points.
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <string>

#include "platform/DynamicLibrary.h"

namespace {

using namespace kestrelink::platform;

TEST(DynamicLibrary, SelfDirectoryHoldsThisProgram) {
  // The library's objects are linked into this test program, so "self" is it.
  char* exe = ::realpath("/proc/self/exe", nullptr);
  ASSERT_NE(exe, nullptr);
  std::string expected(exe);
  std::free(exe);
  expected.erase(expected.rfind('/') + 1);

  const std::string dir = SelfDirectory();
  ASSERT_FALSE(dir.empty());
  EXPECT_EQ(dir.back(), '/');
  EXPECT_EQ(dir.front(), '/');
  EXPECT_EQ(dir, expected);
}

TEST(DynamicLibrary, MissingOrInvalidNamesGiveNull) {
  EXPECT_EQ(LoadLibraryBesideSelf("libkestrelink-no-such-companion.so"), nullptr);
  EXPECT_EQ(LoadLibraryBesideSelf(nullptr), nullptr);
  EXPECT_EQ(LoadLibraryBesideSelf(""), nullptr);
  EXPECT_EQ(LoadLibrary("libkestrelink-no-such-library.so"), nullptr);
  EXPECT_EQ(LoadLibrary(nullptr), nullptr);
  EXPECT_EQ(LoadLibrary(""), nullptr);
  // A null handle must not become a search of every loaded library.
  EXPECT_EQ(LibrarySymbol(nullptr, "cos"), nullptr);
  FreeLibrary(nullptr);
}

TEST(DynamicLibrary, LoadsLibmAndCallsCos) {
  void* libm = LoadLibrary("libm.so.6");
  ASSERT_NE(libm, nullptr);
  auto* cosine = reinterpret_cast<double (*)(double)>(LibrarySymbol(libm, "cos"));
  ASSERT_NE(cosine, nullptr);
  EXPECT_DOUBLE_EQ(cosine(0.0), 1.0);
  EXPECT_EQ(LibrarySymbol(libm, "kestrelink_no_such_symbol"), nullptr);
  EXPECT_EQ(LibrarySymbol(libm, nullptr), nullptr);
  FreeLibrary(libm);
}

}  // namespace
