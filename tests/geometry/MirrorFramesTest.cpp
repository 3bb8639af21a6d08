// CIppImageMirror: every member and flag pair against a plain per-pixel
// reference at odd sizes, under every processor variant; the call that
// writes nothing; the planar members' stop at the first failure.
#include <kestrelink/CIppImageMirror.h>

#include <gtest/gtest.h>

#include "geometry/GeometryTestFrames.h"

namespace {

using geometrytest::Frame;
using Member = bool (CIppImageMirror::*)(uint32_t, uint32_t, void*, void*, bool, bool);

struct MemberRow {
  const char* name;
  Member member;
  int bytes;
};
const MemberRow kMembers[] = {
    {"MirrorMono8", &CIppImageMirror::MirrorMono8, 1}, {"MirrorMono16", &CIppImageMirror::MirrorMono16, 2},
    {"MirrorBGR24", &CIppImageMirror::MirrorBGR24, 3}, {"MirrorBGRx", &CIppImageMirror::MirrorBGRx, 4},
    {"MirrorBGR48", &CIppImageMirror::MirrorBGR48, 6}, {"MirrorBGR64", &CIppImageMirror::MirrorBGR64, 8}};

// Horizontal axis: rows top to bottom; vertical axis: columns left to right.
Frame Reference(const Frame& src, bool horizontal, bool vertical) {
  Frame out(src.w, src.h, src.bytes, 0);
  for (uint32_t r = 0; r < src.h; ++r)
    for (uint32_t c = 0; c < src.w; ++c)
      geometrytest::CopyPixel(src, horizontal ? src.h - 1 - r : r, vertical ? src.w - 1 - c : c, out, r, c);
  return out;
}

TEST(MirrorFrames, EveryMemberAndAxisMatchesThePlainMirror) {
  CIppImageMirror mirror;
  const std::pair<uint32_t, uint32_t> sizes[] = {{1, 1}, {1, 9}, {9, 1}, {37, 23}, {131, 5}};
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant variant(v);
    for (const MemberRow& m : kMembers)
      for (auto [w, h] : sizes)
        for (bool horizontal : {false, true})
          for (bool vertical : {false, true}) {
            if (!horizontal && !vertical) continue;
            Frame src = Frame::Random(w, h, m.bytes, w * 31 + h), dst(w, h, m.bytes, 0xAB);
            ASSERT_TRUE((mirror.*m.member)(w, h, src.ptr(), dst.ptr(), horizontal, vertical));
            EXPECT_EQ(dst.data, Reference(src, horizontal, vertical).data)
                << kestrelink::VariantName(v) << " " << m.name << " " << w << "x" << h << " h=" << horizontal
                << " v=" << vertical;
          }
  }
}

// Frames past the caches are written around them, a chunk of a row at a
// time: widths that leave a short last chunk, rows that start anywhere in a
// cache line, one thread and two.
TEST(MirrorFrames, LargeFramesMatchThePlainMirror) {
  CIppImageMirror mirror;
  for (int team : {1, 2})
    for (const MemberRow& m : kMembers) {
      if (m.bytes != 1 && m.bytes != 3 && m.bytes != 8) continue;
      testsupport::ScopedTeam scoped(team);
      const uint32_t w = 2049 + 3 * uint32_t(m.bytes), h = 1100 / uint32_t(m.bytes) + 7;
      Frame src = Frame::Random(w, h, m.bytes, w + h);
      for (auto [horizontal, vertical] : {std::pair{true, false}, {false, true}, {true, true}}) {
        Frame dst(w, h, m.bytes, 0xAB);
        ASSERT_TRUE((mirror.*m.member)(w, h, src.ptr(), dst.ptr(), horizontal, vertical));
        EXPECT_EQ(dst.data, Reference(src, horizontal, vertical).data)
            << "team " << team << " " << m.name << " h=" << horizontal << " v=" << vertical;
      }
    }
}

TEST(MirrorFrames, BothFlagsFalseWritesNothingAndAnswersTrue) {
  CIppImageMirror mirror;
  for (const MemberRow& m : kMembers) {
    Frame src = Frame::Random(5, 3, m.bytes, 1), dst(5, 3, m.bytes, 0x5A);
    EXPECT_TRUE((mirror.*m.member)(5, 3, src.ptr(), dst.ptr(), false, false)) << m.name;
    EXPECT_EQ(dst.data, Frame(5, 3, m.bytes, 0x5A).data) << m.name;
    // Not even a null frame is looked at.
    EXPECT_TRUE((mirror.*m.member)(5, 3, nullptr, nullptr, false, false)) << m.name;
  }
}

TEST(MirrorFrames, NullFrameOrZeroSizeAnswersFalse) {
  CIppImageMirror mirror;
  Frame src = Frame::Random(4, 4, 1, 2), dst(4, 4, 1, 0);
  EXPECT_FALSE(mirror.MirrorMono8(4, 4, nullptr, dst.ptr(), true, false));
  EXPECT_FALSE(mirror.MirrorMono8(4, 4, src.ptr(), nullptr, false, true));
  EXPECT_FALSE(mirror.MirrorMono8(0, 4, src.ptr(), dst.ptr(), true, true));
  EXPECT_FALSE(mirror.MirrorMono8(4, 0, src.ptr(), dst.ptr(), true, true));
  EXPECT_EQ(dst.data, Frame(4, 4, 1, 0).data);
}

TEST(MirrorFrames, PlanarMembersMirrorEachPlaneAndStopAtTheFirstFailure) {
  CIppImageMirror mirror;
  for (int bytes : {1, 2}) {
    const auto member = bytes == 1 ? &CIppImageMirror::MirrorBGRPlanner24 : &CIppImageMirror::MirrorBGRPlanner48;
    Frame s0 = Frame::Random(7, 5, bytes, 10), s1 = Frame::Random(7, 5, bytes, 11), s2 = Frame::Random(7, 5, bytes, 12);
    Frame d0(7, 5, bytes, 0), d1(7, 5, bytes, 0), d2(7, 5, bytes, 0);
    ASSERT_TRUE((mirror.*member)(7, 5, s0.ptr(), s1.ptr(), s2.ptr(), d0.ptr(), d1.ptr(), d2.ptr(), true, true));
    EXPECT_EQ(d0.data, Reference(s0, true, true).data);
    EXPECT_EQ(d1.data, Reference(s1, true, true).data);
    EXPECT_EQ(d2.data, Reference(s2, true, true).data);
    // A null second plane: the first is mirrored, the third is not reached.
    Frame e0(7, 5, bytes, 0), e2(7, 5, bytes, 0);
    EXPECT_FALSE((mirror.*member)(7, 5, s0.ptr(), nullptr, s2.ptr(), e0.ptr(), d1.ptr(), e2.ptr(), false, true));
    EXPECT_EQ(e0.data, Reference(s0, false, true).data);
    EXPECT_EQ(e2.data, Frame(7, 5, bytes, 0).data);
  }
}

}  // namespace
