// Every vector variant of the packed mono row kernels against the portable
// rows, on random data, every length up to a few vectors and every rule.
// Sources end flush against an unreadable page, so a load past the groups a
// row owns faults; destinations carry guard bytes after the row.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

#include "convert/rows/PackedMonoRows.h"
#include "support/TestSupport.h"

namespace {

using kestrelink::rows::LaneRule;
using kestrelink::rows::PackedMonoRowKernels;

const PackedMonoRowKernels* Table(kestrelink::CpuVariant v) {
  using namespace kestrelink::rows;
  const PackedMonoRowKernels* tables[] = {&kPackedMonoRowsPortable, &kPackedMonoRowsSSE2, &kPackedMonoRowsSSSE3,
                                          &kPackedMonoRowsAVX2, &kPackedMonoRowsAVX512};
  return tables[v];
}

// Readable memory whose end is followed by a page that faults on access.
class FlushSource {
 public:
  FlushSource() {
    m_Page = size_t(sysconf(_SC_PAGESIZE));
    void* p = mmap(nullptr, 2 * m_Page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    m_Base = p == MAP_FAILED ? nullptr : static_cast<uint8_t*>(p);
    if (m_Base) mprotect(m_Base + m_Page, m_Page, PROT_NONE);
  }
  ~FlushSource() {
    if (m_Base) munmap(m_Base, 2 * m_Page);
  }
  // `bytes` copied so that the last one ends the readable page.
  const uint8_t* Place(const std::vector<uint8_t>& bytes) {
    uint8_t* at = m_Base + m_Page - bytes.size();
    if (!bytes.empty()) std::memcpy(at, bytes.data(), bytes.size());
    return at;
  }
  bool ok() const { return m_Base != nullptr; }

 private:
  size_t m_Page = 0;
  uint8_t* m_Base = nullptr;
};

struct NamedRule {
  const char* name;
  const LaneRule* rule;
};

const NamedRule kRules[] = {
    {"kPacked12ToMono16", &kestrelink::rows::kPacked12ToMono16},
    {"kPacked10ToMono16", &kestrelink::rows::kPacked10ToMono16},
    {"kPacked12ToMono16Msb", &kestrelink::rows::kPacked12ToMono16Msb},
    {"kPacked10ToMono16Msb", &kestrelink::rows::kPacked10ToMono16Msb},
    {"kPacked12ToMono8", &kestrelink::rows::kPacked12ToMono8},
    {"kPacked10ToMono8", &kestrelink::rows::kPacked10ToMono8},
    {"k8448To12", &kestrelink::rows::k8448To12},
    {"k8448To10", &kestrelink::rows::k8448To10},
    {"k8448To12Msb", &kestrelink::rows::k8448To12Msb},
    {"k8448To10Msb", &kestrelink::rows::k8448To10Msb},
    {"k8448ToMono8", &kestrelink::rows::k8448ToMono8},
    {"kPcoToMono8", &kestrelink::rows::kPcoToMono8},
};

// Runs `row(src, dst)` of the portable and the variant kernel on the same
// source, `srcBytes` long, and compares `dstBytes` of output plus guards.
template <class Row>
void Compare(FlushSource& flush, const std::string& what, size_t srcBytes, size_t dstBytes, uint32_t seed, Row row) {
  const auto bytes = testsupport::RandomBytes(srcBytes, seed);
  std::vector<uint8_t> want(dstBytes + 1 + 64, 0xC3), got(want);
  row(true, flush.Place(bytes), want.data() + 1);
  row(false, flush.Place(bytes), got.data() + 1);  // an unaligned start
  ASSERT_EQ(want, got) << what;
}

TEST(PackedMonoRowsVariants, MatchThePortableRowsAndReadOnlyTheirGroups) {
  FlushSource flush;
  ASSERT_TRUE(flush.ok());
  const PackedMonoRowKernels& ref = *Table(kestrelink::kVariantPortable);
  for (auto v : testsupport::RunnableVariants()) {
    SCOPED_TRACE(kestrelink::VariantName(v));
    const PackedMonoRowKernels& k = *Table(v);
    auto pick = [&](bool portable) -> const PackedMonoRowKernels& { return portable ? ref : k; };
    // Pixel counts in whole pairs, and in whole 12-byte groups.
    for (uint32_t pixels = 0; pixels <= 260; pixels += 2)
      for (const NamedRule& r : kRules) {
        const size_t srcBytes = (r.rule == &kestrelink::rows::kPcoToMono8 ? (pixels + 7) / 8 * 8 : pixels) * 3 / 2;
        const uint32_t n = r.rule == &kestrelink::rows::kPcoToMono8 ? uint32_t(srcBytes / 12 * 8) : pixels;
        const std::string what = std::string(r.name) + " pixels=" + std::to_string(n);
        Compare(flush, "lanes_to_words " + what, srcBytes, 2 * size_t(n), pixels,
                [&](bool p, const uint8_t* s, uint8_t* d) { pick(p).lanes_to_words(s, d, n, *r.rule); });
        Compare(flush, "lanes_to_bytes " + what, srcBytes, n, pixels,
                [&](bool p, const uint8_t* s, uint8_t* d) { pick(p).lanes_to_bytes(s, d, n, *r.rule); });
      }
    for (uint32_t groups = 0; groups <= 40; ++groups)
      for (uint32_t shift : {0u, 4u})
        Compare(flush, "pco_nine_slots groups=" + std::to_string(groups) + " shift=" + std::to_string(shift),
                12 * size_t(groups), 18 * size_t(groups), groups,
                [&](bool p, const uint8_t* s, uint8_t* d) { pick(p).pco_nine_slots(s, d, groups, shift); });
    for (uint32_t w = 0; w <= 100; ++w)
      for (uint32_t shift : {0u, 2u, 4u, 6u, 8u, 15u, 16u, 31u, 0xFFFFFFF0u}) {
        const std::string what = " w=" + std::to_string(w) + " shift=" + std::to_string(shift);
        Compare(flush, "rshift16" + what, 2 * size_t(w), 2 * size_t(w), w,
                [&](bool p, const uint8_t* s, uint8_t* d) { pick(p).rshift16(s, d, w, shift); });
        Compare(flush, "swap_rshift16" + what, 2 * size_t(w), 2 * size_t(w), w,
                [&](bool p, const uint8_t* s, uint8_t* d) { pick(p).swap_rshift16(s, d, w, shift); });
      }
  }
}

TEST(PackedMonoRowsVariants, ActiveVariantPicksItsTable) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    const PackedMonoRowKernels* want = Table(v);
    EXPECT_EQ(&kestrelink::rows::PackedMonoRows(), want) << kestrelink::VariantName(v);
  }
}

}  // namespace
