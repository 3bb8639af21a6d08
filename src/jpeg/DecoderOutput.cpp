// Decoder output: the coefficient store, the inverse transform of every
// block into the components' planes, then each output row upsampled (the
// triangle filter for 2 x 1 and 2 x 2 chroma, repetition otherwise) and
// colour-converted straight into the caller's frame. Both stages run over
// the OpenMP team.
#include <algorithm>
#include <cstring>
#include <type_traits>
#include <vector>

#include "jpeg/CJPEGDecoder.h"
#include "jpeg/JpegKernels.h"
#include "jpeg/JpegRows.h"

namespace kestrelink::jpeg {

JERRCODE CJPEGDecoder::AllocateCoefficients() {
  if (m_mode == JPEG_LOSSLESS) {
    size_t samples = 0;
    for (int c = 0; c < m_channels; ++c) samples += size_t(m_comp[c].blocksX) * m_comp[c].blocksY;
    if (!m_planeBuffer.Allocate(samples * sizeof(uint16_t))) return JPEG_OUT_OF_MEMORY;
    std::memset(m_planeBuffer.Data(), 0, samples * sizeof(uint16_t));
    uint16_t* at = reinterpret_cast<uint16_t*>(m_planeBuffer.Data());
    for (int c = 0; c < m_channels; ++c) {
      m_samples[c] = at;
      at += size_t(m_comp[c].blocksX) * m_comp[c].blocksY;
    }
    return JPEG_OK;
  }
  size_t samples = 0, rowBlocks = 0;
  for (int c = 0; c < m_channels; ++c) {
    samples += size_t(m_comp[c].blocksX) * 8 * m_comp[c].blocksY * 8;
    rowBlocks += size_t(m_comp[c].blocksX) * m_comp[c].v;
  }
  const size_t sampleBytes = m_precision > 8 ? 2 : 1;
  if (!m_planeBuffer.Allocate(samples * sampleBytes)) return JPEG_OUT_OF_MEMORY;
  // A ring of eight MCU rows lets the decoding thread run ahead of the
  // transforms by several rows at a time, so that the two threads seldom
  // wait on each other.
  m_slotCount = m_threads > 1 ? 8 : 1;
  m_slotBlocks = rowBlocks;
  if (!m_slotBuffer.Allocate(rowBlocks * 64 * sizeof(int16_t) * size_t(m_slotCount))) return JPEG_OUT_OF_MEMORY;
  if (!m_convertScratch.Allocate(size_t(RowScratchSamples()) * 6 * sampleBytes)) return JPEG_OUT_OF_MEMORY;
  m_storeReady = m_converted = false;
  for (int c = 0; c < 4; ++c) {
    m_coef[c] = nullptr;
    m_planeDone[c] = false;
    m_scanned[c] = false;
  }
  uint8_t* plane = m_planeBuffer.Data();
  for (int c = 0; c < m_channels; ++c) {
    m_plane[c] = plane;
    m_planeStride[c] = m_comp[c].blocksX * 8;
    plane += size_t(m_planeStride[c]) * m_comp[c].blocksY * 8 * sampleBytes;
  }
  return JPEG_OK;
}

// The whole frame's blocks, for the scans that are not decoded row by row
// straight into the planes, made at the first such scan. Progressive scans
// refine the store, so it starts cleared; a sequential scan writes every
// block it covers, and a component that no scan covers is cleared before
// its transform.
JERRCODE CJPEGDecoder::EnsureCoefficientStore() {
  if (m_storeReady) return JPEG_OK;
  size_t blocks = 0;
  for (int c = 0; c < m_channels; ++c) blocks += size_t(m_comp[c].blocksX) * m_comp[c].blocksY;
  if (!m_coefBuffer.Allocate(blocks * 64 * sizeof(int16_t))) return JPEG_OUT_OF_MEMORY;
  if (m_mode == JPEG_PROGRESSIVE) std::memset(m_coefBuffer.Data(), 0, blocks * 64 * sizeof(int16_t));
  int16_t* coef = reinterpret_cast<int16_t*>(m_coefBuffer.Data());
  for (int c = 0; c < m_channels; ++c) {
    m_coef[c] = coef;
    coef += size_t(m_comp[c].blocksX) * m_comp[c].blocksY * 64;
    if (m_mode == JPEG_PROGRESSIVE) m_scanned[c] = true;
  }
  m_storeReady = true;
  return JPEG_OK;
}

void CJPEGDecoder::MakeDequantTables() {
  for (int c = 0; c < m_channels; ++c) MakeDequant(m_quant[m_comp[c].quantTable], m_dequant[c]);
}

void CJPEGDecoder::TransformBlockRow(int c, int by, const int16_t* blocks) {
  const CJPEGColorComponent& comp = m_comp[c];
  if (by >= comp.usedBlocksY) return;
  const size_t offset = size_t(by) * 8 * m_planeStride[c];
  auto run = [&](const auto& rows) {
    using T = typename std::remove_reference_t<decltype(rows)>::T;
    T* out = reinterpret_cast<T*>(m_plane[c]) + offset;
    for (int bx = 0; bx < comp.usedBlocksX; ++bx) rows.Idct(blocks + bx * 64, m_dequant[c], out + bx * 8, m_planeStride[c]);
  };
  if (m_precision > 8)
    run(JpegRows12{Kernels().twelve});
  else
    run(JpegRows8{Kernels()});
}

JERRCODE CJPEGDecoder::TransformPlanes() {
  bool all = true;
  for (int c = 0; c < m_channels; ++c) all = all && m_planeDone[c];
  if (all) return JPEG_OK;  // done row by row behind the scan's decoding
  if (JERRCODE s = EnsureCoefficientStore()) return s;
  // A component that no scan covered decodes as mid-grey.
  for (int c = 0; c < m_channels; ++c)
    if (!m_scanned[c] && !m_planeDone[c])
      std::memset(m_coef[c], 0, size_t(m_comp[c].blocksX) * m_comp[c].blocksY * 64 * sizeof(int16_t));
  MakeDequantTables();
  // Every block row of every component not yet made is one unit of work.
  int rowStart[5] = {0};
  for (int c = 0; c < m_channels; ++c) rowStart[c + 1] = rowStart[c] + (m_planeDone[c] ? 0 : m_comp[c].usedBlocksY);
  const int units = rowStart[m_channels];
#pragma omp parallel for schedule(static) num_threads(m_threads)
  for (int u = 0; u < units; ++u) {
    int c = 0;
    while (u >= rowStart[c + 1]) ++c;
    const int by = u - rowStart[c];
    TransformBlockRow(c, by, Block(c, 0, by));
  }
  return JPEG_OK;
}

template <class Rows>
void CJPEGDecoder::ConvertRow(const Rows& k, int y, typename Rows::T* dst, typename Rows::T* scratch,
                              int rowSamples) const {
  using T = typename Rows::T;
  const int width = m_width;
  const uint32_t red = m_dstColour == JC_RGB ? 0 : 2, ch = uint32_t(m_dstChannels);
  const T* row[4] = {};
  for (int c = 0; c < m_channels; ++c) {
    const CJPEGColorComponent& comp = m_comp[c];
    const T* plane = reinterpret_cast<const T*>(m_plane[c]);
    const int stride = m_planeStride[c];
    T* buf = scratch + size_t(rowSamples) * c;
    if (comp.h == m_hmax && comp.v == m_vmax) {
      row[c] = plane + size_t(y) * stride;
    } else if (m_hmax == 2 * comp.h && m_vmax == comp.v) {
      k.UpH2(plane + size_t(y) * stride, nullptr, buf, uint32_t(comp.width));
      row[c] = buf;
    } else if (m_hmax == 2 * comp.h && m_vmax == 2 * comp.v) {
      const int cy = y / 2, far = (y & 1) ? std::min(cy + 1, comp.height - 1) : std::max(cy - 1, 0);
      k.UpH2(plane + size_t(cy) * stride, plane + size_t(far) * stride, buf, uint32_t(comp.width));
      row[c] = buf;
    } else if (m_hmax == comp.h && m_vmax == 2 * comp.v) {
      // The triangle filter down the column: 3 parts of the nearer row, 1 of the farther.
      const int cy = y / 2, far = (y & 1) ? std::min(cy + 1, comp.height - 1) : std::max(cy - 1, 0);
      const T* n = plane + size_t(cy) * stride;
      const T* f = plane + size_t(far) * stride;
      const int bias = (y & 1) ? 2 : 1;
      for (int x = 0; x < comp.width; ++x) buf[x] = T((3 * n[x] + f[x] + bias) >> 2);
      row[c] = buf;
    } else {
      const T* src = plane + size_t(y * comp.v / m_vmax) * stride;
      for (int x = 0; x < width; ++x) buf[x] = src[x * comp.h / m_hmax];
      row[c] = buf;
    }
  }
  constexpr T kMax = T(Rows::kMax);
  if (ch == 1) {
    std::memcpy(dst, row[0], size_t(width) * sizeof(T));
  } else if (m_channels == 1) {
    for (int x = 0; x < width; ++x) {
      dst[x * ch] = dst[x * ch + 1] = dst[x * ch + 2] = row[0][x];
      if (ch == 4) dst[x * 4 + 3] = kMax;
    }
  } else if (m_colour == JC_YCBCR) {
    k.FromYcc(row[0], row[1], row[2], dst, ch, red, uint32_t(width));
  } else if (m_channels == 3) {
    for (int x = 0; x < width; ++x) {
      dst[x * ch + red] = row[0][x];
      dst[x * ch + 1] = row[1][x];
      dst[x * ch + 2 - red] = row[2][x];
      if (ch == 4) dst[x * 4 + 3] = kMax;
    }
  } else if (m_colour == JC_YCCK) {  // Y, Cb, Cr made CMY; K as it stands
    T* rgb = scratch + size_t(rowSamples) * 4;
    k.FromYcc(row[0], row[1], row[2], rgb, 3, 0, uint32_t(width));
    for (int x = 0; x < width; ++x) {
      for (int i = 0; i < 3; ++i) dst[x * 4 + i] = T(kMax - rgb[x * 3 + i]);
      dst[x * 4 + 3] = row[3][x];
    }
  } else {  // four components as stored
    for (int x = 0; x < width; ++x)
      for (int i = 0; i < 4; ++i) dst[x * 4 + i] = row[i][x];
  }
}

int CJPEGDecoder::RowScratchSamples() const {
  int rowSamples = m_width * 4 + 64;
  for (int c = 0; c < m_channels; ++c) rowSamples = std::max(rowSamples, 2 * m_comp[c].width + 64);
  return rowSamples;
}

template <class Rows>
void CJPEGDecoder::ConvertRows(const Rows& k) {
  using T = typename Rows::T;
  const int rowSamples = RowScratchSamples(), height = m_height;
#pragma omp parallel num_threads(m_threads)
  {
    std::vector<T> scratch(size_t(rowSamples) * 6);
#pragma omp for schedule(static)
    for (int y = 0; y < height; ++y)
      ConvertRow(k, y, reinterpret_cast<T*>(m_dst + size_t(y) * m_dstStep), scratch.data(), rowSamples);
  }
}

// Reduced output: each output pixel is the rounded mean of the scale x scale
// pixels it covers (fewer at the right and bottom edges).
template <class Rows>
void CJPEGDecoder::ConvertRowsReduced(const Rows& k) {
  using T = typename Rows::T;
  const int rowSamples = RowScratchSamples(), scale = m_dctScale, ch = m_dstChannels;
  const int outW = (m_width + scale - 1) / scale, outH = (m_height + scale - 1) / scale;
#pragma omp parallel num_threads(m_threads)
  {
    std::vector<T> scratch(size_t(rowSamples) * 6);
    std::vector<uint32_t> sums(size_t(outW) * ch);
#pragma omp for schedule(static)
    for (int oy = 0; oy < outH; ++oy) {
      std::fill(sums.begin(), sums.end(), 0u);
      const int y0 = oy * scale, y1 = std::min(m_height, y0 + scale);
      T* full = scratch.data() + size_t(rowSamples) * 5;
      for (int y = y0; y < y1; ++y) {
        ConvertRow(k, y, full, scratch.data(), rowSamples);
        for (int x = 0; x < m_width; ++x)
          for (int i = 0; i < ch; ++i) sums[size_t(x / scale) * ch + i] += full[size_t(x) * ch + i];
      }
      T* dst = reinterpret_cast<T*>(m_dst + size_t(oy) * m_dstStep);
      for (int ox = 0; ox < outW; ++ox) {
        const uint32_t n = uint32_t((y1 - y0) * (std::min(m_width, (ox + 1) * scale) - ox * scale));
        for (int i = 0; i < ch; ++i) dst[size_t(ox) * ch + i] = T((sums[size_t(ox) * ch + i] + n / 2) / n);
      }
    }
  }
}

JERRCODE CJPEGDecoder::CheckOutput() const {
  const int sampleBytes = m_precision > 8 ? 2 : 1, scale = m_mode == JPEG_LOSSLESS ? 1 : m_dctScale;
  const int outW = (m_width + scale - 1) / scale, outH = (m_height + scale - 1) / scale;
  if (m_dstSize.width < outW || m_dstSize.height < outH || int64_t(m_dstStep) < int64_t(outW) * m_dstChannels * sampleBytes)
    return JPEG_BAD_PARAMETER;
  if (m_mode == JPEG_LOSSLESS) return JPEG_OK;
  for (int c = 0; c < m_channels; ++c)
    if (!m_quantDefined[m_comp[c].quantTable]) return JPEG_BAD_QUANT_SEGMENT;
  // Grey goes to any layout, three components to three or four bytes, four
  // components to four; one channel takes the first component.
  const bool fits = m_dstChannels == 1 || m_channels == 1 || (m_channels == 3 && m_dstChannels >= 3) ||
                    (m_channels == 4 && m_dstChannels == 4);
  return fits ? JPEG_OK : JPEG_NOT_IMPLEMENTED;
}

void CJPEGDecoder::ConvertRange(int y0, int y1) {
  const int rowSamples = RowScratchSamples();
  if (m_precision > 8) {
    const JpegRows12 rows{Kernels().twelve};
    uint16_t* scratch = reinterpret_cast<uint16_t*>(m_convertScratch.Data());
    for (int y = y0; y < y1; ++y)
      ConvertRow(rows, y, reinterpret_cast<uint16_t*>(m_dst + size_t(y) * m_dstStep), scratch, rowSamples);
  } else {
    const JpegRows8 rows{Kernels()};
    for (int y = y0; y < y1; ++y) ConvertRow(rows, y, m_dst + size_t(y) * m_dstStep, m_convertScratch.Data(), rowSamples);
  }
}

JERRCODE CJPEGDecoder::WriteOutput() {
  if (JERRCODE s = CheckOutput()) return s;
  if (m_mode == JPEG_LOSSLESS) {  // no transform to reduce: full size whatever the scale
    WriteLosslessRows();
    return JPEG_OK;
  }
  if (JERRCODE s = TransformPlanes()) return s;
  if (m_converted) return JPEG_OK;  // converted row by row behind the transforms
  if (m_precision > 8) {
    const JpegRows12 rows{Kernels().twelve};
    m_dctScale > 1 ? ConvertRowsReduced(rows) : ConvertRows(rows);
  } else {
    const JpegRows8 rows{Kernels()};
    m_dctScale > 1 ? ConvertRowsReduced(rows) : ConvertRows(rows);
  }
  return JPEG_OK;
}

}  // namespace kestrelink::jpeg
