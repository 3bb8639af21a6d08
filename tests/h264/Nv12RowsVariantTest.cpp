// Every variant of the NV12 rows, with ordinary and with streaming stores,
// against the pairs and padding written out plainly, at odd lengths and at
// every start offset that a streaming store must align, with guard bytes
// around the output.
#include <gtest/gtest.h>

#include "h264/Nv12Rows.h"
#include "support/TestSupport.h"

namespace {

using Bytes = std::vector<uint8_t>;
using kestrelink::h264::Nv12RowKernels;
constexpr uint8_t kGuard = 0xA5;
constexpr size_t kRoom = 300;  // room for the longest row; chroma rows take three times it

const Nv12RowKernels* Table(kestrelink::CpuVariant v) {
  const Nv12RowKernels* tables[] = {&kestrelink::h264::kNv12RowsPortable, &kestrelink::h264::kNv12RowsSSE2, nullptr,
                                    &kestrelink::h264::kNv12RowsAVX2, &kestrelink::h264::kNv12RowsAVX512};
  return tables[v];
}

// Lengths around every vector width, and the offsets of the output within
// a 64-byte line.
constexpr uint32_t kLengths[] = {0, 1, 2, 7, 15, 16, 17, 31, 32, 33, 63, 64, 65, 95, 127, 128, 129, 200, 257};
constexpr uint32_t kOffsets[] = {0, 1, 2, 8, 16, 30, 32, 48, 63};

TEST(Nv12RowsVariants, ChromaRowsInterleaveAndRepeatTheLastPair) {
  const Bytes u = testsupport::RandomBytes(300, 1), v = testsupport::RandomBytes(300, 2);
  for (auto variant : testsupport::RunnableVariants()) {
    const Nv12RowKernels* k = Table(variant);
    if (!k) continue;
    SCOPED_TRACE(kestrelink::VariantName(variant));
    for (auto row : {k->chroma, k->chromaStream})
      for (uint32_t n : kLengths)
        for (uint32_t extra : {0u, 1u, 8u})
          for (uint32_t at : kOffsets) {
            const uint32_t pairs = n + extra;
            Bytes want(3 * kRoom, kGuard), got = want;
            for (uint32_t i = 0; n > 0 && i < pairs; ++i) {  // with no pairs there is nothing to repeat
              const uint32_t from = i < n ? i : n - 1;
              want[64 + at + 2 * i] = u[from];
              want[64 + at + 2 * i + 1] = v[from];
            }
            row(u.data(), v.data(), n, pairs, got.data() + 64 + at);
            ASSERT_EQ(want, got) << n << " pairs padded to " << pairs << " at offset " << at;
          }
  }
}

TEST(Nv12RowsVariants, LumaRowsCopyAndPadAndFillRowsSet) {
  const Bytes src = testsupport::RandomBytes(300, 3);
  for (auto variant : testsupport::RunnableVariants()) {
    const Nv12RowKernels* k = Table(variant);
    if (!k) continue;
    SCOPED_TRACE(kestrelink::VariantName(variant));
    for (bool stream : {false, true})
      for (uint32_t n : kLengths)
        for (uint32_t at : kOffsets) {
          Bytes want(kRoom + 128, kGuard), got = want, filled = want, wantFilled = want;
          for (uint32_t i = 0; i < n; ++i) want[64 + at + i] = src[i];
          for (uint32_t i = n; i < n + 13; ++i) want[64 + at + i] = 0x3C;
          (stream ? k->lumaStream : k->luma)(src.data(), n, 0x3C, n + 13, got.data() + 64 + at);
          ASSERT_EQ(want, got) << n << " bytes at offset " << at << (stream ? ", streaming" : "");
          for (uint32_t i = 0; i < n; ++i) wantFilled[64 + at + i] = 128;
          (stream ? k->fillStream : k->fill)(filled.data() + 64 + at, 128, n);
          ASSERT_EQ(wantFilled, filled) << n << " bytes at offset " << at << (stream ? ", streaming" : "");
        }
  }
}

}  // namespace
