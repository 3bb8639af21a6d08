#pragma once

// The settings and working state of one JPEG 2000 converter, owned by a
// CIppImageWrapper from its first InitJPeg2KConverter.
class CJpeg2kConversionBase {
 public:
  CJpeg2kConversionBase() = default;
  CJpeg2kConversionBase(const CJpeg2kConversionBase&) = default;
  CJpeg2kConversionBase& operator=(const CJpeg2kConversionBase&) = default;
  virtual ~CJpeg2kConversionBase() = default;

  // A copy that owns its own arrays.
  virtual CJpeg2kConversionBase* Clone() const { return new CJpeg2kConversionBase(*this); }
};
