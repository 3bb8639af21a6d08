// Packed and planar colour conversions of CIppImageConverter on whole frames,
// against memcpy of each output size and, where one exists, the same job by
// a peer: libyuv for the 3 <-> 4 byte copies, the R/B swap, the 5-6-5 and
// 1-5-5-5 expansions and the 16-to-8-bit narrowing; OpenCV's merge for
// three planes to BGR24. Sources hold pseudo-random bytes (12-bit samples
// for the 16-bit sources).
//
// Where a peer's bytes differ from ours, only the time is compared: libyuv's
// ARGB outputs write an alpha byte (255, or bit 15 for 1-5-5-5) where ours
// keep the destination's fourth byte, and its 5-6-5 and 1-5-5-5 expansions
// replicate the top bits into the low ones where ours leave them 0; its
// RGB565ToARGB writes four bytes a pixel against our three.
#include <kestrelink/CIppImageConverter.h>

#include <cstdint>
#include <memory>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"
#include "harness/PeerTeams.h"

#ifdef KESTRELINK_HAVE_LIBYUV
#include <libyuv/convert_argb.h>
#include <libyuv/convert_from_argb.h>
#include <libyuv/planar_functions.h>
#endif
#ifdef KESTRELINK_HAVE_OPENCV
#include <opencv2/core.hpp>
#endif

namespace kestrelink::bench {
namespace {

constexpr uint32_t kDepth = 12;

struct ColourFrames : FrameSize {
  FrameBuffer src{8 * pixels};  // room for the widest source, BGR64
  FrameBuffer dst{6 * pixels};
  uint8_t* plane(int i) { return src.data() + size_t(i) * 2 * pixels; }  // three planes of up to 16 bits
  CIppImageConverter plain;
  CIppImageConverter mapped;  // colour map on; its first call builds the tables

