// The frame constructors: a media sample in, a bitstream for decoding out.
#include <mfx/mfxstructures.h>

#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "h264/FrameConstructor.h"
#include "h264/MediaSampleSupport.h"

namespace {

using Bytes = std::vector<uint8_t>;
using h264test::MemorySample;

// A bitstream whose Data is freed at scope end.
struct Bitstream : mfxBitstream {
  Bitstream() : mfxBitstream{} {}
  ~Bitstream() { std::free(Data); }
  Bytes Content() const { return Bytes(Data + DataOffset, Data + DataOffset + DataLength); }
};

Bytes Concat(std::initializer_list<Bytes> parts) {
  Bytes out;
  for (const Bytes& p : parts) out.insert(out.end(), p.begin(), p.end());
  return out;
}

TEST(FrameConstructor, RefusalsOfEveryConstructor) {
  mfxVideoParam params{};
  CFrameConstructor base;
  CVC1FrameConstructor vc1(&params);
  CAVCFrameConstructor avc;
  for (CFrameConstructor* c : std::initializer_list<CFrameConstructor*>{&base, &vc1, &avc}) {
    Bitstream bs;
    EXPECT_EQ(c->ConstructFrame(nullptr, &bs), MFX_ERR_NULL_PTR);
    MemorySample zero(Bytes{1, 2, 3});
    zero.SetActualDataLength(0);
    EXPECT_EQ(c->ConstructFrame(&zero, &bs), MFX_ERR_MORE_DATA);
    zero.SetActualDataLength(-4);
    EXPECT_EQ(c->ConstructFrame(&zero, &bs), MFX_ERR_MORE_DATA);
    MemorySample noBuffer(Bytes{});
    noBuffer.actual_ = 5;  // claims data but has no buffer
    EXPECT_EQ(c->ConstructFrame(&noBuffer, &bs), MFX_ERR_MORE_DATA);
  }
  Bitstream bs;
  EXPECT_EQ(avc.ConstructFrame(nullptr, nullptr), MFX_ERR_NULL_PTR);
  EXPECT_EQ(avc.ReadSequenceHeader(nullptr, &bs), MFX_ERR_NULL_PTR);
}

TEST(FrameConstructor, TimesBecomeNinetyKilohertzTicks) {
  struct Case {
    bool hasTime;
    int64_t start, stop;
    mfxU64 expected;
  };
  const mfxU64 unknown = ~mfxU64(0);
  const Case cases[] = {
      {true, 10000000, 10400000, 90000},        // one second
      {true, 12345678, 0, 111111},              // 1.2345678 s * 90000 = 111111.1, truncated
      {false, 5, 6, unknown},                   // no time on the sample
      {true, -10000000, -10000000, unknown},    // the "no time" value on both
      {true, -10000000, 0, 0},                  // a negative start alone counts as 0
      {true, -5, 100, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.start);
    CFrameConstructor base;
    MemorySample sample(Bytes{1, 2, 3});
    if (c.hasTime) sample.SetTime(c.start, c.stop);
    Bitstream bs;
    ASSERT_EQ(base.ConstructFrame(&sample, &bs), MFX_ERR_NONE);
    EXPECT_EQ(bs.TimeStamp, c.expected);
    EXPECT_EQ(bs.Content(), (Bytes{1, 2, 3}));
  }
}

TEST(FrameConstructor, SavedHeadersGoInFrontOfTheNextFrameOnly) {
  CFrameConstructor base;
  Bitstream headers;
  Bytes stored = {9, 8, 7, 6, 5};
  headers.Data = static_cast<mfxU8*>(std::malloc(stored.size()));
  std::copy(stored.begin(), stored.end(), headers.Data);
  headers.DataOffset = 2;
  headers.DataLength = 3;
  base.SaveHeaders(&headers);
  Bitstream tooBig;
  tooBig.DataLength = 101;
  tooBig.Data = static_cast<mfxU8*>(std::calloc(101, 1));
  base.SaveHeaders(&tooBig);  // more than the 100 kept: nothing changes
  base.SaveHeaders(nullptr);

  MemorySample sample(Bytes{1, 2});
  Bitstream bs;
  ASSERT_EQ(base.ConstructFrame(&sample, &bs), MFX_ERR_NONE);
  EXPECT_EQ(bs.Content(), (Bytes{7, 6, 5, 1, 2}));
  EXPECT_EQ(bs.MaxLength, 5u);
  ASSERT_EQ(base.ConstructFrame(&sample, &bs), MFX_ERR_NONE);
  EXPECT_EQ(bs.Content(), (Bytes{1, 2}));
}

TEST(FrameConstructor, Vc1AdvancedProfileFrameStartCodes) {
  mfxVideoParam params{};
  params.mfx.CodecProfile = 13;
  struct Case {
    const char* name;
    Bytes sample, expected;
  };
  const Case cases[] = {
      // A frame start code of its own: no prefix, and the record keeps 4 bytes never written.
      {"frame start code", {0, 0, 1, 0x0D, 0xAA}, {0, 0, 1, 0x0D, 0xAA, 0, 0, 0, 0}},
      {"sequence header", {0, 0, 1, 0x0F, 0xAA}, {0, 0, 1, 0x0F, 0xAA, 0, 0, 0, 0}},
      {"user data", {0, 0, 1, 0x1F, 0xAA}, {0, 0, 1, 0x1F, 0xAA, 0, 0, 0, 0}},
      {"field start code", {0, 0, 1, 0x0C}, {0, 0, 1, 0x0C, 0, 0, 0, 0}},
      {"no start code", {0xAA, 0xBB}, {0, 0, 1, 0x0D, 0xAA, 0xBB}},
      {"start code that needs a prefix", {0, 0, 1, 0x0B, 1}, {0, 0, 1, 0x0D, 0, 0, 1, 0x0B, 1}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    CVC1FrameConstructor vc1(&params);
    MemorySample sample(c.sample);
    Bitstream bs;
    ASSERT_EQ(vc1.ConstructFrame(&sample, &bs), MFX_ERR_NONE);
    EXPECT_EQ(bs.Content(), c.expected);
  }
  CVC1FrameConstructor vc1(&params);
  MemorySample sample(Bytes{1});
  EXPECT_EQ(vc1.ConstructFrame(&sample, nullptr), MFX_ERR_NONE);  // no bitstream: nothing to do
  EXPECT_EQ(sample.Data(), Bytes{1});
}

TEST(FrameConstructor, Vc1SimpleProfileFramesAndSequenceRecord) {
  mfxVideoParam params{};
  params.mfx.CodecProfile = 1;
  params.mfx.FrameInfo.CropW = 0x0280;
  params.mfx.FrameInfo.CropH = 0x01E0;
  CVC1FrameConstructor vc1(&params);
  MemorySample frame(Bytes{0xAA, 0xBB, 0xCC});
  Bitstream bs;
  ASSERT_EQ(vc1.ConstructFrame(&frame, &bs), MFX_ERR_NONE);
  EXPECT_EQ(bs.Content(), (Bytes{3, 0, 0, 0, 0, 0, 0, 0, 0xAA, 0xBB, 0xCC}));

  // Without a bitstream the sample is rewritten in place as a sequence record.
  MemorySample header(Bytes{0x11, 0x22}, 22);
  ASSERT_EQ(vc1.ConstructFrame(&header, nullptr), MFX_ERR_NONE);
  EXPECT_EQ(header.Data(), Concat({{0, 0, 0, 0xC5, 2, 0, 0, 0, 0x11, 0x22},
                                   {0xE0, 0x01, 0, 0, 0x80, 0x02, 0, 0},
                                   {0, 0, 0, 0}}));
  MemorySample tight(Bytes{0x11, 0x22}, 21);  // 2 + 20 bytes don't fit in 21
  EXPECT_EQ(vc1.WrapSequenceHeader(&tight), MFX_ERR_MORE_DATA);
  EXPECT_EQ(tight.Data(), (Bytes{0x11, 0x22}));
}

TEST(FrameConstructor, AvcUnitsGoBehindStartCodesWithoutDelimiters) {
  struct Case {
    const char* name;
    uint32_t lengthSize;
    Bytes sample, expected;
  };
  const Case cases[] = {
      {"4-byte prefixes, delimiter and slice", 4,
       {0, 0, 0, 2, 0x09, 0xF0, 0, 0, 0, 3, 0x65, 0xAA, 0xBB},
       {0, 0, 0, 1, 0x65, 0xAA, 0xBB}},
      {"2-byte prefixes, two slices", 2,
       {0, 2, 0x41, 0x01, 0, 3, 0x41, 0x02, 0x03},
       {0, 0, 0, 1, 0x41, 0x01, 0, 0, 0, 1, 0x41, 0x02, 0x03}},
      {"start codes, delimiter and slice", 0,
       {0, 0, 0, 1, 0x09, 0xF0, 0, 0, 0, 1, 0x65, 0xAA, 0xBB},
       {0, 0, 0, 1, 0x65, 0xAA, 0xBB}},
      // A prefix that claims more than the sample holds ends at the sample's end.
      {"prefix beyond the sample", 4, {0, 0, 0x10, 0, 0x65, 1, 2}, {0, 0, 0, 1, 0x65, 1, 2}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    CAVCFrameConstructor avc;
    MPEG2VIDEOINFO info{c.lengthSize, 0, nullptr};
    Bitstream headers;
    EXPECT_EQ(avc.ReadSequenceHeader(&info, &headers), MFX_ERR_NONE);
    MemorySample sample(c.sample);
    sample.SetTime(20000000, 0);
    Bitstream bs;
    ASSERT_EQ(avc.ConstructFrame(&sample, &bs), MFX_ERR_NONE);
    EXPECT_EQ(bs.Content(), c.expected);
    EXPECT_EQ(bs.TimeStamp, 180000u);
  }
}

// Parameter sets from the description go to the bitstream at once and in
// front of the next frame, at its very start, over any saved headers.
TEST(FrameConstructor, AvcParameterSetsAndTheOverlappingHeaderCopy) {
  CAVCFrameConstructor avc;
  const Bytes description = {0, 4, 0x67, 0x11, 0x22, 0x33, 0, 2, 0x06, 0x55, 0, 2, 0x68, 0x44};
  MPEG2VIDEOINFO info{4, uint32_t(description.size()), description.data()};
  Bitstream headers;
  EXPECT_EQ(avc.ReadSequenceHeader(&info, &headers), MFX_ERR_MORE_DATA);  // the SEI unit is not a parameter set
  const Bytes sets = {0, 0, 0, 1, 0x67, 0x11, 0x22, 0x33, 0, 0, 0, 1, 0x68, 0x44};
  EXPECT_EQ(headers.Content(), sets);

  Bitstream saved;
  saved.Data = static_cast<mfxU8*>(std::malloc(3));
  saved.Data[0] = 0xA1;
  saved.Data[1] = 0xA2;
  saved.Data[2] = 0xA3;
  saved.DataLength = 3;
  avc.SaveHeaders(&saved);

  MemorySample sample(Bytes{0, 0, 0, 2, 0x65, 0x77});
  Bitstream bs;
  ASSERT_EQ(avc.ConstructFrame(&sample, &bs), MFX_ERR_NONE);
  EXPECT_EQ(bs.Content(), Concat({sets, {0, 0, 0}, {0, 0, 0, 1, 0x65, 0x77}}));
  mfxU8* first = bs.Data;
  bs.Data = nullptr;
  ASSERT_EQ(avc.ConstructFrame(&sample, &bs), MFX_ERR_NONE);  // the sets are given once
  EXPECT_EQ(bs.Content(), (Bytes{0, 0, 0, 1, 0x65, 0x77}));
  std::free(first);  // the earlier Data is the caller's to free
}

}  // namespace
