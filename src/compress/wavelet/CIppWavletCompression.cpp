// The exported front of the wavelet codec: a thin owner of the mono codec,
// keeping the ratios when there is none.
#include <kestrelink/CIppWavletCompression.h>

#include <cstdint>

#include "compress/wavelet/WaveletCompression.h"
#include "frame/ThreadSetup.h"
#include "platform/OpenMP.h"

CIppWavletCompression::CIppWavletCompression() : m_impl(nullptr), m_encodeRatio(100), m_decodeRatio(100) {
  kestrelink::SetupThreads(0);
}

CIppWavletCompression::~CIppWavletCompression() { delete m_impl; }

bool CIppWavletCompression::Initialize(uint32_t kind, int width, int height, int quantBits, int pixelBits,
                                       int levels, uint32_t filterType, uint32_t coderType, int) {
  delete m_impl;
  m_impl = nullptr;
  if (kind != 100 && kind != 101) return false;
  auto* impl = new CMonoWaveletCpmpression();
  if (!impl->Setup(kind, width, height, quantBits, pixelBits, levels, filterType,
                   kestrelink::wavelet::MakeCompressor(coderType))) {
    delete impl;
    return false;
  }
  impl->m_coderType = coderType;
  // A ratio set before Initialize survives it.
  impl->m_encodeRatio = m_encodeRatio;
  impl->m_decodeRatio = m_decodeRatio;
  m_impl = impl;
  return true;
}

void CIppWavletCompression::SetEncodeRatio(int ratio) {
  m_encodeRatio = ratio;
  if (m_impl) m_impl->m_encodeRatio = ratio;
}

int CIppWavletCompression::GetEncodeRatio() { return m_impl ? m_impl->m_encodeRatio : m_encodeRatio; }

void CIppWavletCompression::SetDecodeRatio(int ratio) {
  m_decodeRatio = ratio;
  if (m_impl) m_impl->m_decodeRatio = ratio;
}

int CIppWavletCompression::GetDecodeRatio() { return m_impl ? m_impl->m_decodeRatio : m_decodeRatio; }

bool CIppWavletCompression::Encode(void*, void*, void* src, void* dst) {
  kestrelink::platform::SetBlockTimeZero();
  return m_impl && src && dst && m_impl->EncodeFrame(src, dst);
}

bool CIppWavletCompression::Decode(void* src, void*, void*, void* dst) {
  return Decode(src, UINT32_MAX, dst);
}

bool CIppWavletCompression::Decode(const void* src, uint32_t srcBytes, void* dst) {
  kestrelink::platform::SetBlockTimeZero();
  return m_impl && src && dst && m_impl->DecodeFrame(src, srcBytes, dst);
}

uint32_t CIppWavletCompression::MaxEncodedBytes() { return m_impl ? m_impl->MaxFrameBytes() : 0; }
