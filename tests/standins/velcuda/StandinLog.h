#pragma once
// Reading what the stand-in companion recorded (see VelCudaStandin.cpp) and
// what the library printed to its debug output.
#include <kestrelink/DebugOutput.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace velcudatest {

using Call = std::vector<std::string>;  // entry point name, then its arguments

inline std::string LogPath() {
  const char* path = std::getenv("VELCUDA_STANDIN_LOG");
  return path != nullptr ? path : "";
}

// Empties the log; a test calls it before the companion is first used.
inline void ClearLog() { std::ofstream(LogPath(), std::ios::trunc); }

inline std::vector<Call> ReadLog() {
  std::vector<Call> calls;
  std::ifstream file(LogPath());
  std::string line;
  while (std::getline(file, line)) {
    std::istringstream words(line);
    Call call;
    for (std::string word; words >> word;) call.push_back(word);
    if (!call.empty()) calls.push_back(call);
  }
  return calls;
}

inline std::vector<std::string> CallNames(const std::vector<Call>& calls) {
  std::vector<std::string> names;
  for (const Call& call : calls) names.push_back(call.front());
  return names;
}

// A pointer as the stand-in writes it.
inline std::string Ptr(const void* p) {
  char text[32];
  std::snprintf(text, sizeof text, "%p", p);
  return text;
}

inline std::string Hex(unsigned long long value) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%llx", value);
  return text;
}

// Collects every debug-output line while it lives.
class DebugLines {
 public:
  DebugLines() { kestrelink::SetDebugOutputHandler(&Add, this); }
  ~DebugLines() { kestrelink::SetDebugOutputHandler(nullptr, nullptr); }
  DebugLines(const DebugLines&) = delete;
  DebugLines& operator=(const DebugLines&) = delete;
  const std::vector<std::string>& Lines() const { return lines_; }

 private:
  static void Add(const char* message, void* self) { static_cast<DebugLines*>(self)->lines_.push_back(message); }
  std::vector<std::string> lines_;
};

}  // namespace velcudatest
