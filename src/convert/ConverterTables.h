#pragma once
// Fixed tables of CIppImageConverter.
#include <cstdint>

namespace kestrelink {

// Samples of `bits` (10 or 12) to bytes, moved to bit `channelShift`. The
// step falls one index late, as the table's counter steps after the entry:
// t(0) = 0 and t(i) = (i - 1) >> (bits - 8), so 10-bit 4 gives 0 and 5 gives 1.
void FillLateStepTable(uint32_t* table, uint32_t bits, uint32_t channelShift);

}  // namespace kestrelink
