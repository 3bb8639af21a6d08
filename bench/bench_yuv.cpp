// YUV conversions of CIppImageConverter on whole frames against memcpy of
// each output size and the same job by a peer: libyuv's YUY2ToARGB and
// OpenCV's COLOR_YUV2BGRA_YUY2 for YUV422ToBGRx, libyuv's UYVYToARGB for
// UVY422ToBGRx, RGB24ToI420 and ARGBToI420 for the 4:2:0 encoders and
// ARGBToI422 for the 4:2:2 ones. Sources hold pseudo-random bytes.
//
// Only the time is compared where the bytes differ: libyuv and OpenCV write
// an alpha byte of 255 where our plain path writes 0, and round their
// fixed-point weights their own way. libyuv has no three-byte source to
// 4:2:2, so BGR24PackedToYUV422P meets ARGBToI422, which reads four bytes a
// pixel against our three.
#include <kestrelink/CIppImageConverter.h>

#include <cstdint>
#include <memory>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"
#include "harness/PeerTeams.h"

#ifdef KESTRELINK_HAVE_LIBYUV
#include <libyuv/convert.h>
#include <libyuv/convert_argb.h>
#include <libyuv/convert_from_argb.h>
#endif
#ifdef KESTRELINK_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace kestrelink::bench {
namespace {

struct YuvFrames : FrameSize {
  FrameBuffer src{4 * pixels};  // room for the widest source, BGRx
  FrameBuffer dst{4 * pixels};
  // Planar targets: Y, then U and V with room for 4:2:2.
  uint8_t* Y() { return dst.data(); }
  uint8_t* U() { return dst.data() + pixels; }
  uint8_t* V() { return dst.data() + pixels + pixels / 2; }
  CIppImageConverter conv;

  YuvFrames() {
    FillBytes(src.data(), src.size(), 0x7A11ull);
    FillBytes(dst.data(), dst.size(), 0x3E5ull);
  }
};

YuvFrames& Frames() { return Shared<YuvFrames>(); }

// Bytes per pixel in tenths, so that 4:2:0 (1.5) and 10-bit packed (2.67) fit.
template <class Call>
void Ours(const char* operation, size_t readTenths, size_t writtenTenths, Call call) {
  RegisterOurs<YuvFrames>(operation, readTenths, writtenTenths, call, 10);
}

#ifdef KESTRELINK_HAVE_LIBYUV
// libyuv is single-threaded: a team of n gets the frame in n bands of rows
// (even counts, for the 4:2:0 targets). convert(frames, firstRow, rows).
template <class Convert>
void Libyuv(const char* operation, size_t readTenths, size_t writtenTenths, Convert convert) {
  YuvFrames& f = Frames();
  Register(Case{operation, "libyuv", readTenths * f.pixels / 10, writtenTenths * f.pixels / 10, SplitRowsTeam(),
                [&f, convert](int threads) {
                  SplitRows(f.h / 2, threads, [&](uint32_t p0, uint32_t pairs) { convert(f, 2 * p0, 2 * pairs); });
                  return true;
                }});
}

void LibyuvCases() {
  Libyuv("YUV422ToBGRx", 20, 40, [](YuvFrames& f, uint32_t y0, uint32_t rows) {
    const int w = int(f.w);
    libyuv::YUY2ToARGB(f.src.data() + size_t(y0) * 2 * w, 2 * w, f.dst.data() + size_t(y0) * 4 * w, 4 * w, w,
                       int(rows));
  });
  Libyuv("UVY422ToBGRx", 20, 40, [](YuvFrames& f, uint32_t y0, uint32_t rows) {
    const int w = int(f.w);
    libyuv::UYVYToARGB(f.src.data() + size_t(y0) * 2 * w, 2 * w, f.dst.data() + size_t(y0) * 4 * w, 4 * w, w,
                       int(rows));
  });
  Libyuv("BGR24PackedToYUV420P", 30, 15, [](YuvFrames& f, uint32_t y0, uint32_t rows) {
    const int w = int(f.w), cw = w / 2;
    libyuv::RGB24ToI420(f.src.data() + size_t(y0) * 3 * w, 3 * w, f.Y() + size_t(y0) * w, w,
                        f.U() + size_t(y0 / 2) * cw, cw, f.V() + size_t(y0 / 2) * cw, cw, w, int(rows));
  });
  Libyuv("BGR32PackedToYUV420P", 40, 15, [](YuvFrames& f, uint32_t y0, uint32_t rows) {
    const int w = int(f.w), cw = w / 2;
    libyuv::ARGBToI420(f.src.data() + size_t(y0) * 4 * w, 4 * w, f.Y() + size_t(y0) * w, w,
                       f.U() + size_t(y0 / 2) * cw, cw, f.V() + size_t(y0 / 2) * cw, cw, w, int(rows));
  });
  for (const char* operation : {"BGR24PackedToYUV422P", "BGR32PackedToYUV422P"})
    Libyuv(operation, 40, 20, [](YuvFrames& f, uint32_t y0, uint32_t rows) {
      const int w = int(f.w), cw = w / 2;
      libyuv::ARGBToI422(f.src.data() + size_t(y0) * 4 * w, 4 * w, f.Y() + size_t(y0) * w, w, f.U() + size_t(y0) * cw,
                         cw, f.V() + size_t(y0) * cw, cw, w, int(rows));
    });
}
#endif

#ifdef KESTRELINK_HAVE_OPENCV
void OpenCvYuy2() {
  YuvFrames& f = Frames();
  struct Mats {
    cv::Mat src, dst;
  };
  auto mats = std::make_shared<Mats>();
  mats->src = cv::Mat(int(f.h), int(f.w), CV_8UC2, f.src.data());
  mats->dst = cv::Mat(int(f.h), int(f.w), CV_8UC4, f.dst.data());
  Register(Case{"YUV422ToBGRx", "opencv", 2 * f.pixels, 4 * f.pixels, OpenCvTeam(), [mats](int) {
                  cv::cvtColor(mats->src, mats->dst, cv::COLOR_YUV2BGRA_YUY2);
                  return true;
                }});
}
#endif

}  // namespace

