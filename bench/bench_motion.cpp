// CIppMotionDetector at 1920 x 1080, 8-bit grey frames: grey conversion
// (of RGB24, and of BGR and BGRx at 8 and 12 bits in 16-bit samples),
// count in a range, mean, dilate and erode, Sobel 3 x 3 and 5 x 5 (filter,
// magnitude, narrowing to bytes), absolute difference and threshold, next
// to OpenCV's cvtColor, inRange + countNonZero, mean, dilate / erode,
// Sobel + convertScaleAbs (replicated border), absdiff and threshold.
// The morphology works in place on its frame, OpenCV's into another.
#include <kestrelink/CIppMotionDetector.h>

#include <cstdint>
#include <memory>
#include <string>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"
#include "harness/PeerTeams.h"

#ifdef KESTRELINK_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace kestrelink::bench {
namespace {

struct MotionFrames : FrameSize {
  FrameBuffer rgb{3 * pixels}, rgbx{4 * pixels}, rgb16{6 * pixels}, rgbx16{8 * pixels}, a{pixels}, b{pixels}, dst{pixels}, work{pixels}, a16{2 * pixels}, b16{2 * pixels},
      dst16{2 * pixels};
  CIppMotionDetector motion;
  int count = 0;
  double mean = 0;
  MotionFrames() {
    FillBytes(rgb.data(), rgb.size(), 0x11ull);
    FillBytes(rgbx.data(), rgbx.size(), 0x12ull);
    FillSamples16(rgb16.words(), 3 * pixels, 12, 0x13ull);
    FillSamples16(rgbx16.words(), 4 * pixels, 12, 0x14ull);
    FillBytes(a.data(), a.size(), 0x22ull);
    FillBytes(b.data(), b.size(), 0x33ull);
    FillBytes(work.data(), work.size(), 0x44ull);
    FillSamples16(a16.words(), pixels, 12, 0x55ull);
    FillSamples16(b16.words(), pixels, 12, 0x66ull);
  }
};

MotionFrames& Frames() { return Shared<MotionFrames>(); }

template <class Call>
void Ours(const char* operation, size_t read, size_t written, Call call) {
  RegisterOurs<MotionFrames>(operation, read, written, [call](MotionFrames& f) { return call(f, int(f.w), int(f.h)); });
}

#ifdef KESTRELINK_HAVE_OPENCV
struct Mats {
  cv::Mat rgb, rgbx, rgb16, rgbx16, a, b, dst, work, a16, b16, dst16, mask, s16;
};

std::shared_ptr<Mats> MakeMats() {
  MotionFrames& f = Frames();
  auto m = std::make_shared<Mats>();
  const int h = int(f.h), w = int(f.w);
  m->rgb = cv::Mat(h, w, CV_8UC3, f.rgb.data());
  m->rgbx = cv::Mat(h, w, CV_8UC4, f.rgbx.data());
  m->rgb16 = cv::Mat(h, w, CV_16UC3, f.rgb16.data());
  m->rgbx16 = cv::Mat(h, w, CV_16UC4, f.rgbx16.data());
  m->a = cv::Mat(h, w, CV_8UC1, f.a.data());
  m->b = cv::Mat(h, w, CV_8UC1, f.b.data());
  m->dst = cv::Mat(h, w, CV_8UC1, f.dst.data());
  m->work = cv::Mat(h, w, CV_8UC1, f.work.data());
  m->a16 = cv::Mat(h, w, CV_16UC1, f.a16.data());
  m->b16 = cv::Mat(h, w, CV_16UC1, f.b16.data());
  m->dst16 = cv::Mat(h, w, CV_16UC1, f.dst16.data());
  m->mask.create(h, w, CV_8UC1);
  m->s16.create(h, w, CV_16SC1);
  return m;
}

template <class Call>
void Peer(const char* operation, size_t read, size_t written, Call call) {
  static std::shared_ptr<Mats> mats = MakeMats();
  const size_t pixels = Frames().pixels;
  Register(Case{operation, "opencv", read * pixels, written * pixels, OpenCvTeam(), [call](int) {
                  call(*mats);
                  return true;
                }});
}
#endif

}  // namespace

