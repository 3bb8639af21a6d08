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

  // Packed and swapped mono sources. `packedBits` is the bits a pixel takes
  // in the frame (normally 12) and serves only where rows start; `d` is the
  // data depth, 10 or 12. The MonoPcoPixelPacked 16-bit targets write nine
  // values per eight pixels, so the destination needs width / 8 values of
  // room past the frame; four of its plain targets set the process-wide
  // team to 4 threads.
  bool Mono16MSBToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBToMono8(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBToMono16(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBToMono16MSB(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool Mono16MSBSwapToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBSwapToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBSwapToMono8(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBSwapToMono16(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBSwapToMono16MSB(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool Mono16PixelPackedToBGRx(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16PixelPackedToBGR24(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16PixelPackedToMono8(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16PixelPackedToMono16(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16PixelPackedToMono16MSB(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                    bool flip);
  bool Mono16PixelPacked8448ToBGRx(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                   bool flip);
  bool Mono16PixelPacked8448ToBGR24(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                    bool flip);
  bool Mono16PixelPacked8448ToMono8(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                    bool flip);
  bool Mono16PixelPacked8448ToMono16(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                     bool flip);
  bool Mono16PixelPacked8448ToMono16MSB(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                        bool flip);
  bool MonoPcoPixelPackedToBGRx(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst, bool flip);
  bool MonoPcoPixelPackedToBGR24(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                 bool flip);
  bool MonoPcoPixelPackedToMono8(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                 bool flip);
  bool MonoPcoPixelPackedToMono16(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                  bool flip);
  bool MonoPcoPixelPackedToMono16MSB(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                     bool flip);

  // Packed and planar colour sources. BGRx destinations keep their fourth
  // byte unless a method says otherwise. Planar frames are three planes of
  // w * h samples, p1, p2, p3; which colour each plane means differs by
  // method as documented there.
  bool BGR24ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR24ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR24ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR24ToBGR48(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR24ToRGB48(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR24ToBGR24P(uint32_t w, uint32_t h, void* src, void* p1, void* p2, void* p3, bool flip);  // B, G, R planes
  bool RGB24ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);  // d 8: above darkens
  bool RGB24ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGRxToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGRxToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool RBG32ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);  // drops the fourth byte only
  bool BGR48ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool BGR48ToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool BGR48ToBGR48(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool RGB48ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool RGB48ToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  // BGR64ToBGRx narrows by 16 - d and BGR64ToBGR24 by d - 8: at d 16 the
  // first keeps the low byte and the second the high byte.
  bool BGR64ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool BGR64ToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool BGR64ToBGR48(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool BGR555PackedToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR555PackedToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR555PackedToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR565PackedToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR565PackedToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR565PackedToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  // The third channel of every pixel goes to byte 0 of the destination, not
  // to the pixel: each pixel's third byte stays as the caller left it.
  bool BGR10PixelPackedToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR10PixelPackedToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR10PixelPackedPhoenixToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR10PixelPackedPhoenixToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool RGB10PixelPackedPhoenixToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool RGB10PixelPackedPhoenixToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool GVSPBGR10v1ToBGR(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool GVSPBGR10v1ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);  // plain path: fourth byte 0
  bool GVSPBGR10v2ToBGR(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool GVSPBGR10v2ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);  // plain path: fourth byte 0
  // Plain path: p1 red, fourth byte 0. Colour map: p1 feeds byte 0.
  bool BGR24PToBGRx(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip);
  bool BGR24PToBGR24(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip);  // p1 to byte 0
  bool BGR30PToBGRx(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip);  // as BGR24P
  bool BGR36PToBGRx(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip);  // as BGR24P
  bool BGR42PToBGRx(uint32_t w, uint32_t h, uint32_t d, void* p1, void* p2, void* p3, void* dst, bool flip);
  bool BGR48PToBGR24(uint32_t w, uint32_t h, int32_t d, void* p1, void* p2, void* p3, void* dst, bool flip);  // p1 red

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
