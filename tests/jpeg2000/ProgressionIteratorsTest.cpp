// The five packet walks over a small tile whose orders are written out by
// hand, and over a larger one where each must visit every packet once.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <tuple>

#include "jpeg2000/ProgressionIterators.h"

namespace {

std::vector<JP2PacketTuple> WalkAll(JP2TileProgrIteratorBase& it, const JP2TileGeometry& g) {
  it.Init(g);
  std::vector<JP2PacketTuple> out;
  JP2PacketTuple t{};
  while (!it.IsFinished()) {
    EXPECT_TRUE(it.Next(t));
    EXPECT_EQ(it.Layer(), t.layer);
    EXPECT_EQ(it.Precinct(), t.precinct);
    out.push_back(t);
  }
  EXPECT_FALSE(it.Next(t));
  return out;
}

// Two layers; component 0 has resolution 0 as one 16-wide precinct and
// resolution 1 as two 8-wide ones; component 1 has only resolution 0.
JP2TileGeometry SmallTile() { return JP2TileGeometry{2, {{{1, 1, 4, 4}, {2, 1, 3, 3}}, {{1, 1, 4, 4}}}}; }

TEST(ProgressionIterators, SmallTileInEveryOrder) {
  using T = JP2PacketTuple;  // layer, resolution, component, precinct
  struct Case {
    const char* name;
    std::unique_ptr<JP2TileProgrIteratorBase> it;
    std::vector<T> expected;
  };
  Case cases[5];
  cases[0] = {
      "LRCP",
      std::make_unique<JP2TileProgrIteratorLRCP>(),
      {{0, 0, 0, 0}, {0, 0, 1, 0}, {0, 1, 0, 0}, {0, 1, 0, 1}, {1, 0, 0, 0}, {1, 0, 1, 0}, {1, 1, 0, 0}, {1, 1, 0, 1}}};
  cases[1] = {
      "RLCP",
      std::make_unique<JP2TileProgrIteratorRLCP>(),
      {{0, 0, 0, 0}, {0, 0, 1, 0}, {1, 0, 0, 0}, {1, 0, 1, 0}, {0, 1, 0, 0}, {0, 1, 0, 1}, {1, 1, 0, 0}, {1, 1, 0, 1}}};
  cases[2] = {
      "RPCL",
      std::make_unique<JP2TileProgrIteratorRPCL>(),
      {{0, 0, 0, 0}, {1, 0, 0, 0}, {0, 0, 1, 0}, {1, 0, 1, 0}, {0, 1, 0, 0}, {1, 1, 0, 0}, {0, 1, 0, 1}, {1, 1, 0, 1}}};
  cases[3] = {
      "PCRL",
      std::make_unique<JP2TileProgrIteratorPCRL>(),
      {{0, 0, 0, 0}, {1, 0, 0, 0}, {0, 1, 0, 0}, {1, 1, 0, 0}, {0, 0, 1, 0}, {1, 0, 1, 0}, {0, 1, 0, 1}, {1, 1, 0, 1}}};
  cases[4] = {
      "CPRL",
      std::make_unique<JP2TileProgrIteratorCPRL>(),
      {{0, 0, 0, 0}, {1, 0, 0, 0}, {0, 1, 0, 0}, {1, 1, 0, 0}, {0, 1, 0, 1}, {1, 1, 0, 1}, {0, 0, 1, 0}, {1, 0, 1, 0}}};
  for (Case& c : cases) EXPECT_EQ(WalkAll(*c.it, SmallTile()), c.expected) << c.name;
}

// Three components of six resolutions, precinct grids growing with the
// resolution: every order visits each packet exactly once.
TEST(ProgressionIterators, EveryOrderVisitsEachPacketOnce) {
  JP2TileGeometry g{3, {}};
  size_t packets = 0;
  for (int c = 0; c < 3; ++c) {
    std::vector<JP2ResolutionPrecincts> res;
    for (uint32_t r = 0; r < 6; ++r) {
      const uint32_t n = 1 + r / 2 + uint32_t(c);
      res.push_back({n, n + 1, 6 - r / 2, 6 - r / 2});
      packets += size_t(n) * (n + 1) * 3;
    }
    g.components.push_back(res);
  }
  std::unique_ptr<JP2TileProgrIteratorBase> orders[] = {
      std::make_unique<JP2TileProgrIteratorLRCP>(), std::make_unique<JP2TileProgrIteratorRLCP>(),
      std::make_unique<JP2TileProgrIteratorRPCL>(), std::make_unique<JP2TileProgrIteratorPCRL>(),
      std::make_unique<JP2TileProgrIteratorCPRL>()};
  for (auto& it : orders) {
    std::vector<JP2PacketTuple> walk = WalkAll(*it, g);
    ASSERT_EQ(walk.size(), packets);
    auto key = [](const JP2PacketTuple& t) { return std::tuple(t.layer, t.resolution, t.component, t.precinct); };
    std::sort(walk.begin(), walk.end(), [&](auto& a, auto& b) { return key(a) < key(b); });
    EXPECT_EQ(std::adjacent_find(walk.begin(), walk.end()), walk.end());
  }
}

}  // namespace
