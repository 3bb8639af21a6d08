// kestrelink average: the pixelwise mean of a run of raw frames, whole or as
// a rolling span; raw or PNG out.
#include <kestrelink/CIppAverageImage.h>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "Args.h"
#include "FrameFile.h"
#include "GeometryVerbs.h"
#include "LayoutPng.h"
#include "Layouts.h"
#include "ToolError.h"

namespace kestrelink::tool {

namespace {

inline constexpr uint32_t kDefaultDepth = 12;

using L = LayoutId;

// One averaging member pair. Planar frames hold their three planes one after
// another; `samples` gives the integers of sums a frame needs.
struct Averager {
  LayoutId layout;
  const char* method;
  bool png;  // whether the result has a PNG form
  uint64_t (*samples)(uint64_t w, uint64_t h);
  bool (*full)(CIppAverageImage&, int n, int w, int h, int depth, std::vector<void*>& frames, size_t plane, int* sums,
               uint8_t* dst);
  bool (*rolling)(CIppAverageImage&, int n, int w, int h, int depth, uint8_t* in, uint8_t* out, size_t plane, int* sums,
                  uint8_t* dst);
};

#define FULL8(method)                                                                                    \
  [](CIppAverageImage& a, int n, int w, int h, int, std::vector<void*>& f, size_t, int* s, uint8_t* d) { \
    return a.method(n, w, h, f.data(), s, d);                                                            \
  }
#define FULL16(method)                                                                                         \
  [](CIppAverageImage& a, int n, int w, int h, int depth, std::vector<void*>& f, size_t, int* s, uint8_t* d) { \
    return a.method(n, w, h, depth, f.data(), s, d);                                                           \
  }
#define ROLL8(method)                                                                                     \
  [](CIppAverageImage& a, int n, int w, int h, int, uint8_t* i, uint8_t* o, size_t, int* s, uint8_t* d) { \
    return a.method(n, w, h, i, o, s, d);                                                                 \
  }
#define ROLL16(method)                                                                                          \
  [](CIppAverageImage& a, int n, int w, int h, int depth, uint8_t* i, uint8_t* o, size_t, int* s, uint8_t* d) { \
    return a.method(n, w, h, depth, i, o, s, d);                                                                \
  }

// The three plane lists of frames whose planes lie `plane` bytes apart.
struct PlaneLists {
  std::vector<void*> p[3];
  PlaneLists(const std::vector<void*>& frames, size_t plane) {
    for (void* f : frames)
      for (int k = 0; k < 3; ++k) p[k].push_back(static_cast<uint8_t*>(f) + k * plane);
  }
};

const Averager kAveragers[] = {
    {L::Mono8, "Mono8Average", true, [](uint64_t w, uint64_t h) { return w * h; }, FULL8(Mono8Average),
     ROLL8(RollingMono8Average)},
    {L::Mono16, "Mono16Average", true, [](uint64_t w, uint64_t h) { return w * h; }, FULL16(Mono16Average),
     ROLL16(RollingMono16Average)},
    {L::Bgr24, "BGR24Average", true, [](uint64_t w, uint64_t h) { return 3 * w * h; }, FULL8(BGR24Average),
     ROLL8(RollingBGR24Average)},
    {L::Bgr48, "BGR48Average", true, [](uint64_t w, uint64_t h) { return 3 * w * h; }, FULL16(BGR48Average),
     ROLL16(RollingBGR48Average)},
    {L::Uvy444, "YUV444Average", false, [](uint64_t w, uint64_t h) { return 3 * w * h; }, FULL8(YUV444Average),
     ROLL8(RollingYUV444Average)},
    {L::Yuv422, "YUV422Average", false, [](uint64_t w, uint64_t h) { return 2 * w * h; }, FULL8(YUV422Average),
     ROLL8(RollingYUV422Average)},
    {L::Uvy422, "UVY422Average", false, [](uint64_t w, uint64_t h) { return 2 * w * h; }, FULL8(UVY422Average),
     ROLL8(RollingUVY422Average)},
    {L::Uvy411, "YUV411Average", false, [](uint64_t w, uint64_t h) { return h * ((3 * w) / 2); }, FULL8(YUV411Average),
     ROLL8(RollingYUV411Average)},
    {L::Bgrx, "BGRx32Average", true, [](uint64_t w, uint64_t h) { return 4 * w * h; }, FULL8(BGRx32Average),
     ROLL8(RollingBGRx32Average)},
    {L::Bgr64, "BGRx64Average", false, [](uint64_t w, uint64_t h) { return 4 * w * h; }, FULL16(BGRx64Average),
     ROLL16(RollingBGRx64Average)},
    {L::Bgr24p, "BGRP24Average", true, [](uint64_t w, uint64_t h) { return 3 * w * h; },
     [](CIppAverageImage& a, int n, int w, int h, int, std::vector<void*>& f, size_t plane, int* s, uint8_t* d) {
       PlaneLists p(f, plane);
       return a.BGRP24Average(n, w, h, p.p[0].data(), p.p[1].data(), p.p[2].data(), s, d, d + plane, d + 2 * plane);
     },
     [](CIppAverageImage& a, int n, int w, int h, int, uint8_t* i, uint8_t* o, size_t plane, int* s, uint8_t* d) {
       return a.RollingBGRP24Average(n, w, h, i, i + plane, i + 2 * plane, o, o + plane, o + 2 * plane, s, d, d + plane,
                                     d + 2 * plane);
     }},
    {L::Bgr48p, "BGRP48Average", false, [](uint64_t w, uint64_t h) { return 3 * w * h; },
     [](CIppAverageImage& a, int n, int w, int h, int depth, std::vector<void*>& f, size_t plane, int* s, uint8_t* d) {
       PlaneLists p(f, plane);
       return a.BGRP48Average(n, w, h, depth, p.p[0].data(), p.p[1].data(), p.p[2].data(), s, d, d + plane,
                              d + 2 * plane);
     },
     [](CIppAverageImage& a, int n, int w, int h, int depth, uint8_t* i, uint8_t* o, size_t plane, int* s, uint8_t* d) {
       return a.RollingBGRP48Average(n, w, h, depth, i, i + plane, i + 2 * plane, o, o + plane, o + 2 * plane, s, d,
                                     d + plane, d + 2 * plane);
     }},
};

const Averager* FindAverager(LayoutId id) {
  for (const Averager& a : kAveragers)
    if (a.layout == id) return &a;
  return nullptr;
}

std::string AverageLayouts() {
  std::string out;
  for (const Averager& a : kAveragers) out += (out.empty() ? "" : ", ") + std::string(LayoutOf(a.layout).name);
  return out;
}

std::string OutputName(const std::string& dir, const char* stem, int index, bool png) {
  char name[64];
  if (index < 0)
    std::snprintf(name, sizeof name, "%s.%s", stem, png ? "png" : "raw");
  else
    std::snprintf(name, sizeof name, "%s-%04d.%s", stem, index, png ? "png" : "raw");
  return dir + "/" + name;
}

}  // namespace

void PrintAverageUsage(std::ostream& out) {
  out << "usage: kestrelink average --layout L --size WxH [--rolling N] [--depth D] [--raw]\n"
         "                          FRAMES... OUTDIR\n"
         "The pixelwise mean of the frames (raw files of one frame each), with\n"
         "truncating division. Without --rolling every frame goes into one mean,\n"
         "written to OUTDIR/average.png (or .raw). With --rolling N the first N frames\n"
         "make OUTDIR/average-0000, and each further frame moves the span on by one,\n"
         "adding it and taking off the frame N before: average-0001, -0002, ...\n"
         "  --layout L   "
      << AverageLayouts()
      << "\n"
         "  --depth D    bits a 16-bit sample carries; the output limit (default 12)\n"
         "  --raw        raw files even where the layout has a PNG form\n"
         "The YUV, bgr64 and bgr48p results are raw files. bgrx and bgr64 keep the\n"
         "fourth sample of a pixel out of the mean (it is 0 in the output).\n";
}

int RunAverage(std::span<const std::string_view> args) {
  const Averager* avg = nullptr;
  std::optional<FrameSize> size;
  std::optional<int> span;
  int depth = int(kDefaultDepth);
  bool raw = false;
  const OptionSpec options[] = {
      {"--layout", "L",
       [&](std::string_view v) {
         const Layout* l = FindLayout(v);
         avg = l ? FindAverager(l->id) : nullptr;
         if (!avg)
           throw UsageError("no average of layout '" + std::string(v) + "' (layouts: " + AverageLayouts() + ")");
       }},
      {"--size", "WxH", [&](std::string_view v) { size = ParseSize("--size", v); }},
      {"--rolling", "N", [&](std::string_view v) { span = int(ParseInteger("--rolling", v, 1, 65536)); }},
      {"--depth", "D", [&](std::string_view v) { depth = int(ParseInteger("--depth", v, 1, 16)); }},
      {"--raw", "", [&](std::string_view) { raw = true; }},
  };
  std::vector<std::string_view> words;
  if (!ParseOptions(args, options, words)) {
    PrintAverageUsage(std::cout);
    return 0;
  }
  if (!avg) throw UsageError("missing --layout L (" + AverageLayouts() + ")");
  if (!size) throw UsageError("missing --size WxH");
  if (words.size() < 2) throw UsageError("average needs at least one frame and OUTDIR");
  const std::string dir(words.back());
  const int count = int(words.size() - 1);
  const int n = span.value_or(count);
  if (n > count) throw UsageError("--rolling " + std::to_string(n) + " needs at least that many frames");

  const Layout& layout = LayoutOf(avg->layout);
  const uint32_t w = size->width, h = size->height;
  const uint64_t frameBytes = FrameBytes(layout, w, h);
  const size_t plane = layout.id == L::Bgr24p ? size_t(w) * h : layout.id == L::Bgr48p ? 2 * size_t(w) * h : 0;
  const std::string frameName =
      "a " + std::to_string(w) + "x" + std::to_string(h) + " " + std::string(layout.name) + " frame";
  std::vector<std::vector<uint8_t>> frames;
  for (int k = 0; k < count; ++k) frames.push_back(ReadFrameFile(std::string(words[size_t(k)]), frameBytes, frameName));
  std::vector<void*> first;
  for (int k = 0; k < n; ++k) first.push_back(frames[size_t(k)].data());

  std::vector<int> sums(avg->samples(w, h) + 1, 0);
  std::vector<uint8_t> dst(frameBytes, 0);
  const bool png = avg->png && !raw;
  const uint32_t pngDepth = layout.fixedDepth ? layout.fixedDepth : uint32_t(depth);
  auto write = [&](int index) {
    const std::string path = OutputName(dir, "average", index, png);
    if (png)
      WritePng(path, LayoutToPng(layout.id, w, h, pngDepth, dst));
    else
      WriteRawFile(path, dst);
  };
  std::error_code made;
  std::filesystem::create_directories(dir, made);
  if (made) throw RunError("cannot make the folder '" + dir + "': " + made.message());
  CIppAverageImage average;
  if (!avg->full(average, n, int(w), int(h), depth, first, plane, sums.data(), dst.data()))
    throw RunError(std::string(avg->method) + " failed");
  write(span ? 0 : -1);
  for (int k = n; span && k < count; ++k) {
    if (!avg->rolling(average, n, int(w), int(h), depth, frames[size_t(k)].data(), frames[size_t(k - n)].data(), plane,
                      sums.data(), dst.data()))
      throw RunError(std::string("Rolling") + avg->method + " failed");
    write(k - n + 1);
  }
  return 0;
}

}  // namespace kestrelink::tool
