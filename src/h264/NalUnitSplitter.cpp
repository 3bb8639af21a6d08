#include "h264/NalUnitSplitter.h"

#include <algorithm>

#include "h264/AnnexB.h"

namespace UMC {

namespace {

constexpr size_t kMaxUnitBytes = size_t(64) << 20;  // a unit that grows past this is dropped as garbage
constexpr uint8_t kLongStartCode[4] = {0, 0, 0, 1};

bool IsParameterSet(uint8_t type) { return type == NAL_SPS || type == NAL_PPS; }
bool IsSlice(uint8_t type) { return type >= NAL_SLICE && type <= NAL_IDR_SLICE; }

// Whether the unit whose header is at `payload` opens a new access unit; a
// slice tells by first_mb_in_slice, which is 0 exactly when its first bit is 1.
bool OpensAccessUnit(const uint8_t* data, size_t size, size_t payload) {
  const uint8_t type = NalTypeOf(data[payload]);
  if (type == NAL_SEI || IsParameterSet(type) || type == NAL_AUD || (type >= 14 && type <= 18)) return true;
  if (type == NAL_SLICE || type == NAL_IDR_SLICE) return payload + 1 < size && (data[payload + 1] & 0x80) != 0;
  return false;
}

// Drops bytes that hold no start code, keeping a tail that may be the front of one.
void DropGarbage(MediaData& in) {
  const size_t size = in.GetDataSize();
  const bool whole = in.GetFlags() & MediaData::kWholeUnits;
  in.MoveDataPointer(int64_t(whole ? size : size - std::min<size_t>(size, 3)));
}

}  // namespace

void NalUnitSplitter::Reset() {
  m_unit.clear();
  m_unitHasSlice = false;
  m_openUnit = false;
  m_haveSps = false;
  m_sps = H264SpsInfo();
}

NalUnitSplitter::Found NalUnitSplitter::FindNal(const MediaData& in, bool takeTrailingParameterSets, Nal& nal) const {
  const uint8_t* data = in.GetDataPointer();
  const size_t size = in.GetDataSize();
  const bool whole = in.GetFlags() & MediaData::kWholeUnits;
  nal.start = FindStartCode(data, size, 0);
  nal.end = nal.next = size;
  if (nal.start == size) return Found::None;
  nal.payload = nal.start + 3;
  if (nal.payload >= size) return whole ? Found::None : Found::NeedMore;
  nal.next = FindStartCode(data, size, nal.payload);
  if (nal.next == size && !whole && !(takeTrailingParameterSets && IsParameterSet(NalTypeOf(data[nal.payload]))))
    return Found::NeedMore;
  nal.end = nal.next;
  while (nal.end > nal.payload + 1 && data[nal.end - 1] == 0) --nal.end;
  return Found::Unit;
}

void NalUnitSplitter::ReadSps(const uint8_t* nal, size_t size) {
  H264SpsInfo sps;
  if (ParseSps(nal, size, sps)) {
    m_sps = sps;
    m_haveSps = true;
  }
}

void NalUnitSplitter::Append(const uint8_t* data, const Nal& nal, bool open) {
  const uint8_t type = NalTypeOf(data[nal.payload]);
  if (type == NAL_SPS) ReadSps(data + nal.payload, nal.end - nal.payload);
  if (m_unit.size() + (nal.end - nal.payload) + 4 > kMaxUnitBytes) {
    m_unit.clear();
    m_unitHasSlice = false;
  }
  m_unit.insert(m_unit.end(), kLongStartCode, kLongStartCode + 4);
  m_openStart = m_unit.size();
  m_openUnit = open;
  m_unit.insert(m_unit.end(), data + nal.payload, data + nal.end);
  if (IsSlice(type)) m_unitHasSlice = true;
}

void NalUnitSplitter::ContinueOpenUnit(MediaData& in) {
  if (!m_openUnit || in.GetDataSize() == 0) return;
  const uint8_t* data = in.GetDataPointer();
  const size_t size = in.GetDataSize();
  const size_t next = FindStartCode(data, size, 0);
  // Zeros in front of a start code, or at the end where one may yet come, are not the unit's.
  size_t end = next;
  while (end > 0 && data[end - 1] == 0) --end;
  if (end > 0 && m_unit.size() + end <= kMaxUnitBytes) {
    m_unit.insert(m_unit.end(), data, data + end);
    if (NalTypeOf(m_unit[m_openStart]) == NAL_SPS) ReadSps(&m_unit[m_openStart], m_unit.size() - m_openStart);
  }
  in.MoveDataPointer(int64_t(next < size ? next : end));
  if (next < size) m_openUnit = false;  // the unit ends where the next begins
}

void NalUnitSplitter::TakeUnit(std::vector<uint8_t>& unit) {
  unit.swap(m_unit);
  m_unit.clear();
  m_unitHasSlice = false;
  m_openUnit = false;
}

bool NalUnitSplitter::NextAccessUnit(MediaData& in, std::vector<uint8_t>& unit) {
  const bool whole = in.GetFlags() & MediaData::kWholeUnits;
  ContinueOpenUnit(in);
  for (;;) {
    Nal nal{};
    const Found found = FindNal(in, false, nal);
    if (found == Found::None) {
      DropGarbage(in);
      if (whole && m_unitHasSlice) {
        TakeUnit(unit);
        return true;
      }
      return false;
    }
    in.MoveDataPointer(int64_t(nal.start));
    const uint8_t* data = in.GetDataPointer();
    const size_t size = in.GetDataSize();
    nal.payload -= nal.start, nal.end -= nal.start, nal.next -= nal.start, nal.start = 0;
    const bool headerVisible = nal.payload < size;
    if (m_unitHasSlice && headerVisible && OpensAccessUnit(data, size, nal.payload)) {
      TakeUnit(unit);
      return true;
    }
    if (found == Found::NeedMore) return false;
    Append(data, nal);
    in.MoveDataPointer(int64_t(nal.next));
    if (nal.next == size && whole && m_unitHasSlice) {
      TakeUnit(unit);
      return true;
    }
  }
}

Status NalUnitSplitter::WalkHeaders(MediaData& in) {
  ContinueOpenUnit(in);
  for (;;) {
    Nal nal{};
    const Found found = FindNal(in, true, nal);
    if (found == Found::None) {
      DropGarbage(in);
      break;
    }
    in.MoveDataPointer(int64_t(nal.start));
    if (found == Found::NeedMore) break;
    const uint8_t* data = in.GetDataPointer();
    nal.payload -= nal.start, nal.end -= nal.start, nal.next -= nal.start, nal.start = 0;
    const uint8_t type = NalTypeOf(data[nal.payload]);
    if (m_haveSps && IsSlice(type)) break;
    const bool atEnd = nal.next == in.GetDataSize() && !(in.GetFlags() & MediaData::kWholeUnits);
    if (!m_haveSps) {
      H264SpsInfo sps;
      const bool readable = type == NAL_SPS && ParseSps(data + nal.payload, nal.end - nal.payload, sps);
      if (!readable && atEnd) break;  // perhaps the front of a parameter set: leave it to come again whole
      if (readable) Append(data, nal, atEnd);  // units before the first sequence parameter set are dropped
    } else {
      Append(data, nal, atEnd);
    }
    // Zeros behind a unit that ends with the data may be the front of the next start code.
    in.MoveDataPointer(int64_t(atEnd ? nal.end : nal.next));
  }
  return m_haveSps ? UMC_OK : UMC_ERR_NOT_ENOUGH_DATA;
}

bool NalUnitSplitter::Flush(std::vector<uint8_t>& unit) {
  if (!m_unitHasSlice) return false;
  TakeUnit(unit);
  return true;
}

}  // namespace UMC
