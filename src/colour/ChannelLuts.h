#pragma once
// The per-channel tables of the Bayer corrector: how they are built, estimated
// from an image, read and written as text, and applied to BGR pixels.
#include <cstddef>
#include <cstdint>

struct CBayerCorrectorImpl;

namespace kestrelink::colour {

// All three tables to the identity over every entry.
void ResetToIdentity(CBayerCorrectorImpl& s);

// entry i = clamp(i + offset, 0, 2^bitDepth - 1) for i in 0 .. 2^bitDepth - 1.
void BuildManualLut(CBayerCorrectorImpl& s);

// Runs the estimator that cbAlgorithm names on the image, as the given
// format; false when it took no image or its algorithm estimates nothing.
bool RunEstimator(CBayerCorrectorImpl& s, const void* image, uint32_t formatCode, uint32_t bitsPerPixel,
                  uint32_t bitDepth);

// The channel table stage: estimates first when the tables are not valid,
// then maps every B, G, R sample through its table in place (200 at 24 or
// 48 bits, 500 at 32 bits; the fourth byte untouched), flipped with `flip`.
bool ApplyChannelLuts(CBayerCorrectorImpl& s, void* image, uint32_t formatCode, uint32_t bitsPerPixel,
                      uint32_t bitDepth, bool flip);

// Reads channel-table text into the tables (see ChannelLutFile.cpp).
void ParseChannelLutText(CBayerCorrectorImpl& s, const char* text, size_t length);

}  // namespace kestrelink::colour
