#pragma once
// Order-0 Huffman codes over bytes: lengths from counts, and the codes that
// writer and reader both derive from the lengths alone.
#include <cstdint>

#include "primitives/IppTypes.h"

namespace kestrelink::compress {

inline constexpr uint32_t kMaxCodeLength = 32;

// Counts each byte value of `size` bytes; a value that occurs 2^31 times
// or more wraps, so callers refuse such sizes first.
void CountBytes(const Ipp8u* src, uint32_t size, Ipp32s counts[256]);

// Code lengths from the counts of the 256 byte values: 0 for a value that
// does not occur, else 1 to 32. Fails with kStsCountRange when no value
// occurs, a count is negative or the counts sum past 31 bits, and with
// kStsCodeLength when the longest code would exceed 32 bits.
IppStatus BuildCodeLengths(const Ipp32s counts[256], Ipp32s lengths[256]);

// The code of every byte value, right-aligned in `codes`, and the longest
// length in use.
struct HuffmanCode {
  Ipp32s lengths[256];
  uint32_t codes[256];
  uint32_t maxLength;
};

// Assigns codes from lengths. Symbols are grouped by length; counting
// starts at 0 at the longest length and walks each group from its highest
// symbol to its lowest, and the count halves on each step to a shorter
// length. Fails with kStsCountRange when no length is set, and with
// kStsCodeLength for a length outside 0 to 32 or lengths that give no
// prefix code (too many codes of a length, or a shorter code that would
// begin a longer one).
IppStatus AssignCodes(const Ipp32s lengths[256], HuffmanCode& code);

}  // namespace kestrelink::compress
