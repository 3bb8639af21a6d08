#include "jpeg2000/ProgressionIterators.h"

#include <algorithm>

// Precinct steps past 2^40 on the grid are taken as 2^40: no tile is that large.
constexpr uint32_t kLargestStepExp = 40;

void JP2TileProgrIteratorBase::Init(const JP2TileGeometry& geometry) {
  m_geometry = geometry;
  for (auto& component : m_geometry.components)
    for (JP2ResolutionPrecincts& r : component) {
      r.stepXExp = std::min(r.stepXExp, kLargestStepExp);
      r.stepYExp = std::min(r.stepYExp, kLargestStepExp);
    }
  m_walk.clear();
  Walk(m_walk);
  m_next = 0;
  m_current = JP2PacketTuple{};
}

bool JP2TileProgrIteratorBase::Next(JP2PacketTuple& packet) {
  if (IsFinished()) return false;
  m_current = m_walk[m_next++];
  packet = m_current;
  return true;
}

bool JP2TileProgrIteratorBase::IsFinished() const { return m_next >= m_walk.size(); }

uint32_t JP2TileProgrIteratorBase::MaxResolutions() const {
  uint32_t most = 0;
  for (const auto& c : m_geometry.components) most = std::max(most, uint32_t(c.size()));
  return most;
}

uint32_t JP2TileProgrIteratorBase::PrecinctCount(uint32_t c, uint32_t r) const {
  const auto& res = m_geometry.components[c];
  return r < res.size() ? res[r].countX * res[r].countY : 0;
}

std::vector<std::pair<uint64_t, uint64_t>> JP2TileProgrIteratorBase::Positions() const {
  std::vector<std::pair<uint64_t, uint64_t>> out;
  for (const auto& component : m_geometry.components)
    for (const JP2ResolutionPrecincts& r : component)
      for (uint64_t py = 0; py < r.countY; ++py)
        for (uint64_t px = 0; px < r.countX; ++px) out.emplace_back(py << r.stepYExp, px << r.stepXExp);
  std::sort(out.begin(), out.end());
  out.erase(std::unique(out.begin(), out.end()), out.end());
  return out;
}

int64_t JP2TileProgrIteratorBase::PrecinctAt(uint32_t c, uint32_t r, uint64_t x, uint64_t y) const {
  const auto& res = m_geometry.components[c];
  if (r >= res.size()) return -1;
  const JP2ResolutionPrecincts& p = res[r];
  const uint64_t maskX = (uint64_t(1) << p.stepXExp) - 1, maskY = (uint64_t(1) << p.stepYExp) - 1;
  if ((x & maskX) || (y & maskY)) return -1;
  const uint64_t px = x >> p.stepXExp, py = y >> p.stepYExp;
  if (px >= p.countX || py >= p.countY) return -1;
  return int64_t(py * p.countX + px);
}

void JP2TileProgrIteratorLRCP::Walk(std::vector<JP2PacketTuple>& out) const {
  const uint32_t comps = uint32_t(m_geometry.components.size()), resolutions = MaxResolutions();
  for (uint32_t l = 0; l < m_geometry.layers; ++l)
    for (uint32_t r = 0; r < resolutions; ++r)
      for (uint32_t c = 0; c < comps; ++c)
        for (uint32_t p = 0; p < PrecinctCount(c, r); ++p) out.push_back({l, r, c, p});
}

void JP2TileProgrIteratorRLCP::Walk(std::vector<JP2PacketTuple>& out) const {
  const uint32_t comps = uint32_t(m_geometry.components.size()), resolutions = MaxResolutions();
  for (uint32_t r = 0; r < resolutions; ++r)
    for (uint32_t l = 0; l < m_geometry.layers; ++l)
      for (uint32_t c = 0; c < comps; ++c)
        for (uint32_t p = 0; p < PrecinctCount(c, r); ++p) out.push_back({l, r, c, p});
}

void JP2TileProgrIteratorRPCL::Walk(std::vector<JP2PacketTuple>& out) const {
  const uint32_t comps = uint32_t(m_geometry.components.size()), resolutions = MaxResolutions();
  const auto positions = Positions();
  for (uint32_t r = 0; r < resolutions; ++r)
    for (const auto& [y, x] : positions)
      for (uint32_t c = 0; c < comps; ++c) {
        const int64_t p = PrecinctAt(c, r, x, y);
        if (p < 0) continue;
        for (uint32_t l = 0; l < m_geometry.layers; ++l) out.push_back({l, r, c, uint32_t(p)});
      }
}

void JP2TileProgrIteratorPCRL::Walk(std::vector<JP2PacketTuple>& out) const {
  const uint32_t comps = uint32_t(m_geometry.components.size()), resolutions = MaxResolutions();
  for (const auto& [y, x] : Positions())
    for (uint32_t c = 0; c < comps; ++c)
      for (uint32_t r = 0; r < resolutions; ++r) {
        const int64_t p = PrecinctAt(c, r, x, y);
        if (p < 0) continue;
        for (uint32_t l = 0; l < m_geometry.layers; ++l) out.push_back({l, r, c, uint32_t(p)});
      }
}

void JP2TileProgrIteratorCPRL::Walk(std::vector<JP2PacketTuple>& out) const {
  const uint32_t comps = uint32_t(m_geometry.components.size()), resolutions = MaxResolutions();
  const auto positions = Positions();
  for (uint32_t c = 0; c < comps; ++c)
    for (const auto& [y, x] : positions)
      for (uint32_t r = 0; r < resolutions; ++r) {
        const int64_t p = PrecinctAt(c, r, x, y);
        if (p < 0) continue;
        for (uint32_t l = 0; l < m_geometry.layers; ++l) out.push_back({l, r, c, uint32_t(p)});
      }
}
