// Encoder data: each MCU row is colour-converted, downsampled, transformed
// and quantised into the components' coefficient blocks; the entropy coder
// then writes the rows in order. With a team and restarts, the rows go round
// the threads and each is coded, in an ordered section, once the row before
// it has been; without restarts the scan is split (EncoderSplit.cpp).

#include <algorithm>
#include <cstring>

#include <omp.h>

#include "jpeg/CJPEGEncoder.h"
#include "jpeg/JpegRows.h"

namespace kestrelink::jpeg {
namespace {

template <class T>
void FillPadding(T* row, int w, int paddedW) {
  std::fill(row + w, row + paddedW, row[w - 1]);
}

}  // namespace

void CJPEGEncoder::TransformRow(int mcuRow, uint8_t* scratch, const CoefRow& dst) {
  if (m_precision > 8)
    TransformRowOf(JpegRows12{Kernels().twelve}, mcuRow, scratch, dst);
  else
    TransformRowOf(JpegRows8{Kernels()}, mcuRow, scratch, dst);
}

template <class Rows>
void CJPEGEncoder::TransformRowOf(const Rows& k, int mcuRow, uint8_t* scratch, const CoefRow& dst) {
  using T = typename Rows::T;
  const int paddedW = m_mcusX * m_mcuWidth, rows = m_mcuHeight;
  const size_t planeSamples = size_t(paddedW) * rows;
  T* const base = reinterpret_cast<T*>(scratch);
  T* full[4];
  T* down[4];
  for (int c = 0; c < 4; ++c) {
    full[c] = base + planeSamples * c;
    down[c] = base + planeSamples * (4 + c);
  }
  const int w = m_size.width, ch = m_srcChannels;
  const uint32_t red = m_srcColour == JC_RGB ? 0 : 2;
  for (int i = 0; i < rows; ++i) {
    const int y = std::min(mcuRow * rows + i, m_size.height - 1);
    const T* src = reinterpret_cast<const T*>(m_src + size_t(y) * m_srcStep);
    T* out[4];
    for (int c = 0; c < m_jpegChannels; ++c) out[c] = full[c] + size_t(i) * paddedW;
    if (m_jpegColour == JC_GRAY) {
      std::memcpy(out[0], src, size_t(w) * sizeof(T));
    } else if (m_jpegColour == JC_YCBCR) {
      k.ToYcc(src, uint32_t(ch), red, out[0], out[1], out[2], uint32_t(w));
    } else if (m_jpegColour == JC_CMYK) {
      for (int x = 0; x < w; ++x)
        for (int c = 0; c < 4; ++c) out[c][x] = src[x * 4 + c];
    } else if (m_jpegColour == JC_YCCK) {
      // The inks' complements are R, G, B; those go to YCbCr, K as it stands.
      T* rgb = base + planeSamples * 8;  // one row of R, G, B past the planes
      for (int x = 0; x < w; ++x) {
        for (int c = 0; c < 3; ++c) rgb[x * 3 + c] = T(Rows::kMax - src[x * 4 + c]);
        out[3][x] = src[x * 4 + 3];
      }
      k.ToYcc(rgb, 3, 0, out[0], out[1], out[2], uint32_t(w));
    } else {  // RGB as it stands, red first
      for (int x = 0; x < w; ++x) {
        out[0][x] = src[x * ch + red];
        out[1][x] = src[x * ch + 1];
        out[2][x] = src[x * ch + 2 - red];
      }
    }
    // The padding columns repeat the last pixel.
    for (int c = 0; c < m_jpegChannels; ++c) FillPadding(out[c], w, paddedW);
  }
  const int hmax = m_mcuWidth / 8, vmax = m_mcuHeight / 8;
  for (int c = 0; c < m_jpegChannels; ++c) {
    const CJPEGColorComponent& comp = m_comp[c];
    const T* plane = full[c];
    const int stride = comp.blocksX * 8;
    if (comp.h != hmax || comp.v != vmax) {
      const int outRows = comp.v * 8;
      for (int i = 0; i < outRows; ++i) {
        T* dst = down[c] + size_t(i) * stride;
        if (hmax == 2 && vmax == 2)
          k.DownH2V2(full[c] + size_t(2 * i) * paddedW, full[c] + size_t(2 * i + 1) * paddedW, dst, uint32_t(stride));
        else
          k.DownH2V1(full[c] + size_t(i) * paddedW, dst, uint32_t(stride));
      }
      plane = down[c];
    }
    const ForwardQuant& q = m_quant[comp.quantTable].quant;
    for (int by = 0; by < comp.v; ++by)
      for (int bx = 0; bx < comp.blocksX; ++bx)
        k.Fdct(plane + size_t(by) * 8 * stride + bx * 8, stride, q, dst.comp[c] + (size_t(by) * comp.blocksX + bx) * 64);
  }
}

void CJPEGEncoder::TransformAll() {
  if (m_coefReady) return;
  const int rows = m_mcusY;
#pragma omp parallel num_threads(m_threads)
  {
    uint8_t* scratch = SlotScratch(omp_get_thread_num());
#pragma omp for schedule(static)
    for (int r = 0; r < rows; ++r) TransformRow(r, scratch, FrameRow(r));
  }
  m_coefReady = true;
}

JERRCODE CJPEGEncoder::CodeRow(const CoefRow& row, int& restartsLeft, int& nextRestart) {
  const int perMcu = BlocksPerMcu();
  for (int mx = 0; mx < m_mcusX; ++mx) {
    if (m_restartInterval > 0) {
      if (restartsLeft == 0) {
        if (JERRCODE s = WriteRestartMarker(nextRestart)) return s;
        restartsLeft = m_restartInterval;
        for (int c = 0; c < m_jpegChannels; ++c) m_comp[c].lastDc = 0;
      }
      --restartsLeft;
    }
    if (JERRCODE s = m_out.Reserve(kBlockBytes * uint32_t(perMcu))) return s;
    uint8_t* base = m_out.Current();
    m_state.m_out = base;
    int32_t lastDc[4];
    for (int c = 0; c < m_jpegChannels; ++c) lastDc[c] = m_comp[c].lastDc;
    CodeMcu(row, mx, m_state, lastDc);
    for (int c = 0; c < m_jpegChannels; ++c) m_comp[c].lastDc = lastDc[c];
    m_out.Advance(uint32_t(m_state.m_out - base));
  }
  return JPEG_OK;
}

int CJPEGEncoder::BlocksPerMcu() const {
  int n = 0;
  for (int c = 0; c < m_jpegChannels; ++c) n += m_comp[c].h * m_comp[c].v;
  return n;
}

void CJPEGEncoder::CodeMcu(const CoefRow& row, int mx, CJPEGEncoderHuffmanState& state, int32_t lastDc[4]) const {
  for (int c = 0; c < m_jpegChannels; ++c) {
    const CJPEGColorComponent& comp = m_comp[c];
    for (int by = 0; by < comp.v; ++by)
      for (int bx = 0; bx < comp.h; ++bx)
        EncodeBlock(state, row.comp[c] + (size_t(by) * comp.blocksX + mx * comp.h + bx) * 64, lastDc[c],
                    m_dcTable[comp.dcTable], m_acTable[comp.acTable]);
  }
}

void CJPEGEncoder::OptimiseTables() {
  TransformAll();
  uint32_t dc[2][256] = {}, ac[2][256] = {};
  int left = m_restartInterval;
  for (int c = 0; c < m_jpegChannels; ++c) m_comp[c].lastDc = 0;
  for (int my = 0; my < m_mcusY; ++my)
    for (int mx = 0; mx < m_mcusX; ++mx) {
      if (m_restartInterval > 0) {
        if (left == 0) {
          left = m_restartInterval;
          for (int c = 0; c < m_jpegChannels; ++c) m_comp[c].lastDc = 0;
        }
        --left;
      }
      for (int c = 0; c < m_jpegChannels; ++c) {
        CJPEGColorComponent& comp = m_comp[c];
        for (int by = 0; by < comp.v; ++by)
          for (int bx = 0; bx < comp.h; ++bx)
            CountBlock(Block(c, mx * comp.h + bx, my * comp.v + by), comp.lastDc, dc[comp.dcTable],
                       ac[comp.acTable]);
      }
    }
  for (int t = 0; t < 2; ++t) {
    uint8_t bits[16], values[256];
    int count = 0;
    BuildOptimalHuffman(dc[t], bits, values, count);
    m_dcTable[t].Init(bits, values, count);
    BuildOptimalHuffman(ac[t], bits, values, count);
    m_acTable[t].Init(bits, values, count);
  }
}

JERRCODE CJPEGEncoder::CodeSequential() {
  int all[4] = {0, 1, 2, 3};
  if (JERRCODE s = WriteScanHeader(m_jpegChannels, all, 0, m_spectralEnd, 0, 0)) return s;
  for (int c = 0; c < m_jpegChannels; ++c) m_comp[c].lastDc = 0;
  m_state.Reset();
  int restartsLeft = m_restartInterval, nextRestart = 0;
  JERRCODE status = JPEG_OK;
  const int rows = m_mcusY;
  if (m_threads > 1 && m_restartInterval == 0 && m_mcusY > 1) {
    status = CodeSplit();
  } else if (m_coefReady || m_threads <= 1) {
    const CoefRow slot = SlotRow(0);
    for (int r = 0; r < rows && status == JPEG_OK; ++r) {
      if (!m_coefReady) TransformRow(r, SlotScratch(0), slot);
      status = CodeRow(m_coefReady ? FrameRow(r) : slot, restartsLeft, nextRestart);
    }
  } else {
    // The row pipeline: rows go round the team, each into its thread's slot;
    // their transforms overlap, and the ordered section codes them one after
    // another in row order.
    bool failed = false;
#pragma omp parallel num_threads(m_threads)
    {
      const int thread = omp_get_thread_num();
      const CoefRow slot = SlotRow(thread);
#pragma omp for ordered schedule(static, 1)
      for (int r = 0; r < rows; ++r) {
        TransformRow(r, SlotScratch(thread), slot);
#pragma omp ordered
        {
          if (!failed) {
            const JERRCODE s = CodeRow(slot, restartsLeft, nextRestart);
            if (s != JPEG_OK) {
              status = s;
              failed = true;
            }
          }
        }
      }
    }
  }
  if (status != JPEG_OK) return status;
  return FlushBits();
}

JERRCODE CJPEGEncoder::FlushBits() {
  // Pending bits go out, the last byte padded with ones, with at least 128 bytes free.
  if (JERRCODE s = m_out.Reserve(128)) return s;
  uint8_t* base = m_out.Current();
  m_state.m_out = base;
  m_state.PadToByte();
  m_state.Reset();
  m_out.Advance(uint32_t(m_state.m_out - base));
  return JPEG_OK;
}

JERRCODE CJPEGEncoder::WriteRestartMarker(int& nextRestart) {
  if (JERRCODE s = FlushBits()) return s;
  const uint8_t marker[2] = {0xFF, uint8_t(0xD0 + nextRestart)};
  nextRestart = (nextRestart + 1) & 7;
  return m_out.WriteBytes(marker, 2);
}

JERRCODE CJPEGEncoder::WriteData() {
  if (!m_paramsSet) return JPEG_BAD_PARAMETER;
  JERRCODE status = m_mode == JPEG_PROGRESSIVE ? WriteProgressive()
                    : m_mode == JPEG_LOSSLESS  ? WriteLossless()
                                               : CodeSequential();
  m_coefReady = false;
  if (status != JPEG_OK) return status;
  if (JERRCODE s = m_out.WriteWord(0xFFD9)) return s;
  return m_out.Flush();
}

}  // namespace kestrelink::jpeg
