// Decoder set-up and the marker loop with its segment parsers.
#include "jpeg/CJPEGDecoder.h"

#include <cstring>
#include <new>

#include "jpeg/JpegTables.h"
#include "platform/OpenMP.h"

namespace kestrelink::jpeg {

CJPEGDecoder::CJPEGDecoder() : m_threads(platform::MeasureTeamSize()) {}

JERRCODE CJPEGDecoder::SetSource(CBaseStreamInput* stream) {
  if (JERRCODE s = m_in.Attach(stream)) return s;
  m_frameFound = m_inScan = m_eoiFound = m_coefReady = m_storeReady = false;
  m_jfifFound = m_adobeFound = m_exifFound = false;
  m_adobeTransform = -1;
  m_restartInterval = 0;
  m_scanCount = 0;
  m_scanLog.clear();
  m_dst = nullptr;
  for (auto& t : m_dcTable) t.m_defined = false;
  for (auto& t : m_acTable) t.m_defined = false;
  for (bool& q : m_quantDefined) q = false;
  m_meta.Clear();
  m_sourceSet = true;
  return JPEG_OK;
}

JERRCODE CJPEGDecoder::NextMarker(int& marker) {
  // Bytes before a marker are skipped; 0xFF repeats are fill.
  for (;;) {
    int b = 0;
    if (JERRCODE s = m_in.ReadByte(b)) return s;
    if (b != 0xFF) continue;
    do {
      if (JERRCODE s = m_in.ReadByte(b)) return s;
    } while (b == 0xFF);
    if (b != 0) {
      marker = b;
      return JPEG_OK;
    }
  }
}

JERRCODE CJPEGDecoder::ReadSegmentLength(int& length) {
  if (JERRCODE s = m_in.ReadWord(length)) return s;
  if (length < 2) return JPEG_BAD_SEGMENT;
  length -= 2;
  return JPEG_OK;
}

JERRCODE CJPEGDecoder::SkipSegment() {
  int length = 0;
  if (JERRCODE s = ReadSegmentLength(length)) return s;
  return m_in.Skip(uint32_t(length));
}

JERRCODE CJPEGDecoder::ParseFrame(int marker) {
  if (m_frameFound) return JPEG_BAD_FRAME_SEGMENT;
  int length = 0, p = 0, y = 0, x = 0, n = 0;
  if (JERRCODE s = ReadSegmentLength(length)) return s;
  if (length < 6) return JPEG_BAD_FRAME_SEGMENT;
  if (JERRCODE s = m_in.ReadByte(p)) return s;
  if (JERRCODE s = m_in.ReadWord(y)) return s;
  if (JERRCODE s = m_in.ReadWord(x)) return s;
  if (JERRCODE s = m_in.ReadByte(n)) return s;
  if (n < 1 || n > 4 || length != 6 + 3 * n || x == 0 || y == 0) return JPEG_BAD_FRAME_SEGMENT;
  m_mode = JMODE(JPEG_BASELINE + (marker - 0xC0));
  if (m_mode == JPEG_LOSSLESS ? (p < 2 || p > 16) : (p != 8 && p != 12)) return JPEG_BAD_FRAME_SEGMENT;
  m_precision = p;
  m_width = x;
  m_height = y;
  m_channels = n;
  m_hmax = m_vmax = 1;
  for (int i = 0; i < n; ++i) {
    int id = 0, hv = 0, tq = 0;
    if (JERRCODE s = m_in.ReadByte(id)) return s;
    if (JERRCODE s = m_in.ReadByte(hv)) return s;
    if (JERRCODE s = m_in.ReadByte(tq)) return s;
    CJPEGColorComponent& c = m_comp[i];
    c = CJPEGColorComponent{};
    c.id = id;
    c.h = hv >> 4;
    c.v = hv & 15;
    c.quantTable = tq;
    if (c.h < 1 || c.h > 4 || c.v < 1 || c.v > 4 || tq > 3) return JPEG_BAD_FRAME_SEGMENT;
    for (int j = 0; j < i; ++j)
      if (m_comp[j].id == id) return JPEG_BAD_FRAME_SEGMENT;
    m_hmax = c.h > m_hmax ? c.h : m_hmax;
    m_vmax = c.v > m_vmax ? c.v : m_vmax;
  }
  const int unit = m_mode == JPEG_LOSSLESS ? 1 : 8;
  m_mcuWidth = unit * m_hmax;
  m_mcuHeight = unit * m_vmax;
  m_mcusX = (m_width + m_mcuWidth - 1) / m_mcuWidth;
  m_mcusY = (m_height + m_mcuHeight - 1) / m_mcuHeight;
  for (int i = 0; i < n; ++i) {
    CJPEGColorComponent& c = m_comp[i];
    c.width = (m_width * c.h + m_hmax - 1) / m_hmax;
    c.height = (m_height * c.v + m_vmax - 1) / m_vmax;
    c.blocksX = m_mcusX * c.h;
    c.blocksY = m_mcusY * c.v;
    c.usedBlocksX = (c.width + unit - 1) / unit;
    c.usedBlocksY = (c.height + unit - 1) / unit;
  }
  // Sampling as the codec names it.
  bool chromaOnes = true;
  for (int i = 1; i < n; ++i) chromaOnes = chromaOnes && m_comp[i].h == 1 && m_comp[i].v == 1;
  const int h0 = m_comp[0].h, v0 = m_comp[0].v;
  if (n == 1 || (h0 == 1 && v0 == 1 && chromaOnes))
    m_sampling = JS_444;
  else if (chromaOnes && h0 == 2 && v0 == 1)
    m_sampling = JS_422;
  else if (chromaOnes && h0 == 2 && v0 == 2)
    m_sampling = JS_411;
  else
    m_sampling = JSS(JS_OTHER);
  m_frameFound = true;
  return JPEG_OK;
}

JERRCODE CJPEGDecoder::ParseHuffman() {
  int length = 0;
  if (JERRCODE s = ReadSegmentLength(length)) return s;
  while (length > 0) {
    if (length < 17) return JPEG_BAD_HUFF_SEGMENT;
    int tcth = 0;
    if (JERRCODE s = m_in.ReadByte(tcth)) return s;
    uint8_t bits[16];
    if (JERRCODE s = m_in.ReadBytes(bits, 16)) return s;
    int count = 0;
    for (uint8_t b : bits) count += b;
    length -= 17;
    if ((tcth >> 4) > 1 || (tcth & 15) > 3 || count > 256 || count > length) return JPEG_BAD_HUFF_SEGMENT;
    uint8_t values[256] = {};
    if (JERRCODE s = m_in.ReadBytes(values, uint32_t(count))) return s;
    length -= count;
    CJPEGDecoderHuffmanTable& t = (tcth >> 4) ? m_acTable[tcth & 15] : m_dcTable[tcth & 15];
    if (!t.Init(bits, values, count)) return JPEG_BAD_HUFF_SEGMENT;
  }
  return JPEG_OK;
}

JERRCODE CJPEGDecoder::ParseQuant() {
  int length = 0;
  if (JERRCODE s = ReadSegmentLength(length)) return s;
  while (length > 0) {
    int pq = 0;
    if (JERRCODE s = m_in.ReadByte(pq)) return s;
    const int bytes = (pq >> 4) ? 2 : 1, index = pq & 15;
    if ((pq >> 4) > 1 || index > 3 || length < 1 + 64 * bytes) return JPEG_BAD_QUANT_SEGMENT;
    for (int k = 0; k < 64; ++k) {
      int v = 0;
      const JERRCODE s = bytes == 2 ? m_in.ReadWord(v) : m_in.ReadByte(v);
      if (s) return s;
      m_quant[index][k] = uint16_t(v);
    }
    m_quantDefined[index] = true;
    length -= 1 + 64 * bytes;
  }
  return JPEG_OK;
}

JERRCODE CJPEGDecoder::ParseRestart() {
  int length = 0, interval = 0;
  if (JERRCODE s = ReadSegmentLength(length)) return s;
  if (length != 2) return JPEG_BAD_SEGMENT;
  if (JERRCODE s = m_in.ReadWord(interval)) return s;
  m_restartInterval = interval;
  return JPEG_OK;
}

JERRCODE CJPEGDecoder::ParseScan() {
  if (!m_frameFound) return JPEG_BAD_SCAN_SEGMENT;
  int length = 0, n = 0;
  if (JERRCODE s = ReadSegmentLength(length)) return s;
  if (JERRCODE s = m_in.ReadByte(n)) return s;
  if (n < 1 || n > 4 || length != 4 + 2 * n) return JPEG_BAD_SCAN_SEGMENT;
  int blocksPerMcu = 0;
  for (int i = 0; i < n; ++i) {
    int id = 0, tables = 0;
    if (JERRCODE s = m_in.ReadByte(id)) return s;
    if (JERRCODE s = m_in.ReadByte(tables)) return s;
    int found = -1;
    for (int c = 0; c < m_channels; ++c)
      if (m_comp[c].id == id) found = c;
    if (found < 0 || (tables >> 4) > 3 || (tables & 15) > 3) return JPEG_BAD_SCAN_SEGMENT;
    for (int j = 0; j < i; ++j)
      if (m_scanComps[j] == found) return JPEG_BAD_SCAN_SEGMENT;
    m_scanComps[i] = found;
    m_comp[found].dcTable = tables >> 4;
    m_comp[found].acTable = tables & 15;
    blocksPerMcu += m_comp[found].h * m_comp[found].v;
  }
  if (n > 1 && blocksPerMcu > 10) return JPEG_BAD_SCAN_SEGMENT;
  int ss = 0, se = 0, a = 0;
  if (JERRCODE s = m_in.ReadByte(ss)) return s;
  if (JERRCODE s = m_in.ReadByte(se)) return s;
  if (JERRCODE s = m_in.ReadByte(a)) return s;
  m_scanCompCount = n;
  m_ss = ss;
  m_se = se;
  m_ah = a >> 4;
  m_al = a & 15;
  if (m_mode == JPEG_PROGRESSIVE) {
    if (ss > se || se > 63 || (ss == 0 && se != 0) || (ss > 0 && n != 1) || m_al > 13 || m_ah > 13)
      return JPEG_BAD_SCAN_SEGMENT;
  } else if (m_mode != JPEG_LOSSLESS) {
    m_ss = 0;  // sequential scans code the whole block whatever they say
    m_se = 63;
  }
  ++m_scanCount;
  JpegScanInfo info;
  info.count = n;
  for (int i = 0; i < n; ++i) info.comps[i] = m_scanComps[i];
  info.ss = ss;
  info.se = se;
  info.ah = m_ah;
  info.al = m_al;
  if (m_scanLog.size() < 1024) m_scanLog.push_back(info);
  m_inScan = true;
  return JPEG_OK;
}

JERRCODE CJPEGDecoder::ParseApp0() {
  int length = 0;
  if (JERRCODE s = ReadSegmentLength(length)) return s;
  if (length >= 5) {
    if (JERRCODE s = m_in.Ensure(5)) return s;
    if (std::memcmp(m_in.Current(), "JFIF\0", 5) == 0) m_jfifFound = true;
  }
  return m_in.Skip(uint32_t(length));
}

JERRCODE CJPEGDecoder::ParseApp1() {
  int length = 0;
  if (JERRCODE s = ReadSegmentLength(length)) return s;
  if (length >= 6) {
    if (JERRCODE s = m_in.Ensure(5)) return s;
    if (std::memcmp(m_in.Current(), "Exif\0", 5) == 0) {
      m_exifFound = true;
      if (JERRCODE s = m_in.Skip(6)) return s;
      try {
        m_exif.assign(size_t(length - 6), 0);
      } catch (const std::bad_alloc&) {
        return JPEG_OUT_OF_MEMORY;
      }
      if (JERRCODE s = m_in.ReadBytes(m_exif.data(), uint32_t(m_exif.size()))) return s;
      return m_meta.Parse(m_exif.data(), uint32_t(m_exif.size()));
    }
  }
  return m_in.Skip(uint32_t(length));
}

JERRCODE CJPEGDecoder::ParseApp14() {
  int length = 0;
  if (JERRCODE s = ReadSegmentLength(length)) return s;
  if (length >= 12) {
    if (JERRCODE s = m_in.Ensure(12)) return s;
    const uint8_t* p = m_in.Current();
    if (std::memcmp(p, "Adobe", 5) == 0) {
      m_adobeFound = true;
      m_adobeTransform = p[11];
    }
  }
  return m_in.Skip(uint32_t(length));
}

JERRCODE CJPEGDecoder::MarkerLoop(bool headerOnly) {
  for (;;) {
    if (m_inScan) {
      if (headerOnly) return JPEG_OK;
      if (JERRCODE s = DecodeScan()) return s;
      m_inScan = false;
    }
    int marker = 0;
    if (JERRCODE s = NextMarker(marker)) return s;
    JERRCODE s = JPEG_OK;
    switch (marker) {
      case 0xC0:
      case 0xC1:
      case 0xC2:
      case 0xC3: s = ParseFrame(marker); break;
      case 0xC5: case 0xC6: case 0xC7: case 0xC9: case 0xCA:
      case 0xCB: case 0xCD: case 0xCE: case 0xCF: return JPEG_NOT_IMPLEMENTED;
      case 0xC4: s = ParseHuffman(); break;
      case 0xDB: s = ParseQuant(); break;
      case 0xDD: s = ParseRestart(); break;
      case 0xD8: break;
      case 0xD0: case 0xD1: case 0xD2: case 0xD3: case 0xD4: case 0xD5: case 0xD6: case 0xD7: break;
      case 0xDA: s = ParseScan(); break;
      case 0xE0: s = ParseApp0(); break;
      case 0xE1: s = ParseApp1(); break;
      case 0xEE: s = ParseApp14(); break;
      case 0xD9:
        m_eoiFound = true;
        return headerOnly ? JPEG_BAD_SCAN_SEGMENT : JPEG_OK;
      case 0x01: break;  // TEM has no length
      default: s = SkipSegment(); break;  // COM and the other segments
    }
    if (s != JPEG_OK) return s;
  }
}

JERRCODE CJPEGDecoder::ReadHeader(int* width, int* height, int* channels, JCOLOR* colour, JSS* sampling,
                                  int* precision) {
  if (!m_sourceSet) return JPEG_BAD_PARAMETER;
  if (JERRCODE s = MarkerLoop(true)) return s;
  // Colour from the component count and the APP14 transform flag.
  switch (m_channels) {
    case 1: m_colour = JC_GRAY; break;
    // Lossless frames have no colour transform: three components are RGB.
    case 3: m_colour = (m_mode == JPEG_LOSSLESS || (m_adobeFound && m_adobeTransform == 0)) ? JC_RGB : JC_YCBCR; break;
    case 4: m_colour = (m_adobeFound && m_adobeTransform == 2) ? JC_YCCK : JC_CMYK; break;
    default: m_colour = JC_UNKNOWN; break;
  }
  if (width) *width = m_width;
  if (height) *height = m_height;
  if (channels) *channels = m_channels;
  if (colour) *colour = m_colour;
  if (sampling) *sampling = m_sampling;
  if (precision) *precision = m_precision;
  return JPEG_OK;
}

JERRCODE CJPEGDecoder::SetDestination(uint8_t* pointer, int step, IppiSize size, int channels, JCOLOR colour,
                                      JSS sampling, int precision, int dctScale) {
  (void)sampling;  // the destination is interleaved pixels
  if (!pointer || step < 0 || channels < 1 || channels > 4 || precision < 1 || precision != m_precision)
    return JPEG_BAD_PARAMETER;
  if (dctScale != 0 && dctScale != 1 && dctScale != 2 && dctScale != 4 && dctScale != 8) return JPEG_BAD_PARAMETER;
  m_dst = pointer;
  m_dstStep = step;
  m_dstSize = size;
  m_dstChannels = channels;
  m_dstColour = colour;
  m_dctScale = dctScale < 1 ? 1 : dctScale;
  return JPEG_OK;
}

JERRCODE CJPEGDecoder::ReadData() {
  if (!m_frameFound || !m_dst) return JPEG_BAD_PARAMETER;
  if (JERRCODE s = AllocateCoefficients()) return s;
  if (JERRCODE s = MarkerLoop(false)) return s;
  return WriteOutput();
}

}  // namespace kestrelink::jpeg
