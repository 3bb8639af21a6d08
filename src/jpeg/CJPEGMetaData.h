#pragma once
// The Exif reader of a JPEG file's APP1 payload (the bytes after "Exif\0\0"):
// the TIFF header, IFD 0, the Exif, GPS and Interoperability IFDs that it
// points to, and IFD 1. Each entry's values are decoded into a buffer of its
// own by the format's settled rules (see Parse).
#include <cstdint>

#include "jpeg/JpegStatus.h"

namespace kestrelink::jpeg {

struct CJPEGMetaDataEntry {
  uint16_t tag = 0;
  uint16_t type = 0;
  uint32_t count = 0;
  uint32_t value = 0;        // the raw value or offset field
  uint8_t* data = nullptr;   // decoded values
  const char* name = nullptr;
};

struct CJPEGMetaDataIfd {
  uint16_t count = 0;
  CJPEGMetaDataEntry** entries = nullptr;
  uint32_t next = 0;
};

class CJPEGMetaData {
 public:
  enum Ifd { kIfd0 = 0, kIfd1 = 1, kIfdExif = 2, kIfdGps = 3, kIfdInterop = 4 };

  CJPEGMetaData();
  virtual ~CJPEGMetaData();
  CJPEGMetaData(const CJPEGMetaData&) = delete;
  CJPEGMetaData& operator=(const CJPEGMetaData&) = delete;

  // Reads the whole structure of `size` bytes at `data`, which must outlive
  // this object's use of ThumbnailData.
  JERRCODE Parse(const uint8_t* data, uint32_t size);
  void Clear();
  // A text of 128 bytes, allocated with malloc (the caller frees it), or null.
  static char* Format(const CJPEGMetaDataEntry* entry);
  uint32_t CountOf(int ifd) const;
  const CJPEGMetaDataIfd& IfdRecord(int ifd) const { return m_ifd[ifd]; }
  uint32_t ThumbnailSize() const;
  const uint8_t* ThumbnailData() const;

  // Name of a tag (up to 42000 and listed), else null; the description of one.
  static const char* TagName(uint32_t tag);
  static const char* TagDescription(uint32_t tag);
  // Bytes of one value of an entry type; 0 for types 1, 6, 8 and above 10.
  static uint32_t TypeSize(uint32_t type);

  uint16_t byteOrder = 0;
  uint16_t magic = 0;
  uint32_t firstOffset = 0;

 private:
  JERRCODE ReadIfd(int ifd, uint32_t offset);
  JERRCODE ReadEntry(CJPEGMetaDataEntry& e);
  JERRCODE Read8(uint8_t& v);
  JERRCODE Read16(uint16_t& v);
  JERRCODE Read32(uint32_t& v);
  const CJPEGMetaDataEntry* Find(int ifd, uint16_t tag) const;
  static void FreeIfd(CJPEGMetaDataIfd& ifd);

  CJPEGMetaDataIfd m_ifd[5];
  const uint8_t* m_data = nullptr;
  uint32_t m_cursor = 0;
  uint32_t m_size = 0;
};

}  // namespace kestrelink::jpeg