void RegisterCases() {
  RegisterMemcpy(1);
  RegisterMemcpy(2);
  Ours("grey of RGB24", 3, 1,
       [](MotionFrames& f, int w, int h) { return f.motion.RGB8GrayConvert(w, h, f.rgb.data(), f.dst.data()); });
  Ours("grey of BGR24", 3, 1,
       [](MotionFrames& f, int w, int h) { return f.motion.BGR8GrayConvert(w, h, f.rgb.data(), f.dst.data()); });
  Ours("grey of BGRx32", 4, 1,
       [](MotionFrames& f, int w, int h) { return f.motion.BGRx8GrayConvert(w, h, f.rgbx.data(), f.dst.data()); });
  Ours("grey of BGR48", 6, 2,
       [](MotionFrames& f, int w, int h) { return f.motion.BGR16GrayConvert(w, h, f.rgb16.data(), f.dst16.data()); });
  Ours("grey of BGRx64", 8, 2, [](MotionFrames& f, int w, int h) {
    return f.motion.BGRx16GrayConvert(w, h, f.rgbx16.data(), f.dst16.data());
  });
  Ours("count in range", 1, 0, [](MotionFrames& f, int w, int h) {
    return f.motion.Count8bitGrayPixels(w, h, f.a.data(), 40, 200, 0, 0, w, h, f.count);
  });
  Ours("mean", 1, 0,
       [](MotionFrames& f, int w, int h) { return f.motion.Mean8bitGrayPixels(w, h, f.a.data(), 0, 0, w, h, f.mean); });
  Ours("dilate 3x3", 1, 1,
       [](MotionFrames& f, int w, int h) { return f.motion.Dilate8bitGrayPixels(w, h, f.work.data(), 0, 0, w, h); });
  Ours("erode 3x3", 1, 1,
       [](MotionFrames& f, int w, int h) { return f.motion.Erode8bitGrayPixels(w, h, f.work.data(), 0, 0, w, h); });
  Ours("Sobel 3x3 vertical edges", 1, 1, [](MotionFrames& f, int w, int h) {
    return f.motion.Sobel8bitGrayPixels(w, h, f.a.data(), f.dst.data(), 0, 0, w, h, true, 0);
  });
  Ours("Sobel 5x5 vertical edges", 1, 1, [](MotionFrames& f, int w, int h) {
    return f.motion.Sobel8bitGrayPixels(w, h, f.a.data(), f.dst.data(), 0, 0, w, h, false, 0);
  });
  Ours("absolute difference", 2, 1, [](MotionFrames& f, int w, int h) {
    return f.motion.AbsDiff8bitGrayPixels(w, h, f.a.data(), f.b.data(), f.dst.data(), 0, 0, w, h);
  });
  Ours("absolute difference 16-bit", 4, 2, [](MotionFrames& f, int w, int h) {
    return f.motion.AbsDiff16bitGrayPixels(w, h, f.a16.data(), f.b16.data(), f.dst16.data(), 0, 0, w, h);
  });
  Ours("threshold", 1, 1, [](MotionFrames& f, int w, int h) {
    return f.motion.Threshold8bitGrayPixels(w, h, f.a.data(), f.dst.data(), 128, 0, 0, w, h);
  });
#ifdef KESTRELINK_HAVE_OPENCV
  Peer("grey of RGB24", 3, 1, [](Mats& m) { cv::cvtColor(m.rgb, m.dst, cv::COLOR_RGB2GRAY); });
  Peer("grey of BGR24", 3, 1, [](Mats& m) { cv::cvtColor(m.rgb, m.dst, cv::COLOR_BGR2GRAY); });
  Peer("grey of BGRx32", 4, 1, [](Mats& m) { cv::cvtColor(m.rgbx, m.dst, cv::COLOR_BGRA2GRAY); });
  Peer("grey of BGR48", 6, 2, [](Mats& m) { cv::cvtColor(m.rgb16, m.dst16, cv::COLOR_BGR2GRAY); });
  Peer("grey of BGRx64", 8, 2, [](Mats& m) { cv::cvtColor(m.rgbx16, m.dst16, cv::COLOR_BGRA2GRAY); });
  Peer("count in range", 1, 0, [](Mats& m) {
    cv::inRange(m.a, 40, 200, m.mask);
    Frames().count = cv::countNonZero(m.mask);
  });
  Peer("mean", 1, 0, [](Mats& m) { Frames().mean = cv::mean(m.a)[0]; });
  const cv::Mat element = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(3, 3));
  Peer("dilate 3x3", 1, 1, [element](Mats& m) { cv::dilate(m.work, m.dst, element); });
  Peer("erode 3x3", 1, 1, [element](Mats& m) { cv::erode(m.work, m.dst, element); });
  Peer("Sobel 3x3 vertical edges", 1, 1, [](Mats& m) {
    cv::Sobel(m.a, m.s16, CV_16S, 1, 0, 3, 1, 0, cv::BORDER_REPLICATE);
    cv::convertScaleAbs(m.s16, m.dst);
  });
  Peer("Sobel 5x5 vertical edges", 1, 1, [](Mats& m) {
    cv::Sobel(m.a, m.s16, CV_16S, 1, 0, 5, 1, 0, cv::BORDER_REPLICATE);
    cv::convertScaleAbs(m.s16, m.dst);
  });
  Peer("absolute difference", 2, 1, [](Mats& m) { cv::absdiff(m.a, m.b, m.dst); });
  Peer("absolute difference 16-bit", 4, 2, [](Mats& m) { cv::absdiff(m.a16, m.b16, m.dst16); });
  Peer("threshold", 1, 1, [](Mats& m) { cv::threshold(m.a, m.dst, 127, 255, cv::THRESH_BINARY); });
#endif
}

}  // namespace kestrelink::bench
