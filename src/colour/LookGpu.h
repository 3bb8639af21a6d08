#pragma once
// Looks on the GPU companion: a 3D table handed to it, and the stage run by
// it, in place.
#include <cstdint>

struct LookLut;

namespace kestrelink::colour {

// Whether the companion is there; its first use loads it.
bool LookGpuAvailable();

// Hands the look's 3D table to the companion: an update of the handle it
// has (released and zeroed when refused), or a new handle (0 when refused).
void PlaceLookOnGpu(LookLut& look);

// The stage on the companion: the apply entry of the format, in place, with
// bitDepth as its depth. False for a handle of 0, for a format without an
// entry, or when the companion reports failure.
bool ApplyLookOnGpu(const LookLut& look, void* image, uint32_t formatCode, uint32_t width, uint32_t height,
                    uint32_t bitDepth);

}  // namespace kestrelink::colour
