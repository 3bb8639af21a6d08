// What the encoded stream says about itself: profile, chroma format, level,
// references, entropy coder, the NAL units present, and the quantiser of each
// slice against the one the rate control chose.
#include <gtest/gtest.h>
#include <set>

#include "h264/CIPPH264Conversion.h"
#include "h264/H264TestSupport.h"

namespace {

using h264test::NalUnits;
using h264test::Planes;
using h264test::SyntheticFrame;

struct StreamCase {
  const char* name;
  H264EndoerSorceFormat format;
  uint32_t width, height;
  int bitRate;
  int profile, chroma, level;
};

TEST(H264Stream, HeadersCarryTheSettledFieldsAndSlicesTheChosenQuantiser) {
  const StreamCase cases[] = {
      {"planar QCIF at the default rate", H264_SOURCE_YUV_PLANAR, 176, 144, 0, 110, 2, 11},
      {"mono QCIF at 60 kbit/s", H264_SOURCE_MONO, 176, 144, 60000, 100, 0, 11},
      {"planar CIF at 150 kbit/s", H264_SOURCE_YUV_PLANAR, 352, 288, 150000, 110, 2, 20},
  };
  for (const StreamCase& c : cases) {
    SCOPED_TRACE(c.name);
    CIPPH264Conversion encoder;
    ASSERT_TRUE(encoder.Initialize(true, c.width, c.height, c.format, 10, c.bitRate, 8, 0));
    UMC::H264SpsInfo sps;
    int picInitQp = 0;
    bool cabac = false, weighted = false;
    std::set<int> quantisers;
    for (uint32_t t = 0; t < 24; ++t) {
      Planes frame = SyntheticFrame(c.width, c.height, t * 5);
      std::vector<uint8_t> record = h264test::RecordBuffer(c.width, c.height);
      ASSERT_TRUE(encoder.EncodeImage(record.data(), frame.y.data(), frame.u.data(), frame.v.data()));
      const uint8_t* payload = record.data() + 8;
      const size_t size = h264test::RecordSizeOf(record) - 8;
      int slices = 0;
      for (const auto& [at, length] : NalUnits(payload, size)) {
        const int type = payload[at] & 31;
        ASSERT_TRUE(type == 1 || type == 5 || type == 7 || type == 8) << "NAL type " << type << ", frame " << t + 1;
        if (type == 7) {
          ASSERT_TRUE(UMC::ParseSps(payload + at, length, sps));
        }
        if (type == 8) {
          h264test::ReadPps(payload + at, length, picInitQp, cabac, weighted);
        }
        if (type == 1 || type == 5) {
          ++slices;
          EXPECT_EQ(type == 5, t % 10 == 0) << "frame " << t + 1;
          const int qp = h264test::SliceQp(payload + at, length, sps, picInitQp, weighted, cabac);
          EXPECT_EQ(qp, encoder.LastQuantiser()) << "frame " << t + 1;
          quantisers.insert(qp);
        }
      }
      EXPECT_EQ(slices, 1) << "frame " << t + 1;
    }
    EXPECT_EQ(sps.profileIdc, c.profile);
    EXPECT_EQ(sps.chromaFormatIdc, c.chroma);
    EXPECT_EQ(sps.levelIdc, c.level);
    EXPECT_EQ(sps.numRefFrames, 1);
    EXPECT_EQ(sps.width, int(c.width));
    EXPECT_EQ(sps.height, int(c.height));
    EXPECT_TRUE(cabac);
    // The rate control walks the quantiser frame by frame, and every step reaches the slices.
    EXPECT_GE(quantisers.size(), 4u);
  }
}

}  // namespace
