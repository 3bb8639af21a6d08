// kestrelink rotate and mirror: one raw frame of a mono or BGR layout turned
// or mirrored by CIppImageRotate and CIppImageMirror, raw or PNG out.
#include "MirrorRotateVerbs.h"

#include <kestrelink/CIppImageMirror.h>
#include <kestrelink/CIppImageRotate.h>

#include <cmath>
#include <cstring>
#include <iostream>
#include <optional>
#include <string>

#include "FrameFile.h"
#include "LayoutPng.h"
#include "PngFile.h"
#include "ToolError.h"

namespace kestrelink::tool {

namespace {

constexpr const char* kGeometryLayouts = "mono8, mono16, bgr24, bgr48, bgrx, bgrx64";
constexpr int64_t kMaxCentre = 1 << 20;

// The layouts the two verbs take.
const Layout& GeometryLayout(std::string_view name) {
  const Layout* layout = FindLayout(name);
  const bool taken =
      layout && (layout->id == LayoutId::Mono8 || layout->id == LayoutId::Mono16 || layout->id == LayoutId::Bgr24 ||
                 layout->id == LayoutId::Bgr48 || layout->id == LayoutId::Bgrx || layout->id == LayoutId::Bgr64);
  if (!taken) throw UsageError("--layout '" + std::string(name) + "' is not one that turns (" + kGeometryLayouts + ")");
  return *layout;
}

struct Common {
  const Layout* layout = nullptr;
  std::optional<FrameSize> size;
  uint32_t depth = 16;
  std::string in, out;
};

// The options both verbs share, then their own; IN and OUT.
bool ParseCommon(std::span<const std::string_view> args, std::vector<OptionSpec> options, Common& c, const char* verb) {
  options.push_back({"--layout", "LAYOUT", [&](std::string_view v) { c.layout = &GeometryLayout(v); }});
  options.push_back({"--size", "WxH", [&](std::string_view v) { c.size = ParseSize("--size", v); }});
  options.push_back(
      {"--depth", "D", [&](std::string_view v) { c.depth = uint32_t(ParseInteger("--depth", v, 8, 16)); }});
  std::vector<std::string_view> files;
  if (!ParseOptions(args, options, files)) return false;
  if (!c.layout) throw UsageError(std::string("missing --layout LAYOUT (") + kGeometryLayouts + ")");
  if (!c.size) throw UsageError("missing --size WxH, such as --size 1920x1080");
  if (files.size() != 2)
    throw UsageError(std::string(files.size() < 2 ? "missing file names: " : "too many file names: ") + verb +
                     " takes IN and OUT");
  c.in = std::string(files[0]);
  c.out = std::string(files[1]);
  if (IsPngPath(c.out) && c.layout->id == LayoutId::Bgr64) throw UsageError("bgrx64 has no PNG form; write a raw file");
  return true;
}

std::vector<uint8_t> ReadSource(const Common& c) {
  const uint32_t w = c.size->width, h = c.size->height;
  return ReadFrameFile(
      c.in, FrameBytes(*c.layout, w, h),
      "a " + std::to_string(w) + "x" + std::to_string(h) + " " + std::string(c.layout->name) + " frame");
}

void WriteOut(const Common& c, uint32_t w, uint32_t h, const std::vector<uint8_t>& frame) {
  if (IsPngPath(c.out)) {
    WritePng(c.out, LayoutToPng(c.layout->id, w, h, c.layout->fixedDepth ? c.layout->fixedDepth : c.depth, frame));
  } else {
    WriteRawFile(c.out, frame);
  }
}

// "X,Y" with whole numbers.
std::pair<int, int> ParseCentre(std::string_view text) {
  const size_t comma = text.find(',');
  if (comma == std::string_view::npos) throw UsageError("--centre wants X,Y, such as --centre 960,540");
  return {int(ParseInteger("--centre", text.substr(0, comma), -kMaxCentre, kMaxCentre)),
          int(ParseInteger("--centre", text.substr(comma + 1), -kMaxCentre, kMaxCentre))};
}

int Interpolation(std::string_view name) {
  if (name == "nearest") return 0;
  if (name == "linear") return 1;
  if (name == "cubic") return 2;
  throw UsageError("--interp wants nearest, linear or cubic, not '" + std::string(name) + "'");
}

// The options both verbs share, in their help.
void PrintCommonOptions(std::ostream& out) {
  out << "  --size WxH         frame size in pixels (required)\n"
         "  --layout LAYOUT    "
      << kGeometryLayouts
      << " (required)\n"
         "  --depth D          bits a mono16 or bgr48 sample carries, for the PNG (default 16)\n"
         "  -h, --help         show this help\n";
}

bool IsRightAngle(double angle) { return angle == 90.0 || angle == -90.0 || angle == 180.0; }

}  // namespace

TurnedFrame RotateFrame(LayoutId layout, const FrameSize& size, std::vector<uint8_t>& frame, const RotateRequest& r) {
  CIppImageRotate rotate;
  const uint32_t w = size.width, h = size.height, bpp = LayoutOf(layout).bytesPerPixel;
  TurnedFrame t{w, h, 0, w, {}};
  int cx = r.centreX, cy = r.centreY;
  if (!r.centreGiven) {
    if (IsRightAngle(r.angle)) {
      cx = cy = 0;
      if (r.angle != 180.0) t = {uint32_t(rotate.AdjustDestinationWidth(h)), w, 0, h, {}};
      if (r.angle == -90.0) t.padLeft = t.width - h;
    } else {
      cx = int(w / 2);
      cy = int(h / 2);
    }
  }
  t.bytes.assign(size_t(t.width) * t.height * bpp, 0);
  void* s = frame.data();
  void* d = t.bytes.data();
  bool ok = false;
  switch (layout) {
    case LayoutId::Mono8:
      ok = rotate.Mono8Rotate(w, h, s, t.width, t.height, d, cx, cy, r.angle, r.interpolation, r.smooth);
      break;
    case LayoutId::Mono16:
      ok = rotate.Mono16Rotate(w, h, s, t.width, t.height, d, 0, cx, cy, r.angle, r.interpolation, r.smooth);
      break;
    case LayoutId::Bgr24:
      ok = rotate.BGR8Rotate(w, h, s, t.width, t.height, d, cx, cy, r.angle, r.interpolation, r.smooth);
      break;
    case LayoutId::Bgr48:
      ok = rotate.BGR16Rotate(w, h, s, t.width, t.height, d, 0, cx, cy, r.angle, r.interpolation, r.smooth);
      break;
    case LayoutId::Bgrx:
      ok = rotate.BGRx8Rotate(w, h, s, t.width, t.height, d, cx, cy, r.angle, r.interpolation, r.smooth);
      break;
    case LayoutId::Bgr64:
      ok = rotate.BGRx16Rotate(w, h, s, t.width, t.height, d, 0, cx, cy, r.angle, r.interpolation, r.smooth);
      break;
    default:
      break;
  }
  if (!ok) throw RunError("the library refused the rotation");
  return t;
}

std::vector<uint8_t> PictureOf(const TurnedFrame& t, uint32_t bpp) {
  if (t.pictureWidth == t.width) return t.bytes;
  std::vector<uint8_t> picture(size_t(t.pictureWidth) * t.height * bpp);
  for (uint32_t y = 0; y < t.height; ++y)
    std::memcpy(picture.data() + size_t(y) * t.pictureWidth * bpp,
                t.bytes.data() + (size_t(y) * t.width + t.padLeft) * bpp, size_t(t.pictureWidth) * bpp);
  return picture;
}

std::vector<uint8_t> MirrorFrame(LayoutId layout, const FrameSize& size, std::vector<uint8_t>& frame,
                                 bool horizontalAxis, bool verticalAxis) {
  CIppImageMirror mirror;
  const uint32_t w = size.width, h = size.height;
  std::vector<uint8_t> out(frame.size(), 0);
  void* s = frame.data();
  void* d = out.data();
  bool ok = false;
  switch (layout) {
    case LayoutId::Mono8:
      ok = mirror.MirrorMono8(w, h, s, d, horizontalAxis, verticalAxis);
      break;
    case LayoutId::Mono16:
      ok = mirror.MirrorMono16(w, h, s, d, horizontalAxis, verticalAxis);
      break;
    case LayoutId::Bgr24:
      ok = mirror.MirrorBGR24(w, h, s, d, horizontalAxis, verticalAxis);
      break;
    case LayoutId::Bgr48:
      ok = mirror.MirrorBGR48(w, h, s, d, horizontalAxis, verticalAxis);
      break;
    case LayoutId::Bgrx:
      ok = mirror.MirrorBGRx(w, h, s, d, horizontalAxis, verticalAxis);
      break;
    case LayoutId::Bgr64:
      ok = mirror.MirrorBGR64(w, h, s, d, horizontalAxis, verticalAxis);
      break;
    default:
      break;
  }
  if (!ok) throw RunError("the library refused the mirror");
  return out;
}

void PrintRotateUsage(std::ostream& out) {
  out << "usage: kestrelink rotate --angle DEG [--centre X,Y] [--interp nearest|linear|cubic] [--smooth]\n"
         "                        --size WxH --layout LAYOUT [--depth D] IN OUT\n"
         "\n"
         "Turns one raw frame (CIppImageRotate). A positive angle turns clockwise as the\n"
         "picture is shown. Without --centre, 90, -90 and 180 are exact copies of whole\n"
         "pixels into a frame of H x W (W x H for 180), whose raw rows the library pads to a\n"
         "multiple of 4 pixels (on the right for 90, on the left for -90); any other angle\n"
         "turns about the frame's centre pixel into a frame of the same size on black. With\n"
         "--centre the turn is about that pixel, into a frame of the same size. A PNG shows\n"
         "the picture without the pad; a raw OUT is the library's frame as it stands.\n"
         "\n"
         "options:\n"
         "  --angle DEG        degrees, clockwise (required)\n"
         "  --centre X,Y       the pixel that stays in place (--center works too)\n"
         "  --interp KIND      nearest, linear or cubic (default linear); not used by exact turns\n"
         "  --smooth           blend the turned picture's border into the background\n";
  PrintCommonOptions(out);
  out << "\n"
         "example:\n"
         "  kestrelink rotate --angle 90 --size 1920x1080 --layout bgr24 frame.raw turned.png\n"
         "  kestrelink rotate --angle 12.5 --interp cubic --smooth --size 1920x1080 --layout mono8 frame.raw "
         "tilted.png\n";
}

int RunRotate(std::span<const std::string_view> args) {
  Common c;
  RotateRequest r;
  std::optional<double> angle;
  const auto centre = [&](std::string_view v) {
    std::tie(r.centreX, r.centreY) = ParseCentre(v);
    r.centreGiven = true;
  };
  std::vector<OptionSpec> options = {
      {"--angle", "DEG",
       [&](std::string_view v) {
         char* end = nullptr;
         const std::string text(v);
         const double a = std::strtod(text.c_str(), &end);
         if (text.empty() || *end || !std::isfinite(a)) throw UsageError("--angle wants a number of degrees");
         angle = a;
       }},
      {"--centre", "X,Y", centre},
      {"--center", "X,Y", centre},
      {"--interp", "KIND", [&](std::string_view v) { r.interpolation = Interpolation(v); }},
      {"--smooth", "", [&](std::string_view) { r.smooth = true; }},
  };
  if (!ParseCommon(args, std::move(options), c, "rotate")) {
    PrintRotateUsage(std::cout);
    return 0;
  }
  if (!angle) throw UsageError("missing --angle DEG");
  r.angle = *angle;
  std::vector<uint8_t> src = ReadSource(c);
  const TurnedFrame t = RotateFrame(c.layout->id, *c.size, src, r);
  if (IsPngPath(c.out))
    WriteOut(c, t.pictureWidth, t.height, PictureOf(t, c.layout->bytesPerPixel));
  else
    WriteOut(c, t.width, t.height, t.bytes);
  return 0;
}

void PrintMirrorUsage(std::ostream& out) {
  out << "usage: kestrelink mirror --axis h|v|both --size WxH --layout LAYOUT [--depth D] IN OUT\n"
         "\n"
         "Mirrors one raw frame (CIppImageMirror): h about the horizontal axis (the rows come\n"
         "out bottom to top), v about the vertical axis (each row right to left), both for\n"
         "both (a half turn). The output has the input's size and layout.\n"
         "\n"
         "options:\n"
         "  --axis AXIS        h, v or both (required)\n";
  PrintCommonOptions(out);
  out << "\n"
         "example:\n"
         "  kestrelink mirror --axis v --size 1920x1080 --layout bgrx frame.raw mirrored.png\n";
}

int RunMirror(std::span<const std::string_view> args) {
  Common c;
  std::optional<std::pair<bool, bool>> axes;
  std::vector<OptionSpec> options = {{"--axis", "AXIS", [&](std::string_view v) {
                                        if (v == "h")
                                          axes = {true, false};
                                        else if (v == "v")
                                          axes = {false, true};
                                        else if (v == "both")
                                          axes = {true, true};
                                        else
                                          throw UsageError("--axis wants h, v or both, not '" + std::string(v) + "'");
                                      }}};
  if (!ParseCommon(args, std::move(options), c, "mirror")) {
    PrintMirrorUsage(std::cout);
    return 0;
  }
  if (!axes) throw UsageError("missing --axis h|v|both");
  std::vector<uint8_t> src = ReadSource(c);
  WriteOut(c, c.size->width, c.size->height, MirrorFrame(c.layout->id, *c.size, src, axes->first, axes->second));
  return 0;
}

}  // namespace kestrelink::tool