  ColourFrames() {
    FillSamples16(src.words(), 4 * pixels, kDepth, 0x5EEDC0ull);  // also fine as bytes and packed words
    FillBytes(dst.data(), dst.size(), 0xD57ull);
    mapped.SetImageColorMap(true);
  }
};

ColourFrames& Frames() { return Shared<ColourFrames>(); }

template <class Call>
void Ours(const char* operation, size_t readPerPixel, size_t writtenPerPixel, Call call) {
  RegisterOurs<ColourFrames>(operation, readPerPixel, writtenPerPixel, call);
}

#ifdef KESTRELINK_HAVE_LIBYUV
// libyuv is single-threaded: a team of n gets the frame in n bands of rows.
// `convert(src, dst, w, rows)` converts `rows` rows from the given starts.
template <class Convert>
void Libyuv(const char* operation, size_t readPerPixel, size_t writtenPerPixel, Convert convert) {
  ColourFrames& f = Frames();
  Register(Case{operation, "libyuv", readPerPixel * f.pixels, writtenPerPixel * f.pixels, SplitRowsTeam(),
                [&f, convert, readPerPixel, writtenPerPixel](int threads) {
                  SplitRows(f.h, threads, [&](uint32_t y0, uint32_t rows) {
                    convert(f.src.data() + y0 * readPerPixel * f.w, f.dst.data() + y0 * writtenPerPixel * f.w,
                            int(f.w), int(rows));
                  });
                  return true;
                }});
}

void LibyuvCases() {
  Libyuv("BGR24ToBGRx", 3, 4, [](const uint8_t* s, uint8_t* d, int w, int rows) {
    libyuv::RGB24ToARGB(s, 3 * w, d, 4 * w, w, rows);
  });
  Libyuv("BGRxToBGR24", 4, 3, [](const uint8_t* s, uint8_t* d, int w, int rows) {
    libyuv::ARGBToRGB24(s, 4 * w, d, 3 * w, w, rows);
  });
  Libyuv("BGR24ToRGB24", 3, 3, [](const uint8_t* s, uint8_t* d, int w, int rows) {
    libyuv::RGB24ToRAW(s, 3 * w, d, 3 * w, w, rows);
  });
  Libyuv("BGR565PackedToBGR24", 2, 4, [](const uint8_t* s, uint8_t* d, int w, int rows) {
    libyuv::RGB565ToARGB(s, 2 * w, d, 4 * w, w, rows);
  });
  Libyuv("BGR555PackedToBGRx", 2, 4, [](const uint8_t* s, uint8_t* d, int w, int rows) {
    libyuv::ARGB1555ToARGB(s, 2 * w, d, 4 * w, w, rows);
  });
  // Three samples a pixel as one plane of 3w; the scale 2^(24 - d) is s >> (d - 8).
  Libyuv("BGR48ToBGR24:d12", 6, 3, [](const uint8_t* s, uint8_t* d, int w, int rows) {
    libyuv::Convert16To8Plane(reinterpret_cast<const uint16_t*>(s), 3 * w, d, 3 * w, 1 << (24 - kDepth), 3 * w, rows);
  });
}
#endif

#ifdef KESTRELINK_HAVE_OPENCV
void OpenCvMerge() {
  ColourFrames& f = Frames();
  struct Mats {
    cv::Mat planes[3], dst;
  };
  auto mats = std::make_shared<Mats>();
  for (int i = 0; i < 3; ++i) mats->planes[i] = cv::Mat(int(f.h), int(f.w), CV_8UC1, f.plane(i));
  mats->dst = cv::Mat(int(f.h), int(f.w), CV_8UC3, f.dst.data());
  Register(Case{"BGR24PToBGR24", "opencv", 3 * f.pixels, 3 * f.pixels, OpenCvTeam(), [mats](int) {
                  cv::merge(mats->planes, 3, mats->dst);
                  return true;
                }});
}
#endif

}  // namespace

void RegisterCases() {
  const uint32_t d = kDepth;
  for (uint32_t bytesPerPixel : {4u, 3u}) RegisterMemcpy(bytesPerPixel);

  Ours("BGR24ToBGRx", 3, 4, [](ColourFrames& f) { return f.plain.BGR24ToBGRx(f.w, f.h, f.src.data(), f.dst.data(), false); });
  Ours("BGRxToBGR24", 4, 3, [](ColourFrames& f) { return f.plain.BGRxToBGR24(f.w, f.h, f.src.data(), f.dst.data(), false); });
  Ours("BGR24ToRGB24", 3, 3, [](ColourFrames& f) { return f.plain.BGR24ToRGB24(f.w, f.h, f.src.data(), f.dst.data(), false); });
  Ours("BGR565PackedToBGR24", 2, 3,
       [](ColourFrames& f) { return f.plain.BGR565PackedToBGR24(f.w, f.h, f.src.data(), f.dst.data(), false); });
  Ours("BGR555PackedToBGRx", 2, 4,
       [](ColourFrames& f) { return f.plain.BGR555PackedToBGRx(f.w, f.h, f.src.data(), f.dst.data(), false); });
  Ours("BGR48ToBGR24:d12", 6, 3,
       [d](ColourFrames& f) { return f.plain.BGR48ToBGR24(f.w, f.h, d, f.src.data(), f.dst.data(), false); });
  Ours("BGR24PToBGR24", 3, 3, [](ColourFrames& f) {
    return f.plain.BGR24PToBGR24(f.w, f.h, f.plane(0), f.plane(1), f.plane(2), f.dst.data(), false);
  });
#ifdef KESTRELINK_HAVE_LIBYUV
  LibyuvCases();
#endif
#ifdef KESTRELINK_HAVE_OPENCV
  OpenCvMerge();
#endif

  // Ours alone: the other shapes of the family, and one colour-map path.
  Ours("BGR48ToBGRx:d12", 6, 4,
       [d](ColourFrames& f) { return f.plain.BGR48ToBGRx(f.w, f.h, d, f.src.data(), f.dst.data(), false); });
  Ours("RGB48ToBGR24:d12", 6, 3,
       [d](ColourFrames& f) { return f.plain.RGB48ToBGR24(f.w, f.h, d, f.src.data(), f.dst.data(), false); });
  Ours("GVSPBGR10v2ToBGRx", 4, 4,
       [](ColourFrames& f) { return f.plain.GVSPBGR10v2ToBGRx(f.w, f.h, f.src.data(), f.dst.data(), false); });
  Ours("BGR24PToBGRx", 3, 4, [](ColourFrames& f) {
    return f.plain.BGR24PToBGRx(f.w, f.h, f.plane(0), f.plane(1), f.plane(2), f.dst.data(), false);
  });
  Ours("BGR36PToBGRx", 6, 4, [](ColourFrames& f) {
    return f.plain.BGR36PToBGRx(f.w, f.h, f.plane(0), f.plane(1), f.plane(2), f.dst.data(), false);
  });
  Ours("BGR24ToBGRx:colourmap", 3, 4,
       [](ColourFrames& f) { return f.mapped.BGR24ToBGRx(f.w, f.h, f.src.data(), f.dst.data(), false); });
}

}  // namespace kestrelink::bench
