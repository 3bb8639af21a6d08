// Every vector variant of the run-length byte scans against the portable
// ones, on random bytes of small alphabets and every length up to a few
// vectors, from unaligned starts.
#include <gtest/gtest.h>

#include "compress/kernels/ByteScan.h"
#include "support/TestSupport.h"

namespace {

using kestrelink::compress::ByteScanKernels;

const ByteScanKernels* Table(kestrelink::CpuVariant v) {
  using namespace kestrelink::compress;
  const ByteScanKernels* tables[] = {&kByteScanPortable, &kByteScanSSE2, &kByteScanSSE2, &kByteScanAVX2,
                                     &kByteScanAVX512};
  return tables[v];
}

TEST(ByteScanVariants, MatchThePortableScans) {
  const ByteScanKernels& ref = kestrelink::compress::kByteScanPortable;
  for (auto v : testsupport::RunnableVariants()) {
    SCOPED_TRACE(kestrelink::VariantName(v));
    const ByteScanKernels& k = *Table(v);
    for (uint32_t alphabet : {2u, 16u, 256u}) {
      for (size_t n = 0; n <= 300; ++n) {
        auto bytes = testsupport::RandomBytes(n + 1, uint32_t(n * 7 + alphabet));
        for (auto& b : bytes) b = uint8_t(b % alphabet);
        const uint8_t* p = bytes.data() + 1;
        ASSERT_EQ(k.find_equal_pair(p, n), ref.find_equal_pair(p, n)) << "n=" << n << " alphabet=" << alphabet;
        // Runs of the first byte with a differing byte at every place.
        std::vector<uint8_t> run(n + 1, 0x5C);
        for (size_t cut = 0; cut <= n; cut += 1 + n / 17) {
          run.assign(n + 1, 0x5C);
          if (cut < n) run[cut + 1] = 0x5D;
          ASSERT_EQ(k.count_equal(run.data() + 1, n, 0x5C), ref.count_equal(run.data() + 1, n, 0x5C))
              << "n=" << n << " cut=" << cut;
        }
        ASSERT_EQ(k.count_equal(p, n, bytes[0]), ref.count_equal(p, n, bytes[0])) << "n=" << n;
      }
    }
  }
}

TEST(ByteScanVariants, ActiveVariantPicksItsTable) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    EXPECT_EQ(&kestrelink::compress::ByteScan(), Table(v));
  }
}

}  // namespace
