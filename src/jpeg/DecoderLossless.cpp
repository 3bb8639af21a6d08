// Lossless scans: each sample is predicted from its left (Ra), upper (Rb)
// and upper-left (Rc) neighbours in its component by the scan's predictor,
// and the Huffman-coded difference is added modulo 2^16. The first line of
// a scan, and of each restart interval, is predicted from the left alone,
// its first sample from half the range; the first column from above. The
// samples are written shifted left by the point transform.
#include <algorithm>
#include <cstring>

#include "jpeg/CJPEGDecoder.h"
#include "jpeg/LosslessPredict.h"

namespace kestrelink::jpeg {

JERRCODE CJPEGDecoder::DecodeLosslessScan() {
  const int predictor = m_ss, pt = m_al;
  if (predictor < 1 || predictor > 7 || pt >= m_precision) return JPEG_BAD_SCAN_SEGMENT;
  for (int i = 0; i < m_scanCompCount; ++i)
    if (!m_dcTable[m_comp[m_scanComps[i]].dcTable].m_defined) return JPEG_BAD_HUFF_SEGMENT;
  m_bits.Start(&m_in);
  m_bits.m_ranOut = false;
  m_nextRestart = 0;
  const int32_t initial = 1 << (m_precision - pt - 1);
  const bool single = m_scanCompCount == 1;
  const int mcusX = single ? m_comp[m_scanComps[0]].width : m_mcusX;
  const int mcusY = single ? m_comp[m_scanComps[0]].height : m_mcusY;
  int restartsLeft = m_restartInterval;
  int firstLineRow[4] = {0, 0, 0, 0};  // per component: the row that starts the current interval
  for (int my = 0; my < mcusY; ++my)
    for (int mx = 0; mx < mcusX; ++mx) {
      bool restarted = false;
      if (m_restartInterval > 0) {
        if (restartsLeft == 0) {
          if (JERRCODE s = ProcessRestart()) return s;
          restartsLeft = m_restartInterval;
          restarted = true;
        }
        --restartsLeft;
      }
      for (int i = 0; i < m_scanCompCount; ++i) {
        const int comp = m_scanComps[i];
        const CJPEGColorComponent& c = m_comp[comp];
        const int h = single ? 1 : c.h, v = single ? 1 : c.v;
        uint16_t* plane = m_samples[comp];
        const size_t stride = size_t(c.blocksX);
        if (restarted && mx == 0) firstLineRow[comp] = my * v;
        const CJPEGDecoderHuffmanTable& table = m_dcTable[c.dcTable];
        for (int y = 0; y < v; ++y)
          for (int x = 0; x < h; ++x) {
            const int row = my * v + y, col = mx * h + x;
            int t = m_bits.Decode(table);
            if (t > 16) t = 16;
            const int32_t diff = t == 16 ? 32768 : CJPEGDecoderHuffmanState::Extend(m_bits.Bits(t), t);
            uint16_t* at = plane + size_t(row) * stride + col;
            int32_t prediction;
            if ((restarted && x == 0 && y == 0) || (row == 0 && col == 0))
              prediction = initial;
            else if (row == firstLineRow[comp])
              prediction = at[-1];
            else if (col == 0)
              prediction = at[-int64_t(stride)];
            else
              prediction = LosslessPredict(predictor, at[-1], at[-int64_t(stride)], at[-int64_t(stride) - 1]);
            *at = uint16_t(prediction + diff);
          }
      }
    }
  if (m_bits.m_ranOut) return JPEG_BUFF_TOO_SMALL;
  return JPEG_OK;
}

void CJPEGDecoder::WriteLosslessRows() {
  const int width = m_width, height = m_height, pt = m_al;
  const bool wide = m_precision > 8;
  const int out = m_dstChannels;
  const bool reverse = m_channels >= 3 && m_dstColour == JC_BGR;
  const uint32_t mask = wide ? 0xFFFF : 0xFF;
#pragma omp parallel for schedule(static) num_threads(m_threads)
  for (int y = 0; y < height; ++y) {
    uint8_t* dst = m_dst + size_t(y) * m_dstStep;
    for (int x = 0; x < width; ++x)
      for (int o = 0; o < out; ++o) {
        const int c = std::min(m_channels - 1, (reverse && o < 3) ? 2 - o : o);
        const CJPEGColorComponent& comp = m_comp[c];
        const int sy = y * comp.v / m_vmax, sx = x * comp.h / m_hmax;
        const uint32_t v = (uint32_t(m_samples[c][size_t(sy) * comp.blocksX + sx]) << pt) & mask;
        if (wide)
          std::memcpy(dst + (size_t(x) * out + o) * 2, &v, 2);  // little-endian words
        else
          dst[size_t(x) * out + o] = uint8_t(v);
      }
  }
}

}  // namespace kestrelink::jpeg
