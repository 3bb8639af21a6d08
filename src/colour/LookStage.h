#pragma once
// The look stage as the Bayer corrector calls it: the loaded look applied to
// an RGB, BGR, RGBx or BGRx image in place, always writing BGR order.
#include <cstdint>

struct CBayerCorrectorImpl;

namespace kestrelink::colour {

// False without a look, or without the table that cbAlgorithm asks for, or
// for a format and pixel size the stage has no path for.
bool ApplyLookStage(CBayerCorrectorImpl& s, void* image, uint32_t formatCode, uint32_t bitsPerPixel,
                    uint32_t bitDepth, bool flip);

// Per-sample tables of the 16-bit look path, for the look that is loaded.
void BuildLookTables(CBayerCorrectorImpl& s);

// Reloads the look from its file when the file is newer than the look.
void ReloadLookIfNewer(CBayerCorrectorImpl& s);

}  // namespace kestrelink::colour
