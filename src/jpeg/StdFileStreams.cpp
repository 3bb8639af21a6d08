// File streams over the C runtime: a short count or a failed call is -5.
#include <string>
#include <string_view>

#include "platform/RegFile.h"

#include "jpeg/JpegStreams.h"

namespace kestrelink::jpeg {

CStdFileInput::~CStdFileInput() { Close(); }

JERRCODE CStdFileInput::Open(const char* path) {
  Close();
  m_file = path ? std::fopen(path, "rb") : nullptr;
  return m_file ? JPEG_OK : JPEG_FILE_IO;
}

JERRCODE CStdFileInput::Close() {
  if (m_file) std::fclose(m_file);
  m_file = nullptr;
  return JPEG_OK;
}

JERRCODE CStdFileInput::Seek(int32_t offset, int origin) {
  if (!m_file || std::fseek(m_file, offset, origin) != 0) return JPEG_FILE_IO;
  return JPEG_OK;
}

JERRCODE CStdFileInput::Read(void* target, uint32_t count, uint32_t& got) {
  got = m_file ? uint32_t(std::fread(target, 1, count, m_file)) : 0;
  return got < count ? JPEG_FILE_IO : JPEG_OK;
}

JERRCODE CStdFileInput::GetPosition(uint32_t& position) {
  const long at = m_file ? std::ftell(m_file) : -1;
  if (at < 0) return JPEG_FILE_IO;
  position = uint32_t(at);
  return JPEG_OK;
}

CStdFileOutput::~CStdFileOutput() { Close(); }

JERRCODE CStdFileOutput::Open(const char* path) {
  Close();
  m_file = path ? std::fopen(path, "wb") : nullptr;
  return m_file ? JPEG_OK : JPEG_FILE_IO;
}

JERRCODE CStdFileOutput::Open(const unsigned short* path) {
  if (!path) return JPEG_FILE_IO;
  size_t units = 0;
  while (path[units]) ++units;
  const std::string_view bytes(reinterpret_cast<const char*>(path), units * 2);
  return Open(platform::regfile::Utf16LeToUtf8(bytes, true).c_str());
}

JERRCODE CStdFileOutput::Close() {
  if (m_file) std::fclose(m_file);
  m_file = nullptr;
  return JPEG_OK;
}

JERRCODE CStdFileOutput::Write(const void* source, uint32_t count, uint32_t& written) {
  written = m_file ? uint32_t(std::fwrite(source, 1, count, m_file)) : 0;
  return written < count ? JPEG_FILE_IO : JPEG_OK;
}

}  // namespace kestrelink::jpeg
