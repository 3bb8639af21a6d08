#pragma once
// kestrelink rotate and mirror, and the turns the demo shows.
#include <cstdint>
#include <ostream>
#include <span>
#include <string_view>
#include <vector>

#include "Args.h"
#include "Layouts.h"

namespace kestrelink::tool {

int RunRotate(std::span<const std::string_view> args);
void PrintRotateUsage(std::ostream& out);
int RunMirror(std::span<const std::string_view> args);
void PrintMirrorUsage(std::ostream& out);

// What a rotation is asked to do. Without a centre, 90, -90 and 180 take the
// library's exact right-angle copy and other angles turn about the frame's
// centre pixel into a frame of the same size.
struct RotateRequest {
  double angle = 0;
  bool centreGiven = false;
  int centreX = 0, centreY = 0;
  int interpolation = 1;  // 0 nearest, 1 bilinear, 2 bicubic
  bool smooth = false;
};

// A turned frame: `width` pixels a row as the library wrote it, of which
// columns padLeft .. padLeft+pictureWidth-1 hold the picture.
struct TurnedFrame {
  uint32_t width = 0, height = 0;
  uint32_t padLeft = 0, pictureWidth = 0;
  std::vector<uint8_t> bytes;
};

// Turns `frame` (layout mono8, mono16, bgr24, bgr48, bgrx or bgr64); the
// background the turn leaves uncovered is 0.
TurnedFrame RotateFrame(LayoutId layout, const FrameSize& size, std::vector<uint8_t>& frame, const RotateRequest& r);

// Mirrors `frame` about the horizontal axis (rows), the vertical (columns) or both.
std::vector<uint8_t> MirrorFrame(LayoutId layout, const FrameSize& size, std::vector<uint8_t>& frame,
                                 bool horizontalAxis, bool verticalAxis);

// The picture of a turned frame without its pad columns.
std::vector<uint8_t> PictureOf(const TurnedFrame& turned, uint32_t bytesPerPixel);

}  // namespace kestrelink::tool
