#pragma once
// Gathers the NAL units of an Annex B stream into access units as the bytes
// arrive. A unit is taken once the start code behind it is seen, or at the
// end of data that ends whole units; an access unit is complete when the
// first unit of the next one shows (a parameter set, SEI or delimiter, or a
// slice that starts at macroblock 0). Bytes not taken stay in the input, for
// the caller to present again with what follows.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "h264/H264Sps.h"
#include "umc/MediaData.h"
#include "umc/UmcStatus.h"

namespace UMC {

class NalUnitSplitter {
 public:
  void Reset();

  // True when an access unit is complete; `unit` then holds it, each NAL
  // unit behind a four-byte start code.
  bool NextAccessUnit(MediaData& in, std::vector<uint8_t>& unit);

  // The header walk: drops what comes before the first sequence parameter
  // set, keeps the parameter sets for the first access unit and stops at the
  // first slice. UMC_ERR_NOT_ENOUGH_DATA when no sequence parameter set was read.
  Status WalkHeaders(MediaData& in);

  // Hands over a gathered access unit that has a slice, for the end of a stream.
  bool Flush(std::vector<uint8_t>& unit);

  // A parameter set the header walk took at the end of the data may have been
  // cut there: bytes that follow without a start code of their own are the
  // rest of it, and are taken into it. Nothing to do when none is open.
  void ContinueOpenUnit(MediaData& in);

  bool HasSps() const { return m_haveSps; }
  const H264SpsInfo& Sps() const { return m_sps; }

 private:
  struct Nal {
    size_t start;    // the start code
    size_t payload;  // the header byte
    size_t end;      // one past the last byte, trailing zeros dropped
    size_t next;     // where the next start code is, or the end of the data
  };
  enum class Found { Unit, NeedMore, None };
  Found FindNal(const MediaData& in, bool takeTrailingParameterSets, Nal& nal) const;
  void Append(const uint8_t* data, const Nal& nal, bool open = false);
  void ReadSps(const uint8_t* nal, size_t size);
  void TakeUnit(std::vector<uint8_t>& unit);

  std::vector<uint8_t> m_unit;
  bool m_unitHasSlice = false;
  bool m_openUnit = false;  // the last unit in m_unit ended with the data and may go on
  size_t m_openStart = 0;   // its header byte in m_unit
  H264SpsInfo m_sps;
  bool m_haveSps = false;
};

}  // namespace UMC
