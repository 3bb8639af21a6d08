// The five packet walks over a tile geometry taken from the input: a layer
// count, then per component a resolution count and per resolution the
// precinct grid and its step exponents. Every walk must end and visit each
// packet once.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "jpeg2000/ProgressionIterators.h"

namespace {

struct Reader {
  const uint8_t* data;
  size_t size;
  uint8_t Next() { return size ? (--size, *data++) : 0; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Reader in{data, size};
  JP2TileGeometry g{uint32_t(in.Next() % 4), {}};
  const uint32_t components = in.Next() % 4;
  uint64_t packets = 0;
  for (uint32_t c = 0; c < components; ++c) {
    std::vector<JP2ResolutionPrecincts> res(in.Next() % 8);
    for (auto& r : res) {
      r.countX = in.Next() % 9;
      r.countY = in.Next() % 9;
      r.stepXExp = in.Next();  // any exponent, far past the grid's bits included
      r.stepYExp = in.Next();
      packets += uint64_t(r.countX) * r.countY * g.layers;
    }
    g.components.push_back(std::move(res));
  }
  std::unique_ptr<JP2TileProgrIteratorBase> orders[] = {
      std::make_unique<JP2TileProgrIteratorLRCP>(), std::make_unique<JP2TileProgrIteratorRLCP>(),
      std::make_unique<JP2TileProgrIteratorRPCL>(), std::make_unique<JP2TileProgrIteratorPCRL>(),
      std::make_unique<JP2TileProgrIteratorCPRL>()};
  for (auto& it : orders) {
    it->Init(g);
    JP2PacketTuple t{};
    uint64_t seen = 0;
    while (it->Next(t)) {
      if (t.component >= components || t.layer >= g.layers) std::abort();
      ++seen;
    }
    // Orders by layer and resolution see every packet; the position orders
    // see those whose precincts start on distinct grid points.
    if (seen > packets) std::abort();
  }
  return 0;
}
