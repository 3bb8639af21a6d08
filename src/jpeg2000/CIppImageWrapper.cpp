#include <kestrelink/CIppImageWrapper.h>

#include "jpeg2000/Jpeg2kConversionBase.h"
#include "platform/DebugSink.h"

namespace {

constexpr const char* kNotInitialised = "Jpeg2K Converter has to be initialized first.";

}  // namespace

CIppImageWrapper::CIppImageWrapper() : m_converter(nullptr) {}

CIppImageWrapper::~CIppImageWrapper() { delete m_converter; }

// Each wrapper owns its converter: a copy takes a converter of its own with
// the same settings, so that both can be destroyed.
CIppImageWrapper::CIppImageWrapper(const CIppImageWrapper& other)
    : m_converter(other.m_converter ? other.m_converter->Clone() : nullptr) {}

CIppImageWrapper& CIppImageWrapper::operator=(const CIppImageWrapper& other) {
  if (this == &other) return *this;
  CJpeg2kConversionBase* copy = other.m_converter ? other.m_converter->Clone() : nullptr;
  delete m_converter;
  m_converter = copy;
  return *this;
}

void CIppImageWrapper::InitJPeg2KConverter(uint32_t width, uint32_t height, uint32_t third, uint32_t,
                                           uint32_t format) {
  if (m_converter == nullptr) m_converter = new CJpeg2kConversionBase;
  m_converter->Init(width, height, third, format);
}

bool CIppImageWrapper::EncodeJpeg2K(void* plane0, void* plane1, void* plane2, void* out) {
  if (m_converter == nullptr) {
    kestrelink::platform::OutputDebugString(kNotInitialised);
    return false;
  }
  return m_converter->Encode(plane0, plane1, plane2, out);
}

bool CIppImageWrapper::WriteJpeg2KToFile(const char* path, void* plane0, void* plane1, void* plane2) {
  if (m_converter == nullptr) {
    kestrelink::platform::OutputDebugString(kNotInitialised);
    return false;
  }
  return m_converter->WriteToFile(path, plane0, plane1, plane2);
}

bool CIppImageWrapper::DecodeJpeg2K(void* in, void* out0, void* out1, void* out2) {
  if (m_converter == nullptr) {
    kestrelink::platform::OutputDebugString(kNotInitialised);
    return false;
  }
  return m_converter->Decode(in, out0, out1, out2);
}
