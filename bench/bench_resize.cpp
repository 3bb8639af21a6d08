// Resize and resample of CIppImageResize on whole frames: the source frame
// (1920x1080 unless KESTRELINK_BENCH_SIZE says otherwise) reduced to two
// thirds (1280x720) and enlarged to twice (3840x2160), for 8-bit one-,
// three- and four-channel and 16-bit one-channel pixels in every mode, next
// to OpenCV's cv::resize (INTER_NEAREST, LINEAR, CUBIC, LANCZOS4, AREA) and
// libyuv's ScalePlane, ScalePlane_16, RGBScale and ARGBScale (none,
// bilinear, box); and the decimation by 2 against memcpy of its output.
//
// Only the time is compared: the peers sample their own way (OpenCV's
// INTER_NEAREST takes floor(x / factor), not the pixel centre; LANCZOS4 has
// four lobes to our three; its four-channel forms write the fourth sample,
// which ours leave; on enlargement our supersampling falls back to nearest
// neighbour where OpenCV's AREA and libyuv's box filter interpolate).
// libyuv is single-threaded: a team of n gets n bands, each band of source
// rows scaled to its band of output rows.
#include <kestrelink/CIppImageResize.h>

#include <cstdint>
#include <memory>
#include <string>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"
#include "harness/PeerTeams.h"

#ifdef KESTRELINK_HAVE_LIBYUV
#include <libyuv/scale.h>
#include <libyuv/scale_argb.h>
#include <libyuv/scale_rgb.h>
#endif
#ifdef KESTRELINK_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace kestrelink::bench {
namespace {

struct Target {
  uint32_t w, h;
};

struct ResizeFrames : FrameSize {
  FrameBuffer src{8 * pixels};
  FrameBuffer dst{16 * pixels};  // twice the size at 4 bytes a pixel
  Target targets[2] = {{w * 2 / 3, h * 2 / 3}, {w * 2, h * 2}};
  CIppImageResize resize;

