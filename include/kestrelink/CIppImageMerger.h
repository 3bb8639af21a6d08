#pragma once
#include <cstdint>
#include <vector>

#include <kestrelink/Export.h>

// Lays two mono frames of different sizes over one another and writes one
// mono or BGR frame: Sub... members show the ratio of the two where they
// overlap, Merge... members blend them, ...ByPseudoColor members colour the
// result by the pseudo-colour table, ...ByHSL members colour each layer by a
// hue. Everything goes through the gamma table.
//
// Placing. A positive offsetX (offsetY) puts the second frame that far right
// (down) of the first; a negative one puts the first frame right (down) of
// the second. The output is the bounding box of the two placed frames,
// max(x1 + width1, x2 + width2) by max(y1 + height1, y2 + height2) pixels,
// rows packed (3 bytes a pixel for BGR, 2 bytes a sample for 16-bit mono).
// Where the two sizes differ the output is cleared first; where they are
// equal, pixels that no layer covers keep what dst held.
//
// The second frame is first rotated by `angle` degrees about (centerX,
// centerY) inside a frame of its own size (interpolation 0 nearest,
// 1 bilinear, other bicubic; bSmoothEdge blends the turned border), then
// mirrored: mirror 1 reverses its rows, 2 its columns, 3 both. Settled
// behaviours of the format:
//   - A pixel lies inside the first layer only strictly right of its left
//     edge and below its top edge (its first column and row don't count);
//     inside the first layer the same strict test applies to the second.
//     Outside the first layer the second owns its left and top edges.
//   - The second layer is read as a stream: its read position moves on only
//     at pixels that use it, so where its edge is cut by the first layer's
//     strict test the rest of its samples shift along.
//   - A mirror outside 0..3 without a rotation gives a blank second layer.
//   - The first layer's edge pixels that neither test claims hold the first
//     frame's raw samples in mono output, and black in BGR output.
//
// Per pixel: both layers, Sub: gamma(ratio(a, b)) with ratio(a, b) =
// slope(min(256 a / b, 255)) (a itself for b 0); Merge: gamma(((256 - w) b +
// a w) >> 8) clamped, w = trunc(256 weight); one layer: gamma of its sample.
// 16-bit members take the same ratio (a byte, scaled up to bitDepth) and
// clamp samples above bitDepth's range; colour tables are entered with the
// top eight bits of a 16-bit value. bitDepth runs from 1 to 16.
//
// ...ByHSL: the four unsigned long values are, in order, the first layer's
// hue, the second frame's width and height, and the second layer's hue
// (0 to 255: 0 red, 85 green, 170 blue); both layers are fully saturated,
// and the overlap takes the hue and saturation of the two colours added.
//
// MergeMono...ToBGR write gamma(sample) of each frame into the bytes that
// its channel picks (0 blue, 1 green, 2 red, 3 blue and red, 4 blue and
// green, 5 green and red), first frame first; the weights are not read. A
// channel outside 0..5 answers false before anything is written.
//
// Answers false for a null frame, a zero size, an output beyond 2^31 bytes
// a row, or a failed rotation; temporaries are released either way. One
// thread at a time per object; the tables are kept between calls and
// rebuilt only when gamma, depth or hue change.
class KESTRELINK_API CIppImageMerger {
 public:
  CIppImageMerger();

