#pragma once
// The run-length loops over whole vectors, for the vector variants. The
// templates stand in an anonymous namespace, so each variant's translation
// unit builds its own copy, with a Vec of its width, for its instruction
// set; no code is shared across instruction sets. Vec gives, for
// W = Vec::kWidth bytes at p (and kAll, the mask of all W bits):
//   uint64_t EqualPairs16(p) bit k set where p[k] == p[k + 1], k < 16 (W > 16 only)
//   uint64_t EqualPairs(p)   the same for k < W (reads W + 1 bytes)
//   uint64_t EqualTo(p, v)   bit k set where p[k] == v
//   void Copy(d, s)          W bytes
//   void Copy16(d, s)        16 bytes
//   void Fill(d, v)          W bytes of v
//
// Each loop runs a fast part while whole-vector writes are safe, then hands
// the rest to the portable loop. Whole-vector writes may run
// past the bytes that a step produces, but only into room that later output
// is sure to cover: the fast part stops while enough input is left for the
// output to reach past them.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

template <class Vec>
size_t CountEqual(const uint8_t* p, size_t n, uint8_t v) {
  constexpr size_t W = Vec::kWidth;
  size_t k = 0;
  for (; k + W <= n; k += W) {
    const uint64_t differ = ~Vec::EqualTo(p + k, v) & Vec::kAll;
    if (differ) return k + size_t(__builtin_ctzll(differ));
  }
  while (k < n && p[k] == v) ++k;
  return k;
}

// The literals in front of a pair found in a vector: 16 bytes at a time,
// since they are mostly few.
template <class Vec>
void CopyLiterals(uint8_t* d, const uint8_t* s, size_t count) {
  Vec::Copy16(d, s);
  for (size_t k = 16; k < count; k += 16) Vec::Copy16(d + k, s + k);
}

// Pairs from p on: those in the first 16 bytes when there are any (pairs
// mostly come close together), else those in the first W.
template <class Vec>
uint64_t NextPairs(const uint8_t* p) {
  if constexpr (Vec::kWidth > 16) {
    if (const uint64_t near = Vec::EqualPairs16(p)) return near;
  }
  return Vec::EqualPairs(p);
}

// Copies the literals from i up to the next pair, which starts within the
// next W bytes, or all W when none does; answers whether a pair stands at i.
template <class Vec>
bool CopyToPair(const uint8_t* src, size_t& i, uint8_t* dst, size_t& o) {
  const uint64_t pairs = NextPairs<Vec>(src + i);
  if (!pairs) {
    Vec::Copy(dst + o, src + i);
    i += Vec::kWidth;
    o += Vec::kWidth;
    return false;
  }
  const size_t literals = size_t(__builtin_ctzll(pairs));
  CopyLiterals<Vec>(dst + o, src + i, literals);
  i += literals;
  o += literals;
  return true;
}

// The rest of the input by the portable loop, from a token boundary.
template <class Loop>
size_t Rest(Loop loop, const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t i, size_t o, size_t* taken) {
  size_t restTaken = 0;
  o += loop(src + i, n - i, dst + o, room - o, &restTaken);
  *taken = i + restTaken;
  return o;
}

template <class Vec>
size_t EncodeRuns(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken) {
  constexpr size_t W = Vec::kWidth;
  // A literal is one output byte and a run of 257 costs 3: with this much
  // input left the output still grows by W + 16 at least.
  constexpr size_t kInputLeft = 100 * W + 1024;
  size_t i = 0, o = 0;
  // A step writes at most W + 15 literal bytes and a 4-byte triple.
  constexpr size_t kRoomLeft = 2 * W + 32;
  if (n > kInputLeft && room > kRoomLeft) {
    const size_t iStop = n - kInputLeft, oStop = room - kRoomLeft;
    while (i < iStop && o < oStop) {
      if (!CopyToPair<Vec>(src, i, dst, o)) continue;
      // A run at i: b and 1 to 256 equal bytes after it; most are pairs.
      const uint8_t b = src[i];
      const size_t repeats = src[i + 2] != b ? 1 : CountEqual<Vec>(src + i + 1, 256, b);
      const uint32_t triple = uint32_t(b) * 0x101u | uint32_t(repeats - 1) << 16;
      std::memcpy(dst + o, &triple, 4);  // the fourth byte is covered by what follows
      o += 3;
      i += 1 + repeats;
    }
  }
  return Rest(kestrelink::compress::RleEncodePortable, src, n, dst, room, i, o, taken);
}

template <class Vec>
size_t DecodeRuns(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken) {
  constexpr size_t W = Vec::kWidth;
  // Every input byte gives two thirds of an output byte at least: with this
  // much input left after a step the output still grows by W + 16 more.
  constexpr size_t kInputLeft = 4 * W + 256;
  size_t i = 0, o = 0;
  // A step writes at most W literal bytes and a fill of 257 rounded up to W.
  constexpr size_t kRoomLeft = 2 * W + 256;
  if (n > kInputLeft && room > kRoomLeft) {
    const size_t iStop = n - kInputLeft, oStop = room - kRoomLeft;
    while (i < iStop && o < oStop) {
      // A pair within the next W bytes has its count in the input.
      if (!CopyToPair<Vec>(src, i, dst, o)) continue;
      const uint8_t b = src[i];
      const size_t copies = size_t(src[i + 2]) + 2;
      for (size_t c = 0; c < copies; c += W) Vec::Fill(dst + o + c, b);
      o += copies;
      i += 3;
    }
  }
  return Rest(kestrelink::compress::RleDecodePortable, src, n, dst, room, i, o, taken);
}

}  // namespace
