#include "FrameFile.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "ToolError.h"

namespace kestrelink::tool {

namespace {

// Closes on every way out of a reader.
struct FileCloser {
  void operator()(FILE* file) const { std::fclose(file); }
};

}  // namespace

std::vector<uint8_t> ReadFrameFile(const std::string& path, uint64_t bytes, const std::string& frameName) {
  auto tooShort = [&](uint64_t held) {
    return RunError("'" + path + "' holds " + std::to_string(held) + " bytes; " + frameName + " needs " +
                    std::to_string(bytes));
  };
  std::unique_ptr<FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
  if (!file) throw RunError("cannot open '" + path + "': " + std::strerror(errno));
  struct stat info {};
  if (fstat(fileno(file.get()), &info) == 0 && S_ISREG(info.st_mode) && uint64_t(info.st_size) < bytes)
    throw tooShort(uint64_t(info.st_size));  // before allocating a frame the file can't fill
  std::vector<uint8_t> frame(bytes);
  const size_t got = std::fread(frame.data(), 1, frame.size(), file.get());
  if (got < bytes) {
    if (std::ferror(file.get())) throw RunError("cannot read '" + path + "': " + std::strerror(errno));
    throw tooShort(got);
  }
  return frame;
}

void WriteRawFile(const std::string& path, std::span<const uint8_t> bytes) {
  FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) throw RunError("cannot write '" + path + "': " + std::strerror(errno));
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  const int writeErrno = errno;
  const bool closed = std::fclose(file) == 0;
  const std::string why = std::strerror(written ? errno : writeErrno);
  if (!written || !closed) {
    RemovePartialOutput(path);
    throw RunError("cannot write '" + path + "': " + why);
  }
}

void RemovePartialOutput(const std::string& path) {
  struct stat info {};
  if (lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode)) std::remove(path.c_str());
}

bool IsPngPath(const std::string& path) {
  if (path.size() < 4) return false;
  std::string tail = path.substr(path.size() - 4);
  for (char& c : tail)
    if (c >= 'A' && c <= 'Z') c = char(c - 'A' + 'a');
  return tail == ".png";
}

}  // namespace kestrelink::tool