  bool SubMono8ToMono8(uint32_t width1, uint32_t height1, void* image1, void* background1, uint32_t width2,
                       uint32_t height2, void* image2, void* background2, void* dst, int offsetX, int offsetY,
                       int centerX, int centerY, double gamma, double angle, int mirror, int interpolation,
                       bool bSmoothEdge);
  bool SubMono8ToBGRByPseudoColor(uint32_t width1, uint32_t height1, void* image1, void* background1,
                                  uint32_t width2, uint32_t height2, void* image2, void* background2, void* dst,
                                  int offsetX, int offsetY, int centerX, int centerY, double gamma, double angle,
                                  int mirror, int interpolation, bool bSmoothEdge);
  bool SubMono16ToMono16(uint32_t width1, uint32_t height1, uint32_t bitDepth, void* image1, void* background1,
                         uint32_t width2, uint32_t height2, void* image2, void* background2, void* dst, int offsetX,
                         int offsetY, int centerX, int centerY, double gamma, double angle, int mirror,
                         int interpolation, bool bSmoothEdge);
  bool SubMono16ToBGRByPseudoColor(uint32_t width1, uint32_t height1, uint32_t bitDepth, void* image1,
                                   void* background1, uint32_t width2, uint32_t height2, void* image2,
                                   void* background2, void* dst, int offsetX, int offsetY, int centerX, int centerY,
                                   double gamma, double angle, int mirror, int interpolation, bool bSmoothEdge);

  bool MergeMono8ToMono8(uint32_t width1, uint32_t height1, void* image1, float weight, uint32_t width2,
                         uint32_t height2, void* image2, void* dst, int offsetX, int offsetY, int centerX,
                         int centerY, double gamma, double angle, int mirror, int interpolation, bool bSmoothEdge);
  bool MergeMono16ToMono16(uint32_t width1, uint32_t height1, uint32_t bitDepth, void* image1, float weight,
                           uint32_t width2, uint32_t height2, void* image2, void* dst, int offsetX, int offsetY,
                           int centerX, int centerY, double gamma, double angle, int mirror, int interpolation,
                           bool bSmoothEdge);
  bool MergeMono8ToBGR(uint32_t width1, uint32_t height1, void* image1, int channel1, float weight1, uint32_t width2,
                       uint32_t height2, void* image2, int channel2, float weight2, void* dst, int offsetX,
                       int offsetY, int centerX, int centerY, double gamma, double angle, int mirror,
                       int interpolation, bool bSmoothEdge);
  bool MergeMono16ToBGR(uint32_t width1, uint32_t height1, uint32_t bitDepth, void* image1, int channel1,
                        float weight1, uint32_t width2, uint32_t height2, void* image2, int channel2, float weight2,
                        void* dst, int offsetX, int offsetY, int centerX, int centerY, double gamma, double angle,
                        int mirror, int interpolation, bool bSmoothEdge);

  bool SubMono8ToBGRByHSL(uint32_t width1, uint32_t height1, void* image1, void* background1, uint32_t hue1,
                          uint32_t width2, uint32_t height2, void* image2, void* background2, uint32_t hue2,
                          void* dst, int offsetX, int offsetY, int centerX, int centerY, double gamma, double angle,
                          int mirror, int interpolation, bool bSmoothEdge);
  bool SubMono16ToBGRByHSL(uint32_t width1, uint32_t height1, uint32_t bitDepth, void* image1, void* background1,
                           uint32_t hue1, uint32_t width2, uint32_t height2, void* image2, void* background2,
                           uint32_t hue2, void* dst, int offsetX, int offsetY, int centerX, int centerY,
                           double gamma, double angle, int mirror, int interpolation, bool bSmoothEdge);
  bool MergeMono8ToBGRByHSL(uint32_t width1, uint32_t height1, float weight, void* image1, uint32_t hue1,
                            uint32_t width2, uint32_t height2, void* image2, uint32_t hue2, void* dst, int offsetX,
                            int offsetY, int centerX, int centerY, double gamma, double angle, int mirror,
                            int interpolation, bool bSmoothEdge);
  bool MergeMono16ToBGRByHSL(uint32_t width1, uint32_t height1, uint32_t bitDepth, float weight, void* image1,
                             uint32_t hue1, uint32_t width2, uint32_t height2, void* image2, uint32_t hue2,
                             void* dst, int offsetX, int offsetY, int centerX, int centerY, double gamma,
                             double angle, int mirror, int interpolation, bool bSmoothEdge);

