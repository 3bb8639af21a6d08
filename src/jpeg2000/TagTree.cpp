#include "jpeg2000/TagTree.h"

#include <climits>

namespace kestrelink::j2k {

// Level 0 holds the leaves; each level above halves the grid, rounding up,
// until one node remains.
void TagTree::Reset(uint32_t width, uint32_t height) {
  m_nodes.clear();
  std::vector<uint32_t> widths{width}, heights{height};
  while (widths.back() > 1 || heights.back() > 1) {
    widths.push_back((widths.back() + 1) / 2);
    heights.push_back((heights.back() + 1) / 2);
  }
  uint64_t total = 0;
  for (size_t l = 0; l < widths.size(); ++l) total += uint64_t(widths[l]) * heights[l];
  m_nodes.assign(total, Node{0, 0, -1, false});
  uint64_t first = 0;
  for (size_t l = 0; l + 1 < widths.size(); ++l) {
    const uint64_t next = first + uint64_t(widths[l]) * heights[l];
    for (uint32_t y = 0; y < heights[l]; ++y)
      for (uint32_t x = 0; x < widths[l]; ++x)
        m_nodes[first + uint64_t(y) * widths[l] + x].parent =
            int32_t(next + uint64_t(y / 2) * widths[l + 1] + x / 2);
    first = next;
  }
  // The values start at the largest, so that the minima build from the leaves set.
  for (Node& n : m_nodes) n.value = INT32_MAX;
}

void TagTree::SetValue(uint32_t leaf, int32_t value) {
  for (int32_t n = int32_t(leaf); n >= 0 && m_nodes[n].value > value; n = m_nodes[n].parent) m_nodes[n].value = value;
}

void TagTree::Encode(uint32_t leaf, int32_t threshold, PacketBits& bits) {
  int32_t path[32];
  int depth = 0;
  for (int32_t n = int32_t(leaf); n >= 0; n = m_nodes[n].parent) path[depth++] = n;
  int32_t low = 0;
  while (depth-- > 0) {
    Node& node = m_nodes[path[depth]];
    if (low > node.low) node.low = low;
    else low = node.low;
    while (low < threshold) {
      if (low >= node.value) {
        if (!node.known) {
          bits.Put(1);
          node.known = true;
        }
        break;
      }
      bits.Put(0);
      ++low;
    }
    node.low = low;
  }
}

}  // namespace kestrelink::j2k
