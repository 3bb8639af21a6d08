#pragma once
// The demosaic verb, and the raw Bayer frame that the demo shows.
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Args.h"
#include "PngFile.h"

namespace kestrelink::tool {

int RunDemosaic(std::span<const std::string_view> args);
void PrintDemosaicUsage(std::ostream& out);

// The synthetic scene as an RGGB mosaic of `depth`-bit samples (one a site,
// little-endian 16-bit words), with its noise.
std::vector<uint16_t> MakeBayerFrame(const FrameSize& size, uint32_t depth);

// A 16-bit RGGB mosaic of `depth` bits demosaiced to an 8-bit colour PNG,
// without correction, or graded by the look file `look` when one is named
// (its 3D table interpolated at each pixel);
// a failure is a RunError.
PngImage DemosaicToPng(const FrameSize& size, uint32_t depth, std::vector<uint16_t>& mosaic,
                       const std::string& look = {});

}  // namespace kestrelink::tool
