#pragma once
// The JPEG decoder: SetSource, ReadHeader, SetDestination, ReadData. One
// marker loop serves both reads; ReadHeader stops at the first scan. Scans
// are entropy-decoded into the components' coefficient blocks (every mode
// shares that store, so progressive scans refine it in place); at the end of
// the image the blocks are inverse-transformed and the rows upsampled and
// colour-converted over the OpenMP team.
#include <cstdint>
#include <functional>
#include <vector>

#include "jpeg/BitStreamInput.h"
#include "jpeg/CJPEGMetaData.h"
#include "jpeg/HuffmanDecoder.h"
#include "jpeg/JpegTypes.h"
#include "jpeg/MemoryBuffer.h"
#include "primitives/IppTypes.h"

namespace kestrelink::jpeg {

// One scan header as read: component indices and the spectral and
// successive-approximation fields.
struct JpegScanInfo {
  int count = 0;
  int comps[4] = {};
  int ss = 0, se = 63, ah = 0, al = 0;
};

// The sampling value reported for factors other than 4:4:4, 4:2:2 and 2 x 2.
inline constexpr int32_t JS_OTHER = 4;

class CJPEGDecoder {
 public:
  CJPEGDecoder();

  JERRCODE SetSource(CBaseStreamInput* stream);
  JERRCODE ReadHeader(int* width, int* height, int* channels, JCOLOR* colour, JSS* sampling, int* precision);
  // dctScale 0 or 1: full size; 2, 4, 8: output reduced by that factor
  // (ceil(width / scale) x ceil(height / scale)); lossless frames come out
  // at full size whatever the scale.
  JERRCODE SetDestination(uint8_t* pointer, int step, IppiSize size, int channels, JCOLOR colour, JSS sampling,
                          int precision, int dctScale);
  JERRCODE ReadData();

  JMODE Mode() const { return m_mode; }
  int RestartInterval() const { return m_restartInterval; }
  int ScanCount() const { return m_scanCount; }
  const std::vector<JpegScanInfo>& Scans() const { return m_scanLog; }
  bool HuffmanTableDefined(int tableClass, int index) const {
    return (tableClass ? m_acTable : m_dcTable)[index & 3].m_defined;
  }
  const CJPEGColorComponent& Component(int i) const { return m_comp[i]; }
  const uint16_t* QuantTable(int i) const { return m_quantDefined[i] ? m_quant[i] : nullptr; }
  bool HasExif() const { return m_exifFound; }
  const CJPEGMetaData& MetaData() const { return m_meta; }
  bool AdobeFound() const { return m_adobeFound; }
  int AdobeTransform() const { return m_adobeTransform; }
  bool JfifFound() const { return m_jfifFound; }

 private:
  JERRCODE NextMarker(int& marker);
  JERRCODE ParseFrame(int marker);
  JERRCODE ParseHuffman();
  JERRCODE ParseQuant();
  JERRCODE ParseRestart();
  JERRCODE ParseScan();
  JERRCODE ParseApp0();
  JERRCODE ParseApp1();
  JERRCODE ParseApp14();
  JERRCODE SkipSegment();
  JERRCODE ReadSegmentLength(int& length);
  JERRCODE MarkerLoop(bool headerOnly);
  JERRCODE DecodeScan();
  JERRCODE DecodeLosslessScan();
  void WriteLosslessRows();
  JERRCODE ProcessRestart();
  // One MCU of a sequential scan of every component into `row`: per
  // component, block row y of the MCU row, column bx at (y x blocksX + bx) x 64.
  void DecodeMcu(int16_t* const row[4], int mx);
  JERRCODE DecodeRowsDirect(const std::function<JERRCODE(bool)>& beforeMcu);
  bool QuantTablesDefined() const;
  void DecodeSequentialBlock(int16_t* coef, CJPEGColorComponent& c);
  void DecodeDcFirst(int16_t* coef, CJPEGColorComponent& c);
  void DecodeDcRefine(int16_t* coef);
  void DecodeAcFirst(int16_t* coef);
  void DecodeAcRefine(int16_t* coef);
  JERRCODE AllocateCoefficients();
  JERRCODE EnsureCoefficientStore();
  JERRCODE WriteOutput();
  // The destination's checks, before any row is written.
  JERRCODE CheckOutput() const;
  // Output rows y0 .. y1 - 1 at full size, from planes already made.
  void ConvertRange(int y0, int y1);
  JERRCODE TransformPlanes();
  void MakeDequantTables();
  // Block row `by` of component `c`, its blocks from `blocks` on.
  void TransformBlockRow(int c, int by, const int16_t* blocks);
  template <class Rows>
  void ConvertRows(const Rows& kernels);
  template <class Rows>
  void ConvertRowsReduced(const Rows& kernels);
  template <class Rows>
  void ConvertRow(const Rows& kernels, int y, typename Rows::T* dst, typename Rows::T* scratch, int rowSamples) const;
  int RowScratchSamples() const;
  int16_t* Block(int component, int bx, int by) {
    const CJPEGColorComponent& c = m_comp[component];
    return m_coef[component] + (size_t(by) * c.blocksX + bx) * 64;
  }

