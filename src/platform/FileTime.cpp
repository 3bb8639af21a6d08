#include "platform/FileTime.h"

#include <sys/stat.h>

namespace kestrelink::platform {

int64_t FileWriteTime(const char* path) {
  struct stat info {};
  if (!path || ::stat(path, &info) != 0) return 0;
  return int64_t(info.st_mtim.tv_sec) * 1000000000 + int64_t(info.st_mtim.tv_nsec);
}

}  // namespace kestrelink::platform
