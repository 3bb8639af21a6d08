#include "H264Files.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <unistd.h>

#include "SyntheticScene.h"
#include "ToolError.h"

namespace kestrelink::tool::h264 {

namespace {

constexpr uint64_t kLongRun = 30;  // frames from which a progress bar is shown
constexpr int kBarWidth = 30;

uint8_t Clamp(int value) { return uint8_t(std::min(255, std::max(0, value))); }

}  // namespace

PlanarFrame DemoFrame(uint32_t width, uint32_t height, uint32_t t) {
  PlanarFrame frame{std::vector<uint8_t>(size_t(width) * height), std::vector<uint8_t>(size_t(width / 2) * (height / 2)),
                    std::vector<uint8_t>(size_t(width / 2) * (height / 2))};
  std::vector<double> cb(size_t(width) * height), cr(size_t(width) * height);
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      const scene::Rgb c = scene::SceneColour((x + 2 * t) % width, y, width, height);
      const double r = std::sqrt(c.r), g = std::sqrt(c.g), b = std::sqrt(c.b);  // roughly gamma-coded
      const double luma = 0.299 * r + 0.587 * g + 0.114 * b;
      frame.y[size_t(y) * width + x] = Clamp(int(std::lround(16 + 219 * luma)));
      cb[size_t(y) * width + x] = 128 + 224 * 0.564 * (b - luma);
      cr[size_t(y) * width + x] = 128 + 224 * 0.713 * (r - luma);
    }
  for (uint32_t y = 0; y + 1 < height; y += 2)
    for (uint32_t x = 0; x + 1 < width; x += 2) {
      const size_t at = size_t(y) * width + x, out = size_t(y / 2) * (width / 2) + x / 2;
      frame.u[out] = Clamp(int(std::lround((cb[at] + cb[at + 1] + cb[at + width] + cb[at + width + 1]) / 4)));
      frame.v[out] = Clamp(int(std::lround((cr[at] + cr[at + 1] + cr[at + width] + cr[at + width + 1]) / 4)));
    }
  return frame;
}

std::vector<uint8_t> ExpectedBgr(const PlanarFrame& frame, uint32_t width, uint32_t height, size_t pitch) {
  std::vector<uint8_t> out(pitch * height, 0);
  const bool mono = frame.u.empty();
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      const size_t chroma = size_t(y / 2) * (width / 2) + std::min(x / 2, width / 2 - 1);
      const int l = 4767 * (frame.y[size_t(y) * width + x] - 16);
      const int cb = mono ? 0 : frame.u[chroma] - 128, cr = mono ? 0 : frame.v[chroma] - 128;
      uint8_t* px = &out[y * pitch + size_t(x) * 3];
      px[0] = Clamp((l + 8261 * cb + 2048) >> 12);
      px[1] = Clamp((l - 3330 * cr - 1605 * cb + 2048) >> 12);
      px[2] = Clamp((l + 6537 * cr + 2048) >> 12);
    }
  return out;
}

double BgrPsnr(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b, uint32_t width, uint32_t height,
               size_t pitch) {
  double sum = 0;
  for (uint32_t y = 0; y < height; ++y)
    for (size_t i = 0; i < size_t(width) * 3; ++i) {
      const double d = double(a[y * pitch + i]) - double(b[y * pitch + i]);
      sum += d * d;
    }
  if (sum == 0) return 99.0;
  return 10.0 * std::log10(255.0 * 255.0 * double(width) * height * 3 / sum);
}

std::vector<std::vector<uint8_t>> ReadRecords(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw RunError("cannot open '" + path + "'");
  const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  std::vector<std::vector<uint8_t>> records;
  for (size_t at = 0; at < bytes.size();) {
    if (bytes.size() - at < 8) throw RunError("'" + path + "' ends inside a record header");
    const uint32_t size = uint32_t(bytes[at]) | uint32_t(bytes[at + 1]) << 8 | uint32_t(bytes[at + 2]) << 16 |
                          uint32_t(bytes[at + 3]) << 24;
    if (size < 8 || size > bytes.size() - at)
      throw RunError("record " + std::to_string(records.size() + 1) + " of '" + path + "' has a bad size");
    std::vector<uint8_t> record(bytes.begin() + at, bytes.begin() + at + size);
    record.resize(record.size() + 8, 0);  // a record is followed by 8 readable bytes
    records.push_back(std::move(record));
    at += size;
  }
  return records;
}

Progress::Progress(const char* what, uint64_t total)
    : m_what(what), m_total(total), m_shown(total >= kLongRun && isatty(STDERR_FILENO)) {}

void Progress::Step(uint64_t done) {
  if (!m_shown) return;
  const int filled = int(done * kBarWidth / std::max<uint64_t>(m_total, 1));
  std::fprintf(stderr, "\r%s [%.*s%*s] %llu/%llu", m_what, filled, "##############################",
               kBarWidth - filled, "", (unsigned long long)done, (unsigned long long)m_total);
  std::fflush(stderr);
}

Progress::~Progress() {
  if (m_shown) std::fputc('\n', stderr);
}

}  // namespace kestrelink::tool::h264
