#pragma once
// The library's one diagnostic channel: every line goes to the handler set by
// kestrelink::SetDebugOutputHandler, exactly as worded.
namespace kestrelink::platform {

void OutputDebugString(const char* message);

}  // namespace kestrelink::platform
