#pragma once
// Byte-shuffle indices of the vector YUV combine steps, made at compile time
// and shared by the instruction sets: each names, per 128-bit lane, the
// source byte of each of eight pixels' 16-bit lanes, or the place of each
// channel's bytes in the interleaved BGR24 output.
#include <cstdint>

namespace kestrelink::rows::yuvsteps {

inline constexpr char Z = char(0x80);  // a shuffle index that gives 0

// Shuffle indices, made at compile time and loaded as vectors.
struct alignas(32) Index32 {
  char i[32];
};
struct alignas(16) Index16 {
  char i[16];
};

// Per 128-bit half: the byte of each of eight pixels into its 16-bit lane.
constexpr Index32 LaneIndex(const char (&at)[8]) {
  Index32 index{};
  for (int p = 0; p < 8; ++p) {
    index.i[2 * p] = index.i[16 + 2 * p] = at[p];
    index.i[2 * p + 1] = index.i[16 + 2 * p + 1] = Z;
  }
  return index;
}

// Per 128-bit half: each of four pixel pairs' U and V bytes into the low
// bytes of the two 16-bit halves of its 32-bit lane.
constexpr Index32 PairIndex(const char (&u)[4], const char (&v)[4]) {
  Index32 index{};
  for (int p = 0; p < 4; ++p)
    for (int half = 0; half < 2; ++half) {
      char* q = index.i + 16 * half + 4 * p;
      q[0] = u[p], q[1] = Z, q[2] = v[p], q[3] = Z;
    }
  return index;
}

// Byte k of 48 output bytes is channel k % 3 of pixel k / 3: the shuffle
// indices that take each channel's sixteen bytes to their places in each
// 16-byte output chunk, [chunk][channel].
struct InterleaveIndices {
  Index16 at[3][3];
};
constexpr InterleaveIndices MakeInterleave() {
  InterleaveIndices out{};
  for (int chunk = 0; chunk < 3; ++chunk)
    for (int channel = 0; channel < 3; ++channel)
      for (int p = 0; p < 16; ++p) {
        const int k = 16 * chunk + p;
        out.at[chunk][channel].i[p] = k % 3 == channel ? char(k / 3) : Z;
      }
  return out;
}
inline constexpr InterleaveIndices kInterleave = MakeInterleave();

// Per lane: the Y, U and V bytes of the 4:2:2 layouts' eight pixels.
inline constexpr Index32 kYuv422Y = LaneIndex({0, 2, 4, 6, 8, 10, 12, 14}),
                         kYuv422U = LaneIndex({1, 1, 5, 5, 9, 9, 13, 13}),
                         kYuv422V = LaneIndex({3, 3, 7, 7, 11, 11, 15, 15});
inline constexpr Index32 kUvy422Y = LaneIndex({1, 3, 5, 7, 9, 11, 13, 15}),
                         kUvy422U = LaneIndex({0, 0, 4, 4, 8, 8, 12, 12}),
                         kUvy422V = LaneIndex({2, 2, 6, 6, 10, 10, 14, 14});
inline constexpr Index32 kYuv422Pairs = PairIndex({1, 5, 9, 13}, {3, 7, 11, 15}),
                         kUvy422Pairs = PairIndex({0, 4, 8, 12}, {2, 6, 10, 14});
// 4:1:1: two 6-byte groups a lane, U Y0 Y1 V Y2 Y3 each.
inline constexpr Index32 kUvy411Y = LaneIndex({1, 2, 4, 5, 7, 8, 10, 11}),
                         kUvy411U = LaneIndex({0, 0, 0, 0, 6, 6, 6, 6}), kUvy411V = LaneIndex({3, 3, 3, 3, 9, 9, 9, 9});
inline constexpr Index32 kUvy411Pairs = PairIndex({0, 0, 6, 6}, {3, 3, 9, 9});
// 4:4:4: a lane's eight pixels (24 bytes) are pixels 0-3 from bytes 0-15 of
// one load and pixels 4-7 from a load 8 bytes on; each index fills its half.
inline constexpr Index32 kUvy444YLow = LaneIndex({1, 4, 7, 10, Z, Z, Z, Z}),
                         kUvy444ULow = LaneIndex({0, 3, 6, 9, Z, Z, Z, Z}),
                         kUvy444VLow = LaneIndex({2, 5, 8, 11, Z, Z, Z, Z});
inline constexpr Index32 kUvy444YHigh = LaneIndex({Z, Z, Z, Z, 5, 8, 11, 14}),
                         kUvy444UHigh = LaneIndex({Z, Z, Z, Z, 4, 7, 10, 13}),
                         kUvy444VHigh = LaneIndex({Z, Z, Z, Z, 6, 9, 12, 15});

}  // namespace kestrelink::rows::yuvsteps
