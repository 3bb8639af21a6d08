// VC-1 samples: advanced-profile data behind a 00 00 01 0D frame start code
// unless it opens with a start code of its own; simple and main profile
// frames behind their length and four zero bytes.
#include <cstdlib>
#include <cstring>

#include "h264/FrameConstructor.h"

namespace {

constexpr mfxU16 kAdvancedProfile = 13;

// Start codes that open a unit needing no frame start code: end of sequence,
// slice, field, frame, entry point, sequence header and the user-data ones.
bool NeedsNoPrefix(uint32_t code) {
  return code == 0x10A || (code >= 0x10C && code <= 0x10F) || (code >= 0x11B && code <= 0x11F);
}

void PutLe32(uint8_t* out, uint32_t value) {
  for (int i = 0; i < 4; ++i) out[i] = uint8_t(value >> (8 * i));
}

}  // namespace

bool CVC1FrameConstructor::Advanced() const {
  return m_params != nullptr && m_params->mfx.CodecProfile == kAdvancedProfile;
}

mfxStatus CVC1FrameConstructor::ConstructFrame(IMediaSample* sample, mfxBitstream* bitstream) {
  if (sample == nullptr) return MFX_ERR_NULL_PTR;
  if (bitstream == nullptr) return Advanced() ? MFX_ERR_NONE : WrapSequenceHeader(sample);
  const uint32_t length = SampleBytes(sample);
  if (length == 0) return MFX_ERR_MORE_DATA;
  const uint8_t* data = sample->GetPointer();
  if (data == nullptr) return MFX_ERR_NULL_PTR;

  const bool advanced = Advanced();
  const uint32_t bytes = length + m_headerSize + 4 + (advanced ? 0 : 4);
  std::free(bitstream->Data);
  // Zeroed: in the advanced case with a start code the last 4 bytes stay unwritten.
  if (!NewData(bitstream, bytes)) return MFX_ERR_NULL_PTR;
  int64_t start = 0, stop = 0;
  bitstream->TimeStamp = sample->GetTime(start, stop) ? ConvertSampleTime(start) : ~mfxU64(0);

  uint8_t* out = bitstream->Data;
  std::memcpy(out, m_headers.get(), m_headerSize);
  out += m_headerSize;
  if (advanced) {
    const uint32_t code = length >= 4 ? uint32_t(data[0]) << 24 | data[1] << 16 | data[2] << 8 | data[3] : 0;
    if (!NeedsNoPrefix(code)) {
      static const uint8_t kFrameStart[4] = {0, 0, 1, 0x0D};
      std::memcpy(out, kFrameStart, 4);
      out += 4;
    }
    // With a start code of its own, DataLength keeps the 4 bytes never written: a settled behaviour of the format.
  } else {
    PutLe32(out, length);
    PutLe32(out + 4, 0);
    out += 8;
  }
  std::memcpy(out, data, length);
  m_headerSize = 0;
  return MFX_ERR_NONE;
}

mfxStatus CVC1FrameConstructor::WrapSequenceHeader(IMediaSample* sample) {
  const int32_t actual = sample->GetActualDataLength(), room = sample->GetSize();
  if (actual <= 0 || room <= 0 || int64_t(actual) + 20 > room) return MFX_ERR_MORE_DATA;
  uint8_t* data = sample->GetPointer();
  if (data == nullptr) return MFX_ERR_NULL_PTR;
  const uint32_t n = uint32_t(actual);
  const mfxU16 cropW = m_params ? m_params->mfx.FrameInfo.CropW : 0, cropH = m_params ? m_params->mfx.FrameInfo.CropH : 0;
  std::memmove(data + 8, data, n);
  static const uint8_t kSequenceRecord[4] = {0, 0, 0, 0xC5};
  std::memcpy(data, kSequenceRecord, 4);
  PutLe32(data + 4, n);
  uint8_t* tail = data + 8 + n;
  PutLe32(tail, cropH);
  PutLe32(tail + 4, cropW);
  PutLe32(tail + 8, 0);
  sample->SetActualDataLength(int32_t(n + 20));
  return MFX_ERR_NONE;
}
