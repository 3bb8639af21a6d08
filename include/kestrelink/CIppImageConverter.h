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
  // Packed YUV to BGRx, BGR24 and RGB24. The plain path is studio-range
  // YCbCr; the colour map (BGRx and BGR24 targets) uses the library's integer
  // formula before the tables, so the two paths differ even with identity
  // tables. Widths are multiples of the group (2, or 4 for UVY411); the plain
  // path leaves the columns of a partial last group as they were.
  bool YUV422ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);  // plain path: fourth byte 0
  bool YUV422ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool YUV422ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool UVY422ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);  // plain path: fourth byte 0
  bool UVY422ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool UVY422ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool UVY411ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);  // plain path: fourth byte 0
  bool UVY411ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool UVY411ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool UVY444ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);  // plain path: fourth byte 0
  bool UVY444ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool UVY444ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  // U Y0 Y1 V Y2 Y3 to Y0 U Y1 V Y2 U Y3 V, each chroma byte used twice.
  bool UVY411ToYUV422(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  // Studio-range BGR to Y0 U Y1 V. With flip, BGR24ToYUV422 answers the
  // encode's result but leaves dst unwritten: a settled behaviour callers
  // depend on.
  bool BGR24ToYUV422(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR32ToYUV422(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  // 10- and 20-bit 4:2:2 through the integer formula, no colour map. The
  // 10-bit rows are ((w + 47) / 48) * 128 bytes apart. BGRx fourth byte: as
  // it was.
  bool YUV422_10BitPPToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool YUV422_10BitPPToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool YUV422_20BitToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool YUV422_20BitToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  // Four-byte pixels s0 s1 s2 s3 to three bytes s2 s0 s1, whatever the name says.
  bool YUV444PToUVY444(uint32_t w, uint32_t h, void* src, void* dst, bool flip);

  // Static encoders to planar Y, U, V (chroma planes w >> 1 wide; 4:2:0 ones
  // h / 2 high). The RGB sources are studio-range. Settled flip behaviours:
  // the RGB-source encoders write U's data into both chroma planes, and their
  // ...ToYUV420P forms write h chroma rows, so the planes need (w >> 1) * h
  // bytes; the row-pair ...ToYUV420P loops flip by pairs of rows, and
  // YUV444ToYUV420P puts its chroma rows w / 4 bytes late (its planes need
  // w / 4 bytes of room past the end). YUV444 is U Y V per pixel, YUV411 is
  // U Y0 Y1 V Y2 Y3.
  static bool BGR24PackedToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool RGB24PackedToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool BGR32PackedToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool BGR555PackedToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool BGR565PackedToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool YUV444ToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool UVY422ToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool YUV422ToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool YUV411ToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool BGRPlannerToYUV422P(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* Y, void* U, void* V,
                                  bool flip);  // planes R, G, B
  static bool BGR24PackedToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool RGB24PackedToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool BGR32PackedToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool BGR555PackedToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool BGR565PackedToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool YUV444ToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool UVY422ToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool YUV422ToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool YUV411ToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);
  static bool BGRPlannerToYUV420P(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* Y, void* U, void* V,
                                  bool flip);  // planes R, G, B

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
  // U Y0 Y1 V Y2 Y3 groups to planes of steps w, w / 4, w / 4, the row flip
  // on the planes. Y is typed as words but takes plain bytes, as it always has.
  static bool YUV411ToYUV411P(uint32_t w, uint32_t h, void* src, uint16_t* Y, void* U, void* V, bool flip);
  // U Y V pixels to the three planes.
  static bool YUV444ToYUV444P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip);

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
