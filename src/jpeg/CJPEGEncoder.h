#pragma once
// The JPEG encoder: SetSource, SetDestination, SetParams (or
// SetParamsLossless), WriteHeader, WriteData, in that order. Baseline and
// extended frames go MCU row by MCU row over the OpenMP team: without
// restarts each thread transforms and codes a run of rows and the runs are
// joined; with restarts the rows' transforms overlap and the entropy coder
// takes the rows in order. Every call answers a JERRCODE status.
#include <cstdint>
#include <string>
#include <vector>

#include "jpeg/BitStreamOutput.h"
#include "jpeg/HuffmanEncoder.h"
#include "jpeg/JpegKernels.h"
#include "jpeg/JpegTypes.h"
#include "jpeg/MemoryBuffer.h"
#include "primitives/IppTypes.h"

namespace kestrelink::jpeg {

struct CJPEGEncoderQuantTable {
  uint16_t zigzag[64] = {};
  ForwardQuant quant;
  bool sixteenBit = false;
};

class CJPEGEncoder {
 public:
  CJPEGEncoder();

  JERRCODE SetSource(const uint8_t* pointer, int step, IppiSize size, int channels, JCOLOR colour, JSS sampling,
                     int precision);
  JERRCODE SetDestination(CBaseStreamOutput* stream);
  JERRCODE SetParams(JMODE mode, JCOLOR colour, JSS sampling, int restartInterval, bool huffmanOptimise,
                     int quality);
  // Lossless frames (mode 4): predictor 1 to 7, point transform below the
  // precision; grey (precision 2 to 16, samples of more than 8 bits as
  // little-endian words) or RGB from 8-bit colour pixels.
  JERRCODE SetParamsLossless(JMODE mode, JCOLOR colour, int precision, int predictor, int pointTransform,
                             bool huffmanOptimise, int restartInterval = 0);
  // Replaces the default comment; null restores it.
  JERRCODE SetComment(const char* text);
  JERRCODE WriteHeader();
  JERRCODE WriteData();

  // The default comment, with this library's version.
  static std::string DefaultComment();

  int ComponentCount() const { return m_jpegChannels; }
  const CJPEGEncoderQuantTable& QuantTable(int i) const { return m_quant[i]; }

 private:
  JERRCODE WriteQuantTable(int index);
  JERRCODE WriteHuffmanTable(int tableClass, int index, const CJPEGEncoderHuffmanTable& table);
  JERRCODE WriteScanHeader(int count, const int* components, int ss, int se, int ah, int al);
  void PrepareComponents();
  JERRCODE AllocateBuffers();
  // The blocks of one MCU row, per component: block row by (0 .. v - 1 of
  // the row), column bx at (by x blocksX + bx) x 64.
  struct CoefRow {
    int16_t* comp[4] = {};
  };
  CoefRow FrameRow(int mcuRow);
  CoefRow SlotRow(int thread);
  uint8_t* SlotScratch(int thread);
  size_t SlotScratchBytes() const;
  size_t SlotBytes() const;
  void TransformRow(int mcuRow, uint8_t* scratch, const CoefRow& dst);
  template <class Rows>
  void TransformRowOf(const Rows& kernels, int mcuRow, uint8_t* scratch, const CoefRow& dst);
  void TransformAll();
  JERRCODE CodeRow(const CoefRow& row, int& restartsLeft, int& nextRestart);
  int BlocksPerMcu() const;
  // Codes the blocks of MCU `mx` of a row, the DC predictions in `lastDc`.
  void CodeMcu(const CoefRow& row, int mx, CJPEGEncoderHuffmanState& state, int32_t lastDc[4]) const;
  // A scan without restarts cut into one run of MCU rows per thread: each
  // thread transforms and codes its run into bits of its own, and the runs
  // are joined in order into the single-threaded stream (EncoderSplit.cpp).
  JERRCODE CodeSplit();
  struct Part {
    std::vector<uint8_t> bytes;  // coded and stuffed as if the run began the scan
    size_t used = 0;
    CJPEGEncoderHuffmanState tail;  // its bits short of a word
  };
  JERRCODE JoinPart(const Part& part);
  JERRCODE CodeSequential();
  JERRCODE FlushBits();
  JERRCODE WriteRestartMarker(int& nextRestart);
  void OptimiseTables();
  JERRCODE WriteProgressive();
  JERRCODE WriteLossless();
  void LosslessDifferences(std::vector<uint16_t>& diffs);
  int16_t* Block(int component, int bx, int by) {  // in the whole-frame store
    const CJPEGColorComponent& c = m_comp[component];
    return m_coef[component] + (size_t(by) * c.blocksX + bx) * 64;
  }

  // Source.
  const uint8_t* m_src = nullptr;
  int m_srcStep = 0;
  IppiSize m_size = {0, 0};
  int m_srcChannels = 0;
  JCOLOR m_srcColour = JC_UNKNOWN;
  int m_precision = 8;

  // Parameters.
  JMODE m_mode = JPEG_BASELINE;
  JCOLOR m_jpegColour = JC_UNKNOWN;
  JSS m_sampling = JS_444;
  int m_restartInterval = 0;
  bool m_optimise = false;
  int m_quality = 100;
  int m_spectralEnd = 63;
  int m_predictor = 1, m_pointTransform = 0;
  int m_threads = 1;
  int m_jpegChannels = 0;
  int m_mcuWidth = 8, m_mcuHeight = 8, m_mcusX = 0, m_mcusY = 0;
  bool m_paramsSet = false, m_coefReady = false;
  std::string m_comment;
  bool m_customComment = false;

  CBitStreamOutput m_out;
  CJPEGColorComponent m_comp[4];
  CJPEGEncoderQuantTable m_quant[4];
  CJPEGEncoderHuffmanTable m_dcTable[4], m_acTable[4];
  CJPEGEncoderHuffmanState m_state;
  CMemoryBuffer m_coefBuffer;  // every block is written before it is read
  int16_t* m_coef[4] = {};     // each component's blocks, whole MCUs of the frame (optimised and progressive)
  // One slot per thread, made once in SetParams: the row conversion's
  // scratch, then one MCU row of blocks for the row pipeline.
  CMemoryBuffer m_slotBuffer;
  // The coded bytes of each thread's run but the first, kept between frames.
  std::vector<Part> m_parts;
};

// Worst case of one block's bytes, stuffing included.
constexpr uint32_t kBlockBytes = 640;

}  // namespace kestrelink::jpeg
