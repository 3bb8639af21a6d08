#include "h264/AnnexB.h"

#include <cstring>

namespace UMC {

size_t FindStartCode(const uint8_t* data, size_t size, size_t from) {
  if (size < 3) return size;
  for (size_t i = from; i + 2 < size;) {
    const void* hit = std::memchr(data + i + 2, 1, size - i - 2);
    if (!hit) return size;
    const size_t one = size_t(static_cast<const uint8_t*>(hit) - data);
    if (data[one - 1] == 0 && data[one - 2] == 0) return one - 2;
    i = one - 1;
  }
  return size;
}

size_t StartCodeLength(const uint8_t* data, size_t size) {
  if (size >= 3 && data[0] == 0 && data[1] == 0 && data[2] == 1) return 3;
  if (size >= 4 && data[0] == 0 && data[1] == 0 && data[2] == 0 && data[3] == 1) return 4;
  return 0;
}

std::vector<uint8_t> UnescapeRbsp(const uint8_t* nal, size_t size) {
  std::vector<uint8_t> out;
  out.reserve(size);
  int zeros = 0;
  for (size_t i = 0; i < size; ++i) {
    if (zeros >= 2 && nal[i] == 3) {
      zeros = 0;
      continue;
    }
    zeros = nal[i] == 0 ? zeros + 1 : 0;
    out.push_back(nal[i]);
  }
  return out;
}

}  // namespace UMC
