// Lossless encoding: the samples, shifted right by the point transform, are
// predicted from their neighbours as the decoder will (first line from the
// left, first column from above, the rest by the chosen predictor), and the
// differences modulo 2^16 are Huffman-coded in categories 0 to 16 with a
// table made for the image.
#include <cstring>
#include <vector>

#include "jpeg/CJPEGEncoder.h"
#include "jpeg/LosslessPredict.h"

namespace kestrelink::jpeg {

JERRCODE CJPEGEncoder::SetParamsLossless(JMODE mode, JCOLOR colour, int precision, int predictor,
                                         int pointTransform, bool huffmanOptimise, int restartInterval) {
  (void)huffmanOptimise;  // the table is always made for the image
  if (mode != JPEG_LOSSLESS) return JPEG_BAD_PARAMETER;
  if (predictor < 1 || predictor > 7 || pointTransform < 0 || pointTransform >= precision || precision < 2 ||
      precision > 16 || precision != m_precision || restartInterval < 0 || restartInterval > 65535)
    return JPEG_BAD_PARAMETER;
  const bool srcColour = (m_srcColour == JC_BGR || m_srcColour == JC_RGB) && m_srcChannels >= 3 && precision == 8;
  if (!((colour == JC_GRAY && m_srcChannels == 1) || (colour == JC_RGB && srcColour))) return JPEG_NOT_IMPLEMENTED;
  m_mode = mode;
  m_jpegColour = colour;
  m_jpegChannels = colour == JC_GRAY ? 1 : 3;
  m_sampling = JS_444;
  m_predictor = predictor;
  m_pointTransform = pointTransform;
  m_restartInterval = restartInterval;
  m_optimise = true;
  m_mcuWidth = m_mcuHeight = 1;
  m_mcusX = m_size.width;
  m_mcusY = m_size.height;
  for (int i = 0; i < m_jpegChannels; ++i) {
    CJPEGColorComponent& c = m_comp[i];
    c = CJPEGColorComponent{};
    c.id = i + 1;
    c.blocksX = c.usedBlocksX = c.width = m_size.width;
    c.blocksY = c.usedBlocksY = c.height = m_size.height;
  }
  m_paramsSet = true;
  m_coefReady = false;
  return JPEG_OK;
}

void CJPEGEncoder::LosslessDifferences(std::vector<uint16_t>& diffs) {
  const int w = m_size.width, h = m_size.height, n = m_jpegChannels, pt = m_pointTransform;
  diffs.resize(size_t(w) * h * n);
  const uint32_t red = m_srcColour == JC_RGB ? 0 : 2;
  auto sample = [&](int x, int y, int c) -> int32_t {
    const uint8_t* row = m_src + size_t(y) * m_srcStep;
    if (m_precision > 8) {
      uint16_t v;
      std::memcpy(&v, row + size_t(x) * 2, 2);
      return v >> pt;
    }
    const int channel = n == 1 ? 0 : (c == 1 ? 1 : (c == 0 ? int(red) : int(2 - red)));
    return row[size_t(x) * m_srcChannels + channel] >> pt;
  };
  const int32_t initial = 1 << (m_precision - pt - 1);
#pragma omp parallel for schedule(static) num_threads(m_threads)
  for (int y = 0; y < h; ++y) {
    // An interval that starts a row makes it a first line; every interval
    // starts from half the range.
    const int64_t rowStart = int64_t(y) * w;
    const bool firstLine = y == 0 || (m_restartInterval > 0 && rowStart % m_restartInterval == 0);
    for (int x = 0; x < w; ++x)
      for (int c = 0; c < n; ++c) {
        const bool intervalStart = m_restartInterval > 0 && (rowStart + x) % m_restartInterval == 0;
        int32_t prediction;
        if (intervalStart || (y == 0 && x == 0))
          prediction = initial;
        else if (firstLine)
          prediction = sample(x - 1, y, c);
        else if (x == 0)
          prediction = sample(x, y - 1, c);
        else
          prediction = LosslessPredict(m_predictor, sample(x - 1, y, c), sample(x, y - 1, c), sample(x - 1, y - 1, c));
        diffs[(size_t(y) * w + x) * n + c] = uint16_t(sample(x, y, c) - prediction);
      }
  }
}

JERRCODE CJPEGEncoder::WriteLossless() {
  std::vector<uint16_t> diffs;
  LosslessDifferences(diffs);
  auto category = [](uint16_t d) -> uint32_t {
    const int32_t v = int16_t(d);
    return d == 0x8000 ? 16 : MagnitudeBits(v);
  };
  uint32_t freq[256] = {};
  for (uint16_t d : diffs) ++freq[category(d)];
  uint8_t bits[16], values[256];
  int count = 0;
  BuildOptimalHuffman(freq, bits, values, count);
  m_dcTable[0].Init(bits, values, count);
  if (JERRCODE s = WriteHuffmanTable(0, 0, m_dcTable[0])) return s;
  if (m_restartInterval > 0) {
    if (JERRCODE s = m_out.WriteWord(0xFFDD)) return s;
    if (JERRCODE s = m_out.WriteWord(4)) return s;
    if (JERRCODE s = m_out.WriteWord(m_restartInterval)) return s;
  }
  int all[4] = {0, 1, 2, 3};
  if (JERRCODE s = WriteScanHeader(m_jpegChannels, all, m_predictor, 0, 0, m_pointTransform)) return s;
  m_state.Reset();
  const size_t mcus = size_t(m_size.width) * m_size.height;
  const int n = m_jpegChannels;
  int restartsLeft = m_restartInterval, nextRestart = 0;
  for (size_t m = 0; m < mcus; ++m) {
    if (m_restartInterval > 0) {
      if (restartsLeft == 0) {
        if (JERRCODE s = WriteRestartMarker(nextRestart)) return s;
        restartsLeft = m_restartInterval;
      }
      --restartsLeft;
    }
    if (JERRCODE s = m_out.Reserve(64)) return s;
    uint8_t* base = m_out.Current();
    m_state.m_out = base;
    for (int c = 0; c < n; ++c) {
      const uint16_t d = diffs[m * n + c];
      const uint32_t t = category(d);
      m_state.Put(m_dcTable[0].m_code[t], m_dcTable[0].m_length[t]);
      if (t > 0 && t < 16) m_state.Put(MagnitudeCode(int16_t(d), t), t);
    }
    m_out.Advance(uint32_t(m_state.m_out - base));
  }
  return FlushBits();
}

}  // namespace kestrelink::jpeg
