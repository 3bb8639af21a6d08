// The body of the look kernels, included once into each variant's unit
// inside a namespace of its own, so that inline code never crosses units.
// Not a header of its own: no include guard.
//
// The table fill works a plane (c fixed) a row (b fixed) at a time, and
// along a one cell at a time: the eight nodes of a cell stay fixed while the
// remainder k of a runs over the cell. The weight of array n at (i, j, k) is
// its integer product over s^3, formed here as (product of the i and j
// factors) times the k factor times 1 / s^3: every step is exact in single
// precision (products below 2^24, a power-of-two divisor), so the weights
// equal the stored arrays' and the sums equal the per-pixel evaluation's.
// The including unit brings LookLut.h; this body calls no inline code of
// other headers.

// Lower node of a cell; the topmost cell takes the last two nodes.
inline uint32_t CellLow(uint32_t cell, uint32_t size) { return cell - (cell == size - 1); }

// Truncated toward zero, clamped to 0 .. 255; not-a-number gives 0.
inline uint8_t ScaledByte(float v) {
  const double scaled = double(v) * 255.0;
  const double low = 0.0 < scaled ? scaled : 0.0;
  return uint8_t(int(255.0 < low ? 255.0 : low));
}

inline void FillPlane(const LookLut& look, uint32_t o, uint8_t* plane) {
  const uint32_t n = uint32_t(look.size), log = uint32_t(look.sizeLog2), s = 256u / n;
  const float invD = 1.0f / float(s * s * s);
  const uint32_t rowA = 3u << (2 * log), rowB = 3u << log;
  const uint32_t cLow = CellLow(look.cellIndex[o], n);
  const float fi = float(look.cellRemainder[o]), ni = float(s) - fi;  // the i factors: c's remainder
  alignas(64) float weight[8][256];
  alignas(64) float sum[256];
  alignas(64) uint8_t bytes[3][256];
  for (uint32_t m = 0; m < 256; ++m) {
    const uint32_t bLow = CellLow(look.cellIndex[m], n);
    const float fj = float(look.cellRemainder[m]), nj = float(s) - fj;
    // Arrays 0, 1, 2 and 6 take s - k, arrays 3, 4, 5 and 7 take k.
    const float ij[8] = {ni * nj, fi * nj, ni * fj, ni * nj, fi * nj, ni * fj, fi * fj, fi * fj};
    for (uint32_t k = 0; k < s; ++k) {
      const float high = float(k), low = float(s) - high;
      for (int a = 0; a < 8; ++a) weight[a][k] = ij[a] * (a == 3 || a == 4 || a == 5 || a == 7 ? high : low) * invD;
    }
    for (uint32_t cell = 0; cell < n; ++cell) {
      const uint32_t aLow = CellLow(cell, n);
      const float* base = look.lut3D.get() + 3 * ((((aLow << log) + bLow) << log) + cLow);
      const float* corner[8] = {base,        base + 3,           base + rowB,     base + rowA,
                                base + rowA + 3, base + rowA + rowB, base + rowB + 3, base + rowA + rowB + 3};
      for (int comp = 0; comp < 3; ++comp) {
        const float v0 = corner[0][comp], v1 = corner[1][comp], v2 = corner[2][comp], v3 = corner[3][comp],
                    v4 = corner[4][comp], v5 = corner[5][comp], v6 = corner[6][comp], v7 = corner[7][comp];
        for (uint32_t k = 0; k < s; ++k) {
          float acc = 0.0f;
          acc += v0 * weight[0][k];
          acc += v1 * weight[1][k];
          acc += v2 * weight[2][k];
          acc += v3 * weight[3][k];
          acc += v4 * weight[4][k];
          acc += v5 * weight[5][k];
          acc += v6 * weight[6][k];
          acc += v7 * weight[7][k];
          sum[k] = acc;
        }
        uint8_t* out = bytes[comp] + cell * s;
        for (uint32_t k = 0; k < s; ++k) out[k] = ScaledByte(sum[k]);
      }
    }
    uint8_t* row = plane + size_t(m) * 256 * 3;
    for (uint32_t i = 0; i < 256; ++i) {
      row[3 * i] = bytes[2][i];
      row[3 * i + 1] = bytes[1][i];
      row[3 * i + 2] = bytes[0][i];
    }
  }
}
