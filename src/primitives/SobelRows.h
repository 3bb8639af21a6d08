#pragma once
// A band of rows of the Sobel filters, for callers that split a region into
// bands (over threads, or to keep a scratch image in cache): rows first ..
// first + count - 1 of the filter of the whole region, with the region's
// border rule at its edges, written from dst (which holds row `first`).
#include "primitives/AnalysisPrimitives.h"

namespace kestrelink::analysis {

// verticalEdges: the "Vert" filter, else the "Horiz" one. Checks as the
// filters do; a band outside the region gives -6.
IppStatus SobelRows(const uint8_t* src, int srcStep, int16_t* dst, int dstStep, IppiSize size, IppiMaskSize mask,
                    IppiBorderType border, uint8_t value, uint8_t* buffer, bool verticalEdges, int first, int count);

}  // namespace kestrelink::analysis
