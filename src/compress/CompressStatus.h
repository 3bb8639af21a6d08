#pragma once
// Statuses of the entropy and dictionary kernels, beside the shared ones of
// primitives/IppTypes.h (0 done, -6 a length of 0 or below, -8 a null pointer).
#include "primitives/IppTypes.h"

namespace kestrelink::compress {

// The output allowance is used up while input is left; the call may go on
// with fresh room. A warning, not an error.
inline constexpr IppStatus kStsOutputFull = 33;
// Input that no encoder writes: a bit pattern that is no code, a match that
// reaches back before the first byte.
inline constexpr IppStatus kStsBadStream = -5;
// Code lengths that make no prefix code: a length above 32, or more codes of
// some lengths than the bits can tell apart.
inline constexpr IppStatus kStsCodeLength = -199;
// Counts that sum past 31 bits, or a table with no symbol at all.
inline constexpr IppStatus kStsCountRange = -197;

}  // namespace kestrelink::compress
