#include "jpeg2000/ByteStream.h"

#include <cstring>

namespace kestrelink::j2k {

ByteStream::~ByteStream() {
  while (m_head) {
    Block* next = m_head->next;
    delete m_head;
    m_head = next;
  }
}

void ByteStream::OpenBlock() {
  Block* block = new Block;
  block->prev = m_tail;
  block->next = nullptr;
  block->used = 0;
  if (m_tail) m_tail->next = block;
  else m_head = block;
  m_tail = block;
}

void ByteStream::PutBytes(const uint8_t* data, size_t count) {
  while (count > 0) {
    if (m_tail == nullptr || m_tail->used == kBlockBytes) OpenBlock();
    const size_t room = kBlockBytes - m_tail->used;
    const size_t n = count < room ? count : room;
    std::memcpy(m_tail->bytes + m_tail->used, data, n);
    m_tail->used += n;
    m_count += n;
    data += n;
    count -= n;
  }
}

void ByteStream::PutUInt16(uint32_t value) {
  PutByte(uint8_t(value >> 8));
  PutByte(uint8_t(value));
}

void ByteStream::PutUInt32(uint32_t value) {
  PutUInt16(value >> 16);
  PutUInt16(value & 0xFFFF);
}

void ByteStream::Drain(uint8_t* out) const {
  for (const Block* block = m_head; block; block = block->next) {
    std::memcpy(out, block->bytes, block->used);
    out += block->used;
  }
}

}  // namespace kestrelink::j2k
