// Encoders to packed 4:2:2 and to planar 4:2:2 and 4:2:0: the RGB sources
// against a double-precision BT.601 studio-range reference within 1, the
// YUV sources byte for byte from their layout, the plane sizes (guard bytes
// stay), and the settled flip behaviours of each family.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageConverter.h>

#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>

#include "support/TestSupport.h"

namespace {

using testsupport::RandomBytes;

struct Rgb {
  double r, g, b;
};

int Round8(double x) { return int(std::lround(x)); }
int StudioY(Rgb p) { return Round8(16 + (65.481 * p.r + 128.553 * p.g + 24.966 * p.b) / 255); }
int StudioCb(Rgb p) { return Round8(128 + (-37.797 * p.r - 74.203 * p.g + 112.0 * p.b) / 255); }
int StudioCr(Rgb p) { return Round8(128 + (112.0 * p.r - 93.786 * p.g - 18.214 * p.b) / 255); }
Rgb Mean(std::initializer_list<Rgb> ps) {
  Rgb m{0, 0, 0};
  for (Rgb p : ps) m.r += p.r / ps.size(), m.g += p.g / ps.size(), m.b += p.b / ps.size();
  return m;
}

// Pixel x of row `row` of each RGB source as R, G, B in 0 .. 255.
using PixelAt = std::function<Rgb(const std::vector<uint8_t>& s, uint32_t w, uint32_t row, uint32_t x)>;

Rgb Bgr24At(const std::vector<uint8_t>& s, uint32_t w, uint32_t row, uint32_t x) {
  const uint8_t* p = &s[(size_t(row) * w + x) * 3];
  return {double(p[2]), double(p[1]), double(p[0])};
}
Rgb Rgb24At(const std::vector<uint8_t>& s, uint32_t w, uint32_t row, uint32_t x) {
  const uint8_t* p = &s[(size_t(row) * w + x) * 3];
  return {double(p[0]), double(p[1]), double(p[2])};
}
Rgb Bgr32At(const std::vector<uint8_t>& s, uint32_t w, uint32_t row, uint32_t x) {
  const uint8_t* p = &s[(size_t(row) * w + x) * 4];
  return {double(p[2]), double(p[1]), double(p[0])};
}
Rgb Bgr555At(const std::vector<uint8_t>& s, uint32_t w, uint32_t row, uint32_t x) {
  const size_t i = size_t(row) * w + x;
  const int u = s[2 * i] | s[2 * i + 1] << 8;  // B bits 0-4, G 5-9, R 10-14, low bits 0
  return {double(((u >> 10) & 31) * 8), double(((u >> 5) & 31) * 8), double((u & 31) * 8)};
}
Rgb Bgr565At(const std::vector<uint8_t>& s, uint32_t w, uint32_t row, uint32_t x) {
  const size_t i = size_t(row) * w + x;
  const int u = s[2 * i] | s[2 * i + 1] << 8;  // B bits 0-4, G 5-10, R 11-15
  return {double((u >> 11) * 8), double(((u >> 5) & 63) * 4), double((u & 31) * 8)};
}
Rgb PlanesAt(const std::vector<uint8_t>& s, uint32_t w, uint32_t row, uint32_t x) {  // R, G, B planes in turn
  const size_t i = size_t(row) * w + x, plane = s.size() / 3;
  return {double(s[i]), double(s[plane + i]), double(s[2 * plane + i])};
}

using Encoder = bool (*)(uint32_t, uint32_t, void*, void*, void*, void*, bool);
struct RgbCase {
  const char* name;
  Encoder to422, to420;
  uint32_t srcBytes;
  PixelAt at;
};

bool Planar422(uint32_t w, uint32_t h, void* s, void* y, void* u, void* v, bool f) {
  const size_t n = size_t(w) * h;
  auto* p = static_cast<uint8_t*>(s);
  return CIppImageConverter::BGRPlannerToYUV422P(w, h, p, p + n, p + 2 * n, y, u, v, f);
}
bool Planar420(uint32_t w, uint32_t h, void* s, void* y, void* u, void* v, bool f) {
  const size_t n = size_t(w) * h;
  auto* p = static_cast<uint8_t*>(s);
  return CIppImageConverter::BGRPlannerToYUV420P(w, h, p, p + n, p + 2 * n, y, u, v, f);
}

const RgbCase kRgbCases[] = {
    {"BGR24Packed", CIppImageConverter::BGR24PackedToYUV422P, CIppImageConverter::BGR24PackedToYUV420P, 3, Bgr24At},
    {"RGB24Packed", CIppImageConverter::RGB24PackedToYUV422P, CIppImageConverter::RGB24PackedToYUV420P, 3, Rgb24At},
    {"BGR32Packed", CIppImageConverter::BGR32PackedToYUV422P, CIppImageConverter::BGR32PackedToYUV420P, 4, Bgr32At},
    {"BGR555Packed", CIppImageConverter::BGR555PackedToYUV422P, CIppImageConverter::BGR555PackedToYUV420P, 2,
     Bgr555At},
    {"BGR565Packed", CIppImageConverter::BGR565PackedToYUV422P, CIppImageConverter::BGR565PackedToYUV420P, 2,
     Bgr565At},
    {"BGRPlanner", Planar422, Planar420, 3, PlanesAt},
};

constexpr uint8_t kGuard = 0xE7;

// Planes with guard bytes after them.
struct Planes {
  std::vector<uint8_t> y, u, v;
  size_t ySize, cSize;
  Planes(size_t luma, size_t chroma, size_t room)
      : y(luma + 16, kGuard), u(chroma + room + 16, kGuard), v(chroma + room + 16, kGuard), ySize(luma),
        cSize(chroma + room) {}
  bool GuardsStand() const {
    auto stands = [](const std::vector<uint8_t>& p, size_t n) {
      for (size_t i = n; i < p.size(); ++i)
        if (p[i] != kGuard) return false;
      return true;
    };
    return stands(y, ySize) && stands(u, cSize) && stands(v, cSize);
  }
};

TEST(YuvEncode, RgbSourcesToPlanarWithinOneOfStudioRange) {
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant sv(variant);
    for (const RgbCase& c : kRgbCases)
      for (bool to420 : {false, true}) {
        const uint32_t w = 38, h = 6, cw = w / 2, ch = to420 ? h / 2 : h;
        const auto src = RandomBytes(size_t(w) * h * c.srcBytes, w + c.srcBytes + to420);
        Planes p(size_t(w) * h, size_t(cw) * ch, 0);
        const Encoder enc = to420 ? c.to420 : c.to422;
        ASSERT_TRUE(enc(w, h, (void*)src.data(), p.y.data(), p.u.data(), p.v.data(), false)) << c.name;
        const std::string what = std::string(c.name) + (to420 ? " 420 " : " 422 ") +
                                  kestrelink::VariantName(kestrelink::ActiveVariant());
        for (uint32_t row = 0; row < h; ++row)
          for (uint32_t x = 0; x < w; ++x)
            ASSERT_NEAR(p.y[size_t(row) * w + x], StudioY(c.at(src, w, row, x)), 1) << what << row << " " << x;
        for (uint32_t cr = 0; cr < ch; ++cr)
          for (uint32_t i = 0; i < cw; ++i) {
            const uint32_t r0 = to420 ? 2 * cr : cr;
            const Rgb m = to420 ? Mean({c.at(src, w, r0, 2 * i), c.at(src, w, r0, 2 * i + 1),
                                        c.at(src, w, r0 + 1, 2 * i), c.at(src, w, r0 + 1, 2 * i + 1)})
                                : Mean({c.at(src, w, r0, 2 * i), c.at(src, w, r0, 2 * i + 1)});
            ASSERT_NEAR(p.u[size_t(cr) * cw + i], StudioCb(m), 1) << what << cr << " " << i;
            ASSERT_NEAR(p.v[size_t(cr) * cw + i], StudioCr(m), 1) << what << cr << " " << i;
          }
        EXPECT_TRUE(p.GuardsStand()) << what;
      }
  }
}

