// The lossless coder object: the method and frame size, and the common
// frame of every stream (compress/StreamFrame.h) around the method workers.
#include <kestrelink/CIppImageCompress.h>

#include "compress/StreamFrame.h"
#include "frame/ThreadSetup.h"
#include "platform/OpenMP.h"

using namespace kestrelink::compress;

CIppImageCompress::CIppImageCompress() : m_type(IppCompressHuffman), m_size(0) { kestrelink::SetupThreads(0); }

CIppImageCompress::~CIppImageCompress() = default;

uint32_t CIppImageCompress::InitCompress(IppCompressType type, uint32_t size) {
  m_type = type;
  m_size = size;
  return type >= IppCompressHuffman && type <= IppCompressRLE ? 2 * size : 0;
}

uint32_t CIppImageCompress::EncodeImage(void* src, void* dst) {
  kestrelink::platform::SetBlockTimeZero();
  uint32_t length = 2 * m_size;  // the room; what stands after the worker is the answer
  void* payload = PayloadOf(dst);
  switch (m_type) {
    case IppCompressHuffman: EncodeHuffmanImage(src, payload, length); break;
    case IppCompressLZ77: EncodeLZ77Image(src, payload, length); break;
    case IppCompressRLE: EncodeRLEImage(src, payload, length); break;
    default: return 0;
  }
  if (dst) StoreTotal(dst, length);  // a null destination has nowhere to take the total
  return length;
}

bool CIppImageCompress::DecodeImage(void* src, void* dst) {
  // A null stream has no total to read; its worker reports the null pointer.
  const int32_t srcLen = src ? PayloadLength(src) : 0;
  void* payload = PayloadOf(src);
  switch (m_type) {
    case IppCompressHuffman: DecodeHuffmanImage(payload, srcLen, dst); return true;
    case IppCompressLZ77: DecodeLZ77Image(payload, srcLen, dst); return true;
    case IppCompressRLE: DecodeRLEImage(payload, srcLen, dst); return true;
    default: return false;
  }
}
