#include "jpeg/front/CIntelJpegConversion.h"

#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "frame/ThreadSetup.h"
#include "jpeg/CJPEGEncoder.h"
#include "jpeg/JpegStreams.h"
#include "jpeg/front/App1Segment.h"
#include "jpeg/front/CodecDecode.h"
#include "jpeg/front/FrontLog.h"
#include "jpeg/front/WidePath.h"
#include "platform/OpenMP.h"
#include "platform/Registry.h"

using namespace kestrelink::jpeg;
using kestrelink::jpegfront::Log;
using kestrelink::jpegfront::RowStep;

namespace {

// A stream that grows: the file form is encoded in memory first, so that the
// caller's metadata can stand behind the encoder's headers.
class GrowingOutput : public CBaseStreamOutput {
 public:
  JERRCODE Open(const char*) override { return JPEG_NOT_IMPLEMENTED; }
  JERRCODE Close() override { return JPEG_OK; }
  JERRCODE Write(const void* source, uint32_t count, uint32_t& written) override {
    const auto* bytes = static_cast<const uint8_t*>(source);
    data.insert(data.end(), bytes, bytes + count);
    written = count;
    return JPEG_OK;
  }
  std::vector<uint8_t> data;
};

void ReadDword(const kestrelink::platform::RegistryKey& key, const char* name, int32_t& value) {
  kestrelink::platform::RegistryValue v;
  if (key.Query(name, v) && v.type == kestrelink::platform::RegistryType::Dword) value = static_cast<int32_t>(v.dword);
}

}  // namespace

CIntelJpegConversion::CIntelJpegConversion() {
  using namespace kestrelink::platform;
  const auto key = RegistryKey::Open(RegistryHive::CurrentUser, "Software\\Velmor", /*create=*/true);
  if (key) {
    ReadDword(*key, "JPEGbaselineMode", m_baseline);
    ReadDword(*key, "JPEG444Mode", m_use444);
  }
  kestrelink::SetupThreads(0);
}

bool CIntelJpegConversion::EncodeTo(CBaseStreamOutput* out, int channels, int32_t sourceColour) {
  CJPEGEncoder encoder;
  // For colour, 4:1:1 is the codec's name for 2 x 2 subsampling.
  const JSS sampling = channels == 3 && m_use444 == 0 ? JS_411 : JS_444;
  const IppiSize size = {static_cast<int32_t>(m_width), static_cast<int32_t>(m_height)};
  JERRCODE s = encoder.SetSource(m_buffer, RowStep(channels, m_width), size, channels,
                                 static_cast<JCOLOR>(sourceColour), JS_444, 8);
  if (s == JPEG_OK) s = encoder.SetDestination(out);
  if (s == JPEG_OK)
    s = encoder.SetParams(m_baseline != 0 ? JPEG_BASELINE : JPEG_PROGRESSIVE, channels == 3 ? JC_YCBCR : JC_GRAY,
                          sampling, 0, false, m_quality);
  if (s == JPEG_OK) s = encoder.WriteHeader();
  if (s == JPEG_OK) s = encoder.WriteData();
  if (s != JPEG_OK) {
    Log("Error when encoding JPEG data - %s", JPEGErrorText(s));
    return false;
  }
  return true;
}

bool CIntelJpegConversion::Encode(void* plane0, void* plane1, void* plane2, void* dst, int*, void*) {
  const std::lock_guard guard(m_lock);
  kestrelink::platform::SetBlockTimeZero();
  if (!Normalise(plane0, plane1, plane2)) return false;
  int channels = 0;
  if (m_encodeFormat == 100) {
    channels = 1;
  } else if (m_encodeFormat == 200 || m_encodeFormat == 400 || m_encodeFormat == 900) {
    channels = 3;
  } else {
    return false;  // BGRx (format 300 at 24 bits) is accepted but not encoded here
  }
  // Every colour source is read as BGR here, format 400 too: a settled
  // behaviour of the format (the file form reads 400 as RGB).
  const int32_t colour = channels == 1 ? JC_GRAY : JC_BGR;
  auto* out = static_cast<uint8_t*>(dst);
  CMemBuffOutput stream;
  stream.Open(out + 4, uint32_t(channels) * m_width * m_height);
  if (!EncodeTo(&stream, channels, colour)) return false;
  const uint32_t sizeWord = stream.m_position + 4;  // counts itself
  std::memcpy(out, &sizeWord, 4);
  return true;
}

