// Look files: arbitrary bytes as a look document, read into a fresh look and
// then again into the same look (as a reload does, keeping its buffers);
// then, for tables small enough to prepare quickly, a few colours evaluated
// and a small frame through the exact and 1D paths at 8 and 16 bits.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "colour/BayerCorrectorImpl.h"
#include "colour/LookEvaluate.h"
#include "colour/LookFile.h"
#include "colour/LookLut.h"
#include "colour/LookPrepare.h"
#include "colour/LookStage.h"
#include "platform/OpenMP.h"

namespace {

using namespace kestrelink::colour;

void RunStage(CBayerCorrectorImpl& s, CORRECTIONAL_ALG alg) {
  s.cbAlgorithm = alg;
  uint8_t bytes[4 * 4] = {0, 1, 2, 3, 127, 128, 129, 130, 200, 250, 254, 255, 255, 255, 255, 255};
  uint16_t words[3 * 4] = {0, 1, 4095, 4096, 65535, 65534, 32768, 100, 8191, 8192, 300, 7};
  ApplyLookStage(s, bytes, kFormatRgbx, 32, 8, true);
  ApplyLookStage(s, bytes, kFormatBgr, 24, 8, false);
  for (uint32_t depth : {12u, 16u}) {
    s.bitDepth = depth;
    BuildLookTables(s);
    ApplyLookStage(s, words, kFormatRgb, 48, depth, false);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const bool single = (kestrelink::platform::SetTeamSize(1), true);  // frames of one row: no team needed
  (void)single;
  LookLut look;
  ReadLookDocument(look, data, size);
  const LookDocumentParts parts = ReadLookDocument(look, data, size);
  if (look.lut3D && look.size * look.size * look.size * 3 > int64_t(look.lut3DFloats)) std::abort();
  const bool small = look.lut3D && look.size >= 8;
  if (small) {
    BuildCornerWeights(look);
    for (uint32_t v : {0u, 1u, 127u, 248u, 255u}) {
      uint8_t out[3];
      Evaluate8(look, v, 255 - v, v, out);
    }
  }
  if (small || parts.has1D) {
    CBayerCorrectorImpl s;
    s.look = &look;
    s.width = 4;
    s.height = 1;
    s.bInitialised = true;
    RunStage(s, CB_ALG_LOOK_1D);
    if (small) RunStage(s, CB_ALG_LOOK_3D_EXACT);
  }
  return 0;
}
