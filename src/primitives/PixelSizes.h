#pragma once
// The pixel sizes that the whole-pixel kernels (mirror, quarter turns) serve,
// as slots of their per-size tables: 1, 2, 3, 4, 6 and 8 bytes.
namespace kestrelink::prim {

inline constexpr int kPixelSizeCount = 6;

// The slot of a pixel size, or -1 for a size no kernel serves.
constexpr int PixelSizeSlot(int bytes) {
  switch (bytes) {
    case 1: return 0;
    case 2: return 1;
    case 3: return 2;
    case 4: return 3;
    case 6: return 4;
    case 8: return 5;
    default: return -1;
  }
}

}  // namespace kestrelink::prim
