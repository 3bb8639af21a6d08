#pragma once
#include <cstdint>
#include <memory>

#include <kestrelink/Export.h>

// The three enumerations hold any int: values out of their lists are taken
// as the methods describe (a pattern above 3 reads as BAYER_GBRG, a mode
// above 2 as CORRECTION_LOOK).

// Layout of the sensor's colour filter, named by its first two rows.
enum BAYERPATTERN : int { BAYER_GBRG = 0, BAYER_GRBG = 1, BAYER_BGGR = 2, BAYER_RGGB = 3 };

// What follows the demosaic of a raw frame.
enum CORRECTION_MODE : int { CORRECTION_NONE = 0, CORRECTION_MANUAL = 1, CORRECTION_AUTO = 2, CORRECTION_LOOK = 3 };

// How the channel tables are made in automatic correction.
enum CORRECTIONAL_ALG : int {
  CB_ALG_GRAY_OFFSET = 0,      // red and blue moved so their means meet green's
  CB_ALG_GRAY_GAIN = 1,        // red and blue scaled so their sums meet green's
  CB_ALG_CONTRAST_MEAN = 2,    // each channel stretched about its mean to a fixed spread
  CB_ALG_CONTRAST_MID = 3,     // as above, and each mean moved to mid grey
  CB_ALG_LOOK_1D = 4,          // the look's 1D table
  CB_ALG_LOOK_3D_TABLE = 5,    // the look's 3D table through a per-sample table
  CB_ALG_LOOK_3D_EXACT = 6,    // the look's 3D table, interpolated at each pixel
  CB_ALG_PREDEFINED_FILE = 7,  // the tables read by SetPredefinedLUTFile
};

struct CBayerCorrectorImpl;

// Demosaics raw colour-filter-array frames (8- or 16-bit samples, one a
// pixel) to BGR24, BGRx or BGR48 and corrects their colour in the same call;
// corrects BGR frames in place. Set pattern, mode, algorithm and balance, then
// SetImageInfo4CB once; per frame CheckFormat4CB and one conversion;
// ReleaseCBResources before a new format. Format codes: 100 and 101 raw,
// 200 BGR (24 bits at depth 8, or 48 bits), 500 BGRx (32 bits).
class KESTRELINK_API CIppBayerCorrector {
 public:
  CIppBayerCorrector();
  ~CIppBayerCorrector();
  // A copy refers to the same state as the original.
  CIppBayerCorrector(const CIppBayerCorrector&) = default;
  CIppBayerCorrector& operator=(const CIppBayerCorrector&) = default;

  void SetBayerPattern(BAYERPATTERN pattern);
  BAYERPATTERN GetBayerPattern();
  void SetColorCorrectionMode(CORRECTION_MODE mode);
  CORRECTION_MODE GetColorCorrectionMode();

  bool SetImageInfo4CB(uint32_t width, uint32_t height, uint32_t bitsPerPixel, uint32_t bitDepth, uint32_t formatCode,
                       bool bBGR);
  bool CheckFormat4CB(uint32_t width, uint32_t height, uint32_t bitsPerPixel, uint32_t bitDepth, uint32_t formatCode,
                      bool bBGR);
  bool IsInitCBImageInfo();
  void ReleaseCBResources();

  // Raw frames of width x height samples (bytes for 8 bits a pixel, 16-bit
  // words for 16); BGR48 takes 16-bit frames only. The fourth byte of BGRx
  // output keeps what dst held.
  bool RawConvertToBGR24(void* src, void* dst, bool bFlip);
  bool RawConvertToBGRx(void* src, void* dst, bool bFlip);
  bool RawConvertToBGR48(void* src, void* dst, bool bFlip);
  bool BGRApplyColorBalance(void* image, bool bFlip);

  // Colour balance in sample units of the depth, added by the manual tables.
  void SetColorBalance(int red, int green, int blue);
  void GetColorBalance(int& red, int& green, int& blue);
  void SetCBAlgorithm(CORRECTIONAL_ALG algorithm);
  CORRECTIONAL_ALG GetCBAlgorithm();
  bool ForceRecalcAutoLUT();
  // Writes the present tables to `path` now, one "index,red,green,blue" line
  // for each sample value of the depth.
  bool SetAutoCorrectionLUTSavingFile(const char* path);
  // Reads channel tables from a text file; only with CB_ALG_PREDEFINED_FILE.
  bool SetPredefinedLUTFile(const char* path);

  // Loads a look file (an XML document with a 3D table, a 1D table or both)
  // as the look of CORRECTION_LOOK and the look algorithms. Looks are kept
  // for the whole process by exact path and shared by all correctors: a
  // path already loaded is not read again until ForceRecalcAutoLUT finds
  // its file newer. False, with the look dropped, when the file can't be
  // read or holds neither table; then has3D and has1D are left untouched.
  bool LoadIridasLookLUT(const char* path, bool& has3D, bool& has1D);

 private:
  std::shared_ptr<CBayerCorrectorImpl> m_pImpl;
};
