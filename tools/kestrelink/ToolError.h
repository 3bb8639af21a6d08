#pragma once
// Failures a verb reports to the shell: one line of text and an exit status.
#include <stdexcept>
#include <string>

namespace kestrelink::tool {

inline constexpr int kExitFailed = 1;  // a file or the conversion failed
inline constexpr int kExitUsage = 2;   // the command line is wrong

class ToolError : public std::runtime_error {
 public:
  ToolError(int status, const std::string& message) : std::runtime_error(message), m_Status(status) {}
  int Status() const { return m_Status; }

 private:
  int m_Status;
};

// The command line asks for something the tool cannot do.
inline ToolError UsageError(const std::string& message) { return ToolError(kExitUsage, message); }
// The request was sound but running it failed.
inline ToolError RunError(const std::string& message) { return ToolError(kExitFailed, message); }

}  // namespace kestrelink::tool
