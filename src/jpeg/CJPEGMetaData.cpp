// The Exif reader. Settled behaviours of the format kept here: type 1 counts
// as 0 bytes and is not decoded; inline bytes come out of the raw value from
// its most significant byte down whatever the byte order; inline shorts take
// the high half first; rationals are read a pair per two of `count`.
#include "jpeg/CJPEGMetaData.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

namespace kestrelink::jpeg {
namespace {

constexpr uint32_t kLastNamedTag = 42000;

struct TagRow {
  uint16_t tag;
  const char* name;
};

constexpr TagRow kTagRows[] = {
    {1, "InteroperabilityIndex"}, {2, "InteroperabilityVersion"}, {256, "ImageWidth"}, {257, "ImageHeight"},
    {258, "BitsPerSample"}, {259, "Compression"}, {262, "PhotometricInterpretation"}, {270, "ImageDescription"},
    {271, "Make"}, {272, "Model"}, {273, "StripOffset"}, {274, "Orientation"}, {277, "SamplesPerPixel"},
    {278, "RowsPerStrip"}, {279, "StripByteCounts"}, {282, "XResolution"}, {283, "YResolution"},
    {284, "PlanarConfiguration"}, {296, "ResolutionUnit"}, {301, "TransferFunction"}, {306, "DateTime"},
    {315, "Artist"}, {318, "WhitePoint"}, {319, "PrimaryChromacities"}, {513, "JPEGInterchangeFormat"},
    {514, "JPEGInterchangeFormatLength"}, {529, "YCbCrCoefficients"}, {530, "YCbCrSubSampling"},
    {531, "YCbCrPositioning"}, {532, "ReferenceBlackWhite"}, {33432, "Copyright"}, {33434, "ExposureTime"},
    {33437, "FNumber"}, {34665, "ExifIFDPointer"}, {34850, "ExposureProgram"}, {34852, "SpectralSensitivity"},
    {34853, "GPSInfoIFDPointer"}, {34855, "ISOSpeedRatings"}, {34856, "OECF"}, {36864, "ExifVersion"},
    {36867, "DateTimeOriginal"}, {36868, "DateTimeDigitized"}, {37121, "ComponentsConfiguration"},
    {37122, "CompressedBitsPerPixel"}, {37377, "ShutterSpeedValue"}, {37378, "ApertureValue"},
    {37379, "BrightnessValue"}, {37380, "ExposureBiasValue"}, {37381, "MaxApertureValue"},
    {37382, "SubjectDistance"}, {37383, "MeteringMode"}, {37384, "LightSource"}, {37385, "Flash"},
    {37386, "FocalLength"}, {37500, "MakerNote"}, {37510, "UserComment"}, {37520, "SubsecTime"},
    {37521, "SubsecTimeOriginal"}, {37522, "SubsecTimeDigitized"}, {40960, "FlashPixVersion"},
    {40961, "ColorSpace"}, {40962, "PixelXDimension"}, {40963, "PixelYDimension"}, {40964, "RelatedAudioFile"},
    {40965, "InteroperabilityIFDPointer"}, {41483, "FlashEnergy"}, {41484, "SpatialFrequencyResponse"},
    {41486, "FocalPlaneXResolution"}, {41487, "FocalPlaneYResolution"}, {41488, "FocalPlaneResolutionUnit"},
    {41492, "SubjectLocation"}, {41493, "ExposureIndex"}, {41495, "SensingMethod"}, {41728, "FileSource"},
    {41729, "SceneType"}, {41730, "CFAPattern"}};

// The process-wide name table, indexed by tag number. Every constructor would
// fill it with the same rows; it is filled once, so that readers on other
// threads never see it half cleared.
const char* g_names[kLastNamedTag + 1];
std::once_flag g_namesOnce;

void FillNames() {
  for (const TagRow& row : kTagRows) g_names[row.tag] = row.name;
}

constexpr uint32_t kTypeSize[11] = {1, 0, 1, 2, 4, 8, 0, 1, 0, 4, 8};

}  // namespace

CJPEGMetaData::CJPEGMetaData() { std::call_once(g_namesOnce, FillNames); }

CJPEGMetaData::~CJPEGMetaData() { Clear(); }

const char* CJPEGMetaData::TagName(uint32_t tag) {
  std::call_once(g_namesOnce, FillNames);
  return tag <= kLastNamedTag ? g_names[tag] : nullptr;
}

const char* CJPEGMetaData::TagDescription(uint32_t tag) {
  return tag == 1 ? "Indicates the identification of the Interoperability rule." : nullptr;
}

uint32_t CJPEGMetaData::TypeSize(uint32_t type) { return type <= 10 ? kTypeSize[type] : 0; }

void CJPEGMetaData::FreeIfd(CJPEGMetaDataIfd& ifd) {
  if (ifd.entries) {
    for (uint32_t i = 0; i < ifd.count; ++i) {
      if (ifd.entries[i]) std::free(ifd.entries[i]->data);
      delete ifd.entries[i];
    }
    delete[] ifd.entries;
  }
  ifd = CJPEGMetaDataIfd{};
}

void CJPEGMetaData::Clear() {
  for (CJPEGMetaDataIfd& ifd : m_ifd) FreeIfd(ifd);
  byteOrder = magic = 0;
  firstOffset = 0;
  m_data = nullptr;
  m_cursor = m_size = 0;
}

JERRCODE CJPEGMetaData::Read8(uint8_t& v) {
  if (m_cursor >= m_size) return JPEG_BUFF_TOO_SMALL;
  v = m_data[m_cursor++];
  return JPEG_OK;
}

JERRCODE CJPEGMetaData::Read16(uint16_t& v) {
  uint8_t a, b;
  if (JERRCODE s = Read8(a)) return s;
  if (JERRCODE s = Read8(b)) return s;
  v = byteOrder == 18761 ? uint16_t(a | (b << 8)) : uint16_t((a << 8) | b);
  return JPEG_OK;
}

JERRCODE CJPEGMetaData::Read32(uint32_t& v) {
  uint16_t a, b;
  if (JERRCODE s = Read16(a)) return s;
  if (JERRCODE s = Read16(b)) return s;
  v = byteOrder == 18761 ? uint32_t(a | (uint32_t(b) << 16)) : uint32_t((uint32_t(a) << 16) | b);
  return JPEG_OK;
}

JERRCODE CJPEGMetaData::Parse(const uint8_t* data, uint32_t size) {
  Clear();
  if (!data) return JPEG_BAD_PARAMETER;
  m_data = data;
  m_size = size;
  m_cursor = 0;
  uint8_t a, b;
  if (JERRCODE s = Read8(a)) return s;
  if (JERRCODE s = Read8(b)) return s;
  byteOrder = uint16_t(a | (b << 8));
  if (JERRCODE s = Read16(magic)) return s;
  if (JERRCODE s = Read32(firstOffset)) return s;
  if (JERRCODE s = ReadIfd(kIfd0, firstOffset)) return s;
  const CJPEGMetaDataIfd& ifd0 = m_ifd[kIfd0];
  for (uint32_t i = 0; i < ifd0.count; ++i) {
    const CJPEGMetaDataEntry& e = *ifd0.entries[i];
    if (e.tag == 34665 && m_ifd[kIfdExif].entries == nullptr) {
      if (JERRCODE s = ReadIfd(kIfdExif, e.value)) return s;
      const CJPEGMetaDataIfd& exif = m_ifd[kIfdExif];
      for (uint32_t j = 0; j < exif.count; ++j)
        if (exif.entries[j]->tag == 40965 && m_ifd[kIfdInterop].entries == nullptr)
          if (JERRCODE s = ReadIfd(kIfdInterop, exif.entries[j]->value)) return s;
    } else if (e.tag == 34853 && m_ifd[kIfdGps].entries == nullptr) {
      if (JERRCODE s = ReadIfd(kIfdGps, e.value)) return s;
    }
  }
  if (ifd0.next != 0)
    if (JERRCODE s = ReadIfd(kIfd1, ifd0.next)) return s;
  return JPEG_OK;
}

JERRCODE CJPEGMetaData::ReadIfd(int index, uint32_t offset) {
  CJPEGMetaDataIfd& ifd = m_ifd[index];
  FreeIfd(ifd);
  m_cursor = offset;
  uint16_t count;
  if (JERRCODE s = Read16(count)) return s;
  // Twelve bytes an entry must follow; a count that the payload cannot hold
  // fails as its first read past the end would.
  if (uint64_t(m_cursor) + uint64_t(count) * 12 > m_size) return JPEG_BUFF_TOO_SMALL;
  ifd.entries = new (std::nothrow) CJPEGMetaDataEntry*[count ? count : 1]();
  if (!ifd.entries) return JPEG_OUT_OF_MEMORY;
  ifd.count = count;
  for (uint32_t i = 0; i < count; ++i) {
    ifd.entries[i] = new (std::nothrow) CJPEGMetaDataEntry();
    if (!ifd.entries[i]) return JPEG_OUT_OF_MEMORY;
    if (JERRCODE s = ReadEntry(*ifd.entries[i])) return s;
  }
  return Read32(ifd.next);
}

JERRCODE CJPEGMetaData::ReadEntry(CJPEGMetaDataEntry& e) {
  if (JERRCODE s = Read16(e.tag)) return s;
  e.name = TagName(e.tag);
  if (JERRCODE s = Read16(e.type)) return s;
  if (JERRCODE s = Read32(e.count)) return s;
  if (JERRCODE s = Read32(e.value)) return s;
  const uint64_t bytes = uint64_t(TypeSize(e.type)) * e.count;
  const bool inOffset = bytes > 4 || e.type == 5 || e.type == 10;
  // Values at an offset must lie in the payload; reading them would fail at
  // the first byte past its end, so that fails here, before the allocation.
  if (inOffset && bytes > 0 && uint64_t(e.value) + bytes > m_size) return JPEG_BUFF_TOO_SMALL;
  // At least 4 bytes, as the format has it; here 8, so that the first value of
  // any type (a rational pair) can be formatted, and one zero more ends any text.
  const size_t alloc = size_t(bytes > 8 ? bytes : 8);
  e.data = static_cast<uint8_t*>(std::calloc(alloc + 1, 1));
  if (!e.data) return JPEG_OUT_OF_MEMORY;
  const uint32_t back = m_cursor;
  JERRCODE status = JPEG_OK;
  switch (e.type) {
    case 0:
    case 2:
    case 7:
      if (e.count == 0) break;
      if (e.count <= 4) {
        for (uint32_t i = 0; i < e.count; ++i) e.data[i] = uint8_t(e.value >> (24 - 8 * i));
      } else {
        m_cursor = e.value;
        for (uint32_t i = 0; i < e.count && status == JPEG_OK; ++i) status = Read8(e.data[i]);
      }
      break;
    case 3: {
      uint16_t* v = reinterpret_cast<uint16_t*>(e.data);
      if (bytes <= 4) {
        v[0] = uint16_t(e.value >> 16);
        v[1] = uint16_t(e.value);
      } else {
        m_cursor = e.value;
        for (uint32_t i = 0; i < e.count && status == JPEG_OK; ++i) status = Read16(v[i]);
      }
      break;
    }
    case 4:
    case 9: {
      uint32_t* v = reinterpret_cast<uint32_t*>(e.data);
      if (bytes <= 4) {
        v[0] = e.value;
      } else {
        m_cursor = e.value;
        for (uint32_t i = 0; i < e.count && status == JPEG_OK; ++i) status = Read32(v[i]);
      }
      break;
    }
    case 5:
    case 10: {
      uint32_t* v = reinterpret_cast<uint32_t*>(e.data);
      m_cursor = e.value;
      // Settled behaviour of the format: the loop steps by 2 up to `count`,
      // so about half of the pairs are read.
      for (uint32_t i = 0; i < e.count && status == JPEG_OK; i += 2) {
        status = Read32(v[i]);
        if (status == JPEG_OK) status = Read32(v[i + 1]);
      }
      break;
    }
    default: break;
  }
  m_cursor = back;
  return status;
}

char* CJPEGMetaData::Format(const CJPEGMetaDataEntry* entry) {
  if (!entry || !entry->data || entry->type > 10) return nullptr;  // an entry a failed parse left unread
  const char* name = entry->name ? entry->name : "(null)";
  const int type = entry->type;
  if (type == 1 || type == 6 || type == 8) return nullptr;
  char* text = static_cast<char*>(std::malloc(128));
  if (!text) return nullptr;
  const unsigned tag = entry->tag;
  if (type == 0 || type == 7) {
    char local[129] = {};
    const uint32_t n = entry->count < 4 ? 4 : (entry->count < 128 ? entry->count : 128);
    std::memcpy(local, entry->data, n);
    std::snprintf(text, 128, "tag:0x%04X, name:%s, value:%s", tag, name, local);
  } else if (type == 2) {
    std::snprintf(text, 128, "tag:0x%04X, name:%s, value:%s", tag, name, reinterpret_cast<const char*>(entry->data));
  } else if (type == 3) {
    std::snprintf(text, 128, "tag:0x%04X, name:%s, value:%d", tag, name,
                  int(*reinterpret_cast<const uint16_t*>(entry->data)));
  } else if (type == 4 || type == 9) {
    std::snprintf(text, 128, "tag:0x%04X, name:%s, value:%d", tag, name,
                  int(*reinterpret_cast<const uint32_t*>(entry->data)));
  } else {
    const uint32_t* v = reinterpret_cast<const uint32_t*>(entry->data);
    std::snprintf(text, 128, "tag:0x%04X, name:%s, value:%d/%d", tag, name, int(v[0]), int(v[1]));
  }
  return text;
}

uint32_t CJPEGMetaData::CountOf(int ifd) const { return ifd >= 0 && ifd < 5 ? m_ifd[ifd].count : 0; }

const CJPEGMetaDataEntry* CJPEGMetaData::Find(int ifd, uint16_t tag) const {
  for (uint32_t i = 0; i < m_ifd[ifd].count; ++i)
    if (m_ifd[ifd].entries[i] && m_ifd[ifd].entries[i]->tag == tag) return m_ifd[ifd].entries[i];
  return nullptr;
}

uint32_t CJPEGMetaData::ThumbnailSize() const {
  const CJPEGMetaDataEntry* e = Find(kIfd1, 514);
  return e ? e->value : 0;
}

const uint8_t* CJPEGMetaData::ThumbnailData() const {
  const CJPEGMetaDataEntry* e = Find(kIfd1, 513);
  // An offset outside the payload gives no address.
  return e && m_data && e->value < m_size ? m_data + e->value : nullptr;
}

}  // namespace kestrelink::jpeg