  CBitStreamInput m_in;
  CJPEGDecoderHuffmanState m_bits;
  CJPEGDecoderHuffmanTable m_dcTable[4], m_acTable[4];
  uint16_t m_quant[4][64] = {};  // zigzag order
  bool m_quantDefined[4] = {};
  CJPEGColorComponent m_comp[4];
  CJPEGMetaData m_meta;
  std::vector<uint8_t> m_exif;
  bool m_exifFound = false;

  // Frame.
  bool m_frameFound = false, m_sourceSet = false, m_inScan = false, m_eoiFound = false;
  JMODE m_mode = JPEG_BASELINE;
  int m_precision = 8, m_width = 0, m_height = 0, m_channels = 0;
  int m_hmax = 1, m_vmax = 1, m_mcuWidth = 8, m_mcuHeight = 8, m_mcusX = 0, m_mcusY = 0;
  JCOLOR m_colour = JC_UNKNOWN;
  JSS m_sampling = JS_444;
  int m_restartInterval = 0;
  bool m_jfifFound = false, m_adobeFound = false;
  int m_adobeTransform = -1;

  // Scan.
  int m_scanComps[4] = {}, m_scanCount = 0, m_scanCompCount = 0;
  int m_ss = 0, m_se = 63, m_ah = 0, m_al = 0;
  int m_eobRun = 0, m_nextRestart = 0;
  std::vector<JpegScanInfo> m_scanLog;

  // Destination.
  uint8_t* m_dst = nullptr;
  int m_dstStep = 0, m_dstChannels = 0, m_dctScale = 1;
  IppiSize m_dstSize = {0, 0};
  JCOLOR m_dstColour = JC_UNKNOWN;

  // Scratch: coefficient blocks, then the components' sample planes.
  CMemoryBuffer m_coefBuffer, m_planeBuffer;
  int16_t* m_coef[4] = {};
  uint8_t* m_plane[4] = {};      // samples of one byte, or of two at 12-bit precision
  uint16_t* m_samples[4] = {};  // lossless frames: the samples before the point transform
  int m_planeStride[4] = {};     // in samples
  bool m_coefReady = false;
  bool m_scanned[4] = {};
  bool m_storeReady = false;   // the whole frame's blocks are allocated
  bool m_planeDone[4] = {};    // the component's plane was made while its scan decoded
  // Rows of blocks that a sequential scan of every component decodes into,
  // ahead of their inverse transform; made with the planes.
  CMemoryBuffer m_slotBuffer;
  CMemoryBuffer m_convertScratch;  // the row conversion's scratch when it runs behind the transforms
  bool m_converted = false;        // the output rows were written behind the transforms
  int m_slotCount = 1;
  size_t m_slotBlocks = 0;
  int32_t m_dequant[4][64] = {};
  int m_threads = 1;
};

}  // namespace kestrelink::jpeg
