#pragma once
// The LZSS ("LZ77") payload: tokens in one bit stream, bits taken from the
// most significant end of each byte (compress/BitIo.h), with no header and
// no end marker.
//
//   token     bits  fields, first bit first
//   literal   9     1 (flag), the 8-bit byte
//   match     24    0 (flag), 15-bit backward offset (1 to 32767),
//                   8-bit length - 3 (lengths 3 to 258)
//
// The stream is padded with zero bits to a byte boundary. A reader stops
// when fewer bits are left than the token in hand needs; since a padding
// zero reads as a match flag and at most seven padding bits exist, padding
// is never taken for data.
#include <cstdint>

namespace kestrelink::compress::lzss {

inline constexpr uint32_t kLiteralBits = 9;
inline constexpr uint32_t kMatchBits = 24;
inline constexpr uint32_t kMinMatch = 3;
inline constexpr uint32_t kMaxMatch = 258;
inline constexpr uint32_t kWindow = 32768;  // offsets stay below it
inline constexpr uint32_t kMaxCandidates = 16;

inline constexpr uint32_t LiteralToken(uint8_t byte) { return 0x100u | byte; }
inline constexpr uint32_t MatchToken(uint32_t offset, uint32_t length) { return offset << 8 | (length - kMinMatch); }

// Fields of a token whose first bit is the top bit of `bits`.
inline bool IsLiteral(uint64_t bits) { return (bits >> 63) != 0; }
inline uint8_t LiteralByte(uint64_t bits) { return uint8_t(bits >> 55); }
inline uint32_t MatchOffset(uint64_t bits) { return uint32_t(bits >> 48) & 0x7FFF; }
inline uint32_t MatchLength(uint64_t bits) { return (uint32_t(bits >> 40) & 0xFF) + kMinMatch; }

}  // namespace kestrelink::compress::lzss
