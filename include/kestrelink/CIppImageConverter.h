#pragma once
#include <cstdint>

#include <kestrelink/Export.h>

class CColorMapEngine;

// Converts camera frames between pixel layouts. Frames are tightly packed,
// top row first; the trailing flag turns the output upside down. When the
// colour map is on, every conversion with a colour-map path goes through the
// tables of the inner engine instead of the plain code.
class KESTRELINK_API CIppImageConverter {
 public:
  CIppImageConverter();
  ~CIppImageConverter();
  // Two objects would share one engine; the class is not meant to be copied.
  CIppImageConverter(const CIppImageConverter&) = delete;
  CIppImageConverter& operator=(const CIppImageConverter&) = delete;

  // Mono sources.
  bool Mono8ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool Mono8ToBGR(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool Mono8ToMono8(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool Mono8ToMono16MSB(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool Mono16ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16ToBGR(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16ToMono8(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16ToMono16(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16ToMono16MSB(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool SwapWords(uint32_t w, uint32_t h, void* src, void* dst, bool flip);

  // Packed and swapped mono sources.

  // Packed and planar colour sources.

  // YUV sources and the static encoders.

  // Colour-map settings, forwarded to the engine as they stand.
  void SetImageColorMap(bool enable);
  bool EnableImageColorMap();  // reports whether the colour map is on
  void SetASCColorMap(bool enable);
  bool GetASCColorMap();
  bool GetASCColorMapParam(double gain[3], double offset[3], double gamma[3]);
  bool SetASCColorMapParam(const double gain[3], const double offset[3], const double gamma[3]);
  void SetImageClipLevel(int32_t level);
  int32_t GetImageClipLevel();
  void SetMonoPseudoColorMode(int32_t mode);
  int32_t GetMonoPseudoColorMode();
  bool LoadLUTFrom(const char* path);
  bool ExportCurrentColorLUT(const char* path);
  bool ExportCurrentMonoLUT(const char* path);

 private:
  // Copies row r of src to row rows-1-r of dst; the two must not overlap.
  static void FlipImage(const void* src, uint32_t rowBytes, uint32_t rows, void* dst);

  CColorMapEngine* m_Engine;
  uint32_t Gray8[256];   // i * 0x10101: a grey BGRx pixel, fourth byte 0
  uint32_t Red8[256];
  uint32_t Green8[256];
  uint32_t Blue8[256];
  uint32_t Red10[1024];  // 10-bit samples to bytes, step one index late
  uint32_t Green10[1024];
  uint32_t Blue10[1024];
  uint32_t Red12[4096];  // 12-bit samples to bytes, step one index late
  uint32_t Green12[4096];
  uint32_t Blue12[4096];
};
