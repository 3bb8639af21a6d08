#include "harness/FrameBuffer.h"

#include <cstring>
#include <new>

namespace kestrelink::bench {
namespace {

constexpr size_t kAlignment = 64;

// splitmix64: small, fast and well spread.
uint64_t Next(uint64_t& state) {
  uint64_t z = (state += 0x9E3779B97F4A7C15ull);
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
  return z ^ (z >> 31);
}

}  // namespace

FrameBuffer::FrameBuffer(size_t bytes) : m_Size(bytes) {
  const size_t rounded = (bytes + kAlignment - 1) / kAlignment * kAlignment;
  m_Data.reset(static_cast<uint8_t*>(std::aligned_alloc(kAlignment, rounded ? rounded : kAlignment)));
  if (!m_Data) throw std::bad_alloc();
  std::memset(m_Data.get(), 0, rounded);
}

void FillBytes(uint8_t* out, size_t count, uint64_t seed) {
  uint64_t state = seed;
  for (size_t i = 0; i < count; i += 8) {
    const uint64_t r = Next(state);
    for (size_t k = 0; k < 8 && i + k < count; ++k) out[i + k] = uint8_t(r >> (8 * k));
  }
}

void FillSamples16(uint16_t* out, size_t count, unsigned bits, uint64_t seed) {
  const uint16_t mask = uint16_t(bits >= 16 ? 0xFFFF : (1u << bits) - 1);
  uint64_t state = seed;
  for (size_t i = 0; i < count; i += 4) {
    const uint64_t r = Next(state);
    for (size_t k = 0; k < 4 && i + k < count; ++k) out[i + k] = uint16_t(r >> (16 * k)) & mask;
  }
}

}  // namespace kestrelink::bench
