// The mono plane's block grid and the moves between a packed grey frame and
// its blocks: one byte a pixel at 8 bits, else two (little-endian words).
#include <algorithm>

#include "compress/wavelet/WaveletCompression.h"
#include "platform/OpenMP.h"

namespace {

// Pixels at any alignment: one byte, or a little-endian word.
struct Byte {
  static constexpr size_t kSize = 1;
  static int32_t Load(const uint8_t* p) { return p[0]; }
  static void Store(uint8_t* p, int32_t v) { p[0] = uint8_t(v); }
};
struct Word {
  static constexpr size_t kSize = 2;
  static int32_t Load(const uint8_t* p) { return int32_t(p[0] | p[1] << 8); }
  static void Store(uint8_t* p, int32_t v) {
    p[0] = uint8_t(v);
    p[1] = uint8_t(v >> 8);
  }
};

template <class Pixel>
void LoadBlock(const uint8_t* frame, int width, int height, WaveletBlock& block) {
  const int w = std::clamp(width - block.x, 0, 32), h = std::clamp(height - block.y, 0, 32);
  for (int r = 0; r < 32; ++r) {
    int32_t* row = block.rows[r];
    int c = 0;
    if (r < h) {
      const uint8_t* in = frame + (size_t(block.y + r) * size_t(width) + size_t(block.x)) * Pixel::kSize;
      for (; c < w; ++c) row[c] = Pixel::Load(in + Pixel::kSize * size_t(c));
    }
    for (; c < 32; ++c) row[c] = 0;
  }
}

template <class Pixel>
void StoreBlock(const WaveletBlock& block, int width, int height, int32_t maxValue, uint8_t* frame) {
  const int w = std::clamp(width - block.x, 0, 32), h = std::clamp(height - block.y, 0, 32);
  for (int r = 0; r < h; ++r) {
    const int32_t* row = block.rows[r];
    uint8_t* out = frame + (size_t(block.y + r) * size_t(width) + size_t(block.x)) * Pixel::kSize;
    for (int c = 0; c < w; ++c) Pixel::Store(out + Pixel::kSize * size_t(c), std::clamp(row[c], 0, maxValue));
  }
}

template <class Body>
void ForEachBlock(WaveletPlane& plane, Body&& body) {
  const int64_t count = plane.blockCount;
#pragma omp parallel for schedule(static) num_threads(kestrelink::platform::TeamSize())
  for (int64_t b = 0; b < count; ++b) body(*plane.blocks[size_t(b)]);
}

}  // namespace

void CMonoWaveletCpmpression::CreateBlocks(bool, int, int width, int height) {
  m_planeCount = 1;
  const int gx = width > 0 ? (width + 31) / 32 : 0, gy = height > 0 ? (height + 31) / 32 : 0;
  auto plane = std::make_unique<WaveletPlane>();
  plane->blockCount = gx * gy;
  plane->paddedWidth = gx * 32;
  plane->paddedHeight = gy * 32;
  plane->gridWidth = gx;
  plane->blocks.reserve(size_t(plane->blockCount));
  for (int row = 0; row < gy; ++row)
    for (int col = 0; col < gx; ++col) plane->blocks.push_back(std::make_unique<WaveletBlock>(col * 32, row * 32));
  m_planes[0] = std::move(plane);
}

void CMonoWaveletCpmpression::ImageToBlocks(const void* src) {
  const int width = m_width, height = m_height;
  const auto* frame = static_cast<const uint8_t*>(src);
  if (m_pixelBits == 8)
    ForEachBlock(*m_planes[0], [&](WaveletBlock& b) { LoadBlock<Byte>(frame, width, height, b); });
  else
    ForEachBlock(*m_planes[0], [&](WaveletBlock& b) { LoadBlock<Word>(frame, width, height, b); });
}

void CMonoWaveletCpmpression::BlocksToImage(void* dst) {
  const int width = m_width, height = m_height;
  auto* frame = static_cast<uint8_t*>(dst);
  if (m_pixelBits == 8) {
    ForEachBlock(*m_planes[0], [&](const WaveletBlock& b) { StoreBlock<Byte>(b, width, height, 255, frame); });
  } else {
    // Depths past 16 still store two bytes a pixel: the clamp stops at 65535.
    const int bits = std::clamp(int(m_pixelBits), 0, 16);
    const int32_t maxValue = int32_t((1u << bits) - 1);
    ForEachBlock(*m_planes[0], [&](const WaveletBlock& b) { StoreBlock<Word>(b, width, height, maxValue, frame); });
  }
}
