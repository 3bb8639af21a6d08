// kestrelink combine: two raw frames into one, side by side or one above the
// other, copied or converted to BGR24 on the way; raw or PNG out.
#include <kestrelink/CImageCombine.h>

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

// What one combine call is given. Planar frames are their three planes one
// after another in the file.
struct CombineJob {
  uint32_t w1, h1, w2, h2, W, H;
  uint8_t *a, *b, *dst;
  size_t planeA, planeB, planeDst;  // bytes of one plane, planar layouts only
  bool side;
  uint32_t depth, outDepth;
};

struct Member {
  LayoutId from, to;
  const char* method;
  uint32_t srcPixelBytes;  // 0: the layout's own frame size
  uint32_t dstPixelBytes;  // bytes a destination pixel (all planes)
  LayoutId png;            // the layout a PNG of the result is made from
  bool (*run)(CImageCombine&, const CombineJob&);
};

#define PLAIN(method) \
  [](CImageCombine& c, const CombineJob& j) { return c.method(j.w1, j.h1, j.a, j.w2, j.h2, j.b, j.dst, j.side); }
#define DEPTHS(method)                                                                  \
  [](CImageCombine& c, const CombineJob& j) {                                           \
    return c.method(j.w1, j.h1, j.depth, j.a, j.w2, j.h2, j.depth, j.b, j.dst, j.side); \
  }
#define DEPTHS_OUT(method)                                                                          \
  [](CImageCombine& c, const CombineJob& j) {                                                       \
    return c.method(j.w1, j.h1, j.depth, j.a, j.w2, j.h2, j.depth, j.b, j.outDepth, j.dst, j.side); \
  }

