#pragma once
// The table engine behind the colour-map path of CIppImageConverter. Tables
// combine an identity start, a pseudo-colour map for mono sources, the
// entries of a LUT text file, the ASC gain/offset/gamma curve and a clip
// level. They are rebuilt on private copies when depths or settings change,
// and swapped in under the lock; conversions read them without it.
#include <cstdint>
#include <mutex>
#include <string>

class CColorMapEngine {
 public:
  CColorMapEngine() = default;
  ~CColorMapEngine();
  CColorMapEngine(const CColorMapEngine&) = delete;
  CColorMapEngine& operator=(const CColorMapEngine&) = delete;

  // Settings.
  void SetImageColorMap(bool enable);
  bool EnableImageColorMap() const { return m_Enabled; }
  void SetASCColorMap(bool enable);
  bool GetASCColorMap() const { return m_AscEnabled; }
  bool SetASCColorMapParam(const double gain[3], const double offset[3], const double gamma[3]);
  bool GetASCColorMapParam(double gain[3], double offset[3], double gamma[3]) const;
  void SetImageClipLevel(int32_t level);
  int32_t GetImageClipLevel() const { return m_ClipLevel; }
  void SetMonoPseudoColorMode(int32_t mode);
  int32_t GetMonoPseudoColorMode() const { return m_PseudoMode; }
  bool LoadLUTFrom(const char* path);
  bool ExportCurrentColorLUT(const char* path);
  bool ExportCurrentMonoLUT(const char* path);

  // Table checks: true when the tables for these depths stand, rebuilding
  // them first if needed; false when the colour map is off.
  bool EnsureColorTables(int32_t inBits, int32_t outBits, bool pseudoAllowed);
  bool EnsureMonoTable(int32_t inBits, int32_t outBits);

  // Current tables, valid after a successful check.
  const uint16_t* ColorTable(int channel) const { return m_ColorTable[channel]; }
  // The three colour tables joined as BGRx pixels (fourth byte 0); built when
  // the output is 8 bits or less.
  const uint32_t* ColorBgrx() const { return m_ColorBgrx; }
  const uint16_t* MonoTable() const { return m_MonoTable; }
  // Index mask of the current tables: 2^in - 1. A sample above the depth
  // wraps into the table instead of reading past it.
  uint32_t ColorMask() const { return (1u << m_ColorInBits) - 1; }
  uint32_t MonoMask() const { return (1u << m_MonoInBits) - 1; }

  // Conversions of the colour-map path, same names as the converter's.
  bool Mono8ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool Mono8ToBGR(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool Mono8ToMono8(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool Mono16ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16ToBGR(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16ToMono8(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16ToMono16(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);

  // Packed and swapped mono sources.
  bool Mono16MSBToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBToMono8(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBToMono16(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBSwapToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBSwapToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBSwapToMono8(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16MSBSwapToMono16(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16PixelPackedToBGRx(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16PixelPackedToBGR24(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16PixelPackedToMono8(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16PixelPackedToMono16(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst, bool flip);
  bool Mono16PixelPacked8448ToBGRx(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                   bool flip);
  bool Mono16PixelPacked8448ToBGR24(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                    bool flip);
  bool Mono16PixelPacked8448ToMono8(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                    bool flip);
  bool Mono16PixelPacked8448ToMono16(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                     bool flip);
  bool MonoPcoPixelPackedToBGRx(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst, bool flip);
  bool MonoPcoPixelPackedToBGR24(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                 bool flip);
  bool MonoPcoPixelPackedToMono8(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                 bool flip);
  bool MonoPcoPixelPackedToMono16(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, void* src, void* dst,
                                  bool flip);

  // Packed and planar colour sources. Pseudo-colour never reaches them.
  bool BGR24ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR24ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool RGB24ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool RGB24ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGRxToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGRxToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR48ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool BGR48ToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool BGR48ToBGR48(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool RGB48ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool RGB48ToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool BGR64ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool BGR64ToBGR48(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip);
  bool BGR555PackedToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR555PackedToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR565PackedToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR565PackedToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR10PixelPackedToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR10PixelPackedToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR10PixelPackedPhoenixToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR10PixelPackedPhoenixToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool RGB10PixelPackedPhoenixToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool RGB10PixelPackedPhoenixToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool GVSPBGR10v1ToBGR(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool GVSPBGR10v1ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool GVSPBGR10v2ToBGR(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool GVSPBGR10v2ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool BGR24PToBGRx(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip);
  bool BGR24PToBGR24(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip);
  bool BGR30PToBGRx(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip);
  bool BGR36PToBGRx(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip);
  bool BGR42PToBGRx(uint32_t w, uint32_t h, uint32_t d, void* p1, void* p2, void* p3, void* dst, bool flip);
  bool BGR48PToBGR24(uint32_t w, uint32_t h, int32_t d, void* p1, void* p2, void* p3, void* dst, bool flip);

  // YUV sources.
  // The library's integer formula per pixel, then tables 0, 1, 2 for B, G, R.
  bool YUV422ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool YUV422ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool UVY422ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool UVY422ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool UVY411ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool UVY411ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool UVY444ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip);
  bool UVY444ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip);

 private:
  void Reset();
  void RebuildColorTables(int32_t inBits, int32_t outBits, bool pseudoAllowed);
  void RebuildMonoTable(int32_t inBits, int32_t outBits);
  void FreeTables();

  std::mutex m_Lock;
  int32_t m_ColorInBits = 0, m_ColorOutBits = 0;
  double m_Gain[3] = {1.0, 1.0, 1.0};
  double m_Offset[3] = {0.0, 0.0, 0.0};
  double m_Gamma[3] = {1.0, 1.0, 1.0};
  uint16_t* m_ColorTable[3] = {nullptr, nullptr, nullptr};
  uint32_t* m_ColorBgrx = nullptr;
  bool m_ColorDirty = false;
  uint16_t* m_MonoTable = nullptr;
  int32_t m_MonoInBits = 0, m_MonoOutBits = 0;
  bool m_MonoDirty = false;
  bool m_Enabled = false;
  int32_t m_ClipLevel = -1;
  int32_t m_PseudoMode = -1;
  bool m_AscEnabled = false;
  std::string m_LutPath;
  bool m_PseudoInTable = false;
};
