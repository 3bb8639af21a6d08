#pragma once
// Adaptive symbol frequencies for the arithmetic coder: a binary indexed
// tree with element 0 held apart, and the model over it.
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestrelink::wavelet {

class FrequencyTree {
 public:
  FrequencyTree(int size, uint32_t limit);

  // Sum of the frequencies of symbols 0 .. i; 0 for i < 0.
  uint32_t Cumulative(int i) const;
  uint32_t Frequency(int i) const;
  void Add(int32_t delta, int i);
  // Halves every frequency first when the total is above the limit.
  void AddWithLimit(int32_t delta, int i);
  // The symbol whose cumulative range holds target.
  int Find(uint32_t target) const;
  uint32_t Total() const { return m_total; }
  int Size() const { return m_size; }
  void Clear();

 private:
  int m_size;
  std::vector<int32_t> m_tree;
  int m_half;
  uint32_t m_total = 0;
  uint32_t m_limit;
};

class AdaptiveModel {
 public:
  // Every one of n symbols starts at frequency 1.
  AdaptiveModel(int n, uint32_t limit);
  void Reset();

  uint32_t Cumulative(int s) const { return m_tree.Cumulative(s); }
  uint32_t Frequency(int s) const { return m_tree.Frequency(s); }
  uint32_t Total() const { return m_tree.Total(); }
  uint32_t Find(uint32_t target) const { return uint32_t(m_tree.Find(target)); }
  void Add(uint32_t s) { m_tree.AddWithLimit(1, int(s)); }
  // Moves all the frequency of symbol `from` onto symbol `to`.
  void MoveFrequency(int from, int to);

 private:
  int m_size;
  FrequencyTree m_tree;
};

}  // namespace kestrelink::wavelet