using L = LayoutId;
// The 16-bit colour members read rows of four words a pixel and write rows
// of four samples a pixel, whatever the layout's name says.
const Member kMembers[] = {
    {L::Mono8, L::Mono8, "Mono8CombineMono8", 0, 1, L::Mono8, PLAIN(Mono8CombineMono8)},
    {L::Mono8, L::Bgr24, "Mono8CombineBGR", 0, 3, L::Bgr24, PLAIN(Mono8CombineBGR)},
    {L::Mono16, L::Mono16, "Mono16CombineMono16", 0, 2, L::Mono16, DEPTHS_OUT(Mono16CombineMono16)},
    {L::Mono16, L::Bgr24, "Mono16CombineBGR", 0, 3, L::Bgr24, DEPTHS(Mono16CombineBGR)},
    {L::Yuv422, L::Yuv422, "YUV422CombineYUV422", 0, 2, L::Yuv422, PLAIN(YUV422CombineYUV422)},
    {L::Yuv422, L::Bgr24, "YUV422CombineBGR", 0, 3, L::Bgr24, PLAIN(YUV422CombineBGR)},
    {L::Uvy422, L::Uvy422, "UVY422CombineUVY422", 0, 2, L::Uvy422, PLAIN(UVY422CombineUVY422)},
    {L::Uvy422, L::Bgr24, "UVY422CombineBGR", 0, 3, L::Bgr24, PLAIN(UVY422CombineBGR)},
    {L::Uvy411, L::Uvy411, "YUV411CombineYUV411", 0, 0, L::Uvy411, PLAIN(YUV411CombineYUV411)},
    {L::Uvy411, L::Bgr24, "YUV411CombineBGR", 0, 3, L::Bgr24, PLAIN(YUV411CombineBGR)},
    {L::Uvy444, L::Uvy444, "YUV444CombineYUV444", 0, 3, L::Uvy444, PLAIN(YUV444CombineYUV444)},
    {L::Uvy444, L::Bgr24, "YUV444CombineBGR", 0, 3, L::Bgr24, PLAIN(YUV444CombineBGR)},
    {L::Rgb24, L::Rgb24, "RGB24CombineToRGB", 0, 3, L::Rgb24, PLAIN(RGB24CombineToRGB)},
    {L::Rgb24, L::Bgr24, "RGB24CombineToBGR", 0, 3, L::Bgr24, PLAIN(RGB24CombineToBGR)},
    {L::Bgr24, L::Bgr24, "BGR24CombineToBGR", 0, 3, L::Bgr24, PLAIN(BGR24CombineToBGR)},
    {L::Bgrx, L::Bgrx, "BGRxCombineToBGRx", 0, 4, L::Bgrx, PLAIN(BGRxCombineToBGRx)},
    {L::Bgrx, L::Bgr24, "BGRxCombineToBGR", 0, 3, L::Bgr24, PLAIN(BGRxCombineToBGR)},
    {L::Bgr555, L::Bgr555, "BGR555CombineToBGR555", 0, 2, L::Bgr555, PLAIN(BGR555CombineToBGR555)},
    {L::Bgr555, L::Bgr24, "BGR555CombineToBGR", 0, 3, L::Bgr24, PLAIN(BGR555CombineToBGR)},
    {L::Bgr565, L::Bgr565, "BGR565CombineToBGR565", 0, 2, L::Bgr565, PLAIN(BGR565CombineToBGR565)},
    {L::Bgr565, L::Bgr24, "BGR565CombineToBGR", 0, 3, L::Bgr24, PLAIN(BGR565CombineToBGR)},
    {L::Bgr48, L::Bgr48, "BGR48CombineBGR48", 8, 8, L::Bgr64, DEPTHS_OUT(BGR48CombineBGR48)},
    {L::Bgr48, L::Bgrx, "BGR48CombineBGR", 8, 4, L::Bgrx, DEPTHS(BGR48CombineBGR)},
    {L::Bgr64, L::Bgr64, "BGRx64CombineBGRx64", 8, 8, L::Bgr64, DEPTHS_OUT(BGRx64CombineBGRx64)},
    {L::Bgr64, L::Bgrx, "BGRx64CombineBGR", 8, 4, L::Bgrx, DEPTHS(BGRx64CombineBGR)},
    {L::Bgr24p, L::Bgr24, "BGR24PlannerCombineBGR", 0, 3, L::Bgr24,
     [](CImageCombine& c, const CombineJob& j) {
       return c.BGR24PlannerCombineBGR(j.w1, j.h1, j.a, j.a + j.planeA, j.a + 2 * j.planeA, j.w2, j.h2, j.b,
                                       j.b + j.planeB, j.b + 2 * j.planeB, j.dst, j.side);
     }},
    {L::Bgr24p, L::Bgr24p, "BGR24PlannerCombineBGRPlanner", 0, 3, L::Bgr24p,
     [](CImageCombine& c, const CombineJob& j) {
       return c.BGR24PlannerCombineBGRPlanner(j.w1, j.h1, j.a, j.a + j.planeA, j.a + 2 * j.planeA, j.w2, j.h2, j.b,
                                              j.b + j.planeB, j.b + 2 * j.planeB, j.dst, j.dst + j.planeDst,
                                              j.dst + 2 * j.planeDst, j.side);
     }},
    {L::Bgr48p, L::Bgr24, "BGR48PlanneCombineBGR", 0, 3, L::Bgr24,
     [](CImageCombine& c, const CombineJob& j) {
       return c.BGR48PlanneCombineBGR(j.w1, j.h1, j.depth, j.a, j.a + j.planeA, j.a + 2 * j.planeA, j.w2, j.h2, j.depth,
                                      j.b, j.b + j.planeB, j.b + 2 * j.planeB, j.dst, j.side);
     }},
    {L::Bgr48p, L::Bgr48p, "BGR48PlanneCombineBGRPlanner48", 0, 6, L::Bgr48p,
     [](CImageCombine& c, const CombineJob& j) {
       return c.BGR48PlanneCombineBGRPlanner48(j.w1, j.h1, j.depth, j.a, j.a + j.planeA, j.a + 2 * j.planeA, j.w2, j.h2,
                                               j.depth, j.b, j.b + j.planeB, j.b + 2 * j.planeB, j.outDepth, j.dst,
                                               j.dst + j.planeDst, j.dst + 2 * j.planeDst, j.side);
     }},
};

const Member* FindMember(LayoutId from, LayoutId to) {
  for (const Member& m : kMembers)
    if (m.from == from && m.to == to) return &m;
  return nullptr;
}

std::string TargetsOf(LayoutId from) {
  std::string out;
  for (const Member& m : kMembers)
    if (m.from == from) out += (out.empty() ? "" : ", ") + std::string(LayoutOf(m.to).name);
  return out;
}

std::string CombineSources() {
  std::string out;
  for (const Member& m : kMembers)
    if (m.from == m.to) out += (out.empty() ? "" : ", ") + std::string(LayoutOf(m.from).name);
  return out;
}

uint64_t SourceFrameBytes(const Member& m, uint32_t w, uint32_t h) {
  if (m.srcPixelBytes) return uint64_t(m.srcPixelBytes) * w * h;
  return FrameBytes(LayoutOf(m.from), w, h);
}

uint64_t DestinationBytes(const Member& m, uint32_t W, uint32_t H) {
  if (m.dstPixelBytes == 0) return ((uint64_t(W) * 6) >> 2) * H;  // 4:1:1 rows of (W * 6) >> 2 bytes
  return uint64_t(m.dstPixelBytes) * W * H;
}

}  // namespace

