// CIppImageRotate's exact right angles through the public forms: every pixel
// size against the plain per-pixel rule at odd sizes, pads untouched, under
// every processor variant.
#include <kestrelink/CIppImageRotate.h>

#include <gtest/gtest.h>

#include "geometry/GeometryTestFrames.h"

namespace {

using geometrytest::Frame;

// The arguments of one call at centre (0, 0), nearest, no smooth edge.
struct Call {
  uint32_t sw, sh;
  void* s;
  uint32_t dw, dh;
  void* d;
  double angle;
};

// One public form, with the 16-bit forms' unused argument filled in.
struct Form {
  const char* name;
  int bytes;
  bool (*run)(CIppImageRotate&, const Call&);
  bool call(CIppImageRotate& r, uint32_t sw, uint32_t sh, void* s, uint32_t dw, uint32_t dh, void* d,
            double angle) const {
    return run(r, Call{sw, sh, s, dw, dh, d, angle});
  }
};
const Form kForms[] = {{"Mono8Rotate", 1,
                        [](CIppImageRotate& r, const Call& c) {
                          return r.Mono8Rotate(c.sw, c.sh, c.s, c.dw, c.dh, c.d, 0, 0, c.angle, 0, false);
                        }},
                       {"Mono16Rotate", 2,
                        [](CIppImageRotate& r, const Call& c) {
                          return r.Mono16Rotate(c.sw, c.sh, c.s, c.dw, c.dh, c.d, 12345, 0, 0, c.angle, 0, false);
                        }},
                       {"BGR8Rotate", 3,
                        [](CIppImageRotate& r, const Call& c) {
                          return r.BGR8Rotate(c.sw, c.sh, c.s, c.dw, c.dh, c.d, 0, 0, c.angle, 0, false);
                        }},
                       {"BGRx8Rotate", 4,
                        [](CIppImageRotate& r, const Call& c) {
                          return r.BGRx8Rotate(c.sw, c.sh, c.s, c.dw, c.dh, c.d, 0, 0, c.angle, 0, false);
                        }},
                       {"BGR16Rotate", 6,
                        [](CIppImageRotate& r, const Call& c) {
                          return r.BGR16Rotate(c.sw, c.sh, c.s, c.dw, c.dh, c.d, 12345, 0, 0, c.angle, 0, false);
                        }},
                       {"BGRx16Rotate", 8, [](CIppImageRotate& r, const Call& c) {
                          return r.BGRx16Rotate(c.sw, c.sh, c.s, c.dw, c.dh, c.d, 12345, 0, 0, c.angle, 0, false);
                        }}};

constexpr uint8_t kUntouched = 0xEE;

// 90: output row x, column y = source row h-1-y, column x, rows padded to a
// multiple of 4 on the right. -90: output row w-1-x, column P-1-y = source
// row h-1-y, column x, pad on the left.
Frame Quarter(const Frame& src, bool clockwise) {
  const uint32_t pitch = (src.h + 3) / 4 * 4;
  Frame out(pitch, src.w, src.bytes, kUntouched);
  for (uint32_t y = 0; y < src.h; ++y)
    for (uint32_t x = 0; x < src.w; ++x) {
      if (clockwise)
        geometrytest::CopyPixel(src, src.h - 1 - y, x, out, x, y);
      else
        geometrytest::CopyPixel(src, src.h - 1 - y, x, out, src.w - 1 - x, pitch - 1 - y);
    }
  return out;
}

Frame Half(const Frame& src) {
  Frame out(src.w, src.h, src.bytes, kUntouched);
  for (uint32_t y = 0; y < src.h; ++y)
    for (uint32_t x = 0; x < src.w; ++x) geometrytest::CopyPixel(src, y, src.w - 1 - x, out, src.h - 1 - y, x);
  return out;
}

TEST(RotateRightAngles, EveryPixelSizeMatchesThePlainRuleAtOddSizes) {
  CIppImageRotate rotate;
  const std::pair<uint32_t, uint32_t> sizes[] = {{1, 1}, {10, 6}, {37, 23}, {5, 130}, {131, 7}, {67, 67}, {200, 97}};
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant variant(v);
    for (const Form& f : kForms)
      for (auto [w, h] : sizes) {
        SCOPED_TRACE(testing::Message() << kestrelink::VariantName(v) << " " << f.name << " " << w << "x" << h);
        const Frame src = Frame::Random(w, h, f.bytes, w * 17 + h);
        const uint32_t pitch = (h + 3) / 4 * 4;
        for (double angle : {90.0, -90.0}) {
          Frame dst(pitch, w, f.bytes, kUntouched);
          Frame in = src;
          ASSERT_TRUE(f.call(rotate, w, h, in.ptr(), pitch, w, dst.ptr(), angle));
          EXPECT_EQ(dst.data, Quarter(src, angle > 0).data) << "angle " << angle;
        }
        Frame dst(w, h, f.bytes, kUntouched), in = src;
        ASSERT_TRUE(f.call(rotate, w, h, in.ptr(), w, h, dst.ptr(), 180.0));
        EXPECT_EQ(dst.data, Half(src).data) << "angle 180";
      }
  }
}

// Turns of frames past the caches go through a block buffer and stream
// their rows out: blocks that end short on both axes, one thread and two.
TEST(RotateRightAngles, LargeFramesMatchThePlainRule) {
  CIppImageRotate rotate;
  for (int team : {1, 2})
    for (const Form& f : kForms) {
      testsupport::ScopedTeam scoped(team);
      const uint32_t w = 1931, h = 1203, pitch = (h + 3) / 4 * 4;
      SCOPED_TRACE(testing::Message() << "team " << team << " " << f.name);
      const Frame src = Frame::Random(w, h, f.bytes, 77);
      for (double angle : {90.0, -90.0}) {
        Frame dst(pitch, w, f.bytes, kUntouched), in = src;
        ASSERT_TRUE(f.call(rotate, w, h, in.ptr(), pitch, w, dst.ptr(), angle));
        EXPECT_EQ(dst.data, Quarter(src, angle > 0).data) << "angle " << angle;
      }
      Frame dst(w, h, f.bytes, kUntouched), in = src;
      ASSERT_TRUE(f.call(rotate, w, h, in.ptr(), w, h, dst.ptr(), 180.0));
      EXPECT_EQ(dst.data, Half(src).data) << "angle 180";
    }
}

// 180 also takes the quarter turns' size, and writes a packed w x h frame
// at the start of the larger one.
TEST(RotateRightAngles, HalfTurnAtTheQuarterTurnSizeWritesAPackedFrame) {
  CIppImageRotate rotate;
  Frame src = Frame::Random(10, 6, 1, 3);
  Frame dst(8, 10, 1, kUntouched);
  ASSERT_TRUE(rotate.Mono8Rotate(10, 6, src.ptr(), 8, 10, dst.ptr(), 0, 0, 180.0, 0, false));
  const Frame half = Half(src);
  for (size_t i = 0; i < dst.data.size(); ++i)
    EXPECT_EQ(dst.data[i], i < half.data.size() ? half.data[i] : kUntouched) << "byte " << i;
}

}  // namespace
