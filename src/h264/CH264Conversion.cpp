// The exported face of H.264: picks the two back-ends once and forwards each call.
#include <kestrelink/CH264Conversion.h>

#include "h264/CIPPH264Conversion.h"
#include "h264/CIntelMediaH264Conversion.h"
#include "h264/HardwareEncodingSupport.h"

namespace {

// The Media SDK back-end encodes wherever a run-time can really encode here
// (asked once a process); decoding is always the software back-end's.
CH264ConversionBase* MakeEncoder() {
  if (kestrelink::h264::MediaSdkEncodesHere()) return new CIntelMediaH264Conversion;
  return new CIPPH264Conversion;
}

}  // namespace

CH264Conversion::CH264Conversion() : m_pEncoder(MakeEncoder()), m_pDecoder(new CIPPH264Conversion) {}

CH264Conversion::~CH264Conversion() {
  delete m_pEncoder;
  delete m_pDecoder;
}

// Both objects share the back-ends afterwards; the caller keeps only one alive.
CH264Conversion& CH264Conversion::operator=(const CH264Conversion& other) {
  m_pEncoder = other.m_pEncoder;
  m_pDecoder = other.m_pDecoder;
  return *this;
}

bool CH264Conversion::Initialize(bool encoder, uint32_t width, uint32_t height, H264EndoerSorceFormat format,
                                 int gopSize, int bitRate, uint32_t bitDepth, int) {
  if (encoder) return m_pEncoder->Initialize(true, width, height, format, gopSize, bitRate, bitDepth, 0);
  return m_pDecoder->Initialize(false, width, height, format, gopSize, bitRate, bitDepth, 0);
}

bool CH264Conversion::UnInitialize(bool encoder) {
  return encoder ? m_pEncoder->UnInitialize() : m_pDecoder->UnInitialize();
}

bool CH264Conversion::SetParamers(bool encoder, H264PARAM_TYPE type, int value) {
  CH264ConversionBase* target = encoder ? m_pEncoder : m_pDecoder;
  return target ? target->SetParamers(type, value) : false;
}

bool CH264Conversion::EncodeImage(void* record, void* plane0, void* plane1, void* plane2) {
  return m_pEncoder ? m_pEncoder->EncodeImage(record, plane0, plane1, plane2) : false;
}

bool CH264Conversion::DecodeImage(uint32_t frameIndex, void* record, void* image) {
  return m_pDecoder ? m_pDecoder->DecodeImage(frameIndex, record, image) : false;
}

void CH264Conversion::ReleaseDecodeResource() {
  if (m_pDecoder) m_pDecoder->ReleaseDecodeResource();
}

uint32_t CH264Conversion::GetLastDecodeFrameIndex() { return m_pDecoder ? m_pDecoder->GetLastDecodeFrameIndex() : 0; }

bool CH264Conversion::IsHardwareEncodingSupported() { return kestrelink::h264::HardwareEncodingSupported(); }

bool CH264Conversion::InitWithRTSP() { return m_pDecoder ? m_pDecoder->InitWithRTSP() : false; }

int CH264Conversion::DecodeImageFromRTSP(int inputSize, void* input, void* image, int imageSize, int& consumed) {
  return m_pDecoder ? m_pDecoder->DecodeImageFromRTSP(inputSize, input, image, imageSize, consumed) : -1;
}

bool CH264Conversion::UnInitWithRTSP() { return m_pDecoder ? m_pDecoder->UnInitWithRTSP() : false; }
