// Links the installed library and converts one small frame.
#include <kestrelink/kestrelink.h>

#include <cstdint>
#include <cstdio>

int main() {
  CIppImageConverter conv;
  uint16_t src[4] = {0x010, 0x100, 0xFFF, 0x000};
  uint8_t dst[4] = {};
  if (!conv.Mono16ToMono8(4, 1, 12, src, dst, false)) return 1;
  const bool ok = dst[0] == 1 && dst[1] == 16 && dst[2] == 255 && dst[3] == 0;
  std::puts(ok ? "consumer: ok" : "consumer: wrong pixels");
  return ok ? 0 : 1;
}
