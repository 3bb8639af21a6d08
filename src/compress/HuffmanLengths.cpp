// Huffman code lengths from byte counts. The lightest two entries merge
// again and again; the sum goes back into the sorted list behind the entries
// of equal weight. Symbols of equal count start in ascending order.
#include <algorithm>
#include <cstddef>

#include "compress/CompressStatus.h"
#include "compress/HuffmanCode.h"

namespace kestrelink::compress {

namespace {

struct Entry {
  uint64_t weight;
  uint32_t symbol;  // the representative: the first symbol of the lighter half
};

}  // namespace

IppStatus BuildCodeLengths(const Ipp32s counts[256], Ipp32s lengths[256]) {
  Entry list[256];
  size_t size = 0;
  uint64_t total = 0;
  for (uint32_t s = 0; s < 256; ++s) {
    lengths[s] = 0;
    if (counts[s] < 0) return kStsCountRange;
    if (counts[s] > 0) list[size++] = Entry{uint64_t(counts[s]), s};
    total += uint64_t(counts[s]);
  }
  if (size == 0 || total > 0x7FFFFFFFu) return kStsCountRange;
  if (size == 1) {
    lengths[list[0].symbol] = 1;
    return ippStsNoErr;
  }
  std::sort(list, list + size, [](const Entry& a, const Entry& b) {
    return a.weight != b.weight ? a.weight < b.weight : a.symbol < b.symbol;
  });

  // Each merge is remembered as (representative, other); the merged entry
  // carries the representative.
  uint32_t pairs[255][2];
  size_t merges = 0;
  size_t first = 0;  // list[first .. size) is the live sorted list
  while (size - first > 1) {
    const Entry a = list[first], b = list[first + 1];
    pairs[merges][0] = a.symbol;
    pairs[merges][1] = b.symbol;
    ++merges;
    first += 2;
    if (size == 256) {  // make room at the back; the live list holds at most 255 now
      std::move(list + first, list + size, list);
      size -= first;
      first = 0;
    }
    const Entry merged{a.weight + b.weight, a.symbol};
    Entry* at = std::upper_bound(list + first, list + size, merged.weight,
                                 [](uint64_t w, const Entry& e) { return w < e.weight; });
    std::move_backward(at, list + size, list + size + 1);
    *at = merged;
    ++size;
  }

  uint32_t depth[256] = {};
  for (size_t i = merges; i-- > 0;) {
    const uint32_t d = depth[pairs[i][0]] + 1;
    depth[pairs[i][0]] = d;
    depth[pairs[i][1]] = d;
  }
  for (uint32_t s = 0; s < 256; ++s) {
    if (depth[s] > kMaxCodeLength) {
      for (uint32_t t = 0; t < 256; ++t) lengths[t] = 0;
      return kStsCodeLength;
    }
    if (counts[s] > 0) lengths[s] = Ipp32s(depth[s]);
  }
  return ippStsNoErr;
}

}  // namespace kestrelink::compress
