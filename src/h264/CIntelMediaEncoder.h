#pragma once
// The hardware back-end's encoder: the session parameters, the NV12 planes
// the source is packed into, and one synchronous encode a frame. The first
// frame fixes the size and picks the implementation: hardware up to 1920 by
// 1088, Intel's software library beyond.
#include <cstdint>
#include <memory>

#include <mfx/mfxstructures.h>

#include "h264/INotifier.h"
#include "h264/MfxEncodePipeline.h"

class CIntelMediaEncoder : public INotifier {
 public:
  CIntelMediaEncoder();
  int OnBitstream(mfxBitstream* bitstream) override;
  ~CIntelMediaEncoder() override = default;
  // Encodes one frame into out; the bitstream length (0 when the encode failed).
  virtual uint32_t Encode(uint32_t width, uint32_t height, bool lumaOnly, const uint8_t* plane0, const uint8_t* plane1,
                          const uint8_t* plane2, uint8_t* out);
  virtual int GetBitRate();
  virtual void SetBitRate(int bitsPerSecond);
  virtual int GetGopSize();
  virtual void SetGopSize(int gopSize);
  virtual unsigned short GetNumThreads();
  virtual void SetNumThreads(unsigned short threads);
  virtual void Reset();
  virtual bool IsEncoder();

  // The parameters as they stand (after the first frame, as the run-time took them).
  const mfxVideoParam& Params() const { return m_params; }
  const mfxFrameSurface1& Surface() const { return m_surface; }
  const uint8_t* Luma() const { return m_luma.get(); }
  const uint8_t* Chroma() const { return m_chroma.get(); }

 private:
  void OpenSession(uint32_t width, uint32_t height);
  void EnsurePlanes(uint32_t alignedWidth, uint32_t alignedHeight);

  kestrelink::h264::MfxEncodePipeline m_pipeline;
  mfxFrameSurface1 m_surface{};
  mfxVideoParam m_params{};
  mfxBitstream m_bitstream{};
  uint32_t m_frameCount = 0;
  kestrelink::h264::WorkBuffer m_workBuffer;
  std::unique_ptr<uint8_t[]> m_chroma;
  size_t m_chromaCapacity = 0;
  std::unique_ptr<uint8_t[]> m_luma;
  size_t m_lumaCapacity = 0;
  bool m_opened = false;
  double m_frameRate = 30.0;
};
