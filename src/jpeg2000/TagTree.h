#pragma once
// A tag tree over a grid of code-blocks: each node holds the least value of
// the nodes below it, and a leaf's value is sent as the bits that raise what
// the reader knows, from the root down, until it reaches the threshold or
// the value itself. Nodes remember what has been sent.
#include <cstdint>
#include <vector>

#include "jpeg2000/PacketBits.h"

namespace kestrelink::j2k {

class TagTree {
 public:
  // A tree for a grid of width by height leaves, all values 0.
  void Reset(uint32_t width, uint32_t height);
  void SetValue(uint32_t leaf, int32_t value);  // leaf index in raster order
  // Sends what is needed to tell whether the leaf's value is below threshold,
  // and the value itself if it is.
  void Encode(uint32_t leaf, int32_t threshold, PacketBits& bits);

  uint32_t NodeCount() const { return uint32_t(m_nodes.size()); }

 private:
  struct Node {
    int32_t value;
    int32_t low;
    int32_t parent;
    bool known;
  };
  std::vector<Node> m_nodes;
};

}  // namespace kestrelink::j2k
