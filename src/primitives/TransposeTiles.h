#pragma once
// The tile walk of the transposes, included by each variant's unit inside its
// own namespace. A tile is kTile x kTile pixels, about 8 KiB of source and
// as much of destination, so it stays in the first-level cache while its
// rows are read and its columns written. Inside a tile, Block moves
// Block::kSide x kSide squares; the ragged edges go to smaller blocks.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Side of a tile for pixels of `bytes` bytes: a cache line of each row
// (48 bytes for the three- and six-byte pixels), and a multiple of every
// block side. Larger tiles lose to the caches' associativity: frame rows a
// few KiB apart share a handful of sets.
constexpr uint32_t TileSide(int bytes) {
  return bytes == 1 ? 64 : bytes == 2 ? 32 : bytes == 3 ? 32 : bytes == 4 ? 16 : 8;
}

template <int Bytes>
inline void MovePixel(const uint8_t* s, uint8_t* d) {
  std::memcpy(d, s, Bytes);
}

// Pixels (i, j) of rows i0 .. i1-1 and columns j0 .. j1-1, one at a time.
// Three- and six-byte pixels move as four- and eight-byte words where the
// word's last byte is the next pixel of the same row on both sides (the next
// store writes it again), so only a row's last pixel moves byte-exact.
template <int Bytes>
inline void TransposePixels(const uint8_t* src, ptrdiff_t ss, uint8_t* dst, ptrdiff_t ds, uint32_t i0, uint32_t i1,
                            uint32_t j0, uint32_t j1, bool lastColumn = true) {
  constexpr int kWord = Bytes == 3 ? 4 : Bytes == 6 ? 8 : Bytes;
  for (uint32_t j = j0; j < j1; ++j) {
    uint8_t* d = dst + ptrdiff_t(j) * ds;
    const uint8_t* s = src + ptrdiff_t(j) * Bytes;
    uint32_t i = i0;
    if (kWord != Bytes && (j + 1 < j1 || !lastColumn))
      for (; i + 1 < i1; ++i) MovePixel<kWord>(s + ptrdiff_t(i) * ss, d + size_t(i) * Bytes);
    for (; i < i1; ++i) MovePixel<Bytes>(s + ptrdiff_t(i) * ss, d + size_t(i) * Bytes);
  }
}

// One tile: rows i0 .. i1-1, columns j0 .. j1-1 of the region. Whole
// blocks first; the ragged bottom and right edges go to the next smaller
// block (Block::Next), down to a pixel at a time.
template <int Bytes, class Block>
inline void TransposeTile(const uint8_t* src, ptrdiff_t ss, uint8_t* dst, ptrdiff_t ds, uint32_t i0, uint32_t i1,
                          uint32_t j0, uint32_t j1, uint32_t cols) {
  constexpr uint32_t kSide = Block::kSide;
  if constexpr (kSide == 1) {
    // The source word may reach into the next column, never past the region's last.
    TransposePixels<Bytes>(src, ss, dst, ds, i0, i1, j0, j1, j1 == cols);
  } else {
    const uint32_t iEnd = i0 + (i1 - i0) / kSide * kSide, jEnd = j0 + (j1 - j0) / kSide * kSide;
    for (uint32_t j = j0; j < jEnd; j += kSide)
      for (uint32_t i = i0; i < iEnd; i += kSide)
        Block::Move(src + ptrdiff_t(i) * ss + ptrdiff_t(j) * Bytes, ss, dst + ptrdiff_t(j) * ds + size_t(i) * Bytes,
                    ds);
    if (iEnd < i1) TransposeTile<Bytes, typename Block::Next>(src, ss, dst, ds, iEnd, i1, j0, jEnd, cols);
    if (jEnd < j1) TransposeTile<Bytes, typename Block::Next>(src, ss, dst, ds, i0, i1, jEnd, j1, cols);
  }
}

// Tiles are walked inside squares of kSquare x kSquare pixels, whose source
// and destination rows stay within the address-translation cache: a walk
// down a whole column strip of a large frame touches a new page every row.
inline constexpr uint32_t kSquare = 256;

template <int Bytes, class Block>
void TransposeTiled(const uint8_t* src, ptrdiff_t ss, uint8_t* dst, ptrdiff_t ds, uint32_t cols, uint32_t rows) {
  constexpr uint32_t kTile = TileSide(Bytes);
  static_assert(kSquare % kTile == 0);
  for (uint32_t J0 = 0; J0 < cols; J0 += kSquare) {
    const uint32_t J1 = std::min(cols, J0 + kSquare);
    for (uint32_t I0 = 0; I0 < rows; I0 += kSquare) {
      const uint32_t I1 = std::min(rows, I0 + kSquare);
      for (uint32_t i0 = I0; i0 < I1; i0 += kTile)
        for (uint32_t j0 = J0; j0 < J1; j0 += kTile)
          TransposeTile<Bytes, Block>(src, ss, dst, ds, i0, std::min(I1, i0 + kTile), j0, std::min(J1, j0 + kTile),
                                      cols);
    }
  }
}

// A block of one pixel: the portable walk.
template <int Bytes>
struct PixelBlock {
  static constexpr uint32_t kSide = 1;
  using Next = PixelBlock;
  static void Move(const uint8_t* s, ptrdiff_t, uint8_t* d, ptrdiff_t) { MovePixel<Bytes>(s, d); }
};
