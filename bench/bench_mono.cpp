// Mono conversions of CIppImageConverter on whole frames, against memcpy of
// each output size and, where one exists, the same job done by a peer:
// libyuv for 8-bit grey to BGRx and 16-bit to 8-bit, OpenCV (narrow, then
// grey to colour) for 16-bit grey to BGRx and BGR. Sources hold
// pseudo-random 12-bit samples (8-bit ones for the Mono8 sources).
#include <kestrelink/CIppImageConverter.h>

#include <cstdint>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"
#include "harness/PeerTeams.h"

#ifdef KESTRELINK_HAVE_LIBYUV
#include <libyuv/convert_argb.h>
#include <libyuv/planar_functions.h>
#endif
#ifdef KESTRELINK_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace kestrelink::bench {
namespace {

constexpr uint32_t kDepth = 12;

struct MonoFrames : FrameSize {
  FrameBuffer src8{pixels};
  FrameBuffer src16{2 * pixels};
  FrameBuffer dst{4 * pixels};
  FrameBuffer narrow{pixels};  // OpenCV's 8-bit intermediate
  CIppImageConverter plain;
  CIppImageConverter mapped;  // colour map on; its first call builds the 12-bit table

  MonoFrames() {
    FillBytes(src8.data(), pixels, 0x5EED08ull);
    FillSamples16(src16.words(), pixels, kDepth, 0x5EED12ull);
    mapped.SetImageColorMap(true);
  }
};

MonoFrames& Frames() { return Shared<MonoFrames>(); }

// One of our conversions, read and written sizes in bytes per pixel.
template <class Call>
void Ours(const char* operation, size_t readPerPixel, size_t writtenPerPixel, Call call) {
  RegisterOurs<MonoFrames>(operation, readPerPixel, writtenPerPixel, call);
}

#ifdef KESTRELINK_HAVE_LIBYUV
// libyuv is single-threaded: a team of n gets the frame in n bands of rows.
void LibyuvCases() {
  MonoFrames& f = Frames();
  // J400 is full-range grey, copied to B, G and R as ours does (A is 255
  // there, 0 here); I400 would expand limited-range luma, another job.
  Register(Case{"Mono8ToBGRx", "libyuv", f.pixels, 4 * f.pixels, SplitRowsTeam(), [&f](int threads) {
                  SplitRows(f.h, threads, [&](uint32_t y0, uint32_t rows) {
                    libyuv::J400ToARGB(f.src8.data() + size_t(y0) * f.w, int(f.w), f.dst.data() + size_t(y0) * 4 * f.w,
                                       int(4 * f.w), int(f.w), int(rows));
                  });
                  return true;
                }});
  // The scale is 2^(24 - depth): (s * 4096) >> 16 is s >> 4 for 12-bit samples.
  Register(Case{"Mono16ToMono8:d12", "libyuv", 2 * f.pixels, f.pixels, SplitRowsTeam(), [&f](int threads) {
                  SplitRows(f.h, threads, [&](uint32_t y0, uint32_t rows) {
                    libyuv::Convert16To8Plane(f.src16.words() + size_t(y0) * f.w, int(f.w),
                                              f.dst.data() + size_t(y0) * f.w, int(f.w), 1 << (24 - kDepth),
                                              int(f.w), int(rows));
                  });
                  return true;
                }});
}
#endif

#ifdef KESTRELINK_HAVE_OPENCV
// OpenCV has no single call: scale to 8 bits, then grey to colour.
void OpenCvCase(const char* operation, int channels, int code) {
  MonoFrames& f = Frames();
  struct Mats {
    cv::Mat src, narrow, dst;
  };
  auto mats = std::make_shared<Mats>();
  mats->src = cv::Mat(int(f.h), int(f.w), CV_16UC1, f.src16.data());
  mats->narrow = cv::Mat(int(f.h), int(f.w), CV_8UC1, f.narrow.data());
  mats->dst = cv::Mat(int(f.h), int(f.w), CV_8UC(channels), f.dst.data());
  Register(Case{operation, "opencv", 2 * f.pixels, size_t(channels) * f.pixels, OpenCvTeam(), [mats, code](int) {
                  cv::convertScaleAbs(mats->src, mats->narrow, 1.0 / (1 << (kDepth - 8)));
                  cv::cvtColor(mats->narrow, mats->dst, code);
                  return true;
                }});
}
#endif

}  // namespace

void RegisterCases() {
  const uint32_t d = kDepth;
  for (uint32_t bytesPerPixel : {4u, 3u, 2u, 1u}) RegisterMemcpy(bytesPerPixel);

  Ours("Mono8ToBGRx", 1, 4, [](MonoFrames& f) { return f.plain.Mono8ToBGRx(f.w, f.h, f.src8.data(), f.dst.data(), false); });
  Ours("Mono16ToMono8:d12", 2, 1,
       [d](MonoFrames& f) { return f.plain.Mono16ToMono8(f.w, f.h, d, f.src16.data(), f.dst.data(), false); });
  Ours("Mono16ToBGRx:d12", 2, 4,
       [d](MonoFrames& f) { return f.plain.Mono16ToBGRx(f.w, f.h, d, f.src16.data(), f.dst.data(), false); });
  Ours("Mono16ToBGR:d12", 2, 3,
       [d](MonoFrames& f) { return f.plain.Mono16ToBGR(f.w, f.h, d, f.src16.data(), f.dst.data(), false); });
#ifdef KESTRELINK_HAVE_LIBYUV
  LibyuvCases();
#endif
#ifdef KESTRELINK_HAVE_OPENCV
  OpenCvCase("Mono16ToBGRx:d12", 4, cv::COLOR_GRAY2BGRA);
  OpenCvCase("Mono16ToBGR:d12", 3, cv::COLOR_GRAY2BGR);
#endif

  Ours("Mono16ToBGRx:d12:colourmap", 2, 4,
       [d](MonoFrames& f) { return f.mapped.Mono16ToBGRx(f.w, f.h, d, f.src16.data(), f.dst.data(), false); });
  Ours("Mono8ToBGR", 1, 3, [](MonoFrames& f) { return f.plain.Mono8ToBGR(f.w, f.h, f.src8.data(), f.dst.data(), false); });
  Ours("Mono8ToMono16MSB", 1, 2,
       [](MonoFrames& f) { return f.plain.Mono8ToMono16MSB(f.w, f.h, f.src8.data(), f.dst.data(), false); });
  Ours("Mono16ToMono16MSB:d12", 2, 2,
       [d](MonoFrames& f) { return f.plain.Mono16ToMono16MSB(f.w, f.h, d, f.src16.data(), f.dst.data(), false); });
  Ours("SwapWords", 2, 2, [](MonoFrames& f) { return f.plain.SwapWords(f.w, f.h, f.src16.data(), f.dst.data(), false); });
  Ours("Mono8ToMono8", 1, 1, [](MonoFrames& f) { return f.plain.Mono8ToMono8(f.w, f.h, f.src8.data(), f.dst.data(), false); });
  Ours("Mono16ToMono16:d12", 2, 2,
       [d](MonoFrames& f) { return f.plain.Mono16ToMono16(f.w, f.h, d, f.src16.data(), f.dst.data(), false); });
}

}  // namespace kestrelink::bench
