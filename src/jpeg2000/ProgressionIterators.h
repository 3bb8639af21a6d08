#pragma once
// The packet walks of a tile in the five progression orders. The encoding
// path writes its packets in its own fixed loop; these stand for readers
// and for tiles with several layers or precincts.
//
// Position orders (RPCL, PCRL, CPRL) visit precinct origins on the tile's
// reference grid from the top row down and left to right; a component's
// resolution has a packet at a position where one of its precincts starts.
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

struct JP2PacketTuple {
  uint32_t layer;
  uint32_t resolution;
  uint32_t component;
  uint32_t precinct;  // raster index within the resolution
  bool operator==(const JP2PacketTuple&) const = default;
};

struct JP2ResolutionPrecincts {
  uint32_t countX, countY;
  uint32_t stepXExp, stepYExp;  // a precinct's side on the reference grid, as a power of two
};

struct JP2TileGeometry {
  uint32_t layers;
  // Per component, per resolution from the lowest.
  std::vector<std::vector<JP2ResolutionPrecincts>> components;
};

class JP2TileProgrIteratorBase {
 public:
  virtual ~JP2TileProgrIteratorBase() = default;
  // Starts the walk over a tile; the geometry is copied.
  virtual void Init(const JP2TileGeometry& geometry);
  // The next packet, and false when the walk is over.
  virtual bool Next(JP2PacketTuple& packet);
  virtual bool IsFinished() const;

  uint32_t Layer() const { return m_current.layer; }
  uint32_t Resolution() const { return m_current.resolution; }
  uint32_t Component() const { return m_current.component; }
  uint32_t Precinct() const { return m_current.precinct; }

 protected:
  // The order's walk, appending every packet of the tile to out.
  virtual void Walk(std::vector<JP2PacketTuple>& out) const = 0;
  uint32_t MaxResolutions() const;
  uint32_t PrecinctCount(uint32_t c, uint32_t r) const;
  // Every precinct origin of the tile, top row first, as (y, x) pairs.
  std::vector<std::pair<uint64_t, uint64_t>> Positions() const;
  // The precinct of (c, r) that starts at (x, y), or -1.
  int64_t PrecinctAt(uint32_t c, uint32_t r, uint64_t x, uint64_t y) const;

  JP2TileGeometry m_geometry{};

 private:
  std::vector<JP2PacketTuple> m_walk;
  size_t m_next = 0;
  JP2PacketTuple m_current{};
};

class JP2TileProgrIteratorLRCP : public JP2TileProgrIteratorBase {
 protected:
  void Walk(std::vector<JP2PacketTuple>& out) const override;
};
class JP2TileProgrIteratorRLCP : public JP2TileProgrIteratorBase {
 protected:
  void Walk(std::vector<JP2PacketTuple>& out) const override;
};
class JP2TileProgrIteratorRPCL : public JP2TileProgrIteratorBase {
 protected:
  void Walk(std::vector<JP2PacketTuple>& out) const override;
};
class JP2TileProgrIteratorPCRL : public JP2TileProgrIteratorBase {
 protected:
  void Walk(std::vector<JP2PacketTuple>& out) const override;
};
class JP2TileProgrIteratorCPRL : public JP2TileProgrIteratorBase {
 protected:
  void Walk(std::vector<JP2PacketTuple>& out) const override;
};
