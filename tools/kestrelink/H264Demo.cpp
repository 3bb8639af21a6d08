// The demo's H.264 part: the synthetic sequence encoded at the default rate and decoded back.
#include <kestrelink/CH264Conversion.h>

#include <iomanip>
#include <iostream>

#include "H264Files.h"
#include "Verbs.h"

namespace kestrelink::tool {

void RunH264Demo(uint32_t width, uint32_t height, uint32_t frames) {
  width &= ~1u;
  height &= ~1u;
  if (width < 16 || height < 16) return;
  CH264Conversion codec;
  codec.Initialize(true, width, height, H264_SOURCE_YUV_PLANAR, 12, 0, 8, 0);
  codec.Initialize(false, width, height, H264_SOURCE_YUV_PLANAR, 0, 0, 8, 0);
  const size_t pitch = (size_t(width) * 3 + 3) & ~size_t(3);
  std::vector<uint8_t> record(size_t(width) * height * 2 + 16), image(size_t((height + 15) & ~15u) * width * 3 + pitch);
  uint64_t bytes = 0;
  double psnr = 0, worst = 99;
  h264::Progress progress("h264 demo", frames);
  for (uint32_t t = 0; t < frames; ++t) {
    h264::PlanarFrame frame = h264::DemoFrame(width, height, t);
    if (!codec.EncodeImage(record.data(), frame.y.data(), frame.u.data(), frame.v.data())) return;
    bytes += (uint32_t(record[0]) | uint32_t(record[1]) << 8 | uint32_t(record[2]) << 16 | uint32_t(record[3]) << 24) - 8;
    if (!codec.DecodeImage(t + 1, record.data(), image.data())) {
      std::cout << "h264: frame " << t + 1 << " did not decode\n";
      return;
    }
    const double p = h264::BgrPsnr(image, h264::ExpectedBgr(frame, width, height, pitch), width, height, pitch);
    psnr += p;
    worst = std::min(worst, p);
    progress.Step(t + 1);
  }
  std::cout << "h264: " << frames << " frames of " << width << "x" << height << " at the default 5 Mbit/s, 30 frames a second: "
            << bytes << " bytes, " << std::fixed << std::setprecision(0) << double(bytes) * 8 * 30 / frames
            << " bit/s; PSNR " << std::setprecision(1) << psnr / frames << " dB (lowest " << worst << " dB)\n";
}

}  // namespace kestrelink::tool
