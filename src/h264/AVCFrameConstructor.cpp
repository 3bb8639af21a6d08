// AVC samples: every NAL unit but the access unit delimiter behind a
// 00 00 00 01 start code, with the description's parameter sets in front of
// the first frame after they were read.
#include <cstdlib>
#include <cstring>
#include <vector>

#include "h264/FrameConstructor.h"
#include "h264/NALUIterator.h"

namespace {

constexpr uint32_t kDelimiter = 9, kSequenceParameterSet = 7, kPictureParameterSet = 8;

void Append(std::vector<uint8_t>& out, const uint8_t* bytes, size_t count) { out.insert(out.end(), bytes, bytes + count); }

}  // namespace

CAVCFrameConstructor::CAVCFrameConstructor() : m_startCode(new uint8_t[4]{0, 0, 0, 1}) {}

void CAVCFrameConstructor::Reset() { m_headerDone = false; }

mfxStatus CAVCFrameConstructor::ReadSequenceHeader(const MPEG2VIDEOINFO* info, mfxBitstream* bitstream) {
  if (info == nullptr || bitstream == nullptr) return MFX_ERR_NULL_PTR;
  m_sequenceHeaders.reset();
  m_sequenceHeaderSize = 0;
  m_lengthSize = info->dwFlags;
  mfxStatus status = MFX_ERR_NONE;
  std::vector<uint8_t> headers;
  if (info->dwSequenceHeader != nullptr) {
    NALUIterator units(info->dwSequenceHeader, info->cbSequenceHeader, m_sequenceLengthSize);
    while (units.Advance()) {
      if (units.type == kSequenceParameterSet || units.type == kPictureParameterSet) {
        Append(headers, m_startCode.get(), m_startCodeSize);
        Append(headers, units.Payload(), units.PayloadSize());
      } else {
        status = MFX_ERR_MORE_DATA;  // and the walk goes on
      }
    }
  }
  if (!headers.empty()) {
    const uint32_t bytes = uint32_t(headers.size());
    std::free(bitstream->Data);
    bitstream->Data = static_cast<mfxU8*>(std::malloc(bytes));
    if (bitstream->Data == nullptr) {
      bitstream->DataLength = bitstream->MaxLength = 0;
      return MFX_ERR_MEMORY_ALLOC;
    }
    std::memcpy(bitstream->Data, headers.data(), bytes);
    bitstream->DataOffset = 0;
    bitstream->DataLength = bitstream->MaxLength = bytes;
    m_sequenceHeaders.reset(new uint8_t[bytes]);
    std::memcpy(m_sequenceHeaders.get(), headers.data(), bytes);
    m_sequenceHeaderSize = bytes;
  }
  return status;
}

mfxStatus CAVCFrameConstructor::ConstructFrame(IMediaSample* sample, mfxBitstream* bitstream) {
  if (sample == nullptr || bitstream == nullptr) return MFX_ERR_NULL_PTR;
  const uint32_t length = SampleBytes(sample);
  if (length == 0) return MFX_ERR_MORE_DATA;
  const uint8_t* data = sample->GetPointer();
  if (data == nullptr) return MFX_ERR_NULL_PTR;

  std::vector<uint8_t> units;
  NALUIterator walk(data, length, m_lengthSize);
  while (walk.Advance()) {
    if (walk.type == kDelimiter) continue;
    Append(units, m_startCode.get(), m_startCodeSize);
    Append(units, walk.Payload(), walk.PayloadSize());
  }
  if (units.empty()) return MFX_ERR_MORE_DATA;

  // The earlier Data is the caller's to free: it is not freed here, a settled behaviour of the format.
  const uint32_t bytes = m_headerSize + m_sequenceHeaderSize + uint32_t(units.size());
  if (!NewData(bitstream, bytes)) return MFX_ERR_NULL_PTR;
  std::memcpy(bitstream->Data, m_headers.get(), m_headerSize);
  if (m_sequenceHeaderSize > 0) {
    // Parameter sets go at the start too, over the saved headers: a settled behaviour of the format.
    std::memcpy(bitstream->Data, m_sequenceHeaders.get(), m_sequenceHeaderSize);
    std::memcpy(bitstream->Data + m_headerSize + m_sequenceHeaderSize, units.data(), units.size());
    m_sequenceHeaderSize = 0;
  } else {
    std::memcpy(bitstream->Data + m_headerSize, units.data(), units.size());
  }
  m_headerSize = 0;
  int64_t start = 0, stop = 0;
  bitstream->TimeStamp = sample->GetTime(start, stop) ? ConvertSampleTime(start < 0 ? 0 : start) : ~mfxU64(0);
  return MFX_ERR_NONE;
}
