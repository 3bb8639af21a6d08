// Media samples into the frame constructors and NALUIterator. The first byte
// picks the NAL length-prefix size (0 to 4, or a larger one), the VC-1
// profile and the spare room of the sample; the rest is the sample, held in a
// buffer of exactly its size, and also serves as the parameter-set
// description. Nothing may be read outside either.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <mfx/mfxstructures.h>

#include "h264/FrameConstructor.h"
#include "h264/NALUIterator.h"

namespace {

class FuzzSample : public IMediaSample {
 public:
  FuzzSample(const uint8_t* data, size_t size, size_t room) : buffer_(data, data + size) {
    buffer_.resize(size + room);
    actual_ = int32_t(size);
  }
  uint8_t* GetPointer() override { return buffer_.empty() ? nullptr : buffer_.data(); }
  int32_t GetSize() override { return int32_t(buffer_.size()); }
  bool GetTime(int64_t& start, int64_t& stop) override {
    start = actual_ % 3 == 0 ? -10000000 : actual_ * 1000;
    stop = start;
    return actual_ % 5 != 0;
  }
  int32_t GetActualDataLength() override { return actual_; }
  bool SetActualDataLength(int32_t length) override {
    actual_ = length;
    return true;
  }

 private:
  std::vector<uint8_t> buffer_;
  int32_t actual_;
};

void Release(mfxBitstream& bitstream) {
  std::free(bitstream.Data);
  bitstream = mfxBitstream{};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1 || size > (1u << 20)) return 0;
  const uint8_t control = data[0];
  const uint32_t pick = control & 7, lengthSize = pick == 7 ? 9 : pick % 5;
  const uint8_t* body = data + 1;
  const size_t bodySize = size - 1;
  std::vector<uint8_t> exact(body, body + bodySize);  // exactly sized, so a read past it is caught

  NALUIterator units(exact.data(), uint32_t(exact.size()), lengthSize);
  size_t bytes = 0;
  while (units.Advance()) bytes += units.PayloadSize() ? units.Payload()[units.PayloadSize() - 1] : 0;

  CAVCFrameConstructor avc;
  MPEG2VIDEOINFO info{lengthSize, uint32_t(exact.size()), exact.data()};
  mfxBitstream headers{};
  avc.ReadSequenceHeader(&info, &headers);
  avc.SaveHeaders(&headers);
  FuzzSample sample(body, bodySize, 0);
  mfxBitstream frame{};
  avc.ConstructFrame(&sample, &frame);
  Release(frame);
  Release(headers);

  mfxVideoParam params{};
  params.mfx.CodecProfile = control & 8 ? 13 : 1;
  params.mfx.FrameInfo.CropW = 640;
  params.mfx.FrameInfo.CropH = 480;
  CVC1FrameConstructor vc1(&params);
  FuzzSample vc1Sample(body, bodySize, control >> 4 << 1);
  vc1.ConstructFrame(&vc1Sample, &frame);
  Release(frame);
  vc1.ConstructFrame(&vc1Sample, nullptr);

  CFrameConstructor base;
  base.ConstructFrame(&sample, &frame);
  Release(frame);
  return bytes == size_t(-1);
}
