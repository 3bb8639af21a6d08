#pragma once
// Helpers of the H.264 tests: a moving synthetic sequence in planar 4:2:0,
// record buffers with the slack the record contract asks for, PSNR, and a
// reader of slice headers for the quantiser a frame was coded with.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "h264/AnnexB.h"
#include "h264/BitReader.h"
#include "h264/H264Sps.h"

namespace h264test {

struct Planes {
  uint32_t width, height;
  std::vector<uint8_t> y, u, v;
};

// Frame `t` of a sequence: a diagonal gradient drifting right, a bright
// square moving down, and chroma ramps; smooth enough to code well.
inline Planes SyntheticFrame(uint32_t width, uint32_t height, uint32_t t) {
  Planes p{width, height, std::vector<uint8_t>(size_t(width) * height),
           std::vector<uint8_t>(size_t(width / 2) * (height / 2)), std::vector<uint8_t>(size_t(width / 2) * (height / 2))};
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      uint32_t value = 16 + ((x + 3 * t) * 3 + y * 2) % 200;
      const uint32_t top = (t * 4) % (height > 32 ? height - 32 : 1);
      if (x >= width / 3 && x < width / 3 + 32 && y >= top && y < top + 32) value = 230;
      p.y[size_t(y) * width + x] = uint8_t(value);
    }
  for (uint32_t y = 0; y < height / 2; ++y)
    for (uint32_t x = 0; x < width / 2; ++x) {
      p.u[size_t(y) * (width / 2) + x] = uint8_t(64 + (x * 2 + t) % 128);
      p.v[size_t(y) * (width / 2) + x] = uint8_t(64 + (y * 2 + 2 * t) % 128);
    }
  return p;
}

// A record buffer: width * height * 2 bytes plus the header, and 8 readable bytes behind any record.
inline std::vector<uint8_t> RecordBuffer(uint32_t width, uint32_t height) {
  return std::vector<uint8_t>(size_t(width) * height * 2 + 16, 0);
}

inline uint32_t RecordSizeOf(const std::vector<uint8_t>& record) {
  return uint32_t(record[0]) | uint32_t(record[1]) << 8 | uint32_t(record[2]) << 16 | uint32_t(record[3]) << 24;
}

inline double Psnr(const uint8_t* a, const uint8_t* b, size_t n) {
  double sum = 0;
  for (size_t i = 0; i < n; ++i) sum += double(int(a[i]) - int(b[i])) * double(int(a[i]) - int(b[i]));
  if (sum == 0) return 99.0;
  return 10.0 * std::log10(255.0 * 255.0 * double(n) / sum);
}

// The NAL units of an Annex B buffer, as (offset of the header byte, size).
inline std::vector<std::pair<size_t, size_t>> NalUnits(const uint8_t* data, size_t size) {
  std::vector<std::pair<size_t, size_t>> units;
  size_t at = UMC::FindStartCode(data, size, 0);
  while (at < size) {
    const size_t payload = at + 3, next = UMC::FindStartCode(data, size, payload);
    size_t end = next;
    while (end > payload && data[end - 1] == 0) --end;
    units.emplace_back(payload, end - payload);
    at = next;
  }
  return units;
}

// slice_qp of a slice NAL unit, read by the slice header syntax with the
// stream's sequence parameter set and pic_init_qp of its picture parameter set.
inline int SliceQp(const uint8_t* nal, size_t size, const UMC::H264SpsInfo& sps, int picInitQp,
                   bool weightedPred, bool cabac) {
  const std::vector<uint8_t> rbsp = UMC::UnescapeRbsp(nal + 1, size - 1);
  UMC::BitReader bits(rbsp.data(), rbsp.size());
  const int nalType = nal[0] & 31, refIdc = (nal[0] >> 5) & 3;
  bits.Ue();                          // first_mb_in_slice
  const uint32_t sliceType = bits.Ue() % 5;
  bits.Ue();                          // pic_parameter_set_id
  bits.Bits(sps.log2MaxFrameNum);     // frame_num
  if (nalType == 5) bits.Ue();        // idr_pic_id
  if (sps.pocType == 0) bits.Bits(sps.log2MaxPocLsb);
  if (sliceType == 0 || sliceType == 3) {  // P or SP
    if (bits.Bit()) bits.Ue();        // num_ref_idx_override
    if (bits.Bit()) {                 // ref_pic_list_modification_flag_l0
      for (uint32_t op = bits.Ue(); op != 3; op = bits.Ue()) bits.Ue();
    }
  }
  if (weightedPred && sliceType == 0) return -1;  // not read here
  if (refIdc != 0) {
    if (nalType == 5) {
      bits.Bit();
      bits.Bit();
    } else if (bits.Bit()) {
      for (uint32_t op = bits.Ue(); op != 0; op = bits.Ue()) {
        if (op == 1 || op == 3) bits.Ue();
        if (op == 2) bits.Ue();
        if (op == 3 || op == 6) bits.Ue();
        if (op == 4) bits.Ue();
      }
    }
  }
  if (cabac && sliceType != 2) bits.Ue();  // cabac_init_idc
  return picInitQp + bits.Se();
}

// pic_init_qp and entropy_coding_mode of a picture parameter set.
inline void ReadPps(const uint8_t* nal, size_t size, int& picInitQp, bool& cabac, bool& weighted) {
  const std::vector<uint8_t> rbsp = UMC::UnescapeRbsp(nal + 1, size - 1);
  UMC::BitReader bits(rbsp.data(), rbsp.size());
  bits.Ue();
  bits.Ue();
  cabac = bits.Bit();
  bits.Bit();
  bits.Ue();  // num_slice_groups_minus1: 0 in every stream read here
  bits.Ue();
  bits.Ue();
  weighted = bits.Bit();
  bits.Bits(2);
  picInitQp = 26 + bits.Se();
}

}  // namespace h264test
