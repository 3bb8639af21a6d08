#pragma once

#include <cstdint>

#include <kestrelink/Export.h>

// The primitive's choice between its fast and its accurate path. Values
// other than these three are taken as HintNone.
enum HintAlgorithm {
  HintNone = 0,
  HintFast = 1,
  HintAccurate = 2,
};

class CJpeg2kConversionBase;

// Lossless JPEG 2000 compression of single frames, as a header-less packet
// record per frame or as a complete JP2 file, and the summed magnitude
// spectrum of a set of 16-bit rows.
//
// The coding is fixed: one tile, five levels of the reversible 5-3 wavelet,
// the reversible colour transform on three-component frames, 64x64
// code-blocks, one quality layer.
class KESTRELINK_API CIppImageWrapper {
 public:
  // Holds no converter until the first InitJPeg2KConverter; no thread setup.
  CIppImageWrapper();
  ~CIppImageWrapper();
  CIppImageWrapper(const CIppImageWrapper& other);
  CIppImageWrapper& operator=(const CIppImageWrapper& other);

  // Stores the frame's size and source layout (100 and 101 mono, 300 three
  // planes, 400 packed 3 bytes, 500 packed 4 bytes, anything else BGR24).
  // fourth is not read.
  void InitJPeg2KConverter(uint32_t width, uint32_t height, uint32_t third, uint32_t fourth, uint32_t format);
  // out receives a 32-bit little-endian byte count and that many bytes of
  // packets; it must be large enough.
  bool EncodeJpeg2K(void* plane0, void* plane1, void* plane2, void* out);
  // Writes a complete JP2 file, replacing any file at path.
  bool WriteJpeg2KToFile(const char* path, void* plane0, void* plane1, void* plane2);
  bool DecodeJpeg2K(void* in, void* out0, void* out1, void* out2);

  // Adds the magnitude spectra of rowCount rows of length = 1 << order
  // signed 16-bit samples into spectrum (length doubles, which the caller
  // clears; the sum is not divided by rowCount). With centred non-zero the
  // zero frequency stands at length / 2. The transform is fixed point with
  // scale factor 1: bin k is X[k] / 2 (X the exact DFT) after the
  // normalisation of `flag` (1 divides by length, 4 by its square root, 2
  // and 8 not at all), rounded and held to 16 bits, then its magnitude is
  // taken in single precision. All hints give the same result. Always true;
  // an order outside 1..16, a length other than 1 << order, another flag or
  // rowCount 0 or below leave spectrum as it was.
  bool Compute1DFFT(int centred, int length, int order, int rowCount, int flag, HintAlgorithm hint, short** rows,
                    double* spectrum);

 private:
  CJpeg2kConversionBase* m_converter;
};
