#pragma once
// The walk that both sides of the block coder share, over the sets of a
// block and the quadtrees inside them. The side (encoder or decoder) says
// what each flag is and codes the samples: it writes what it knows, or reads
// what the encoder wrote.
//
// A plane pass codes set 0, then a flag for the sets from 1 on; while that
// is 1, sets t, t + 1, t + 2 (t = 1, 4, 7, ...) and the flag for the sets
// from t + 3 on, coded even when none remains. A set of one sample codes it;
// a larger one codes its flag and, when that is 1, walks its current
// partition in Morton order. A block's `level` persists across planes, so a
// block once split stays split, and a visited block of level 2 or more is
// not tested whole: its four quadrants are.
#include <cstdint>
#include <cstring>

#include "compress/wavelet/SetPartitionCoder.h"

namespace kestrelink::wavelet {

template <class Side, class Node>
class Speck2Walk {
 public:
  Speck2Walk(Node* nodes, const Speck2Set* sets, int setCount) : m_nodes(nodes), m_sets(sets), m_setCount(setCount) {
    std::memset(m_open, 0xF, sizeof m_open);
  }

  void PlanePass(int p) {
    m_p = p;
    Set(m_sets[0]);
    if (!side().RestFlag(1)) return;
    for (int t = 1;; t += 3) {
      for (int i = t; i < t + 3 && i < m_setCount; ++i) Set(m_sets[i]);
      if (!side().RestFlag(t + 3) || t + 3 >= m_setCount) return;
    }
  }

 protected:
  // Marks sample n as coded when `coded` is 1.
  void Close(uint32_t n, uint32_t coded = 1) { m_open[n >> 2] &= uint8_t(~(coded << (n & 3))); }

  Node* m_nodes;
  const Speck2Set* m_sets;
  int m_setCount;
  int m_p = 0;

 private:
  Side& side() { return static_cast<Side&>(*this); }

  void Set(const Speck2Set& set) {
    if (set.sideLog == 0) {
      side().Sample(set.start);
      return;
    }
    if (!side().SetFlag(set.start)) return;
    const uint32_t end = set.start + uint32_t(set.width * set.height);
    for (uint32_t i = set.start; i < end;) i += Block(i, set.sideLog);
  }

  // Codes the block at i; answers the samples that the step covered.
  uint32_t Block(uint32_t i, int defaultLevel) {
    const int lv = m_nodes[i].level >= 0 ? m_nodes[i].level : defaultLevel;
    if (lv < 2) {
      // Coded samples code nothing more: only the open ones of the group.
      for (uint32_t open = m_open[i >> 2]; open; open &= open - 1) side().Sample(i + uint32_t(__builtin_ctz(open)));
      return 4;
    }
    const int nl = lv - 1;
    const uint32_t q = 1u << (2 * nl);
    for (uint32_t c = 0; c < 4; ++c) {
      const uint32_t j = i + c * q;
      m_nodes[j].level = int8_t(nl);
      if (side().QuadrantFlag(j, nl, c == 0)) Block(j, nl);
    }
    return 4 * q;
  }

  uint8_t m_open[256];  // per 2 x 2 group in Morton order: its samples not yet coded
};

}  // namespace kestrelink::wavelet
