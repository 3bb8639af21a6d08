#include "h264/FrameConstructor.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr int64_t kNoTime = -10000000;
constexpr mfxU64 kUnknownTime = ~mfxU64(0);

}  // namespace

mfxU64 ConvertSampleTime(int64_t time) {
  if (time == kNoTime) return kUnknownTime;
  // Through a signed value, so that a negative time wraps as it would in 64 bits.
  return mfxU64(int64_t(double(time) / 10000000.0 * 90000));
}

bool CFrameConstructor::NewData(mfxBitstream* bitstream, uint32_t bytes) {
  bitstream->Data = static_cast<mfxU8*>(std::calloc(bytes ? bytes : 1, 1));
  bitstream->DataOffset = 0;
  bitstream->DataLength = bitstream->MaxLength = bitstream->Data ? bytes : 0;
  return bitstream->Data != nullptr;
}

uint32_t CFrameConstructor::SampleBytes(IMediaSample* sample) {
  const int32_t length = sample->GetActualDataLength(), size = sample->GetSize();
  if (length <= 0 || size <= 0) return 0;
  return uint32_t(length < size ? length : size);
}

CFrameConstructor::CFrameConstructor() : m_headers(new uint8_t[100]()) {}

void CFrameConstructor::Reset() {}

void CFrameConstructor::SaveHeaders(mfxBitstream* bitstream) {
  if (bitstream == nullptr || bitstream->Data == nullptr || bitstream->DataLength > m_headerCapacity) return;
  std::memcpy(m_headers.get(), bitstream->Data + bitstream->DataOffset, bitstream->DataLength);
  m_headerSize = bitstream->DataLength;
}

mfxStatus CFrameConstructor::ConstructFrame(IMediaSample* sample, mfxBitstream* bitstream) {
  if (sample == nullptr || bitstream == nullptr) return MFX_ERR_NULL_PTR;
  const uint32_t length = SampleBytes(sample);
  if (length == 0) return MFX_ERR_MORE_DATA;
  const uint8_t* data = sample->GetPointer();
  if (data == nullptr) return MFX_ERR_NULL_PTR;
  std::free(bitstream->Data);
  if (!NewData(bitstream, m_headerSize + length)) return MFX_ERR_NULL_PTR;
  std::memcpy(bitstream->Data, m_headers.get(), m_headerSize);
  std::memcpy(bitstream->Data + m_headerSize, data, length);
  m_headerSize = 0;
  int64_t start = 0, stop = 0;
  if (!sample->GetTime(start, stop)) {
    bitstream->TimeStamp = kUnknownTime;
  } else if (start == kNoTime && stop == kNoTime) {
    bitstream->TimeStamp = ConvertSampleTime(start);
  } else {
    bitstream->TimeStamp = ConvertSampleTime(start < 0 ? 0 : start);
  }
  return MFX_ERR_NONE;
}
