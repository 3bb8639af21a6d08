#pragma once
// The codec behind CIppWavletCompression: the block store of one plane, the
// filter set and the coder, and the encode and decode flows over them.
#include <cstdint>
#include <memory>

#include "compress/wavelet/Compressor.h"
#include "compress/wavelet/WaveletBlocks.h"
#include "compress/wavelet/WaveletDebug.h"

class CWaveletCompression : public CWaveletDebug {
 public:
  virtual void ImageToBlocks(const void* src) = 0;
  virtual void BlocksToImage(void* dst) = 0;
  virtual void CreateBlocks(bool isInteger, int levelsPlusOne, int width, int height) = 0;
  virtual ~CWaveletCompression() = default;

  // Frees blocks, filter set and coder; levels 1, ratios 100, the rest 0.
  void Reset();
  // Stores the set-up, builds the filter set for filterType and takes the
  // coder (null: unknown coderType), then the blocks. Answers false, reset,
  // when the filter or coder cannot be had.
  bool Setup(uint32_t kind, int width, int height, int quantBits, int pixelBits, int levels, uint32_t filterType,
             std::unique_ptr<CCompressor> coder);
  bool EncodeFrame(const void* src, void* dst);
  bool DecodeFrame(const void* src, uint32_t srcBytes, void* dst);
  uint32_t MaxFrameBytes();

  uint32_t m_filterType = 0;
  uint32_t m_coderType = 0;
  std::unique_ptr<WaveletFilterSet> m_filters;
  std::unique_ptr<CCompressor> m_compressor;
  std::unique_ptr<WaveletPlane> m_planes[3];
  int32_t m_planeCount = 0;
  int32_t m_width = 0, m_height = 0;
  int32_t m_quantBits = 0;
  int32_t m_pixelBits = 0;
  int32_t m_encodeRatio = 100, m_decodeRatio = 100;
  int32_t m_levels = 1;
  uint32_t m_kind = 0;

 protected:
  WaveletPlane* PlanePointers(WaveletPlane** out);
  void Transform(bool forward);
};

// One grey plane, 8 bits a pixel in one byte or more in two.
class CMonoWaveletCpmpression : public CWaveletCompression {
 public:
  void ImageToBlocks(const void* src) override;
  void BlocksToImage(void* dst) override;
  void CreateBlocks(bool isInteger, int levelsPlusOne, int width, int height) override;
};
