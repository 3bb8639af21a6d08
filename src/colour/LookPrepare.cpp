#include "colour/LookPrepare.h"

#include "colour/LookKernels.h"
#include "colour/LookLut.h"
#include "frame/RowLoop.h"

namespace kestrelink::colour {
namespace {

int32_t Log2(uint32_t v) {
  int32_t log = 0;
  while (v > 1) v >>= 1, ++log;
  return log;
}

}  // namespace

void BuildCornerWeights(LookLut& look) {
  const uint32_t s = 256u / uint32_t(look.size);
  look.sizeLog2 = Log2(uint32_t(look.size));
  look.cellLog2 = Log2(s);
  for (uint32_t v = 0; v < 256; ++v) {
    look.cellIndex[v] = v / s;
    look.cellRemainder[v] = v % s;
  }
  const float d = float(s * s * s);
  for (auto& array : look.cornerWeights) array.reset(new float[size_t(s) * s * s]);
  for (uint32_t k = 0; k < s; ++k)
    for (uint32_t j = 0; j < s; ++j)
      for (uint32_t i = 0; i < s; ++i) {
        const size_t at = (size_t(k) * s + j) * s + i;
        const uint32_t ni = s - i, nj = s - j, nk = s - k;
        look.cornerWeights[0][at] = float(ni * nj * nk) / d;
        look.cornerWeights[1][at] = float(i * nj * nk) / d;
        look.cornerWeights[2][at] = float(ni * j * nk) / d;
        look.cornerWeights[3][at] = float(ni * nj * k) / d;
        look.cornerWeights[4][at] = float(i * nj * k) / d;
        look.cornerWeights[5][at] = float(ni * j * k) / d;
        look.cornerWeights[6][at] = float(i * j * nk) / d;
        look.cornerWeights[7][at] = float(i * j * k) / d;
      }
}

void FillLookTable(LookLut& look) {
  std::lock_guard<std::mutex> hold(look.lock3D);
  if (!look.table3D) look.table3D.reset(new uint8_t[LookLut::kTableBytes]);
  uint8_t* table = look.table3D.get();
  const LookKernels& kernels = TheLookKernels();
  ForEachRow(256, false, [&](uint32_t o, uint32_t) { kernels.fillPlane(look, o, table + size_t(o) * 256 * 256 * 3); });
}

}  // namespace kestrelink::colour
