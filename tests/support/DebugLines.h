#pragma once
// Collects every line of the library's debug output while it lives.
#include <kestrelink/DebugOutput.h>

#include <string>
#include <vector>

namespace testsupport {

class DebugLines {
 public:
  DebugLines() { kestrelink::SetDebugOutputHandler(&Add, this); }
  ~DebugLines() { kestrelink::SetDebugOutputHandler(nullptr, nullptr); }
  DebugLines(const DebugLines&) = delete;
  DebugLines& operator=(const DebugLines&) = delete;
  const std::vector<std::string>& Lines() const { return lines_; }
  void Clear() { lines_.clear(); }

 private:
  static void Add(const char* message, void* self) { static_cast<DebugLines*>(self)->lines_.push_back(message); }
  std::vector<std::string> lines_;
};

}  // namespace testsupport
