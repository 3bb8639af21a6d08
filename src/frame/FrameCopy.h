#pragma once
// Same-format frame copies: a block copy, or the row-reversing copy that the
// flip flag asks for. Both split the frame over the process-wide team.
#include <cstdint>

namespace kestrelink {

// Copies rows tightly packed at rowBytes; with flip, row r of src lands in
// row rows-1-r of dst. Source and destination must not overlap.
void CopyFrame(const void* src, uint64_t rowBytes, uint32_t rows, void* dst, bool flip);

}  // namespace kestrelink
