#include "jpeg/front/CCudaJpegConversion.h"

#include "jpeg/front/CodecDecode.h"
#include "jpeg/front/FrontLog.h"
#include "platform/VelCudaBinding.h"

using kestrelink::platform::VelCudaBinding;

CCudaJpegConversion::~CCudaJpegConversion() {
  if (m_encoderHandle != 0) VelCudaBinding::Instance().JpegEncoderUnInit(m_encoderHandle);
}

bool CCudaJpegConversion::FrameFits() const {
  return m_encoderHandle != 0 && (m_format == 100 || m_format == 101) && m_bitCount == 8 && m_width >= 128 &&
         m_height >= 128;
}

bool CCudaJpegConversion::Init(uint32_t width, uint32_t height, uint32_t bitCount, uint32_t sampleBits,
                               int32_t format, int32_t quality) {
  CJpegConversionBase::Init(width, height, bitCount, sampleBits, format, quality);
  VelCudaBinding& binding = VelCudaBinding::Instance();
  m_deviceIndex = binding.FirstFermiDevice();
  if (m_deviceIndex >= 0) {
    const int processors = binding.MultiProcessorCount(m_deviceIndex);
    if (m_encoderHandle == 0) m_encoderHandle = binding.JpegEncoderInit(m_deviceIndex);
    kestrelink::jpegfront::Log("*****Cuda fermi video card detected(index %d):multiProcessor %d.*****", m_deviceIndex,
                               processors);
  } else {
    kestrelink::jpegfront::Log("Cuda video card not detected.");
  }
  return FrameFits();
}

bool CCudaJpegConversion::Encode(void*, void*, void* plane2, void* dst, int* encodedSize, void* extra) {
  if (!FrameFits()) return false;
  const int w = static_cast<int>(m_width), h = static_cast<int>(m_height);
  return VelCudaBinding::Instance().JpegEncode(m_encoderHandle, w, h, m_quality, plane2, w * h,
                                               static_cast<uint8_t*>(dst) + 4, encodedSize, extra) != 0;
}

bool CCudaJpegConversion::Decode(void* src, void* dst) { return kestrelink::jpegfront::DecodeSizedBuffer(src, dst); }

bool CCudaJpegConversion::WriteFile(const char*, void*, void*, void*, void*, unsigned short) { return false; }

bool CCudaJpegConversion::WriteFileU(const unsigned short*, void*, void*, void*, void*, unsigned short) {
  return false;
}

bool CCudaJpegConversion::DecodeRtsp(int, void*, void*, int, int&) { return false; }
