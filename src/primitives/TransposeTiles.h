#pragma once
// The tile walk of the transposes, included by each variant's unit inside its
// own namespace. A tile is kTile x kTile pixels, about 8 KiB of source and
// as much of destination, so it stays in the first-level cache while its
// rows are read and its columns written. Inside a tile, Block moves
// Block::kSide x kSide squares; the ragged edges go a pixel at a time.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Side of a tile for pixels of `bytes` bytes: a multiple of every block side.
constexpr uint32_t TileSide(int bytes) { return bytes <= 2 ? 64 : bytes <= 4 ? 48 : 32; }

template <int Bytes>
inline void MovePixel(const uint8_t* s, uint8_t* d) {
  std::memcpy(d, s, Bytes);
}

// Pixels (i, j) of rows i0 .. i1-1 and columns j0 .. j1-1, one at a time.
template <int Bytes>
inline void TransposePixels(const uint8_t* src, ptrdiff_t ss, uint8_t* dst, ptrdiff_t ds, uint32_t i0, uint32_t i1,
                            uint32_t j0, uint32_t j1) {
  for (uint32_t j = j0; j < j1; ++j) {
    uint8_t* d = dst + ptrdiff_t(j) * ds;
    for (uint32_t i = i0; i < i1; ++i) MovePixel<Bytes>(src + ptrdiff_t(i) * ss + ptrdiff_t(j) * Bytes, d + size_t(i) * Bytes);
  }
}

template <int Bytes, class Block>
void TransposeTiled(const uint8_t* src, ptrdiff_t ss, uint8_t* dst, ptrdiff_t ds, uint32_t cols, uint32_t rows) {
  constexpr uint32_t kTile = TileSide(Bytes), kSide = Block::kSide;
  for (uint32_t j0 = 0; j0 < cols; j0 += kTile) {
    const uint32_t j1 = std::min(cols, j0 + kTile);
    for (uint32_t i0 = 0; i0 < rows; i0 += kTile) {
      const uint32_t i1 = std::min(rows, i0 + kTile);
      uint32_t j = j0;
      for (; j + kSide <= j1; j += kSide) {
        uint32_t i = i0;
        for (; i + kSide <= i1; i += kSide)
          Block::Move(src + ptrdiff_t(i) * ss + ptrdiff_t(j) * Bytes, ss, dst + ptrdiff_t(j) * ds + size_t(i) * Bytes,
                      ds);
        TransposePixels<Bytes>(src, ss, dst, ds, i, i1, j, j + kSide);
      }
      TransposePixels<Bytes>(src, ss, dst, ds, i0, i1, j, j1);
    }
  }
}

// A block of one pixel: the portable walk.
template <int Bytes>
struct PixelBlock {
  static constexpr uint32_t kSide = 1;
  static void Move(const uint8_t* s, ptrdiff_t, uint8_t* d, ptrdiff_t) { MovePixel<Bytes>(s, d); }
};
