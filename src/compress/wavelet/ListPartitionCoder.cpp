// Plane passes of the list set-partition coder. Encoder and decoder walk the
// same sets; a side decides each flag (test and write, or read) and each
// sample (write its bits, or read them back).
#include "compress/wavelet/ListPartitionCoder.h"

#include <algorithm>
#include <cstdio>

#include "platform/DebugSink.h"

namespace kestrelink::wavelet {

namespace {

constexpr int kSide = 32;
// The longest magnitude a decoded sample may take: it stays below 2^31.
constexpr int kMaxBitLength = 31;

int ClampLevels(int levels) { return std::clamp(levels, 1, 5); }

int BitLength(uint32_t m) { return m ? 32 - __builtin_clz(m) : 0; }

// Band b as a whole set: the coarsest band first, then per level the band
// below, the one to the right and the diagonal one.
Speck1Set BandSet(int band, int levels) {
  const int level = band == 0 ? levels : levels - (band - 1) / 3;
  const int16_t side = int16_t(kSide >> level);
  const int k = band == 0 ? 0 : band - 3 * ((band - 1) / 3);
  const int16_t x = (k == 2 || k == 3) ? side : 0;
  const int16_t y = (k == 1 || k == 3) ? side : 0;
  return Speck1Set{side, side, x, y, 0, uint8_t(band), false};
}

// Quarters a set, odd halves to the lower and right quadrants, and puts the
// quadrants on the working list bottom right first, so that they come off
// it top left first.
void Quarter(const Speck1Set& s, std::vector<Speck1Set>& work) {
  const int16_t w0 = int16_t(s.width >> 1), h0 = int16_t(s.height >> 1);
  const int16_t w1 = int16_t(s.width - w0), h1 = int16_t(s.height - h0);
  const uint8_t depth = uint8_t(s.depth + 1);
  const Speck1Set quadrants[4] = {
      {w1, h1, int16_t(s.x + w0), int16_t(s.y + h0), depth, s.band, false},
      {w0, h1, s.x, int16_t(s.y + h0), depth, s.band, false},
      {w1, h0, int16_t(s.x + w0), s.y, depth, s.band, false},
      {w0, h0, s.x, s.y, depth, s.band, false},
  };
  for (const Speck1Set& q : quadrants)
    if (q.width > 0 && q.height > 0) work.push_back(q);
}

template <class Side>
void Drain(Side& side, std::vector<Speck1Set>& work, int v) {
  while (!work.empty()) {
    Speck1Set s = work.back();
    work.pop_back();
    s.significant = side.TestSet(s, v);
    if (!s.significant) continue;
    if (s.width == 1 && s.height == 1)
      side.Sample(s, v);
    else
      Quarter(s, work);
  }
}

// Bit lengths `first` down to 1: the low band, then while the remainder
// holds a sample of this length, the next level's three bands.
template <class Side>
void Planes(Side& side, int levels, int first, std::vector<Speck1Set>& work) {
  for (int v = first; v >= 1; --v) {
    side.StartPlane(v, v == first);
    work.clear();
    work.push_back(BandSet(0, levels));
    Drain(side, work, v);
    for (int depth = 0; depth < levels; ++depth) {
      if (!side.TestRest(3 * depth + 1, v)) break;
      for (int k = 3; k >= 1; --k) {
        work.push_back(BandSet(3 * depth + k, levels));
        Drain(side, work, v);
      }
    }
  }
}

struct EncodeSide {
  ArithmeticEncoder& encoder;
  Speck1Scratch& s;
  Speck1Params& params;

