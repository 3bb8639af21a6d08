#pragma once
// The memory sink of the JPEG 2000 layer: a double-linked chain of 8192-byte
// blocks with a running count. Appending never moves what is written; the
// whole stream is drained once into one flat buffer at the end.
#include <cstddef>
#include <cstdint>

namespace kestrelink::j2k {

class ByteStream {
 public:
  static constexpr size_t kBlockBytes = 8192;

  ByteStream() = default;
  ByteStream(const ByteStream&) = delete;
  ByteStream& operator=(const ByteStream&) = delete;
  ~ByteStream();

  void PutByte(uint8_t value) {
    if (m_tail == nullptr || m_tail->used == kBlockBytes) OpenBlock();
    m_tail->bytes[m_tail->used++] = value;
    ++m_count;
  }
  void PutBytes(const uint8_t* data, size_t count);
  void PutUInt16(uint32_t value);  // big-endian
  void PutUInt32(uint32_t value);  // big-endian

  size_t Count() const { return m_count; }
  // The last byte written; 0 for an empty stream.
  uint8_t LastByte() const { return m_tail && m_tail->used ? m_tail->bytes[m_tail->used - 1] : 0; }
  // Copies every byte, in order, to out (Count() bytes).
  void Drain(uint8_t* out) const;

 private:
  struct Block {
    Block* prev;
    Block* next;
    size_t used;
    uint8_t bytes[kBlockBytes];
  };
  void OpenBlock();

  Block* m_head = nullptr;
  Block* m_tail = nullptr;
  size_t m_count = 0;
};

}  // namespace kestrelink::j2k
