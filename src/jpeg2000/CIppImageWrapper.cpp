#include <kestrelink/CIppImageWrapper.h>

#include "jpeg2000/Jpeg2kConversionBase.h"

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