TEST(YuvEncode, FlippedRgbEncodesPutUInBothChromaPlanes) {
  for (const RgbCase& c : kRgbCases)
    for (bool to420 : {false, true}) {
      const uint32_t w = 8, h = 4, cw = w / 2;
      const auto src = RandomBytes(size_t(w) * h * c.srcBytes, 11);
      // 4:2:0 flips h chroma rows into planes that hold h / 2: give them room.
      Planes plain(size_t(w) * h, size_t(cw) * h, 0), flipped(size_t(w) * h, size_t(cw) * h, 0);
      const Encoder enc = to420 ? c.to420 : c.to422;
      ASSERT_TRUE(enc(w, h, (void*)src.data(), plain.y.data(), plain.u.data(), plain.v.data(), false));
      ASSERT_TRUE(enc(w, h, (void*)src.data(), flipped.y.data(), flipped.u.data(), flipped.v.data(), true));
      const uint32_t chromaRows = to420 ? h / 2 : h;
      for (uint32_t row = 0; row < h; ++row)
        EXPECT_EQ(0, std::memcmp(&flipped.y[size_t(row) * w], &plain.y[size_t(h - 1 - row) * w], w)) << c.name << row;
      for (uint32_t cr = 0; cr < chromaRows; ++cr) {
        const size_t at = size_t(h - 1 - cr) * cw;  // scratch row cr lands at row h - 1 - cr
        EXPECT_EQ(0, std::memcmp(&flipped.u[at], &plain.u[size_t(cr) * cw], cw)) << c.name << " U " << cr;
        EXPECT_EQ(0, std::memcmp(&flipped.v[at], &plain.u[size_t(cr) * cw], cw)) << c.name << " V holds U " << cr;
      }
      EXPECT_TRUE(flipped.GuardsStand()) << c.name;
    }
}

