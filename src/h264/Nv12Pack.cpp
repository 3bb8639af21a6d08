#include "h264/Nv12Pack.h"

#include <emmintrin.h>

#include <cstring>

#include "frame/RowLoop.h"

namespace kestrelink::h264 {

namespace {

// Luma row r: w bytes, then up to W the single byte that follows the row in
// the source (the first byte of the next row), a settled behaviour of the
// format. Past the frame's last row that byte is outside the frame, so the
// last row repeats its own last byte instead.
void PackLumaRow(const uint8_t* y, const Nv12Frame& f, uint32_t r) {
  if (r >= f.height) return;  // rows the source doesn't have keep their earlier value
  const uint8_t* src = y + size_t(r) * f.width;
  uint8_t* dst = f.luma + size_t(r) * f.alignedWidth;
  std::memcpy(dst, src, f.width);
  if (f.alignedWidth > f.width) {
    const uint8_t pad = r + 1 < f.height ? src[f.width] : src[f.width - 1];
    std::memset(dst + f.width, pad, f.alignedWidth - f.width);
  }
}

}  // namespace

void InterleaveChromaRow(const uint8_t* u, const uint8_t* v, uint32_t sourcePairs, uint32_t pairs, uint8_t* out) {
  uint32_t i = 0;
  for (; i + 16 <= sourcePairs; i += 16) {
    const __m128i uu = _mm_loadu_si128(reinterpret_cast<const __m128i*>(u + i));
    const __m128i vv = _mm_loadu_si128(reinterpret_cast<const __m128i*>(v + i));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 2 * i), _mm_unpacklo_epi8(uu, vv));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 2 * i + 16), _mm_unpackhi_epi8(uu, vv));
  }
  for (; i < sourcePairs; ++i) {
    out[2 * i] = u[i];
    out[2 * i + 1] = v[i];
  }
  if (sourcePairs == 0) return;
  const uint8_t lastU = u[sourcePairs - 1], lastV = v[sourcePairs - 1];
  for (i = sourcePairs; i < pairs; ++i) {
    out[2 * i] = lastU;
    out[2 * i + 1] = lastV;
  }
}

void PackNv12Planar(const uint8_t* y, const uint8_t* u, const uint8_t* v, const Nv12Frame& f) {
  const uint32_t chromaRows = f.alignedHeight / 2, sourcePairs = f.width / 2, pairs = f.alignedWidth / 2;
  // Chroma rows and the first H / 2 luma rows in one pass, then the luma rows left.
  ForEachRow(chromaRows, false, [&](uint32_t r, uint32_t) {
    PackLumaRow(y, f, r);
    const size_t source = size_t(r) * sourcePairs;
    InterleaveChromaRow(u + source, v + source, sourcePairs, pairs, f.chroma + size_t(r) * f.alignedWidth);
  });
  if (f.height > chromaRows)
    ForEachRow(f.height - chromaRows, false, [&](uint32_t r, uint32_t) { PackLumaRow(y, f, chromaRows + r); });
}

void PackNv12Mono(const uint8_t* y, const Nv12Frame& f) {
  ForEachRow(f.height, false, [&](uint32_t r, uint32_t) { PackLumaRow(y, f, r); });
  std::memset(f.chroma, 128, size_t(f.alignedHeight / 2) * f.alignedWidth);
}

}  // namespace kestrelink::h264
