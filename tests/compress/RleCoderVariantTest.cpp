// Every vector variant of the run-length loops against the portable ones:
// random inputs of small alphabets (many runs) and large ones, lengths
// around the vector widths and far past them, full and short rooms.
#include <gtest/gtest.h>

#include "compress/kernels/RleCoder.h"
#include "support/TestSupport.h"

namespace {

using kestrelink::compress::RleCoderKernels;
using Loop = size_t (*)(const uint8_t*, size_t, uint8_t*, size_t, size_t*);

const RleCoderKernels* Table(kestrelink::CpuVariant v) {
  using namespace kestrelink::compress;
  const RleCoderKernels* tables[] = {&kRleCoderPortable, &kRleCoderSSE2, &kRleCoderSSE2, &kRleCoderAVX2,
                                     &kRleCoderAVX512};
  return tables[v];
}

// Input with runs: each byte repeats the one before with probability
// `repeat`/16, else takes one of `alphabet` values.
std::vector<uint8_t> Runs(size_t n, uint32_t alphabet, uint32_t repeat, uint32_t seed) {
  std::mt19937 rng(seed);
  std::vector<uint8_t> v(n);
  for (size_t i = 0; i < n; ++i) v[i] = (i > 0 && rng() % 16 < repeat) ? v[i - 1] : uint8_t(rng() % alphabet);
  return v;
}

void Compare(const char* name, Loop ref, Loop loop, const std::vector<uint8_t>& in, size_t room) {
  constexpr size_t kGuard = 128;
  std::vector<uint8_t> want(room + kGuard, 0xEE), got(room + kGuard, 0xEE);
  size_t wantTaken = 0, gotTaken = 0;
  const size_t wantBytes = ref(in.data(), in.size(), want.data(), room, &wantTaken);
  const size_t gotBytes = loop(in.data(), in.size(), got.data(), room, &gotTaken);
  ASSERT_EQ(gotBytes, wantBytes) << name << " n=" << in.size() << " room=" << room;
  ASSERT_EQ(gotTaken, wantTaken) << name << " n=" << in.size() << " room=" << room;
  ASSERT_TRUE(std::equal(want.begin(), want.begin() + std::ptrdiff_t(wantBytes), got.begin()))
      << name << " n=" << in.size() << " room=" << room;
  ASSERT_TRUE(std::all_of(got.begin() + std::ptrdiff_t(room), got.end(), [](uint8_t b) { return b == 0xEE; }))
      << name << " n=" << in.size() << " room=" << room << ": a write past the room";
}

TEST(RleCoderVariants, MatchThePortableLoops) {
  const RleCoderKernels& ref = kestrelink::compress::kRleCoderPortable;
  std::vector<std::vector<uint8_t>> inputs;
  for (size_t n : {1u, 2u, 3u, 15u, 16u, 17u, 63u, 64u, 65u, 66u, 130u, 500u, 7000u, 20011u}) {
    for (uint32_t alphabet : {2u, 9u, 256u})
      for (uint32_t repeat : {0u, 4u, 15u}) inputs.push_back(Runs(n, alphabet, repeat, uint32_t(n + alphabet + repeat)));
  }
  inputs.push_back(std::vector<uint8_t>(70000, 3));  // runs of 257 and a rest
  for (auto v : testsupport::RunnableVariants()) {
    if (v == kestrelink::kVariantPortable) continue;
    SCOPED_TRACE(kestrelink::VariantName(v));
    const RleCoderKernels& k = *Table(v);
    for (const auto& in : inputs) {
      Compare("encode", ref.encode, k.encode, in, 2 * in.size());
      Compare("encode, short room", ref.encode, k.encode, in, in.size() / 3 + 1);
      std::vector<uint8_t> coded(2 * in.size());
      size_t taken = 0;
      coded.resize(ref.encode(in.data(), in.size(), coded.data(), coded.size(), &taken));
      Compare("decode", ref.decode, k.decode, coded, in.size());
      Compare("decode, short room", ref.decode, k.decode, coded, in.size() / 2 + 1);
      Compare("decode of raw bytes", ref.decode, k.decode, in, 3 * in.size());
      Compare("decode of raw bytes, short room", ref.decode, k.decode, in, in.size());
    }
  }
}

TEST(RleCoderVariants, StopAtEveryRoomOfLiteralsAndLongRuns) {
  // Literals of every count up to a vector, each group followed by a run of
  // 257: the widest writes of a step, cut by rooms at many places.
  std::vector<uint8_t> frame;
  for (size_t k = 1; k <= 70; ++k) {
    for (size_t j = 0; j < k; ++j) frame.push_back(uint8_t(2 * j + 1));
    frame.insert(frame.end(), 257, 0);
  }
  const RleCoderKernels& ref = kestrelink::compress::kRleCoderPortable;
  std::vector<uint8_t> coded(2 * frame.size());
  size_t taken = 0;
  coded.resize(ref.encode(frame.data(), frame.size(), coded.data(), coded.size(), &taken));
  for (auto v : testsupport::RunnableVariants()) {
    if (v == kestrelink::kVariantPortable) continue;
    SCOPED_TRACE(kestrelink::VariantName(v));
    for (size_t room = 1; room <= frame.size(); room += 23) {
      Compare("decode", ref.decode, Table(v)->decode, coded, room);
      Compare("encode", ref.encode, Table(v)->encode, frame, room / 8 + 1);
    }
  }
}

TEST(RleCoderVariants, ActiveVariantPicksItsTable) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    EXPECT_EQ(&kestrelink::compress::RleCoder(), Table(v));
  }
}

}  // namespace