TEST(YuvEncode, PackedFourTwoTwoFromBgrAndTheFlipThatWritesNothing) {
  const uint32_t w = 10, h = 3;
  const auto bgr = RandomBytes(size_t(w) * h * 3, 3), bgrx = RandomBytes(size_t(w) * h * 4, 4);
  std::vector<uint8_t> a(size_t(w) * h * 2), b(size_t(w) * h * 2);
  CIppImageConverter conv;
  ASSERT_TRUE(conv.BGR24ToYUV422(w, h, (void*)bgr.data(), a.data(), false));
  ASSERT_TRUE(conv.BGR32ToYUV422(w, h, (void*)bgrx.data(), b.data(), false));
  for (uint32_t row = 0; row < h; ++row)
    for (uint32_t i = 0; i < w / 2; ++i) {
      const uint8_t* p = &a[(size_t(row) * w + 2 * i) * 2];
      const Rgb p0 = Bgr24At(bgr, w, row, 2 * i), p1 = Bgr24At(bgr, w, row, 2 * i + 1);
      EXPECT_NEAR(p[0], StudioY(p0), 1);
      EXPECT_NEAR(p[1], StudioCb(Mean({p0, p1})), 1);
      EXPECT_NEAR(p[2], StudioY(p1), 1);
      EXPECT_NEAR(p[3], StudioCr(Mean({p0, p1})), 1);
      const uint8_t* q = &b[(size_t(row) * w + 2 * i) * 2];
      const Rgb q0 = Bgr32At(bgrx, w, row, 2 * i), q1 = Bgr32At(bgrx, w, row, 2 * i + 1);
      EXPECT_NEAR(q[0], StudioY(q0), 1);
      EXPECT_NEAR(q[3], StudioCr(Mean({q0, q1})), 1);
    }
  std::vector<uint8_t> flipped(b.size(), 0x11);
  ASSERT_TRUE(conv.BGR32ToYUV422(w, h, (void*)bgrx.data(), flipped.data(), true));
  for (uint32_t row = 0; row < h; ++row)
    EXPECT_EQ(0, std::memcmp(&flipped[size_t(row) * w * 2], &b[size_t(h - 1 - row) * w * 2], w * 2)) << row;
  std::vector<uint8_t> untouched(a.size(), 0x22);
  EXPECT_TRUE(conv.BGR24ToYUV422(w, h, (void*)bgr.data(), untouched.data(), true));
  EXPECT_EQ(untouched, std::vector<uint8_t>(a.size(), 0x22));
  EXPECT_FALSE(conv.BGR24ToYUV422(1, h, (void*)bgr.data(), untouched.data(), true));  // the encode's refusal
}

