#include "h264/H264Sps.h"

#include <vector>

#include "h264/AnnexB.h"
#include "h264/BitReader.h"

namespace UMC {

namespace {

bool HasChromaFormat(int32_t profile) {
  switch (profile) {
    case 100: case 110: case 122: case 244: case 44: case 83: case 86: case 118: case 128: case 138: case 139:
    case 134: case 135:
      return true;
    default:
      return false;
  }
}

void SkipScalingList(BitReader& bits, int size) {
  int32_t last = 8, next = 8;
  for (int j = 0; j < size && !bits.Overrun(); ++j) {
    if (next != 0) next = (last + bits.Se() + 256) % 256;
    last = next == 0 ? last : next;
  }
}

}  // namespace

bool ParseSps(const uint8_t* nal, size_t size, H264SpsInfo& sps) {
  if (size < 4 || NalTypeOf(nal[0]) != NAL_SPS) return false;
  const std::vector<uint8_t> rbsp = UnescapeRbsp(nal + 1, size - 1);
  BitReader bits(rbsp.data(), rbsp.size());
  H264SpsInfo s;
  s.profileIdc = int32_t(bits.Bits(8));
  s.constraintFlags = int32_t(bits.Bits(8));
  s.levelIdc = int32_t(bits.Bits(8));
  s.spsId = int32_t(bits.Ue());
  bool separatePlanes = false;
  if (HasChromaFormat(s.profileIdc)) {
    s.chromaFormatIdc = int32_t(bits.Ue());
    if (s.chromaFormatIdc > 3) return false;
    if (s.chromaFormatIdc == 3) separatePlanes = bits.Bit();
    s.bitDepthLuma = 8 + int32_t(bits.Ue());
    s.bitDepthChroma = 8 + int32_t(bits.Ue());
    bits.Bit();  // qpprime_y_zero_transform_bypass_flag
    if (bits.Bit()) {
      const int lists = s.chromaFormatIdc != 3 ? 8 : 12;
      for (int i = 0; i < lists; ++i)
        if (bits.Bit()) SkipScalingList(bits, i < 6 ? 16 : 64);
    }
  }
  s.log2MaxFrameNum = int32_t(bits.Ue()) + 4;
  s.pocType = int32_t(bits.Ue());
  if (s.pocType == 0) {
    s.log2MaxPocLsb = int32_t(bits.Ue()) + 4;
  } else if (s.pocType == 1) {
    bits.Bit();
    bits.Se();
    bits.Se();
    const uint32_t cycle = bits.Ue();
    if (cycle > 255) return false;
    for (uint32_t i = 0; i < cycle; ++i) bits.Se();
  }
  s.numRefFrames = int32_t(bits.Ue());
  bits.Bit();  // gaps_in_frame_num_value_allowed_flag
  const uint32_t widthMbs = bits.Ue() + 1, heightUnits = bits.Ue() + 1;
  s.frameMbsOnly = bits.Bit();
  if (!s.frameMbsOnly) bits.Bit();
  bits.Bit();  // direct_8x8_inference_flag
  uint32_t crop[4] = {0, 0, 0, 0};
  if (bits.Bit())
    for (uint32_t& c : crop) c = bits.Ue();
  if (bits.Overrun() || widthMbs > 1024 || heightUnits > 1024) return false;
  if (s.bitDepthLuma > 14 || s.bitDepthChroma > 14 || s.log2MaxFrameNum > 16 || s.log2MaxPocLsb > 16) return false;
  const int64_t unitX = s.chromaFormatIdc == 0 || separatePlanes || s.chromaFormatIdc == 3 ? 1 : 2;
  const int64_t unitY = (s.chromaFormatIdc == 1 && !separatePlanes ? 2 : 1) * (s.frameMbsOnly ? 1 : 2);
  const int64_t width = int64_t(widthMbs) * 16 - unitX * (int64_t(crop[0]) + crop[1]);
  const int64_t height = int64_t(heightUnits) * 16 * (s.frameMbsOnly ? 1 : 2) - unitY * (int64_t(crop[2]) + crop[3]);
  if (width < 1 || height < 1) return false;
  s.width = int32_t(width);
  s.height = int32_t(height);
  sps = s;
  return true;
}

}  // namespace UMC
