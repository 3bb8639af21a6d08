// The reversible transforms, the packet bit writer and the tag tree, on
// values worked out by hand from the format's formulas; every processor
// variant of the transform rows against the portable one.
#include <random>

#include <gtest/gtest.h>

#include "jpeg2000/ByteStream.h"
#include "jpeg2000/PacketBits.h"
#include "jpeg2000/TagTree.h"
#include "jpeg2000/Wavelet53.h"
#include "jpeg2000/WaveletKernels.h"
#include "support/TestSupport.h"

using namespace kestrelink::j2k;

namespace {

std::vector<uint8_t> Drained(const ByteStream& s) {
  std::vector<uint8_t> v(s.Count());
  s.Drain(v.data());
  return v;
}

std::vector<int32_t> Forward(std::vector<int32_t> plane, uint32_t w, uint32_t h, uint32_t levels) {
  std::vector<int32_t> scratch(plane.size());
  Forward53(PlaneView{plane.data(), w, w, h}, levels, scratch.data());
  return plane;
}

TEST(Jpeg2kKernels, WaveletOnHandWorkedRows) {
  struct Case {
    uint32_t w, h;
    std::vector<int32_t> in, out;
  } cases[] = {
      // high = x1 - (x0 + x2) / 2 floored, the last odd sample mirrors; low = x0 + (h-1 + h0 + 2) / 4 floored
      {4, 1, {10, 20, 30, 50}, {10, 35, 0, 20}},
      {3, 1, {-7, 3, -1}, {-3, 3, 7}},
      {1, 3, {-7, 3, -1}, {-3, 3, 7}},
      // columns first, then rows: LL HL over LH HH
      {2, 2, {4, 8, 10, 2}, {6, -2, 0, -12}},
      {1, 1, {-99}, {-99}},
  };
  for (const Case& c : cases)
    for (auto v : testsupport::RunnableVariants()) {
      testsupport::ScopedVariant scoped(v);
      EXPECT_EQ(Forward(c.in, c.w, c.h, 1), c.out) << c.w << "x" << c.h << " " << kestrelink::VariantName(v);
    }
}

TEST(Jpeg2kKernels, WaveletLevelsRoundTripAtEverySize) {
  std::mt19937 rng(5);
  const uint32_t sizes[][2] = {{1, 1}, {2, 1}, {1, 2}, {5, 3}, {17, 33}, {64, 64}, {100, 37}, {257, 130}};
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    for (const auto& s : sizes) {
      std::vector<int32_t> plane(size_t(s[0]) * s[1]);
      for (auto& x : plane) x = int32_t(rng() % 511) - 255;
      std::vector<int32_t> coded = Forward(plane, s[0], s[1], 5), scratch(plane.size());
      Inverse53(PlaneView{coded.data(), s[0], s[0], s[1]}, 5, scratch.data());
      EXPECT_EQ(coded, plane) << s[0] << "x" << s[1] << " " << kestrelink::VariantName(v);
    }
  }
}

TEST(Jpeg2kKernels, VariantRowsMatchPortable) {
  std::mt19937 rng(9);
  const WaveletKernels& portable = kWaveletKernelsPortable;
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    const WaveletKernels& k = ActiveWaveletKernels();
    for (size_t n : {0, 1, 7, 8, 15, 16, 17, 33, 100}) {
      std::vector<int32_t> a(n + 1), b(n + 1), c(n + 1);
      for (auto* x : {&a, &b, &c})
        for (auto& s : *x) s = int32_t(rng() % 2001) - 1000;
      auto check = [&](auto kernel, auto reference, const char* name) {
        std::vector<int32_t> out(n + 1, 7), want(n + 1, 7);
        kernel(a.data(), b.data(), c.data(), out.data(), n);
        reference(a.data(), b.data(), c.data(), want.data(), n);
        EXPECT_EQ(out, want) << name << " n " << n;
      };
      check(k.predict, portable.predict, "predict");
      check(k.update, portable.update, "update");
      check(k.unupdate, portable.unupdate, "unupdate");
      check(k.unpredict, portable.unpredict, "unpredict");
      std::vector<int32_t> e(n / 2 + 1), o(n / 2 + 1), e2 = e, o2 = o, row(n), row2(n);
      k.split(a.data(), e.data(), o.data(), n);
      portable.split(a.data(), e2.data(), o2.data(), n);
      EXPECT_EQ(e, e2);
      EXPECT_EQ(o, o2);
      k.merge(a.data(), b.data(), row.data(), n);
      portable.merge(a.data(), b.data(), row2.data(), n);
      EXPECT_EQ(row, row2);
      std::vector<int32_t> x = a, y = b, z = c, x2 = a, y2 = b, z2 = c;
      k.rctForward(x.data(), y.data(), z.data(), n);
      portable.rctForward(x2.data(), y2.data(), z2.data(), n);
      EXPECT_TRUE(x == x2 && y == y2 && z == z2) << "rct n " << n;
      k.rctInverse(x.data(), y.data(), z.data(), n);
      EXPECT_TRUE(x == a && y == b && z == c) << "rct round trip n " << n;
    }
  }
}