// The YUV sources, byte for byte. Each layout gives pixel x of a row as Y, U, V.
struct Yuv {
  int y, u, v;
};
struct YuvCase {
  const char* name;
  Encoder to422, to420;
  uint32_t group, num;  // pixels a group; rows start at (row * w * num) >> 1
  std::function<Yuv(const uint8_t* row, uint32_t x)> at;
};

const YuvCase kYuvCases[] = {
    {"YUV444", CIppImageConverter::YUV444ToYUV422P, CIppImageConverter::YUV444ToYUV420P, 1, 6,
     [](const uint8_t* r, uint32_t x) { return Yuv{r[3 * x + 1], r[3 * x], r[3 * x + 2]}; }},
    {"UVY422", CIppImageConverter::UVY422ToYUV422P, CIppImageConverter::UVY422ToYUV420P, 2, 4,
     [](const uint8_t* r, uint32_t x) { return Yuv{r[x / 2 * 4 + (x % 2 ? 3 : 1)], r[x / 2 * 4], r[x / 2 * 4 + 2]}; }},
    {"YUV422", CIppImageConverter::YUV422ToYUV422P, CIppImageConverter::YUV422ToYUV420P, 2, 4,
     [](const uint8_t* r, uint32_t x) { return Yuv{r[x / 2 * 4 + (x % 2 ? 2 : 0)], r[x / 2 * 4 + 1], r[x / 2 * 4 + 3]}; }},
    {"YUV411", CIppImageConverter::YUV411ToYUV422P, CIppImageConverter::YUV411ToYUV420P, 4, 3,
     [](const uint8_t* r, uint32_t x) {
       static constexpr int kY[4] = {1, 2, 4, 5};
       return Yuv{r[x / 4 * 6 + kY[x % 4]], r[x / 4 * 6], r[x / 4 * 6 + 3]};
     }},
};

Yuv At(const YuvCase& c, const std::vector<uint8_t>& s, uint32_t w, uint32_t row, uint32_t x) {
  return c.at(s.data() + ((size_t(row) * w * c.num) >> 1), x);
}

TEST(YuvEncode, YuvSourcesToPlanarFourTwoTwo) {
  for (const YuvCase& c : kYuvCases)
    for (bool flip : {false, true}) {
      const uint32_t w = 12, h = 3, cw = w / 2;
      const auto src = RandomBytes(size_t(w) * h * 3, 21);
      Planes p(size_t(w) * h, size_t(cw) * h, 0);
      ASSERT_TRUE(c.to422(w, h, (void*)src.data(), p.y.data(), p.u.data(), p.v.data(), flip));
      for (uint32_t row = 0; row < h; ++row) {
        const uint32_t out = flip ? h - 1 - row : row;
        for (uint32_t x = 0; x < w; ++x) ASSERT_EQ(p.y[size_t(out) * w + x], At(c, src, w, row, x).y) << c.name;
        for (uint32_t i = 0; i < cw; ++i) {  // chroma of pixels 2i and 2i + 1
          const Yuv a = At(c, src, w, row, 2 * i), b = At(c, src, w, row, 2 * i + 1);
          ASSERT_EQ(p.u[size_t(out) * cw + i], (a.u + b.u) >> 1) << c.name << " " << row << " " << i;
          ASSERT_EQ(p.v[size_t(out) * cw + i], (a.v + b.v) >> 1) << c.name << " " << row << " " << i;
        }
      }
      EXPECT_TRUE(p.GuardsStand()) << c.name;
    }
}

