#pragma once
#include <cstdint>

#include <kestrelink/Export.h>

class CWaveletCompression;

// Block wavelet compression of one grey frame: 32 x 32 blocks, each taken
// through `levels` steps of an integer 5/3 lifting transform and coded on its
// own by a bit-plane set coder. Close to lossless: with every bit plane coded
// a decoded frame differs from its source by a few grey levels.
//
//   CIppWavletCompression codec;
//   codec.Initialize(100, 1920, 1080, 12, 12, 3, 1, 1, 0);  // 12-bit pixels in two bytes
//   codec.Encode(nullptr, nullptr, frame, stream);          // stream sized for the worst case
//   codec.Decode(stream, nullptr, nullptr, frameCopy);      // note: stream first, image last
//
// A frame is a little-endian 32-bit total length (this field included), then
// for each block in grid order a 16-bit length and the block's data. Size,
// depth and levels are not recorded: encoder and decoder are set up alike.
class KESTRELINK_API CIppWavletCompression {
 public:
  // Sets up the thread team; no implementation, both ratios 100.
  CIppWavletCompression();
  ~CIppWavletCompression();
  CIppWavletCompression(const CIppWavletCompression&) = delete;
  CIppWavletCompression& operator=(const CIppWavletCompression&) = delete;

  // kind 100 or 101, filterType 1 (5/3 lifting), coderType 1; levels 1 to 4.
  // pixelBits 8 means one byte a pixel, anything else two. quantBits and
  // reserved are kept but not used by this coder. Answers false for another
  // kind, filter or coder, with any earlier set-up gone.
  bool Initialize(uint32_t kind, int width, int height, int quantBits, int pixelBits, int levels,
                  uint32_t filterType, uint32_t coderType, int reserved);

  // Percent of the bit planes to code. Kept before and after Initialize; the
  // coder built here codes all planes whatever the value.
  void SetEncodeRatio(int ratio);
  int GetEncodeRatio();
  void SetDecodeRatio(int ratio);
  int GetDecodeRatio();

  // The image is the third argument, the frame the fourth; the first two are
  // ignored. dst has no bound: size it for the worst case, MaxEncodedBytes().
  // Answers false before a successful Initialize.
  bool Encode(void* unused1, void* unused2, void* src, void* dst);

  // The frame is the first argument, the image the fourth. The frame's own
  // total length bounds the reads. Answers false before a successful
  // Initialize, or when the frame is too short for its blocks (the image is
  // then left as it was).
  bool Decode(void* src, void* unused1, void* unused2, void* dst);
  // As above, reading no more than srcBytes bytes of src whatever its total
  // length says; for frames that come from outside the program.
  bool Decode(const void* src, uint32_t srcBytes, void* dst);

  // The most bytes a frame of the current set-up can take; 0 before
  // Initialize.
  uint32_t MaxEncodedBytes();

 private:
  CWaveletCompression* m_impl;
  int32_t m_encodeRatio;
  int32_t m_decodeRatio;
};