void RegisterCases() {
  for (uint32_t bytesPerPixel : {4u, 3u, 2u}) RegisterMemcpy(bytesPerPixel);

  Ours("YUV422ToBGRx", 20, 40,
       [](YuvFrames& f) { return f.conv.YUV422ToBGRx(f.w, f.h, f.src.data(), f.dst.data(), false); });
  Ours("UVY422ToBGRx", 20, 40,
       [](YuvFrames& f) { return f.conv.UVY422ToBGRx(f.w, f.h, f.src.data(), f.dst.data(), false); });
  Ours("BGR24PackedToYUV420P", 30, 15, [](YuvFrames& f) {
    return CIppImageConverter::BGR24PackedToYUV420P(f.w, f.h, f.src.data(), f.Y(), f.U(), f.V(), false);
  });
  Ours("BGR32PackedToYUV420P", 40, 15, [](YuvFrames& f) {
    return CIppImageConverter::BGR32PackedToYUV420P(f.w, f.h, f.src.data(), f.Y(), f.U(), f.V(), false);
  });
  Ours("BGR24PackedToYUV422P", 30, 20, [](YuvFrames& f) {
    return CIppImageConverter::BGR24PackedToYUV422P(f.w, f.h, f.src.data(), f.Y(), f.U(), f.V(), false);
  });
  Ours("BGR32PackedToYUV422P", 40, 20, [](YuvFrames& f) {
    return CIppImageConverter::BGR32PackedToYUV422P(f.w, f.h, f.src.data(), f.Y(), f.U(), f.V(), false);
  });
  Ours("YUV422_10BitPPToBGR24", 27, 30,
       [](YuvFrames& f) { return f.conv.YUV422_10BitPPToBGR24(f.w, f.h, f.src.data(), f.dst.data(), false); });
#ifdef KESTRELINK_HAVE_LIBYUV
  LibyuvCases();
#endif
#ifdef KESTRELINK_HAVE_OPENCV
  OpenCvYuy2();
#endif

  // Ours alone: the one-step sibling of the two-step paths, and those paths.
  Ours("YUV422ToBGR24", 20, 30,
       [](YuvFrames& f) { return f.conv.YUV422ToBGR24(f.w, f.h, f.src.data(), f.dst.data(), false); });
  Ours("UVY422ToBGR24", 20, 30,
       [](YuvFrames& f) { return f.conv.UVY422ToBGR24(f.w, f.h, f.src.data(), f.dst.data(), false); });
  Ours("UVY411ToBGRx", 15, 40,
       [](YuvFrames& f) { return f.conv.UVY411ToBGRx(f.w, f.h, f.src.data(), f.dst.data(), false); });
  Ours("UVY444ToBGRx", 30, 40,
       [](YuvFrames& f) { return f.conv.UVY444ToBGRx(f.w, f.h, f.src.data(), f.dst.data(), false); });
  Ours("YUV422_20BitToBGR24", 40, 30,
       [](YuvFrames& f) { return f.conv.YUV422_20BitToBGR24(f.w, f.h, f.src.data(), f.dst.data(), false); });
}

}  // namespace kestrelink::bench
