// Rotate and mirror of CIppImageRotate and CIppImageMirror on whole frames.
//
// Right angles (90, 180, -90) of mono8, mono16, BGR24 and BGRx at the run's
// frame size (1920x1080 by default) and at 2560x1600, against libyuv's
// RotatePlane90/180/270, RotatePlane_16 and ARGBRotate (libyuv has no
// three-byte rotation) and OpenCV's cv::rotate. The general rotation by 12.5
// degrees about the centre against OpenCV's cv::warpAffine with the same
// interpolation and a transparent border (uncovered pixels kept, as ours).
// Mirror about the vertical axis (each row reversed) against cv::flip and
// libyuv's MirrorPlane, RGB24Mirror and ARGBMirror; every output size also
// against memcpy of it.
//
// libyuv is single-threaded: a team of n gets the frame in n bands of
// source rows, each turned into its own place in the output.
#include <kestrelink/CIppImageMirror.h>
#include <kestrelink/CIppImageRotate.h>

#include <cstring>
#include <memory>
#include <string>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"
#include "harness/PeerTeams.h"

#ifdef KESTRELINK_HAVE_LIBYUV
#include <libyuv/planar_functions.h>
#include <libyuv/rotate.h>
#include <libyuv/rotate_argb.h>
#endif
#ifdef KESTRELINK_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace kestrelink::bench {
namespace {

// One frame size's buffers, room for the widest pixel (4 bytes).
struct SizeFrames {
  uint32_t w, h;
  size_t pixels;
  FrameBuffer src, dst;
  SizeFrames(uint32_t width, uint32_t height)
      : w(width), h(height), pixels(size_t(width) * height), src(4 * pixels), dst(4 * pixels) {
    FillBytes(src.data(), src.size(), 0x707A7Eull + width);
    FillBytes(dst.data(), dst.size(), 0x3E5ull);
  }
};

struct Pixel {
  const char* name;
  int bytes;
#ifdef KESTRELINK_HAVE_OPENCV
  int cvType;
#endif
};
#ifdef KESTRELINK_HAVE_OPENCV
#define KESTRELINK_CV(type) , type
#else
#define KESTRELINK_CV(type)
#endif
const Pixel kPixels[] = {{"mono8", 1 KESTRELINK_CV(CV_8UC1)},
                         {"mono16", 2 KESTRELINK_CV(CV_16UC1)},
                         {"bgr24", 3 KESTRELINK_CV(CV_8UC3)},
                         {"bgrx", 4 KESTRELINK_CV(CV_8UC4)}};

// Our public form for a pixel, through its road choice.
bool OursRotate(CIppImageRotate& r, const Pixel& p, SizeFrames& f, uint32_t dw, uint32_t dh, int cx, int cy,
                double angle, int interpolation) {
  void* s = f.src.data();
  void* d = f.dst.data();
  switch (p.bytes) {
    case 1:
      return r.Mono8Rotate(f.w, f.h, s, dw, dh, d, cx, cy, angle, interpolation, false);
    case 2:
      return r.Mono16Rotate(f.w, f.h, s, dw, dh, d, 0, cx, cy, angle, interpolation, false);
    case 3:
      return r.BGR8Rotate(f.w, f.h, s, dw, dh, d, cx, cy, angle, interpolation, false);
    default:
      return r.BGRx8Rotate(f.w, f.h, s, dw, dh, d, cx, cy, angle, interpolation, false);
  }
}

std::string Name(const char* what, const Pixel& p, const SizeFrames& f) {
  return std::string(what) + " " + p.name + " " + std::to_string(f.w) + "x" + std::to_string(f.h);
}

void RegisterMemcpyOf(SizeFrames& f, int bytes) {
  const size_t rowBytes = size_t(f.w) * bytes;
  Register(Case{"memcpy:" + std::to_string(bytes) + "Bpp " + std::to_string(f.w) + "x" + std::to_string(f.h), kMemcpy,
                rowBytes * f.h, rowBytes * f.h, SplitRowsTeam(), [&f, rowBytes](int threads) {
                  SplitRows(f.h, threads, [&](uint32_t first, uint32_t rows) {
                    std::memcpy(f.dst.data() + first * rowBytes, f.src.data() + first * rowBytes, rows * rowBytes);
                  });
                  return true;
                }});
}

#ifdef KESTRELINK_HAVE_LIBYUV
// libyuv's turn of source rows first .. first+rows-1 into their place.
void LibyuvTurn(const Pixel& p, SizeFrames& f, int degrees, uint32_t first, uint32_t rows) {
  const int B = p.bytes, w = int(f.w), h = int(f.h), n = int(rows);
  const uint8_t* s = f.src.data() + size_t(first) * w * B;
  // Output column (90) or row (180) where the band lands.
  const size_t land = degrees == 90    ? size_t(h - int(first) - n) * B
                      : degrees == 270 ? size_t(first) * B
                                       : size_t(h - int(first) - n) * w * B;
  uint8_t* d = f.dst.data() + land;
  const int dstStride = (degrees == 180 ? w : h) * B;
  const libyuv::RotationMode mode = degrees == 90    ? libyuv::kRotate90
                                    : degrees == 180 ? libyuv::kRotate180
                                                     : libyuv::kRotate270;
  if (B == 1) {
    libyuv::RotatePlane(s, w, d, dstStride, w, n, mode);
  } else if (B == 2) {
    libyuv::RotatePlane_16(reinterpret_cast<const uint16_t*>(s), w, reinterpret_cast<uint16_t*>(d), dstStride / 2, w, n,
                           mode);
  } else {
    libyuv::ARGBRotate(s, w * 4, d, dstStride, w, n, mode);
  }
}
#endif

void RightAngleCases(SizeFrames& f) {
  static CIppImageRotate rotate;
  for (const Pixel& p : kPixels) {
    for (int degrees : {90, 180, 270}) {
      const char* what = degrees == 90 ? "Rotate90" : degrees == 180 ? "Rotate180" : "Rotate270";
      const std::string op = Name(what, p, f);
      const size_t bytes = f.pixels * p.bytes;
      const uint32_t dw = degrees == 180 ? f.w : rotate.AdjustDestinationWidth(f.h);
      const uint32_t dh = degrees == 180 ? f.h : f.w;
      const double angle = degrees == 270 ? -90.0 : double(degrees);
      Register(Case{op, kOurs, bytes, bytes, LibraryTeam(),
                    [&f, &p, dw, dh, angle](int) { return OursRotate(rotate, p, f, dw, dh, 0, 0, angle, 0); }});
#ifdef KESTRELINK_HAVE_LIBYUV
      if (p.bytes != 3)
        Register(Case{op, "libyuv", bytes, bytes, SplitRowsTeam(), [&f, &p, degrees](int threads) {
                        SplitRows(f.h, threads,
                                  [&](uint32_t first, uint32_t rows) { LibyuvTurn(p, f, degrees, first, rows); });
                        return true;
                      }});
#endif
#ifdef KESTRELINK_HAVE_OPENCV
      const int code = degrees == 90    ? cv::ROTATE_90_CLOCKWISE
                       : degrees == 180 ? cv::ROTATE_180
                                        : cv::ROTATE_90_COUNTERCLOCKWISE;
      Register(Case{op, "opencv", bytes, bytes, OpenCvTeam(), [&f, &p, code, dw, dh](int) {
                      const cv::Mat src(int(f.h), int(f.w), p.cvType, f.src.data());
                      cv::Mat dst(int(dh), int(dw), p.cvType, f.dst.data());
                      cv::rotate(src, dst, code);
                      return dst.data == f.dst.data();  // written in place, not reallocated
                    }});
#endif
    }
  }
}

void GeneralCases(SizeFrames& f) {
  static CIppImageRotate rotate;
  const double angle = 12.5;
  const struct {
    const char* name;
    int ours;
#ifdef KESTRELINK_HAVE_OPENCV
    int cv;
#endif
  } kinds[] = {{"nearest", 0 KESTRELINK_CV(cv::INTER_NEAREST)},
               {"linear", 1 KESTRELINK_CV(cv::INTER_LINEAR)},
               {"cubic", 2 KESTRELINK_CV(cv::INTER_CUBIC)}};
  for (const Pixel& p : kPixels) {
    if (p.bytes == 3) continue;  // mono8, mono16, BGRx carry the comparison
    for (const auto& k : kinds) {
      const std::string op = Name((std::string("Rotate12.5:") + k.name).c_str(), p, f);
      const size_t bytes = f.pixels * p.bytes;
      const int interpolation = k.ours;
      Register(Case{op, kOurs, bytes, bytes, LibraryTeam(), [&f, &p, interpolation, angle](int) {
                      return OursRotate(rotate, p, f, f.w, f.h, int(f.w / 2), int(f.h / 2), angle, interpolation);
                    }});
#ifdef KESTRELINK_HAVE_OPENCV
      const int flags = k.cv;
      Register(Case{op, "opencv", bytes, bytes, OpenCvTeam(), [&f, &p, flags, angle](int) {
                      const cv::Mat src(int(f.h), int(f.w), p.cvType, f.src.data());
                      cv::Mat dst(int(f.h), int(f.w), p.cvType, f.dst.data());
                      // OpenCV's positive angle turns anticlockwise on screen.
                      const cv::Mat m =
                          cv::getRotationMatrix2D(cv::Point2f(float(f.w / 2), float(f.h / 2)), -angle, 1.0);
                      cv::warpAffine(src, dst, m, dst.size(), flags, cv::BORDER_TRANSPARENT);
                      return dst.data == f.dst.data();
                    }});
#endif
    }
  }
}

void MirrorCases(SizeFrames& f) {
  static CIppImageMirror mirror;
  for (const Pixel& p : kPixels) {
    const std::string op = Name("MirrorColumns", p, f);
    const size_t bytes = f.pixels * p.bytes;
    Register(Case{op, kOurs, bytes, bytes, LibraryTeam(), [&f, &p](int) {
                    void* s = f.src.data();
                    void* d = f.dst.data();
                    switch (p.bytes) {
                      case 1:
                        return mirror.MirrorMono8(f.w, f.h, s, d, false, true);
                      case 2:
                        return mirror.MirrorMono16(f.w, f.h, s, d, false, true);
                      case 3:
                        return mirror.MirrorBGR24(f.w, f.h, s, d, false, true);
                      default:
                        return mirror.MirrorBGRx(f.w, f.h, s, d, false, true);
                    }
                  }});
#ifdef KESTRELINK_HAVE_LIBYUV
    if (p.bytes != 2)
      Register(Case{op, "libyuv", bytes, bytes, SplitRowsTeam(), [&f, &p](int threads) {
                      SplitRows(f.h, threads, [&](uint32_t first, uint32_t rows) {
                        const int stride = int(f.w) * p.bytes;
                        const uint8_t* s = f.src.data() + size_t(first) * stride;
                        uint8_t* d = f.dst.data() + size_t(first) * stride;
                        if (p.bytes == 1) libyuv::MirrorPlane(s, stride, d, stride, int(f.w), int(rows));
                        if (p.bytes == 3) libyuv::RGB24Mirror(s, stride, d, stride, int(f.w), int(rows));
                        if (p.bytes == 4) libyuv::ARGBMirror(s, stride, d, stride, int(f.w), int(rows));
                      });
                      return true;
                    }});
#endif
#ifdef KESTRELINK_HAVE_OPENCV
    Register(Case{op, "opencv", bytes, bytes, OpenCvTeam(), [&f, &p](int) {
                    const cv::Mat src(int(f.h), int(f.w), p.cvType, f.src.data());
                    cv::Mat dst(int(f.h), int(f.w), p.cvType, f.dst.data());
                    cv::flip(src, dst, 1);  // about the vertical axis
                    return dst.data == f.dst.data();
                  }});
#endif
  }
  // Ours alone: both axes at once (the half turn's work), 16-bit colour.
  Register(Case{Name("MirrorBoth", kPixels[3], f), kOurs, 4 * f.pixels, 4 * f.pixels, LibraryTeam(),
                [&f](int) { return mirror.MirrorBGRx(f.w, f.h, f.src.data(), f.dst.data(), true, true); }});
}

}  // namespace

void RegisterCases() {
  const Settings& s = BenchSettings();
  static SizeFrames main(s.width, s.height);
  for (const Pixel& p : kPixels) RegisterMemcpyOf(main, p.bytes);
  RightAngleCases(main);
  if (!s.quick) {
    // The larger frame, where a column walk leaves the caches.
    static SizeFrames large(2560, 1600);
    for (const Pixel& p : kPixels) RegisterMemcpyOf(large, p.bytes);
    RightAngleCases(large);
  }
  GeneralCases(main);
  MirrorCases(main);
}

}  // namespace kestrelink::bench
