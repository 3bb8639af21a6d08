// Encoder set-up and headers: parameters, tables, and the markers in the
// format's order (SOI, APP0 or APP14, COM, DQT, SOF, DHT, DRI).
#include "jpeg/CJPEGEncoder.h"

#include <cstdio>
#include <cstring>

#include "jpeg/JpegTables.h"
#include "platform/OpenMP.h"

namespace kestrelink::jpeg {

CJPEGEncoder::CJPEGEncoder() : m_threads(platform::MeasureTeamSize()), m_comment(DefaultComment()) {}

std::string CJPEGEncoder::DefaultComment() {
  char text[128];
  std::snprintf(text, sizeof text, "Intel(R) IPP JPEG encoder [%d.%d.%d] - %s", KESTRELINK_VERSION_MAJOR,
                KESTRELINK_VERSION_MINOR, KESTRELINK_VERSION_PATCH, "Kestrelink " KESTRELINK_VERSION_TEXT);
  return text;
}

JERRCODE CJPEGEncoder::SetSource(const uint8_t* pointer, int step, IppiSize size, int channels, JCOLOR colour,
                                 JSS sampling, int precision) {
  if (!pointer || size.width < 1 || size.height < 1 || size.width > 65535 || size.height > 65535 || channels < 1 ||
      channels > 4 || precision < 2 || precision > 16)
    return JPEG_BAD_PARAMETER;
  // Samples of more than 8 bits are little-endian words: 12-bit pixels of any
  // layout (extended and progressive frames), other depths one channel
  // (lossless frames).
  if (precision > 8 && precision != 12 && channels != 1) return JPEG_NOT_IMPLEMENTED;
  if (int64_t(step) < int64_t(size.width) * channels * (precision > 8 ? 2 : 1)) return JPEG_BAD_PARAMETER;
  (void)sampling;  // the source is interleaved pixels; its sampling is 4:4:4
  m_src = pointer;
  m_srcStep = step;
  m_size = size;
  m_srcChannels = channels;
  m_srcColour = colour;
  m_precision = precision;
  m_paramsSet = m_coefReady = false;
  return JPEG_OK;
}

JERRCODE CJPEGEncoder::SetDestination(CBaseStreamOutput* stream) { return m_out.Attach(stream); }

JERRCODE CJPEGEncoder::SetComment(const char* text) {
  m_comment = text ? text : DefaultComment();
  return JPEG_OK;
}

JERRCODE CJPEGEncoder::SetParams(JMODE mode, JCOLOR colour, JSS sampling, int restartInterval, bool huffmanOptimise,
                                 int quality) {
  if (mode < JPEG_BASELINE || mode > JPEG_PROGRESSIVE) return JPEG_NOT_IMPLEMENTED;
  // Baseline frames are 8-bit; extended and progressive ones 8- or 12-bit.
  if (m_precision != 8 && (m_precision != 12 || mode == JPEG_BASELINE)) return JPEG_NOT_IMPLEMENTED;
  if (restartInterval < 0 || restartInterval > 65535) return JPEG_BAD_PARAMETER;
  m_mode = mode;
  m_jpegColour = colour;
  m_sampling = sampling;
  m_restartInterval = restartInterval;
  m_optimise = huffmanOptimise || mode != JPEG_BASELINE;
  m_quality = quality;
  m_mcuWidth = McuWidth(sampling);
  m_mcuHeight = McuHeight(sampling);
  switch (colour) {
    case JC_GRAY: m_jpegChannels = 1; break;
    case JC_RGB:
    case JC_YCBCR: m_jpegChannels = 3; break;
    case JC_CMYK:
    case JC_YCCK: m_jpegChannels = 4; break;
    default: m_jpegChannels = m_srcChannels < 4 ? m_srcChannels : 4; break;
  }
  // What the row conversion can make of the source: grey from grey, YCbCr
  // or RGB from three- or four-byte colour pixels, CMYK or YCCK from CMYK.
  const bool srcColour = (m_srcColour == JC_BGR || m_srcColour == JC_RGB) && m_srcChannels >= 3;
  const bool srcInk = m_srcColour == JC_CMYK && m_srcChannels == 4;
  const bool fits = (colour == JC_GRAY && m_srcChannels == 1) || ((colour == JC_YCBCR || colour == JC_RGB) && srcColour) ||
                    ((colour == JC_CMYK || colour == JC_YCCK) && srcInk);
  if (!fits) return JPEG_NOT_IMPLEMENTED;
  const bool chroma = colour == JC_YCBCR || colour == JC_YCCK;
  if (m_jpegChannels == 1 || !chroma) m_mcuWidth = m_mcuHeight = 8;  // only chroma is subsampled
  m_mcusX = (m_size.width + m_mcuWidth - 1) / m_mcuWidth;
  m_mcusY = (m_size.height + m_mcuHeight - 1) / m_mcuHeight;

  // Quantisation: table 0 from the luminance table, table 1 from the chrominance one.
  if (!ScaleQuantTable(kLumaQuantZigzag, quality, m_quant[0].zigzag)) return JPEG_INTERNAL_ERROR;
  if (!ScaleQuantTable(kChromaQuantZigzag, quality, m_quant[1].zigzag)) return JPEG_INTERNAL_ERROR;
  for (int t = 0; t < 2; ++t) {
    m_quant[t].sixteenBit = mode == JPEG_EXTENDED;
    MakeForwardQuant(m_quant[t].zigzag, m_quant[t].quant);
  }
  m_dcTable[0].Init(kLumaDcSpec.bits, kLumaDcSpec.values, kLumaDcSpec.count);
  m_acTable[0].Init(kLumaAcSpec.bits, kLumaAcSpec.values, kLumaAcSpec.count);
  m_dcTable[1].Init(kChromaDcSpec.bits, kChromaDcSpec.values, kChromaDcSpec.count);
  m_acTable[1].Init(kChromaAcSpec.bits, kChromaAcSpec.values, kChromaAcSpec.count);
  PrepareComponents();
  m_paramsSet = true;
  m_coefReady = false;
  return AllocateBuffers();
}

void CJPEGEncoder::PrepareComponents() {
  const bool chroma = m_jpegColour == JC_YCBCR || m_jpegColour == JC_YCCK;
  const int hmax = m_mcuWidth / 8, vmax = m_mcuHeight / 8;
  for (int i = 0; i < m_jpegChannels; ++i) {
    CJPEGColorComponent& c = m_comp[i];
    c.id = i + 1;
    const bool luma = i == 0 || i == 3;
    c.h = luma ? hmax : 1;
    c.v = luma ? vmax : 1;
    // Component 0 uses tables 0, components 1 and 2 tables 1, a fourth
    // tables 0; colours without chroma use tables 0 throughout.
    c.quantTable = c.dcTable = c.acTable = (chroma && !luma) ? 1 : 0;
    c.blocksX = m_mcusX * c.h;
    c.blocksY = m_mcusY * c.v;
    c.width = (m_size.width * c.h + hmax - 1) / hmax;
    c.height = (m_size.height * c.v + vmax - 1) / vmax;
    c.usedBlocksX = (c.width + 7) / 8;
    c.usedBlocksY = (c.height + 7) / 8;
    c.lastDc = 0;
  }
}

JERRCODE CJPEGEncoder::AllocateBuffers() {
  if (!m_slotBuffer.Allocate(SlotBytes() * size_t(m_threads))) return JPEG_OUT_OF_MEMORY;
  for (int i = 0; i < 4; ++i) m_coef[i] = nullptr;
  // The row pipeline needs only the slots; optimised tables and progressive
  // scans read the whole frame's blocks.
  if (!m_optimise) return JPEG_OK;
  size_t blocks = 0;
  for (int i = 0; i < m_jpegChannels; ++i) blocks += size_t(m_comp[i].blocksX) * m_comp[i].blocksY;
  if (!m_coefBuffer.Allocate(blocks * 64 * sizeof(int16_t))) return JPEG_OUT_OF_MEMORY;
  int16_t* at = reinterpret_cast<int16_t*>(m_coefBuffer.Data());
  for (int i = 0; i < m_jpegChannels; ++i) {
    m_coef[i] = at;
    at += size_t(m_comp[i].blocksX) * m_comp[i].blocksY * 64;
  }
  return JPEG_OK;
}

size_t CJPEGEncoder::SlotScratchBytes() const {
  // Four full-size and four downsampled planes of an MCU row, and one row of
  // R, G, B, in samples of one or two bytes; rounded to whole cache lines.
  const size_t paddedW = size_t(m_mcusX) * m_mcuWidth;
  const size_t samples = paddedW * m_mcuHeight * 8 + paddedW * 3;
  return (samples * (m_precision > 8 ? 2 : 1) + 63) / 64 * 64;
}

size_t CJPEGEncoder::SlotBytes() const {
  size_t blocks = 0;
  for (int i = 0; i < m_jpegChannels; ++i) blocks += size_t(m_comp[i].blocksX) * m_comp[i].v;
  return SlotScratchBytes() + blocks * 64 * sizeof(int16_t);
}

uint8_t* CJPEGEncoder::SlotScratch(int thread) { return m_slotBuffer.Data() + SlotBytes() * size_t(thread); }

CJPEGEncoder::CoefRow CJPEGEncoder::SlotRow(int thread) {
  CoefRow row;
  int16_t* at = reinterpret_cast<int16_t*>(SlotScratch(thread) + SlotScratchBytes());
  for (int i = 0; i < m_jpegChannels; ++i) {
    row.comp[i] = at;
    at += size_t(m_comp[i].blocksX) * m_comp[i].v * 64;
  }
  return row;
}

CJPEGEncoder::CoefRow CJPEGEncoder::FrameRow(int mcuRow) {
  CoefRow row;
  for (int i = 0; i < m_jpegChannels; ++i) row.comp[i] = Block(i, 0, mcuRow * m_comp[i].v);
  return row;
}

JERRCODE CJPEGEncoder::WriteQuantTable(int index) {
  const CJPEGEncoderQuantTable& t = m_quant[index];
  const int bytes = t.sixteenBit ? 2 : 1;
  if (JERRCODE s = m_out.WriteWord(0xFFDB)) return s;
  if (JERRCODE s = m_out.WriteWord(2 + 1 + 64 * bytes)) return s;
  if (JERRCODE s = m_out.WriteByte((t.sixteenBit ? 0x10 : 0) | index)) return s;
  for (int k = 0; k < 64; ++k) {
    const JERRCODE s = t.sixteenBit ? m_out.WriteWord(t.zigzag[k]) : m_out.WriteByte(t.zigzag[k]);
    if (s) return s;
  }
  return JPEG_OK;
}

JERRCODE CJPEGEncoder::WriteHuffmanTable(int tableClass, int index, const CJPEGEncoderHuffmanTable& table) {
  if (JERRCODE s = m_out.WriteWord(0xFFC4)) return s;
  if (JERRCODE s = m_out.WriteWord(2 + 1 + 16 + table.m_count)) return s;
  if (JERRCODE s = m_out.WriteByte((tableClass << 4) | index)) return s;
  if (JERRCODE s = m_out.WriteBytes(table.m_bits, 16)) return s;
  return m_out.WriteBytes(table.m_values, uint32_t(table.m_count));
}

JERRCODE CJPEGEncoder::WriteScanHeader(int count, const int* components, int ss, int se, int ah, int al) {
  if (JERRCODE s = m_out.WriteWord(0xFFDA)) return s;
  if (JERRCODE s = m_out.WriteWord(6 + 2 * count)) return s;
  if (JERRCODE s = m_out.WriteByte(count)) return s;
  for (int i = 0; i < count; ++i) {
    const CJPEGColorComponent& c = m_comp[components[i]];
    if (JERRCODE s = m_out.WriteByte(c.id)) return s;
    if (JERRCODE s = m_out.WriteByte((c.dcTable << 4) | c.acTable)) return s;
  }
  if (JERRCODE s = m_out.WriteByte(ss)) return s;
  if (JERRCODE s = m_out.WriteByte(se)) return s;
  return m_out.WriteByte((ah << 4) | al);
}

JERRCODE CJPEGEncoder::WriteHeader() {
  if (!m_paramsSet) return JPEG_BAD_PARAMETER;
  const bool chroma = m_jpegColour == JC_YCBCR || m_jpegColour == JC_YCCK;
  if (JERRCODE s = m_out.WriteWord(0xFFD8)) return s;
  const bool lossless = m_mode == JPEG_LOSSLESS;
  if (lossless) {
    // no application segment: a lossless frame has no colour transform to name
  } else if (m_jpegColour == JC_GRAY || m_jpegColour == JC_YCBCR) {
    static const uint8_t jfif[] = {0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0};
    if (JERRCODE s = m_out.WriteBytes(jfif, sizeof jfif)) return s;
  } else {
    const uint8_t transform = m_jpegColour == JC_YCCK ? 2 : 0;
    const uint8_t adobe[] = {0xFF, 0xEE, 0, 14, 'A', 'd', 'o', 'b', 'e', 0, 100, 0, 0, 0, 0, transform};
    if (JERRCODE s = m_out.WriteBytes(adobe, sizeof adobe)) return s;
  }
  // The comment's length counts its terminating zero.
  const uint32_t textBytes = uint32_t(m_comment.size()) + 1;
  if (textBytes + 2 > 65535) return JPEG_BAD_PARAMETER;
  if (JERRCODE s = m_out.WriteWord(0xFFFE)) return s;
  if (JERRCODE s = m_out.WriteWord(int(textBytes + 2))) return s;
  if (JERRCODE s = m_out.WriteBytes(m_comment.c_str(), textBytes)) return s;

  if (!lossless) {
    if (JERRCODE s = WriteQuantTable(0)) return s;
    if (m_jpegChannels > 1 && chroma)
      if (JERRCODE s = WriteQuantTable(1)) return s;
  }

  if (JERRCODE s = m_out.WriteWord(0xFFC0 + (m_mode - 1))) return s;
  if (JERRCODE s = m_out.WriteWord(8 + 3 * m_jpegChannels)) return s;
  if (JERRCODE s = m_out.WriteByte(m_precision)) return s;
  if (JERRCODE s = m_out.WriteWord(m_size.height)) return s;
  if (JERRCODE s = m_out.WriteWord(m_size.width)) return s;
  if (JERRCODE s = m_out.WriteByte(m_jpegChannels)) return s;
  for (int i = 0; i < m_jpegChannels; ++i) {
    const CJPEGColorComponent& c = m_comp[i];
    if (JERRCODE s = m_out.WriteByte(c.id)) return s;
    if (JERRCODE s = m_out.WriteByte((c.h << 4) | c.v)) return s;
    if (JERRCODE s = m_out.WriteByte(c.quantTable)) return s;
  }

  const bool twoTables = m_jpegChannels > 1 && chroma;
  if (lossless) return JPEG_OK;  // its table and restart interval go with the scan
  if (m_mode != JPEG_PROGRESSIVE) {
    // Optimised tables need the statistics of the whole frame first.
    if (m_optimise) OptimiseTables();
    for (int t = 0; t < (twoTables ? 2 : 1); ++t) {
      if (JERRCODE s = WriteHuffmanTable(0, t, m_dcTable[t])) return s;
      if (JERRCODE s = WriteHuffmanTable(1, t, m_acTable[t])) return s;
    }
  }
  if (m_restartInterval > 0) {
    if (JERRCODE s = m_out.WriteWord(0xFFDD)) return s;
    if (JERRCODE s = m_out.WriteWord(4)) return s;
    if (JERRCODE s = m_out.WriteWord(m_restartInterval)) return s;
  }
  return JPEG_OK;
}

}  // namespace kestrelink::jpeg
