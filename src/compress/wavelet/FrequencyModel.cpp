// Binary indexed tree of symbol frequencies, element 0 apart, and the
// adaptive model that counts each coded symbol.
#include "compress/wavelet/FrequencyModel.h"

#include <cstddef>

namespace kestrelink::wavelet {

FrequencyTree::FrequencyTree(int size, uint32_t limit)
    : m_size(size), m_tree(size_t(size > 0 ? size : 1), 0), m_limit(limit) {
  int p = 1;
  while (p < size) p <<= 1;
  m_half = p >> 1;
}

void FrequencyTree::Clear() {
  for (auto& t : m_tree) t = 0;
  m_total = 0;
}

uint32_t FrequencyTree::Cumulative(int i) const {
  if (i < 0) return 0;
  int32_t sum = m_tree[0];
  for (; i > 0; i &= i - 1) sum += m_tree[size_t(i)];
  return uint32_t(sum);
}

uint32_t FrequencyTree::Frequency(int i) const {
  if (i == 0) return uint32_t(m_tree[0]);
  int32_t f = m_tree[size_t(i)];
  // Subtract the entries that tree[i] sums beyond i itself.
  const int stop = i & (i - 1);
  for (int j = i - 1; j > stop; j &= j - 1) f -= m_tree[size_t(j)];
  return uint32_t(f);
}

void FrequencyTree::Add(int32_t delta, int i) {
  if (i == 0) {
    m_tree[0] += delta;
  } else {
    for (; i < m_size; i += i & -i) m_tree[size_t(i)] += delta;
  }
  m_total += uint32_t(delta);
}

void FrequencyTree::AddWithLimit(int32_t delta, int i) {
  if (m_total > m_limit)
    for (int s = m_size - 1; s >= 0; --s) Add(-int32_t(Frequency(s) / 2), s);
  Add(delta, i);
}

int FrequencyTree::Find(uint32_t target) const {
  if (target < uint32_t(m_tree[0])) return 0;
  int32_t rest = int32_t(target) - m_tree[0];
  int pos = 0;
  for (int step = m_half; step > 0; step >>= 1) {
    const int next = pos + step;
    if (next < m_size && m_tree[size_t(next)] <= rest) {
      pos = next;
      rest -= m_tree[size_t(next)];
    }
  }
  const int s = pos + 1;
  return s < m_size ? s : m_size - 1;  // a damaged target stays in the alphabet
}

AdaptiveModel::AdaptiveModel(int n, uint32_t limit) : m_size(n), m_tree(n, limit) { Reset(); }

void AdaptiveModel::Reset() {
  m_tree.Clear();
  for (int s = 0; s < m_size; ++s) m_tree.Add(1, s);
}

void AdaptiveModel::MoveFrequency(int from, int to) {
  const int32_t f = int32_t(m_tree.Frequency(from));
  m_tree.Add(-f, from);
  m_tree.Add(f, to);
}

}  // namespace kestrelink::wavelet
