// kestrelink motion: the change between two grey frames, as the motion
// detector finds it: difference, threshold, opening, and the counts, with
// the opened mask written out.
#include "MotionVerb.h"

#include <kestrelink/CIppMotionDetector.h>

#include <iostream>
#include <string>
#include <vector>

#include "Args.h"
#include "FrameFile.h"
#include "PngFile.h"
#include "ToolError.h"

namespace kestrelink::tool {

namespace {

inline constexpr int kDefaultThreshold = 20;

}  // namespace

void PrintMotionUsage(std::ostream& out) {
  out << "usage: kestrelink motion --size WxH A.raw B.raw [--threshold T] OUT.png|OUT.raw\n"
         "Compares two 8-bit grey frames (mono8, W x H bytes each): the absolute\n"
         "difference, thresholded at T (default 20: a change of T or more is motion),\n"
         "then opened by a 3 x 3 erosion and dilation to remove specks. Prints the\n"
         "changed pixels with their mean difference, the pixels left after the\n"
         "opening, and the edge pixels of B (3 x 3 Sobel, both directions). OUT is\n"
         "the opened mask: 255 where there is motion, 0 elsewhere.\n";
}

int RunMotion(std::span<const std::string_view> args) {
  FrameSize size;
  int threshold = kDefaultThreshold;
  const OptionSpec options[] = {
      {"--size", "WxH", [&](std::string_view v) { size = ParseSize("--size", v); }},
      {"--threshold", "T", [&](std::string_view v) { threshold = int(ParseInteger("--threshold", v, 1, 255)); }},
  };
  std::vector<std::string_view> files;
  if (!ParseOptions(args, options, files)) {
    PrintMotionUsage(std::cout);
    return 0;
  }
  if (size.width == 0) throw UsageError("missing --size WxH");
  if (files.size() != 3) throw UsageError("motion takes A.raw B.raw OUT");
  const unsigned w = size.width, h = size.height;
  const std::string frameName = "a " + std::to_string(w) + "x" + std::to_string(h) + " mono8 frame";
  std::vector<uint8_t> a = ReadFrameFile(std::string(files[0]), uint64_t(w) * h, frameName);
  std::vector<uint8_t> b = ReadFrameFile(std::string(files[1]), uint64_t(w) * h, frameName);

  CIppMotionDetector motion;
  int changed = 0, opened = 0, edges = 0;
  double meanChange = 0;
  std::vector<uint8_t> mask(size_t(w) * h, 0);
  const int W = int(w), H = int(h);
  bool done = motion.AbsDiff8GrayPixels(w, h, a.data(), b.data(), 0, 0, W, H, threshold, changed, meanChange);
  done = done && motion.AbsDiff8bitGrayPixels(w, h, a.data(), b.data(), mask.data(), 0, 0, W, H);
  done = done && motion.Threshold8bitGrayPixels(w, h, mask.data(), mask.data(), threshold, 0, 0, W, H);
  // The erosion starts a row down, so the opening's rectangle ends a row early.
  if (H > 1) done = done && motion.Openning8bitGrayPixels(w, h, mask.data(), 0, 0, W, H - 1);
  done = done && motion.Count8bitGrayPixels(w, h, mask.data(), 255, 255, 0, 0, W, H, opened);
  done = done && motion.EdgeDetect8GrayPixels(w, h, b.data(), nullptr, 0, 0, W, H, 2, edges, 0);
  if (!done) throw RunError("the motion detector failed");

  std::cout << "changed pixels: " << changed << " (mean difference " << meanChange << ")\n"
            << "after opening: " << opened << "\n"
            << "edge pixels of B: " << edges << "\n";
  const std::string out(files[2]);
  if (IsPngPath(out))
    WritePng(out, PngImage{w, h, PngPixel::Grey8, mask});
  else
    WriteRawFile(out, mask);
  return 0;
}

}  // namespace kestrelink::tool