TEST(Jpeg2kKernels, ColourTransformByHand) {
  // y = (r + 2g + b) / 4 floored, u = b - g, v = r - g
  int32_t r[] = {10, -128, 127}, g[] = {20, 127, -128}, b[] = {40, -128, 127};
  kWaveletKernelsPortable.rctForward(r, g, b, 3);
  EXPECT_EQ(std::vector<int32_t>(r, r + 3), (std::vector<int32_t>{22, -1, -1}));
  EXPECT_EQ(std::vector<int32_t>(g, g + 3), (std::vector<int32_t>{20, -255, 255}));
  EXPECT_EQ(std::vector<int32_t>(b, b + 3), (std::vector<int32_t>{-10, -255, 255}));
}

TEST(Jpeg2kKernels, PacketBitsStuffAfter255) {
  struct Case {
    std::vector<std::pair<uint32_t, uint32_t>> bits;  // value, count
    std::vector<uint8_t> bytes;
  } cases[] = {
      {{{1, 1}}, {0x80}},
      {{{0xFF, 8}}, {0xFF, 0x00}},               // a final 255 takes a zero byte
      {{{0xFF, 8}, {0b101, 3}}, {0xFF, 0x50}},   // 7 bits in the byte after 255
      {{{0xFF, 8}, {0x7F, 7}, {1, 1}}, {0xFF, 0x7F, 0x80}},
      {{{0xFE, 8}, {0xFF, 8}, {0, 7}}, {0xFE, 0xFF, 0x00}},
  };
  for (const Case& c : cases) {
    ByteStream s;
    PacketBits bits(s);
    for (auto [value, count] : c.bits) bits.PutBits(value, count);
    bits.Finish();
    EXPECT_EQ(Drained(s), c.bytes);
  }
}

// Two leaves of values 1 and 3 under a root of 1, sent to a threshold of 4:
// root 0 1, leaf 0 1; then leaf 1 0 0 1 (the root is known) = 011001 00.
TEST(Jpeg2kKernels, TagTreeSendsWhatTheReaderLacks) {
  ByteStream s;
  PacketBits bits(s);
  TagTree tree;
  tree.Reset(2, 1);
  tree.SetValue(0, 1);
  tree.SetValue(1, 3);
  tree.Encode(0, 4, bits);
  tree.Encode(1, 4, bits);
  bits.Finish();
  EXPECT_EQ(Drained(s), std::vector<uint8_t>{0x64});
  EXPECT_EQ(tree.NodeCount(), 3u);
  tree.Reset(3, 3);
  EXPECT_EQ(tree.NodeCount(), 9u + 4u + 1u);
}

TEST(Jpeg2kKernels, ByteStreamChainsBlocks) {
  ByteStream s;
  std::vector<uint8_t> data(3 * ByteStream::kBlockBytes + 5);
  for (size_t i = 0; i < data.size(); ++i) data[i] = uint8_t(i * 13);
  s.PutBytes(data.data(), 100);
  for (size_t i = 100; i < 9000; ++i) s.PutByte(data[i]);
  s.PutBytes(data.data() + 9000, data.size() - 9000);
  EXPECT_EQ(s.Count(), data.size());
  EXPECT_EQ(Drained(s), data);
}

}  // namespace