TEST(YuvEncode, YuvSourcesToPlanarFourTwoZeroByRowPairs) {
  for (const YuvCase& c : kYuvCases)
    for (bool flip : {false, true}) {
      const uint32_t w = 12, h = 4, cw = w / 2;
      const bool is444 = c.group == 1;
      const auto src = RandomBytes(size_t(w) * h * 3, 31);
      Planes p(size_t(w) * h, size_t(cw) * h / 2, is444 ? w / 4 : 0);
      ASSERT_TRUE(c.to420(w, h, (void*)src.data(), p.y.data(), p.u.data(), p.v.data(), flip));
      for (uint32_t r = 0; r < h; r += 2) {
        // Source rows of the pair, the Y rows they fill, and where the chroma goes.
        uint32_t in0 = r, in1 = r + 1, out0 = r, out1 = r + 1;
        size_t chromaAt = size_t(r) * w / 4;
        if (flip && is444) out0 = h - 1 - r, out1 = h - 2 - r, chromaAt = size_t(h - 1 - r) * w / 4;
        if (flip && !is444) in0 = h - 2 - r, in1 = h - 1 - r;
        for (uint32_t x = 0; x < w; ++x) {
          ASSERT_EQ(p.y[size_t(out0) * w + x], At(c, src, w, in0, x).y) << c.name << " flip " << flip << " r " << r;
          ASSERT_EQ(p.y[size_t(out1) * w + x], At(c, src, w, in1, x).y) << c.name << " flip " << flip << " r " << r;
        }
        for (uint32_t i = 0; i < cw; ++i) {
          const Yuv a = At(c, src, w, in0, 2 * i), b = At(c, src, w, in0, 2 * i + 1), d = At(c, src, w, in1, 2 * i),
                    e = At(c, src, w, in1, 2 * i + 1);
          const int u = is444 ? (a.u + b.u + d.u + e.u) >> 2 : (a.u + d.u) >> 1;
          const int v = is444 ? (a.v + b.v + d.v + e.v) >> 2 : (a.v + d.v) >> 1;
          ASSERT_EQ(p.u[chromaAt + i], u) << c.name << " flip " << flip << " r " << r << " i " << i;
          ASSERT_EQ(p.v[chromaAt + i], v) << c.name << " flip " << flip << " r " << r << " i " << i;
        }
      }
      EXPECT_TRUE(p.GuardsStand()) << c.name << " flip " << flip;
    }
}

TEST(YuvEncode, ByteOrderings) {
  CIppImageConverter conv;
  // UVY411 to YUV422: U Y0 Y1 V Y2 Y3 -> Y0 U Y1 V Y2 U Y3 V.
  const uint8_t uvy411[6] = {1, 2, 3, 4, 5, 6};
  uint8_t yuv422[8];
  ASSERT_TRUE(conv.UVY411ToYUV422(4, 1, (void*)uvy411, yuv422, false));
  const uint8_t want422[8] = {2, 1, 3, 4, 5, 1, 6, 4};
  EXPECT_EQ(0, std::memcmp(yuv422, want422, 8));
  // YUV444P to UVY444: s0 s1 s2 s3 -> s2 s0 s1, and with flip the rows swap.
  const uint8_t quad[8] = {10, 11, 12, 13, 20, 21, 22, 23};
  uint8_t tri[6];
  ASSERT_TRUE(conv.YUV444PToUVY444(1, 2, (void*)quad, tri, true));
  const uint8_t wantTri[6] = {22, 20, 21, 12, 10, 11};
  EXPECT_EQ(0, std::memcmp(tri, wantTri, 6));
}

}  // namespace