  // The transfer curve of a ratio, over 65,535 entries t = i / 65535 in
  // single precision: mode 0 tan(slope) t 255 (slope an angle in radians),
  // mode 1 t^slope 255 (0 at i = 0), mode 2 log(t + 1) slope 255; plus 0.5,
  // truncated, plus offset, clamped to 0..255. Another mode leaves it.
  void RebuildSlopeLUT(int offset, float slope, int mode);
  // The pseudo-colour ramp: black at 0, red to yellow, green, cyan to blue,
  // white at 255; a non-zero swap exchanges red and blue.
  void RebuildPseudoColorLUT(int swap);

 private:
  void RGBtoHLS(uint16_t red, uint16_t green, uint16_t blue, uint16_t& hue, uint16_t& saturation,
                uint16_t& lightness);
  void HLStoRGB(uint16_t hue, uint16_t lightness, uint16_t saturation, uint16_t& red, uint16_t& green,
                uint16_t& blue);
  void HLStoRGB_1(uint16_t hue, uint16_t lightness, uint16_t saturation, uint16_t& red, uint16_t& green,
                  uint16_t& blue);
  void HLStoRGB_2(uint16_t hue, uint16_t lightness, uint16_t saturation, uint16_t& red, uint16_t& green,
                  uint16_t& blue);
  void HLStoRGB_W(uint16_t hue, uint16_t lightness, uint16_t saturation, uint16_t& red, uint16_t& green,
                  uint16_t& blue);
  uint16_t HueToRGB(uint16_t n1, uint16_t n2, uint16_t hue);
  void ReBuildHSLLUT(uint16_t hue, uint16_t saturation, uint16_t* outRed, uint16_t* outGreen, uint16_t* outBlue);
  void ReBuildGamma(double gamma, int bits);
  uint16_t GammaCorrect(uint32_t value) const;
  int SetWithinBounds(int value, int low, int high) const;
  int SubWithinBounds(int a, int b, int shift, int low, int high) const;
  void SubImage8(uint32_t width, uint32_t height, const void* image, const void* background, void* dst);
  void SubImage16(uint32_t width, uint32_t height, uint32_t bitDepth, const void* image, const void* background,
                  void* dst);
  void Copy8BitImageToOneBGRChannel(uint32_t width, uint32_t height, const void* image, int channel, void* dst,
                                    uint32_t dstWidth, uint32_t x, uint32_t y);
  void Copy16BitImageToOneBGRChannel(uint32_t width, uint32_t height, uint32_t bitDepth, const void* image,
                                     int channel, void* dst, uint32_t dstWidth, uint32_t x, uint32_t y);
  // The three HSL tables of one region and the hue and saturation they hold.
  void UseRegionTables(uint16_t hue, uint16_t saturation, uint16_t* red, uint16_t* green, uint16_t* blue,
                       uint16_t& heldHue, uint16_t& heldSaturation);
  void PrepareHslTables(uint32_t hue1, uint32_t hue2);
  void RebuildRatioTable();

 public:
  // The tables, kept between calls; read by the composing members.
  uint16_t hslRed1[256], hslGreen1[256], hslBlue1[256];
  uint16_t hslHue1, hslSat1;
  uint16_t hslRed2[256], hslGreen2[256], hslBlue2[256];
  uint16_t hslHue2, hslSat2;
  uint16_t hslRedW[256], hslGreenW[256], hslBlueW[256];
  uint16_t hslHueW, hslSatW;
  std::vector<uint16_t> gammaTable;
  double gammaValue;
  int32_t gammaBits;
  uint8_t pseudoRed[256], pseudoGreen[256], pseudoBlue[256];
  std::vector<uint8_t> slopeTable;
  // Derived from slopeTable: ratio(a, b) of every pair of bytes, a * 256 + b.
  std::vector<uint8_t> ratioTable;
  bool gammaIsIdentity;
};