void PrintCombineUsage(std::ostream& out) {
  out << "usage: kestrelink combine --layout L [--to T] [--above] [--depth D] [--out-depth D]\n"
         "                          A.raw WxH B.raw WxH OUT\n"
         "Puts frame A and frame B into one frame: side by side (A on the left), or with\n"
         "--above one above the other (A on top). Frames of different sizes are aligned\n"
         "top left; the rest of OUT is 0. OUT is a raw file, or a PNG where the result's\n"
         "layout has one (a name ending in .png).\n"
         "  --layout L     the frames' layout: "
      << CombineSources()
      << "\n"
         "  --to T         the result's layout: L itself (a copy), or bgr24 (bgrx for\n"
         "                 bgr48 and bgr64), converted while placing\n"
         "  --depth D      bits a 16-bit sample carries, both frames (default 12)\n"
         "  --out-depth D  mono16, bgr48, bgr64 and bgr48p results: the depth to\n"
         "                 change to (default: --depth)\n"
         "The YUV to bgr24 combines go four pixels a step: widths should be multiples of 4.\n"
         "bgr48 and bgr64 frames are read, and their 16-bit results written, as rows of\n"
         "four words a pixel. Planar frames hold their three planes one after another.\n";
}

int RunCombine(std::span<const std::string_view> args) {
  const Layout* from = nullptr;
  const Layout* to = nullptr;
  bool above = false;
  uint32_t depth = kDefaultDepth;
  std::optional<uint32_t> outDepth;
  auto layout = [](std::string_view option, std::string_view name) {
    const Layout* l = FindLayout(name);
    if (!l) throw UsageError("unknown layout '" + std::string(name) + "' for " + std::string(option));
    return l;
  };
  const OptionSpec options[] = {
      {"--layout", "L", [&](std::string_view v) { from = layout("--layout", v); }},
      {"--to", "T", [&](std::string_view v) { to = layout("--to", v); }},
      {"--above", "", [&](std::string_view) { above = true; }},
      {"--depth", "D", [&](std::string_view v) { depth = uint32_t(ParseInteger("--depth", v, 1, 16)); }},
      {"--out-depth", "D", [&](std::string_view v) { outDepth = uint32_t(ParseInteger("--out-depth", v, 1, 16)); }},
  };
  std::vector<std::string_view> files;
  if (!ParseOptions(args, options, files)) {
    PrintCombineUsage(std::cout);
    return 0;
  }
  if (!from) throw UsageError("missing --layout L (" + CombineSources() + ")");
  if (files.size() != 5) throw UsageError("combine takes A.raw WxH B.raw WxH OUT");
  const Member* m = FindMember(from->id, to ? to->id : from->id);
  if (!m) {
    const std::string targets = TargetsOf(from->id);
    throw UsageError(
        targets.empty()
            ? "the library combines no " + std::string(from->name) + " frames (layouts: " + CombineSources() + ")"
            : "no combine of " + std::string(from->name) + " to " + std::string(to->name) + " (to: " + targets + ")");
  }
  const FrameSize s1 = ParseSize("A's size", files[1]), s2 = ParseSize("B's size", files[3]);
  CImageCombine combine;
  CombineJob job{};
  job.w1 = s1.width, job.h1 = s1.height, job.w2 = s2.width, job.h2 = s2.height, job.side = !above;
  job.W = combine.GetCombineImageWidth(job.w1, job.w2, job.side);
  job.H = combine.GetCombineImageHeight(job.h1, job.h2, job.side);
  if (uint64_t(job.W) * job.H > kMaxPixels) throw UsageError("the combined frame is too large");
  job.depth = depth, job.outDepth = outDepth.value_or(depth);
  auto name = [&](const FrameSize& s) {
    return "a " + std::to_string(s.width) + "x" + std::to_string(s.height) + " " + std::string(from->name) + " frame";
  };
  std::vector<uint8_t> a = ReadFrameFile(std::string(files[0]), SourceFrameBytes(*m, job.w1, job.h1), name(s1));
  std::vector<uint8_t> b = ReadFrameFile(std::string(files[2]), SourceFrameBytes(*m, job.w2, job.h2), name(s2));
  std::vector<uint8_t> dst(DestinationBytes(*m, job.W, job.H), 0);
  const uint32_t sample = from->id == L::Bgr48p ? 2 : 1;
  job.a = a.data(), job.b = b.data(), job.dst = dst.data();
  job.planeA = size_t(sample) * job.w1 * job.h1, job.planeB = size_t(sample) * job.w2 * job.h2;
  job.planeDst = size_t(sample) * job.W * job.H;
  if (!m->run(combine, job)) throw RunError(std::string(m->method) + " failed");
  const std::string out(files[4]);
  if (IsPngPath(out)) {
    if (m->png == L::Bgr64) throw RunError("a 16-bit colour result has no PNG form; write a raw file");
    WritePng(out, LayoutToPng(m->png, job.W, job.H, job.outDepth, dst));
  } else {
    WriteRawFile(out, dst);
  }
  return 0;
}

}  // namespace kestrelink::tool
