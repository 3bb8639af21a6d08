// The process-wide debug sink behind OutputDebugString.
#include <kestrelink/DebugOutput.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "platform/DebugSink.h"

namespace kestrelink {
namespace {

// KESTRELINK_DEBUG is looked up at each message, so it can be set or cleared
// while the process runs.
void DefaultHandler(const char* message, void*) {
  if (std::getenv("KESTRELINK_DEBUG") == nullptr) return;
  std::fputs(message, stderr);
}

struct Sink {
  std::mutex lock;
  DebugOutputHandler handler = &DefaultHandler;
  void* context = nullptr;
};

Sink& TheSink() {
  static Sink sink;
  return sink;
}

}  // namespace

void SetDebugOutputHandler(DebugOutputHandler handler, void* context) {
  Sink& sink = TheSink();
  const std::lock_guard guard(sink.lock);
  sink.handler = handler != nullptr ? handler : &DefaultHandler;
  sink.context = handler != nullptr ? context : nullptr;
}

namespace platform {

void OutputDebugString(const char* message) {
  if (message == nullptr) return;
  Sink& sink = TheSink();
  DebugOutputHandler handler;
  void* context;
  {
    // The pair is copied under the lock and called outside it, so a handler
    // may itself write or replace the sink without deadlocking.
    const std::lock_guard guard(sink.lock);
    handler = sink.handler;
    context = sink.context;
  }
  handler(message, context);
}

}  // namespace platform
}  // namespace kestrelink
