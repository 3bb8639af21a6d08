// The process-wide debug sink: custom handlers, the default, and races.
#include <gtest/gtest.h>

#include <kestrelink/DebugOutput.h>

#include <atomic>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "platform/DebugSink.h"
#include "ScopedEnv.h"

namespace {

using kestrelink::SetDebugOutputHandler;
using kestrelink::platform::OutputDebugString;
using testsupport::ScopedEnv;

struct Recorded {
  std::vector<std::string> messages;
  std::vector<void*> contexts;
};

void Record(const char* message, void* context) {
  auto* r = static_cast<Recorded*>(context);
  r->messages.emplace_back(message);
  r->contexts.push_back(context);
}

// Leaves the default sink in place whatever a test did.
class DebugOutput : public ::testing::Test {
 protected:
  void TearDown() override { SetDebugOutputHandler(nullptr, nullptr); }
};

TEST_F(DebugOutput, HandlerGetsExactTextAndContext) {
  Recorded r;
  SetDebugOutputHandler(&Record, &r);
  OutputDebugString("line one\n");
  OutputDebugString("no newline");
  OutputDebugString("");
  OutputDebugString(nullptr);  // ignored
  ASSERT_EQ(r.messages.size(), 3u);
  EXPECT_EQ(r.messages[0], "line one\n");
  EXPECT_EQ(r.messages[1], "no newline");
  EXPECT_EQ(r.messages[2], "");
  for (void* c : r.contexts) EXPECT_EQ(c, &r);
}

struct DefaultCase {
  const char* debugEnv;  // nullptr: unset
  const char* expected;
};

void PrintTo(const DefaultCase& c, std::ostream* os) {
  *os << "KESTRELINK_DEBUG " << (c.debugEnv != nullptr ? "=\"" + std::string(c.debugEnv) + '"' : std::string("unset"));
}

class DebugOutputDefault : public DebugOutput, public ::testing::WithParamInterface<DefaultCase> {};

TEST_P(DebugOutputDefault, WritesToStderrOnlyWhenAsked) {
  Recorded r;
  SetDebugOutputHandler(&Record, &r);
  SetDebugOutputHandler(nullptr, &r);  // back to the default, context dropped
  const ScopedEnv debug("KESTRELINK_DEBUG", GetParam().debugEnv);
  ::testing::internal::CaptureStderr();
  OutputDebugString("cuda_init failed");
  OutputDebugString(nullptr);
  const std::string written = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(written, GetParam().expected);
  EXPECT_TRUE(r.messages.empty());
}

INSTANTIATE_TEST_SUITE_P(Debug, DebugOutputDefault,
                         ::testing::Values(DefaultCase{nullptr, ""}, DefaultCase{"1", "cuda_init failed"},
                                           DefaultCase{"", "cuda_init failed"}));

void ResetFromInside(const char* message, void* context) {
  Record(message, context);
  SetDebugOutputHandler(nullptr, nullptr);
  OutputDebugString("to the default");
}

TEST_F(DebugOutput, HandlerMayReplaceTheSinkAndWrite) {
  Recorded r;
  const ScopedEnv debug("KESTRELINK_DEBUG", nullptr);
  SetDebugOutputHandler(&ResetFromInside, &r);
  OutputDebugString("once");
  OutputDebugString("twice");
  EXPECT_EQ(r.messages, std::vector<std::string>{"once"});
}

std::atomic<int> gCounted{0};
std::atomic<int> gTorn{0};
void Count(const char*, void* context) {
  (context == &gCounted ? gCounted : gTorn).fetch_add(1, std::memory_order_relaxed);
}

TEST_F(DebugOutput, HandlerChangesRaceSafelyWithOutput) {
  const ScopedEnv debug("KESTRELINK_DEBUG", nullptr);
  gCounted = 0;
  gTorn = 0;
  std::atomic<bool> stop{false};
  std::thread switcher([&] {
    for (int i = 0; i < 2000; ++i) SetDebugOutputHandler(i % 2 ? &Count : nullptr, &gCounted);
    SetDebugOutputHandler(&Count, &gCounted);
    stop = true;
  });
  std::vector<std::thread> writers;
  for (int t = 0; t < 3; ++t) {
    writers.emplace_back([&] {
      while (!stop) OutputDebugString("x");
    });
  }
  switcher.join();
  for (auto& w : writers) w.join();
  // Whatever the interleaving, a handler was always called with its own context.
  EXPECT_EQ(gTorn, 0);
  const int before = gCounted;
  OutputDebugString("last");
  EXPECT_EQ(gCounted, before + 1);
}

}  // namespace
