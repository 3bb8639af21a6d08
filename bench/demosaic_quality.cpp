// Demosaic quality on natural photographs: each picture is sampled as a
// Bayer mosaic of each of the four patterns (8 bits), demosaiced by
// CIppBayerCorrector and by OpenCV's bilinear COLOR_Bayer..2BGR and
// edge-aware ..2BGR_EA, and compared with the picture. The figure is colour
// PSNR (all three channels, peak 255) over the interior: a margin of 8
// pixels is left out, where each method has its own border rule.
//
// usage: demosaic_quality PICTURE...
#include <kestrelink/CIppBayerCorrector.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

namespace {

constexpr int kMargin = 8;

struct Pattern {
  const char* name;  // colours of the first two rows
  BAYERPATTERN ours;
};
constexpr Pattern kPatterns[] = {{"RGGB", BAYER_RGGB}, {"BGGR", BAYER_BGGR}, {"GRBG", BAYER_GRBG}, {"GBRG", BAYER_GBRG}};

// Channel index in a BGR pixel of site (x, y).
int SiteChannel(const char* name, int x, int y) {
  const char c = name[2 * (y & 1) + (x & 1)];
  return c == 'B' ? 0 : c == 'G' ? 1 : 2;
}

cv::Mat Mosaic(const cv::Mat& bgr, const char* name) {
  cv::Mat m(bgr.rows, bgr.cols, CV_8UC1);
  for (int y = 0; y < bgr.rows; ++y)
    for (int x = 0; x < bgr.cols; ++x) m.at<uint8_t>(y, x) = bgr.at<cv::Vec3b>(y, x)[SiteChannel(name, x, y)];
  return m;
}

double InteriorPsnr(const cv::Mat& a, const cv::Mat& b) {
  double sum = 0;
  size_t n = 0;
  for (int y = kMargin; y < a.rows - kMargin; ++y)
    for (int x = kMargin; x < a.cols - kMargin; ++x)
      for (int c = 0; c < 3; ++c) {
        const double d = double(a.at<cv::Vec3b>(y, x)[c]) - double(b.at<cv::Vec3b>(y, x)[c]);
        sum += d * d;
        ++n;
      }
  const double mse = sum / double(n);
  return mse == 0 ? 99.0 : 10 * std::log10(255.0 * 255.0 / mse);
}

cv::Mat Ours(const cv::Mat& mosaic, BAYERPATTERN pattern) {
  CIppBayerCorrector c;
  c.SetBayerPattern(pattern);
  c.SetColorCorrectionMode(CORRECTION_NONE);
  c.SetImageInfo4CB(uint32_t(mosaic.cols), uint32_t(mosaic.rows), 8, 8, 100, false);
  cv::Mat out(mosaic.rows, mosaic.cols, CV_8UC3);
  if (!c.RawConvertToBGR24(mosaic.data, out.data, false)) std::fprintf(stderr, "our demosaic failed\n");
  return out;
}

// OpenCV names its Bayer codes by other pixels than the first two rows; the
// code for a pattern is the one that gives a flat colour back exactly.
int OpenCvCode(const char* name, bool edgeAware) {
  const int bilinear[4] = {cv::COLOR_BayerBG2BGR, cv::COLOR_BayerGB2BGR, cv::COLOR_BayerRG2BGR, cv::COLOR_BayerGR2BGR};
  const int ea[4] = {cv::COLOR_BayerBG2BGR_EA, cv::COLOR_BayerGB2BGR_EA, cv::COLOR_BayerRG2BGR_EA,
                     cv::COLOR_BayerGR2BGR_EA};
  const cv::Mat flat(40, 40, CV_8UC3, cv::Scalar(30, 110, 220));
  const cv::Mat m = Mosaic(flat, name);
  for (int i = 0; i < 4; ++i) {
    cv::Mat out;
    cv::cvtColor(m, out, bilinear[i]);
    if (InteriorPsnr(out, flat) > 90) return edgeAware ? ea[i] : bilinear[i];
  }
  return -1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: demosaic_quality PICTURE...\n");
    return 2;
  }
  std::printf("%-22s %-5s %9s %9s %9s %9s\n", "picture", "grid", "ours", "bilinear", "EA", "gain");
  double total[3] = {0, 0, 0};
  int rows = 0;
  for (int i = 1; i < argc; ++i) {
    cv::Mat picture = cv::imread(argv[i], cv::IMREAD_COLOR);
    if (picture.empty()) {
      std::fprintf(stderr, "cannot read %s\n", argv[i]);
      return 1;
    }
    picture = picture(cv::Rect(0, 0, picture.cols & ~1, picture.rows & ~1)).clone();
    std::string name = argv[i];
    name = name.substr(name.find_last_of('/') + 1);
    for (const Pattern& p : kPatterns) {
      const cv::Mat mosaic = Mosaic(picture, p.name);
      cv::Mat bilinear, ea;
      cv::cvtColor(mosaic, bilinear, OpenCvCode(p.name, false));
      cv::cvtColor(mosaic, ea, OpenCvCode(p.name, true));
      const double scores[3] = {InteriorPsnr(Ours(mosaic, p.ours), picture), InteriorPsnr(bilinear, picture),
                                InteriorPsnr(ea, picture)};
      for (int k = 0; k < 3; ++k) total[k] += scores[k];
      ++rows;
      std::printf("%-22s %-5s %9.2f %9.2f %9.2f %+9.2f\n", name.c_str(), p.name, scores[0], scores[1], scores[2],
                  scores[0] - scores[1]);
    }
  }
  std::printf("%-22s %-5s %9.2f %9.2f %9.2f %+9.2f\n", "mean", "", total[0] / rows, total[1] / rows, total[2] / rows,
              (total[0] - total[1]) / rows);
  return 0;
}
