#pragma once
// The settings and working state of one JPEG 2000 converter, owned by a
// CIppImageWrapper from its first InitJPeg2KConverter. The coding is fixed:
// one tile, the reversible 5-3 wavelet over m_levels levels, the reversible
// colour transform on three components, 64x64 code-blocks, one layer.
#include <array>
#include <cstdint>
#include <vector>

namespace kestrelink::j2k {
class ByteStream;
}

class CJpeg2kConversionBase {
 public:
  // Precision record of a component: its bits and its wavelet levels.
  struct ComponentDepth {
    uint32_t bits;
    uint32_t levels;
  };
  struct ComponentRect {
    uint32_t x0, y0, x1, y1;
  };
  // Per component, one row of three values for each of up to 33 resolutions.
  using ExponentRows = std::array<std::array<uint32_t, 3>, 33>;

  CJpeg2kConversionBase() = default;
  CJpeg2kConversionBase(const CJpeg2kConversionBase&) = default;
  CJpeg2kConversionBase& operator=(const CJpeg2kConversionBase&) = default;
  virtual ~CJpeg2kConversionBase() = default;

  // A copy that owns its own arrays.
  virtual CJpeg2kConversionBase* Clone() const { return new CJpeg2kConversionBase(*this); }

  void Init(uint32_t width, uint32_t height, uint32_t third, uint32_t format);
  bool Encode(void* plane0, void* plane1, void* plane2, void* out);
  bool WriteToFile(const char* path, void* plane0, void* plane1, void* plane2);
  bool Decode(void* in, void* out0, void* out1, void* out2);

  uint32_t Width() const { return m_width; }
  uint32_t Height() const { return m_height; }
  uint32_t Format() const { return m_format; }
  uint32_t Components() const { return m_components; }

 private:
  // Transform stage: samples in, level shift, colour transform, wavelet,
  // tier-1 and the packets to out. False where the frame cannot be coded.
  bool WritePackets(void* plane0, void* plane1, void* plane2, kestrelink::j2k::ByteStream& out);
  bool Codable() const;

  uint32_t m_width = 0;
  uint32_t m_height = 0;
  uint32_t m_param3a = 0, m_param3b = 0;  // the third argument, stored and never read
  uint32_t m_format = 0;
  uint32_t m_components = 1;
  uint32_t m_levels = 5;
  bool m_useWavelet = true;
  bool m_useColorTransform = true;
  std::vector<ComponentDepth> m_componentDepths;
  std::vector<uint32_t> m_componentLevels;
  std::vector<ExponentRows> m_precinctWidthExp, m_precinctHeightExp;
  std::vector<ExponentRows> m_codeblockWidthExp, m_codeblockHeightExp;
  std::vector<ComponentRect> m_componentRects;
  std::vector<uint32_t> m_componentBits;
};
