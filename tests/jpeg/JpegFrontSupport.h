#pragma once
// What the JPEG front's tests share: a user hive with chosen values, and a
// reading of the frame header and segments of an encoded image.
#include <cstdint>
#include <cstdio>
#include <string>
#include <unistd.h>
#include <vector>

#include "platform/ScopedEnv.h"

namespace jpegfront_test {

// A current-user hive file holding the given lines under Software\Velmor,
// in force while the object lives.
class UserHive {
 public:
  explicit UserHive(const std::string& values) : path_(MakePath()), env_("KESTRELINK_HKCU", path_.c_str()) {
    std::FILE* f = std::fopen(path_.c_str(), "w");
    std::fprintf(f, "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Velmor]\r\n%s\r\n",
                 values.c_str());
    std::fclose(f);
  }
  ~UserHive() { std::remove(path_.c_str()); }

 private:
  static std::string MakePath() {
    return (::testing::TempDir() + "kestrelink_user_") + std::to_string(::getpid()) + "_" +
           std::to_string(counter_++) + ".reg";
  }
  static inline int counter_ = 0;
  std::string path_;
  testsupport::ScopedEnv env_;
};

struct Segment {
  uint8_t marker = 0;
  size_t offset = 0;  // of the FF byte
  std::vector<uint8_t> body;  // behind the length
};

// The marker segments of an image up to and including the first scan header.
inline std::vector<Segment> HeaderSegments(const uint8_t* jpeg, size_t size) {
  std::vector<Segment> segments;
  size_t pos = 2;
  while (pos + 4 <= size && jpeg[pos] == 0xFF) {
    const size_t length = (size_t(jpeg[pos + 2]) << 8) | jpeg[pos + 3];
    Segment s;
    s.marker = jpeg[pos + 1];
    s.offset = pos;
    s.body.assign(jpeg + pos + 4, jpeg + std::min(size, pos + 2 + length));
    segments.push_back(s);
    if (s.marker == 0xDA) break;
    pos += 2 + length;
  }
  return segments;
}

// Sampling factors (h << 4 | v) of each component of the frame header, and its marker.
struct FrameHeader {
  uint8_t marker = 0;
  std::vector<uint8_t> factors;
};

inline FrameHeader ReadFrameHeader(const uint8_t* jpeg, size_t size) {
  for (const Segment& s : HeaderSegments(jpeg, size)) {
    if (s.marker >= 0xC0 && s.marker <= 0xC2 && s.body.size() >= 6) {
      FrameHeader h{s.marker, {}};
      for (int c = 0; c < s.body[5] && size_t(6 + 3 * c + 2) < s.body.size(); ++c) h.factors.push_back(s.body[7 + 3 * c]);
      return h;
    }
  }
  return {};
}

inline uint32_t SizeWord(const std::vector<uint8_t>& buffer) {
  return uint32_t(buffer[0]) | uint32_t(buffer[1]) << 8 | uint32_t(buffer[2]) << 16 | uint32_t(buffer[3]) << 24;
}

}  // namespace jpegfront_test