  // The per-band maxima, from the flags of the samples not yet coded (the
  // first plane's are those the flags were built with).
  void StartPlane(int, bool) {
    std::fill(std::begin(params.bandMax), std::end(params.bandMax), uint8_t(0));
    for (int band = 0; band <= 3 * params.levels; ++band) {
      const Speck1Set b = BandSet(band, params.levels);
      uint8_t m = 0;
      for (int y = b.y; y < b.y + b.height; ++y)
        for (int x = b.x; x < b.x + b.width; ++x) m = std::max<uint8_t>(m, s.flags[y * kSide + x] & 0x7F);
      params.bandMax[band] = m;
    }
  }
  bool TestSet(const Speck1Set& set, int v) {
    bool significant = false;
    if (set.depth == 0) {
      const int m = params.bandMax[set.band];
      if (m > v) {
        char line[128];
        std::snprintf(line, sizeof line, "%s Bit %d,X:%d Y:%d,Width %d Height %d\r\n",
                      "SpeckEncodeSetSSignature Error.", v, set.x, set.y, set.width, set.height);
        platform::OutputDebugString(line);
      }
      significant = m == v;
    } else {
      for (int y = set.y; y < set.y + set.height && !significant; ++y)
        for (int x = set.x; x < set.x + set.width; ++x)
          if ((s.flags[y * kSide + x] & 0x7F) == v) {
            significant = true;
            break;
          }
    }
    encoder.EncodeBit(significant ? 1 : 0);
    return significant;
  }
  bool TestRest(int fromBand, int v) {
    int m = 0;
    for (int band = fromBand; band <= 3 * params.levels; ++band) m = std::max<int>(m, params.bandMax[band]);
    encoder.EncodeBit(m == v ? 1 : 0);
    return m == v;
  }
  void Sample(const Speck1Set& set, int v) {
    const int i = set.y * kSide + set.x;
    encoder.EncodeBit(s.flags[i] >> 7);
    encoder.EncodeBits(s.magnitude[i] & ((1u << (v - 1)) - 1), v - 1);
    s.flags[i] = 0;
  }
};

struct DecodeSide {
  ArithmeticDecoder& decoder;
  int32_t** rows;

  void StartPlane(int, bool) {}
  bool TestSet(const Speck1Set&, int) { return decoder.DecodeBit() != 0; }
  bool TestRest(int, int) { return decoder.DecodeBit() != 0; }
  void Sample(const Speck1Set& set, int v) {
    const uint32_t negative = decoder.DecodeBit();
    const int32_t magnitude = int32_t((1u << (v - 1)) | decoder.DecodeBits(v - 1));
    rows[set.y][set.x] = negative ? -magnitude : magnitude;
  }
};

}  // namespace

uint32_t Speck1BlockBound() {
  // Per plane: at most every node of the bands' quadtrees and the remainder
  // flags; per sample: its flag bits are counted there, then sign and up to
  // 30 lower bits; 31 planes; the top field and the end.
  const uint32_t setsPerPlane = 4 * kSide * kSide / 3 + 16 + 16;
  const uint32_t bits = kMaxBitLength * setsPerPlane + kSide * kSide * (1 + 30) + 10 + 64;
  return (bits + 7) / 8 + 16;
}

void EncodeSpeck1Block(ArithmeticEncoder& encoder, int levels, int32_t** rows, Speck1Scratch& s) {
  Speck1Params params;
  params.levels = ClampLevels(levels);
  uint32_t largest = 0;
  for (int y = 0; y < kSide; ++y)
    for (int x = 0; x < kSide; ++x) {
      const int32_t v = rows[y][x];
      const uint32_t m = v < 0 ? 0u - uint32_t(v) : uint32_t(v);
      // The top bit of a magnitude of 2^31 cannot be coded; such samples do
      // not come out of the transform of 16-bit frames.
      const uint32_t kept = std::min(m, 0x7FFFFFFFu);
      s.magnitude[y * kSide + x] = kept;
      s.flags[y * kSide + x] = uint8_t((v < 0 ? 0x80 : 0) | BitLength(kept));
      largest = std::max(largest, kept);
    }
  if (largest == 0) {
    encoder.EncodeBits(kSpeck1EmptyTop, 10);
    return;
  }
  const int first = BitLength(largest);
  encoder.EncodeBits(uint32_t(first - 1), 10);
  EncodeSide side{encoder, s, params};
  Planes(side, params.levels, first, s.work);
}

void DecodeSpeck1Block(ArithmeticDecoder& decoder, int levels, int32_t** rows, Speck1Scratch& s) {
  const uint32_t top = decoder.DecodeBits(10);
  // 1023 is an empty block; a longer top than a 31-bit magnitude has comes
  // only from a damaged stream. Both leave the block zero.
  if (top >= uint32_t(kMaxBitLength)) return;
  DecodeSide side{decoder, rows};
  Planes(side, ClampLevels(levels), int(top) + 1, s.work);
}

}  // namespace kestrelink::wavelet