bool CIntelJpegConversion::WriteFileAt(const char* path8, void* plane0, void* plane1, void* plane2, void* metadata,
                                       unsigned short metadataSize) {
  kestrelink::platform::SetBlockTimeZero();
  if (!Normalise(plane0, plane1, plane2)) return false;
  int channels = 3;
  int32_t colour = JC_BGR;
  // Mono by the normalised code, colour by the caller's: formats that only
  // normalise to BGR24 are refused here, a settled behaviour of the format.
  if (m_encodeFormat == 100) {
    channels = 1;
    colour = JC_GRAY;
  } else if (m_format == 400) {
    colour = JC_RGB;
  } else if (m_format != 200 && m_format != 900) {
    return false;
  }
  uint32_t scratchBytes = uint32_t(channels) * m_width * m_height;
  if (scratchBytes < 1024) scratchBytes = 4096;
  // Must be had, though nothing uses it: a settled behaviour of the file form.
  std::unique_ptr<uint8_t[]> scratch(new (std::nothrow) uint8_t[scratchBytes]);
  if (!scratch) {
    Log("Can't allocate %d bytes of memory", static_cast<int>(scratchBytes));
    return false;
  }
  GrowingOutput jpeg;
  if (!EncodeTo(&jpeg, channels, colour)) return false;
  const std::vector<uint8_t> app1 = kestrelink::jpegfront::App1Segment(metadata, metadataSize);
  const size_t at = kestrelink::jpegfront::HeaderEnd(jpeg.data.data(), jpeg.data.size());
  CStdFileOutput file;
  uint32_t written = 0;
  JERRCODE s = file.Open(path8);
  if (s == JPEG_OK) s = file.Write(jpeg.data.data(), uint32_t(at), written);
  if (s == JPEG_OK && !app1.empty()) s = file.Write(app1.data(), uint32_t(app1.size()), written);
  if (s == JPEG_OK) s = file.Write(jpeg.data.data() + at, uint32_t(jpeg.data.size() - at), written);
  file.Close();
  if (s != JPEG_OK) {
    Log("Error when encoding JPEG data - %s", JPEGErrorText(s));
    return false;
  }
  return true;
}

bool CIntelJpegConversion::WriteFile(const char* path, void* plane0, void* plane1, void* plane2, void* metadata,
                                     unsigned short metadataSize) {
  return WriteFileAt(path != nullptr ? path : "", plane0, plane1, plane2, metadata, metadataSize);
}

bool CIntelJpegConversion::WriteFileU(const unsigned short* path, void* plane0, void* plane1, void* plane2,
                                      void* metadata, unsigned short metadataSize) {
  const std::string path8 = kestrelink::jpegfront::WidePathToUtf8(path);
  return WriteFileAt(path8.c_str(), plane0, plane1, plane2, metadata, metadataSize);
}

bool CIntelJpegConversion::Decode(void* src, void* dst) { return kestrelink::jpegfront::DecodeSizedBuffer(src, dst); }

bool CIntelJpegConversion::DecodeRtsp(int size, void* src, void* dst, int, int& used) {
  uint32_t position = 0;
  const bool ok = kestrelink::jpegfront::DecodeWithCodec(static_cast<const uint8_t*>(src),
                                                         static_cast<uint32_t>(size < 0 ? 0 : size), dst, position);
  used = static_cast<int>(position);
  return ok;
}
