#pragma once
// The byte streams under the JPEG codec: a memory buffer or a standard file,
// for input or output. Every operation answers a JERRCODE status: -4 when a
// memory stream runs out, -5 when a file call fails, -1 for what a stream does
// not offer.
#include <cstdint>
#include <cstdio>

#include "jpeg/JpegStatus.h"

namespace kestrelink::jpeg {

class CBaseStream {
 public:
  virtual ~CBaseStream() = default;
  virtual JERRCODE Open(const char* path) = 0;
  virtual JERRCODE Close() = 0;
};

class CBaseStreamInput : public CBaseStream {
 public:
  virtual JERRCODE Seek(int32_t offset, int origin) = 0;
  virtual JERRCODE Read(void* target, uint32_t count, uint32_t& got) = 0;
  virtual JERRCODE GetPosition(uint32_t& position) = 0;
};

class CBaseStreamOutput : public CBaseStream {
 public:
  virtual JERRCODE Write(const void* source, uint32_t count, uint32_t& written) = 0;
};

// Reads a caller's buffer; `size` and `position` are 32-bit.
class CMemBuffInput : public CBaseStreamInput {
 public:
  JERRCODE Open(const char* path) override;  // not offered: -1
  JERRCODE Open(const uint8_t* buffer, uint32_t size);
  JERRCODE Close() override;
  JERRCODE Seek(int32_t offset, int origin) override;
  JERRCODE Read(void* target, uint32_t count, uint32_t& got) override;
  JERRCODE GetPosition(uint32_t& position) override;

  const uint8_t* m_buffer = nullptr;
  uint32_t m_size = 0;
  uint32_t m_position = 0;
};

// Writes into a caller's buffer; `m_position` is the length of the stream.
class CMemBuffOutput : public CBaseStreamOutput {
 public:
  JERRCODE Open(const char* path) override;  // not offered: -1
  JERRCODE Open(uint8_t* buffer, uint32_t size);
  JERRCODE Close() override;
  JERRCODE Write(const void* source, uint32_t count, uint32_t& written) override;

  uint8_t* m_buffer = nullptr;
  uint32_t m_size = 0;
  uint32_t m_position = 0;
};

class CStdFileInput : public CBaseStreamInput {
 public:
  ~CStdFileInput() override;
  JERRCODE Open(const char* path) override;  // mode "rb"
  JERRCODE Close() override;
  JERRCODE Seek(int32_t offset, int origin) override;
  JERRCODE Read(void* target, uint32_t count, uint32_t& got) override;
  JERRCODE GetPosition(uint32_t& position) override;

 private:
  std::FILE* m_file = nullptr;
};

class CStdFileOutput : public CBaseStreamOutput {
 public:
  ~CStdFileOutput() override;
  JERRCODE Open(const char* path) override;  // mode "wb"
  JERRCODE Open(const unsigned short* path);  // UTF-16 path
  JERRCODE Close() override;
  JERRCODE Write(const void* source, uint32_t count, uint32_t& written) override;

 private:
  std::FILE* m_file = nullptr;
};

}  // namespace kestrelink::jpeg
