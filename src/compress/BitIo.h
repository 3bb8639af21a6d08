#pragma once
// Bit packing shared by the Huffman and LZSS streams: most significant bit
// first. A code goes out from its top bit, and each byte fills from its top
// bit; a last byte that is not full is padded with zero bits.
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kestrelink::compress {

inline uint64_t LoadBigEndian64(const uint8_t* p) {
  uint64_t v;
  std::memcpy(&v, p, 8);
  return __builtin_bswap64(v);
}

inline void StoreBigEndian64(uint8_t* p, uint64_t v) {
  v = __builtin_bswap64(v);
  std::memcpy(p, &v, 8);
}

inline void StoreBigEndian32(uint8_t* p, uint32_t v) {
  v = __builtin_bswap32(v);
  std::memcpy(p, &v, 4);
}

// Bits waiting to be written, in the top `count` bits of `acc`; the bits
// below them are zero.
struct PendingBits {
  uint64_t acc = 0;
  uint32_t count = 0;

  // Appends the low `len` bits of `code` (1 <= len, count + len <= 64).
  void Put(uint64_t code, uint32_t len) {
    acc |= code << (64 - count - len);
    count += len;
  }
  // Writes every whole byte with one 8-byte store; `out` must have 8 bytes of
  // room, of which the bytes past the whole ones receive zeros or pending bits.
  void StoreWholeBytes(uint8_t*& out) {
    StoreBigEndian64(out, acc);
    out += count >> 3;
    acc <<= count & 56;
    count &= 7;
  }
  // Writes the top 32 bits when that many are waiting.
  void StoreWord(uint8_t*& out) {
    if (count < 32) return;
    StoreBigEndian32(out, uint32_t(acc >> 32));
    out += 4;
    acc <<= 32;
    count -= 32;
  }
  // Writes whole bytes one by one, at most `room` of them; answers how many.
  size_t WriteWholeBytes(uint8_t* out, size_t room) {
    size_t n = 0;
    for (; count >= 8 && n < room; ++n, count -= 8, acc <<= 8) out[n] = uint8_t(acc >> 56);
    return n;
  }
  // Bytes that the pending bits fill, the last one padded with zero bits.
  uint32_t PaddedBytes() const { return (count + 7) / 8; }
  // Writes the pending bits as PaddedBytes() bytes and empties the store.
  void WritePadded(uint8_t* out) {
    for (uint32_t i = 0, n = PaddedBytes(); i < n; ++i) out[i] = uint8_t(acc >> (56 - 8 * i));
    acc = 0;
    count = 0;
  }
};

// 64 bits of `src` (`size` bytes) from bit `pos` on, first bit at the top;
// bits past the end read as zero.
inline uint64_t PeekBits(const uint8_t* src, size_t size, uint64_t pos) {
  const size_t byte = size_t(pos >> 3);
  if (byte + 8 <= size) return LoadBigEndian64(src + byte) << (pos & 7);
  uint8_t tail[8] = {};
  if (byte < size) std::memcpy(tail, src + byte, size - byte);
  return LoadBigEndian64(tail) << (pos & 7);
}

}  // namespace kestrelink::compress
