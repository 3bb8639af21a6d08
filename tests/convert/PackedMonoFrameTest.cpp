// The grouped-row loop of the packed sources: whatever the team, the frame
// ends as if every row had written all its slots, one row after another.
#include <gtest/gtest.h>

#include "PackedMonoTestFrames.h"
#include "convert/PackedMonoFrame.h"

namespace {

using kestrelink::packedmono::ForEachGroupedRow;
using kestrelink::packedmono::RowSpan;

// Slot k of input row r holds 1 + r * 64 + k in every byte of the slot, so a
// byte says which row and slot wrote it.
uint8_t Mark(uint32_t row, uint64_t slot) { return uint8_t(1 + row * 64 + slot); }

struct SpanCase {
  const char* name;
  uint32_t pixelsPerGroup, slotsPerGroup, slotBytes, pitchBytesPerPixel;
};

TEST(PackedMonoFrame, RowsEndAsWrittenWholeInOrder) {
  const SpanCase cases[] = {
      {"pairs to words", 2, 2, 2, 2},
      {"pairs to 3-byte pixels", 2, 2, 3, 3},
      {"pairs to 3-byte pixels, rows 4 bytes a pixel apart", 2, 2, 3, 4},
      {"eight to bytes", 8, 8, 1, 1},
      {"eight to nine words", 8, 9, 2, 2},
      {"eight to nine 4-byte pixels", 8, 9, 4, 4},
  };
  packedtest::ScopedTeam keep;
  for (const SpanCase& c : cases)
    for (int team : {1, 2, 3, 4, 7})
      for (uint32_t w : {1u, 2u, 3u, 4u, 5u, 7u, 8u, 9u, 15u, 16u, 17u, 23u, 40u})
        for (uint32_t h : {0u, 1u, 2u, 3u, 5u, 8u, 13u})
          for (bool flip : {false, true}) {
            kestrelink::platform::SetTeamSize(team);
            const uint64_t slots = (w + c.pixelsPerGroup - 1) / c.pixelsPerGroup * c.slotsPerGroup;
            const size_t pitch = size_t(w) * c.pitchBytesPerPixel;
            const size_t size = pitch * h + slots * c.slotBytes + 16;
            const auto row = [&](uint32_t r) {
              std::vector<uint8_t> bytes;
              for (uint64_t k = 0; k < slots; ++k) bytes.insert(bytes.end(), c.slotBytes, Mark(r, k));
              return bytes;
            };
            const auto want = packedtest::RowsWrittenInOrder(size, 0, h, flip, pitch, row);
            std::vector<uint8_t> got(size, 0);
            ForEachGroupedRow(h, flip, RowSpan{pitch, c.slotBytes, slots},
                              [&](uint32_t in, uint32_t out, uint64_t first, uint64_t end) {
                                for (uint64_t k = first; k < end; ++k)
                                  for (uint32_t b = 0; b < c.slotBytes; ++b)
                                    got[out * pitch + k * c.slotBytes + b] = Mark(in, k);
                              });
            ASSERT_EQ(got, want) << c.name << " team=" << team << " w=" << w << " h=" << h << " flip=" << flip;
          }
}

}  // namespace
