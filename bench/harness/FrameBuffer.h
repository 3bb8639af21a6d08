#pragma once
// Frame memory for benchmarks: 64-byte aligned, every page touched at
// allocation so that no page fault lands in a timed frame.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace kestrelink::bench {

class FrameBuffer {
 public:
  FrameBuffer() = default;
  explicit FrameBuffer(size_t bytes);

  uint8_t* data() { return m_Data.get(); }
  const uint8_t* data() const { return m_Data.get(); }
  uint16_t* words() { return reinterpret_cast<uint16_t*>(m_Data.get()); }
  size_t size() const { return m_Size; }

 private:
  struct Free {
    void operator()(uint8_t* p) const { std::free(p); }
  };
  std::unique_ptr<uint8_t[], Free> m_Data;
  size_t m_Size = 0;
};

// Deterministic pseudo-random samples: the same seed gives the same frame on
// every run and machine.
void FillBytes(uint8_t* out, size_t count, uint64_t seed);
void FillSamples16(uint16_t* out, size_t count, unsigned bits, uint64_t seed);

}  // namespace kestrelink::bench