  ResizeFrames() {
    FillBytes(src.data(), src.size(), 0x5E512Eull);
    FillBytes(dst.data(), dst.size(), 0x7Aull);
  }
};

ResizeFrames& Frames() { return Shared<ResizeFrames>(); }

enum class Pixel { Mono8, BGR24, BGRx32, Mono16 };
struct Format {
  Pixel pixel;
  const char* name;
  uint32_t bytes;
};
const Format kFormats[] = {{Pixel::Mono8, "8u C1", 1}, {Pixel::BGR24, "8u C3", 3}, {Pixel::BGRx32, "8u AC4", 4},
                           {Pixel::Mono16, "16u C1", 2}};

struct ModeRow {
  const char* name;
  int mode;
  int cv;      // cv::InterpolationFlags
  int libyuv;  // libyuv::FilterMode, or -1 for none
};
const ModeRow kModesTable[] = {{"nearest", 0, 0, 0}, {"linear", 1, 1, 2}, {"cubic", 2, 2, -1},
                               {"lanczos", 3, 4, -1}, {"area", 4, 3, 3}};

std::string Operation(const Format& f, Target t, const ModeRow& m) {
  const ResizeFrames& fr = Frames();
  return std::string(f.name) + " " + std::to_string(fr.w) + "x" + std::to_string(fr.h) + "->" + std::to_string(t.w) +
         "x" + std::to_string(t.h) + " " + m.name;
}

bool Ours(ResizeFrames& f, Pixel pixel, int mode, Target t) {
  void* s = f.src.data();
  void* d = f.dst.data();
  switch (pixel) {
    case Pixel::Mono8: return f.resize.Mono8ippiResize(mode, f.w, f.h, s, int(t.w), t.w, t.h, d);
    case Pixel::BGR24: return f.resize.BGR24ippiResize(mode, f.w, f.h, s, int(t.w), t.w, t.h, d);
    case Pixel::BGRx32: return f.resize.BGRx32ippiResize(mode, f.w, f.h, s, int(t.w), t.w, t.h, d);
    case Pixel::Mono16:
      return f.resize.Mono16ippiResize(mode, f.w, f.h, 0, 0, int(f.w), int(f.h), s, t.w, t.h, d);
  }
  return false;
}

void RegisterOursResize(const Format& format, Target t, const ModeRow& m) {
  const size_t read = Frames().pixels * format.bytes, written = size_t(t.w) * t.h * format.bytes;
  Register(Case{Operation(format, t, m), kOurs, read, written, LibraryTeam(),
                [pixel = format.pixel, mode = m.mode, t](int) { return Ours(Frames(), pixel, mode, t); }});
}

#ifdef KESTRELINK_HAVE_OPENCV
void RegisterOpenCv(const Format& format, Target t, const ModeRow& m) {
  ResizeFrames& f = Frames();
  const int type = format.pixel == Pixel::Mono8    ? CV_8UC1
                   : format.pixel == Pixel::BGR24  ? CV_8UC3
                   : format.pixel == Pixel::BGRx32 ? CV_8UC4
                                                   : CV_16UC1;
  struct Mats {
    cv::Mat src, dst;
  };
  auto mats = std::make_shared<Mats>();
  mats->src = cv::Mat(int(f.h), int(f.w), type, f.src.data());
  mats->dst = cv::Mat(int(t.h), int(t.w), type, f.dst.data());
  const size_t read = f.pixels * format.bytes, written = size_t(t.w) * t.h * format.bytes;
  Register(Case{Operation(format, t, m), "opencv", read, written, OpenCvTeam(), [mats, t, cv = m.cv](int) {
                  cv::resize(mats->src, mats->dst, cv::Size(int(t.w), int(t.h)), 0, 0, cv);
                  return mats->dst.data != nullptr;
                }});
}
#endif

#ifdef KESTRELINK_HAVE_LIBYUV
void Libyuv(ResizeFrames& f, Pixel pixel, Target t, int filter, int threads) {
  const auto mode = libyuv::FilterMode(filter);
  SplitRows(uint32_t(threads), threads, [&](uint32_t first, uint32_t count) {
    for (uint32_t band = first; band < first + count; ++band) {
      const uint32_t n = uint32_t(threads);
      const uint32_t s0 = f.h * band / n, s1 = f.h * (band + 1) / n, d0 = t.h * band / n, d1 = t.h * (band + 1) / n;
      const int sw = int(f.w), dw = int(t.w), sh = int(s1 - s0), dh = int(d1 - d0);
      switch (pixel) {
        case Pixel::Mono8:
          libyuv::ScalePlane(f.src.data() + size_t(s0) * sw, sw, sw, sh, f.dst.data() + size_t(d0) * dw, dw, dw, dh,
                             mode);
          break;
        case Pixel::BGR24:
          libyuv::RGBScale(f.src.data() + size_t(s0) * sw * 3, sw * 3, sw, sh, f.dst.data() + size_t(d0) * dw * 3,
                           dw * 3, dw, dh, mode);
          break;
        case Pixel::BGRx32:
          libyuv::ARGBScale(f.src.data() + size_t(s0) * sw * 4, sw * 4, sw, sh, f.dst.data() + size_t(d0) * dw * 4,
                            dw * 4, dw, dh, mode);
          break;
        case Pixel::Mono16:
          libyuv::ScalePlane_16(f.src.words() + size_t(s0) * sw, sw, sw, sh, f.dst.words() + size_t(d0) * dw, dw, dw,
                                dh, mode);
          break;
      }
    }
  });
}

void RegisterLibyuv(const Format& format, Target t, const ModeRow& m) {
  if (m.libyuv < 0) return;
  const size_t read = Frames().pixels * format.bytes, written = size_t(t.w) * t.h * format.bytes;
  Register(Case{Operation(format, t, m), "libyuv", read, written, SplitRowsTeam(),
                [pixel = format.pixel, t, filter = m.libyuv](int threads) {
                  Libyuv(Frames(), pixel, t, filter, threads);
                  return true;
                }});
}
#endif

// Decimation by 2, 3 and 4 of whole frames: every step-th pixel of every
// step-th row, against memcpy of the output.
void RegisterResample() {
  using Member = bool (CIppImageResize::*)(uint32_t, uint32_t, int, void*, uint32_t, uint32_t, void*);
  struct Row {
    const char* name;
    Member member;
    uint32_t bytes;
  };
  const Row rows[] = {{"Mono8Resample", &CIppImageResize::Mono8Resample, 1},
                      {"Mono16Resample", &CIppImageResize::Mono16Resample, 2},
                      {"BGR24Resample", &CIppImageResize::BGR24Resample, 3},
                      {"BGRx32Resample", &CIppImageResize::BGRx32Resample, 4}};
  ResizeFrames& f = Frames();
  for (uint32_t step = 2; step <= 4; ++step) {
    const uint32_t sw = (f.w + step - 1) / step, sh = (f.h + step - 1) / step;
    for (const Row& r : rows) {
      RegisterMemcpyFrame(sw, sh, r.bytes);
      Register(Case{std::string(r.name) + " step " + std::to_string(step), kOurs,
                    size_t(sw) * sh * step * r.bytes, size_t(sw) * sh * r.bytes, LibraryTeam(),
                    [member = r.member, step, sw, sh](int) {
                      ResizeFrames& fr = Frames();
                      return (fr.resize.*member)(fr.w, fr.h, int(step), fr.src.data(), sw, sh, fr.dst.data());
                    }});
    }
  }
  const uint32_t dw = (f.w + 1) / 2, dh = (f.h + 1) / 2;
#ifdef KESTRELINK_HAVE_LIBYUV
  Register(Case{"Mono8Resample step 2", "libyuv", size_t(dw) * dh * 2, size_t(dw) * dh, SplitRowsTeam(),
                [dw, dh](int threads) {
                  Libyuv(Frames(), Pixel::Mono8, {dw, dh}, 0, threads);
                  return true;
                }});
#endif
}

}  // namespace

void RegisterCases() {
  const ResizeFrames& f = Frames();
  for (const Target& t : f.targets)
    for (uint32_t bytes : {1u, 2u, 3u, 4u}) RegisterMemcpyFrame(t.w, t.h, bytes);
  for (const Format& format : kFormats)
    for (const Target& t : f.targets)
      for (const ModeRow& m : kModesTable) {
        RegisterOursResize(format, t, m);
#ifdef KESTRELINK_HAVE_OPENCV
        RegisterOpenCv(format, t, m);
#endif
#ifdef KESTRELINK_HAVE_LIBYUV
        RegisterLibyuv(format, t, m);
#endif
      }
  RegisterResample();
}

}  // namespace kestrelink::bench
