// Raw Bayer frames through CIppBayerCorrector on whole frames, against
// OpenCV's cvtColor with the bilinear COLOR_BayerBG2BGR (and BGRA) on the
// same mosaic at the same thread count; its edge-aware ..._EA beside the
// 8-bit case. Our rows run with no correction stage; the stage alone (the
// manual channel tables on a BGR24 and a BGR48 frame) has rows of its own.
//
// OpenCV has no narrowing: its 16-bit rows write BGR48 for both of our
// 12-bit targets, BGR24 and BGR48. Sources are pseudo-random samples (12-bit
// for the 16-bit frames); the interpolation has no data-dependent branches.
#include <kestrelink/CIppBayerCorrector.h>

#include <cstdint>
#include <memory>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"
#include "harness/PeerTeams.h"

#ifdef KESTRELINK_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace kestrelink::bench {
namespace {

constexpr uint32_t kDepth = 12;

struct BayerFrames : FrameSize {
  FrameBuffer raw8{pixels};
  FrameBuffer raw16{2 * pixels};
  FrameBuffer dst{8 * pixels};  // room for OpenCV's 16-bit BGRA
  CIppBayerCorrector from8, from16;           // demosaic only
  CIppBayerCorrector stage24, stage48;        // manual tables on BGR frames

  BayerFrames() {
    FillBytes(raw8.data(), pixels, 0xBA7E8ull);
    FillSamples16(raw16.words(), pixels, kDepth, 0xBA7E16ull);
    FillBytes(dst.data(), dst.size(), 0xD57ull);
    for (CIppBayerCorrector* c : {&from8, &from16}) {
      c->SetBayerPattern(BAYER_RGGB);
      c->SetColorCorrectionMode(CORRECTION_NONE);
    }
    from8.SetImageInfo4CB(w, h, 8, 8, 100, false);
    from16.SetImageInfo4CB(w, h, 16, kDepth, 100, false);
    stage24.SetColorBalance(12, 0, -7);
    stage24.SetImageInfo4CB(w, h, 24, 8, 200, true);
    stage48.SetColorBalance(190, 0, -110);
    stage48.SetImageInfo4CB(w, h, 48, kDepth, 200, true);
  }
};

BayerFrames& Frames() { return Shared<BayerFrames>(); }

template <class Call>
void Ours(const char* operation, size_t readPerPixel, size_t writtenPerPixel, Call call) {
  RegisterOurs<BayerFrames>(operation, readPerPixel, writtenPerPixel, call);
}

#ifdef KESTRELINK_HAVE_OPENCV
void OpenCv(const char* operation, const char* name, bool sixteen, int channels, int code) {
  BayerFrames& f = Frames();
  struct Mats {
    cv::Mat src, dst;
  };
  auto mats = std::make_shared<Mats>();
  const int depth = sixteen ? CV_16U : CV_8U;
  mats->src = cv::Mat(int(f.h), int(f.w), CV_MAKETYPE(depth, 1), sixteen ? f.raw16.data() : f.raw8.data());
  mats->dst = cv::Mat(int(f.h), int(f.w), CV_MAKETYPE(depth, channels), f.dst.data());
  const size_t sample = sixteen ? 2 : 1;
  Register(Case{operation, name, sample * f.pixels, sample * channels * f.pixels, OpenCvTeam(), [mats, code](int) {
                  cv::cvtColor(mats->src, mats->dst, code);
                  return true;
                }});
}
#endif

}  // namespace

void RegisterCases() {
  for (uint32_t bytesPerPixel : {3u, 4u, 6u}) RegisterMemcpy(bytesPerPixel);

  Ours("RawConvertToBGR24:8bit", 1, 3,
       [](BayerFrames& f) { return f.from8.RawConvertToBGR24(f.raw8.data(), f.dst.data(), false); });
  Ours("RawConvertToBGR24:12bit", 2, 3,
       [](BayerFrames& f) { return f.from16.RawConvertToBGR24(f.raw16.data(), f.dst.data(), false); });
  Ours("RawConvertToBGR48:12bit", 2, 6,
       [](BayerFrames& f) { return f.from16.RawConvertToBGR48(f.raw16.data(), f.dst.data(), false); });
  Ours("RawConvertToBGRx:8bit", 1, 4,
       [](BayerFrames& f) { return f.from8.RawConvertToBGRx(f.raw8.data(), f.dst.data(), false); });
  Ours("RawConvertToBGRx:12bit", 2, 4,
       [](BayerFrames& f) { return f.from16.RawConvertToBGRx(f.raw16.data(), f.dst.data(), false); });
#ifdef KESTRELINK_HAVE_OPENCV
  OpenCv("RawConvertToBGR24:8bit", "opencv", false, 3, cv::COLOR_BayerBG2BGR);
  OpenCv("RawConvertToBGR24:8bit", "opencv-EA", false, 3, cv::COLOR_BayerBG2BGR_EA);
  OpenCv("RawConvertToBGR24:12bit", "opencv(48)", true, 3, cv::COLOR_BayerBG2BGR);
  OpenCv("RawConvertToBGR48:12bit", "opencv", true, 3, cv::COLOR_BayerBG2BGR);
  OpenCv("RawConvertToBGRx:8bit", "opencv", false, 4, cv::COLOR_BayerBG2BGRA);
  OpenCv("RawConvertToBGRx:12bit", "opencv(64)", true, 4, cv::COLOR_BayerBG2BGRA);
#endif

  // The correction stage alone, in place on a BGR frame.
  Ours("BGRApplyColorBalance:BGR24", 3, 3,
       [](BayerFrames& f) { return f.stage24.BGRApplyColorBalance(f.dst.data(), false); });
  Ours("BGRApplyColorBalance:BGR48", 6, 6,
       [](BayerFrames& f) { return f.stage48.BGRApplyColorBalance(f.dst.data(), false); });
}

}  // namespace kestrelink::bench
