#pragma once
// The look stage as the Bayer corrector calls it. Until look files can be
// loaded no look is ever present, and a look frame is answered false as for
// a missing look.
#include <cstdint>

struct CBayerCorrectorImpl;

namespace kestrelink::colour {

// Applies the loaded look to an RGB, BGR, RGBx or BGRx image in place
// (writing BGR order); false without a usable look.
bool ApplyLookStage(CBayerCorrectorImpl& s, void* image, uint32_t formatCode, uint32_t bitsPerPixel,
                    uint32_t bitDepth, bool flip);

// Per-sample tables of the 16-bit look path, for the look that is loaded.
void BuildLookTables(CBayerCorrectorImpl& s);

// Reloads the look from its file when the file is newer than the look.
void ReloadLookIfNewer(CBayerCorrectorImpl& s);

}  // namespace kestrelink::colour
