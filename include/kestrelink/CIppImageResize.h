#pragma once
#include <cstdint>

#include <kestrelink/Export.h>

// Scales a frame or a rectangle of it. All frames are packed rows (no
// padding) of the named layout, except the output of the first resize form,
// whose rows are dstPitchPixels pixels apart. Every method answers true when
// done.
//
// `...ippiResize`: interpolated resize. mode 1 bilinear, 2 bicubic
// (Catmull-Rom), 3 Lanczos (three lobes), 4 supersampling (the exact area
// average), anything else nearest neighbour. Supersampling only reduces:
// when either axis grows, nearest neighbour runs instead (not for YUV422).
// Pixel centres map onto pixel centres; a ROI's own origin maps onto the
// output's origin and the ROI fills the whole output.
//
//   CIppImageResize resize;
//   resize.Mono8ippiResize(1, 1920, 1080, src, 1280, 1280, 720, dst);         // whole frame, bilinear
//   resize.BGR24ippiResize(2, 1920, 1080, 480, 270, 960, 540, src, 1920, 1080, dst);  // centre, 2x
//
// The second form answers false, with dst untouched, when roiWidth or
// roiHeight is 0, or roiWidth or roiX exceeds srcWidth, or roiHeight or roiY
// exceeds srcHeight (each compared alone, as unsigned numbers); a ROI that
// reaches past the source is clipped by it.
//
// `...Resample`: decimation for previews. Source rows 0, step, 2 * step, ...
// go to output rows 0, 1, 2, ... below dstHeight; in each, pixels 0, step,
// 2 * step, ... go to output pixels 0, 1, 2, ... until dstWidth are written or
// the source row ends. Output pixels not reached keep their content. A step
// below 1 answers false.
//
// The fourth sample of BGRx32 and BGRx64 output is not written by the
// resize (it is copied by the resample).
class KESTRELINK_API CIppImageResize {
 public:
  // Sets up the thread team.
  CIppImageResize();

  // First form: the whole source into an output whose rows are
  // dstPitchPixels pixels apart.
  bool BGR24ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, void* src, int dstPitchPixels,
                       uint32_t dstWidth, uint32_t dstHeight, void* dst);
  bool Mono8ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, void* src, int dstPitchPixels,
                       uint32_t dstWidth, uint32_t dstHeight, void* dst);
  bool BGRx32ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, void* src, int dstPitchPixels,
                        uint32_t dstWidth, uint32_t dstHeight, void* dst);

  // Second form: the rectangle roiX, roiY, roiWidth, roiHeight of the source
  // into a packed dstWidth x dstHeight output.
  bool Mono8ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY, int roiWidth,
                       int roiHeight, void* src, uint32_t dstWidth, uint32_t dstHeight, void* dst);
  bool Mono16ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY, int roiWidth,
                        int roiHeight, void* src, uint32_t dstWidth, uint32_t dstHeight, void* dst);
  bool BGR24ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY, int roiWidth,
                       int roiHeight, void* src, uint32_t dstWidth, uint32_t dstHeight, void* dst);
  bool BGR48ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY, int roiWidth,
                       int roiHeight, void* src, uint32_t dstWidth, uint32_t dstHeight, void* dst);
  bool BGRx32ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY, int roiWidth,
                        int roiHeight, void* src, uint32_t dstWidth, uint32_t dstHeight, void* dst);
  bool BGRx64ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY, int roiWidth,
                        int roiHeight, void* src, uint32_t dstWidth, uint32_t dstHeight, void* dst);
  // Packed 4:2:2 (Y0 U Y1 V): luma and chroma resized apart, no
  // supersampling fallback; widths below 2 answer false.
  bool YUV422ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY, int roiWidth,
                        int roiHeight, void* src, uint32_t dstWidth, uint32_t dstHeight, void* dst);

  // Planar form: three planes B, G, R in one call, the same ROI in each.
  bool BGR24PlannerippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY, int roiWidth,
                              int roiHeight, void* src0, void* src1, void* src2, uint32_t dstWidth,
                              uint32_t dstHeight, void* dst0, void* dst1, void* dst2);
  bool BGR48PlannerippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY, int roiWidth,
                              int roiHeight, void* src0, void* src1, void* src2, uint32_t dstWidth,
                              uint32_t dstHeight, void* dst0, void* dst1, void* dst2);

  // Decimation by `step` on both axes; pixels move whole.
  bool Mono8Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                     uint32_t dstHeight, void* dst);
  bool Mono16Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                      uint32_t dstHeight, void* dst);
  bool BGR555Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                      uint32_t dstHeight, void* dst);
  bool BGR565Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                      uint32_t dstHeight, void* dst);
  bool BGR24Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                     uint32_t dstHeight, void* dst);
  bool BGR48Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                     uint32_t dstHeight, void* dst);
  bool BGRx32Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                      uint32_t dstHeight, void* dst);
  bool BGRx64Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                      uint32_t dstHeight, void* dst);
  bool BGR24PlannerResample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src0, void* src1, void* src2,
                            uint32_t dstWidth, uint32_t dstHeight, void* dst0, void* dst1, void* dst2);
  bool BGR48PlannerResample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src0, void* src1, void* src2,
                            uint32_t dstWidth, uint32_t dstHeight, void* dst0, void* dst1, void* dst2);
};
