// LUT text files: arbitrary bytes into colour and mono tables of several
// sizes; every entry written must stay inside its table and below its size.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <vector>

#include "convert/LutFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  for (uint32_t bits : {1u, 8u, 12u}) {
    const uint32_t n = 1u << bits;
    std::vector<uint16_t> table[3];
    std::vector<uint8_t> flags[3];
    kestrelink::lutfile::LutTarget target;
    target.channels = bits == 12 ? 1 : 3;
    target.size = n;
    for (int c = 0; c < 3; ++c) {
      table[c].resize(n);
      std::iota(table[c].begin(), table[c].end(), uint16_t(0));
      flags[c].assign(n, 0);
      target.table[c] = table[c].data();
      target.flags[c] = flags[c].data();
    }
    kestrelink::lutfile::ParseBuffer(reinterpret_cast<const char*>(data), size, target);
    for (int c = 0; c < 3; ++c)
      for (uint32_t i = 0; i < n; ++i)
        if (table[c][i] >= n) std::abort();
  }
  return 0;
}
