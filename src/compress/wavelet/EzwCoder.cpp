// The zerotree coder's passes. Encoder and decoder walk the same queue; a
// side brings what happens at each coded position (classify and code, or
// decode and place) and at each refinement.
#include "compress/wavelet/EzwCoder.h"

#include <algorithm>
#include <cmath>

using namespace kestrelink::wavelet;

namespace {

constexpr uint8_t kZerotree = 0, kPositive = 1, kNegative = 2, kIsolatedZero = 3;
constexpr uint8_t kMarker = 255;  // a position already significant: nothing coded
// Models 0 to 3 code dominant symbols, 4 the refinement bits.
constexpr int kRefineModel = 4;

struct Models {
  explicit Models(uint32_t limit)
      : m{AdaptiveModel(4, limit), AdaptiveModel(4, limit), AdaptiveModel(4, limit), AdaptiveModel(4, limit),
          AdaptiveModel(2, limit)} {}
  void Reset() {
    for (AdaptiveModel& model : m) model.Reset();
  }
  AdaptiveModel m[5];
};

bool Significant(uint8_t symbol) { return symbol == kPositive || symbol == kNegative; }

// The largest exponent of a first threshold: every sample, refined, stays
// below 2^31.
constexpr uint32_t kTopExponent = 30;

// Band 0 in 2 x 2 groups, groups in raster order; in a group the offsets
// (0, 0), (0, 1), (1, 1), (1, 0) as (dx, dy). Significant, isolated-zero and
// already significant positions go on to the queue, first at orientation 0,
// then the same again at 1 and at 2. Then the queue from its front, each
// entry's children appended behind it unless it is a zerotree root or a leaf.
// Side: bool Spent(), uint8_t Code(const EZWEntry&, AdaptiveModel&).
template <class Side>
bool DominantPass(Side& side, EZWPyramid<uint8_t>& map, std::vector<EZWEntry>& queue, Models& models, int levels) {
  const EZWBand& low = map.shape->bands[0];
  bool prevSignificant = false;
  queue.clear();
  static constexpr int kGroup[4][2] = {{0, 0}, {0, 1}, {1, 1}, {1, 0}};
  for (int gy = 0; gy < low.height; gy += 2)
    for (int gx = 0; gx < low.width; gx += 2)
      for (const auto& d : kGroup) {
        const int x = gx + d[0], y = gy + d[1];
        if (x >= low.width || y >= low.height) continue;
        const EZWEntry at{uint16_t(x), uint16_t(y), 0, 0, 0};
        uint8_t symbol = kMarker;
        if (map.At(0, x, y)) {
          prevSignificant = true;
        } else {
          if (side.Spent()) return false;
          symbol = side.Code(at, models.m[prevSignificant ? 2 : 3]);
          if (Significant(symbol)) map.At(0, x, y) = 1;
          prevSignificant = Significant(symbol);
        }
        if (symbol != kZerotree) queue.push_back(EZWEntry{uint16_t(x), uint16_t(y), 1, 0, symbol});
      }
  const size_t roots = queue.size();
  for (uint8_t o = 1; o <= 2; ++o)
    for (size_t i = 0; i < roots; ++i) {
      EZWEntry e = queue[i];
      e.orientation = o;
      queue.push_back(e);
    }

  bool leafSeen = false;
  for (size_t head = 0; head < queue.size(); ++head) {
    const EZWEntry e = queue[head];
    const int band = EZWBandOf(e.level, e.orientation);
    if (!map.Holds(band, e.x, e.y)) continue;
    const bool wasSignificant = map.At(band, e.x, e.y) != 0;
    uint8_t symbol = kMarker;
    if (wasSignificant) {
      prevSignificant = true;
    } else {
      if (side.Spent()) return false;
      // A leaf cannot be an isolated zero: from the first leaf on, symbol
      // 3's frequency counts for symbol 0.
      if (e.level == levels && !leafSeen) {
        leafSeen = true;
        for (int m = 0; m < 4; ++m) models.m[m].MoveFrequency(kIsolatedZero, kZerotree);
      }
      const bool parentSignificant =
          e.level == 1 ? map.At(0, e.x, e.y) != 0
                       : map.At(EZWBandOf(e.level - 1, e.orientation), e.x >> 1, e.y >> 1) != 0;
      const int model = parentSignificant ? (prevSignificant ? 0 : 1) : (prevSignificant ? 2 : 3);
      symbol = side.Code(e, models.m[model]);
      if (Significant(symbol)) map.At(band, e.x, e.y) = 1;
      // prevSignificant keeps its value here: only an already significant
      // position changes it on the queue.
    }
    if ((symbol != kZerotree || wasSignificant) && e.level < levels) {
      const uint16_t cx = uint16_t(2 * e.x), cy = uint16_t(2 * e.y);
      const uint8_t next = uint8_t(e.level + 1);
      queue.push_back(EZWEntry{cx, cy, next, e.orientation, 0});
      queue.push_back(EZWEntry{cx, uint16_t(cy + 1), next, e.orientation, 0});
      queue.push_back(EZWEntry{uint16_t(cx + 1), uint16_t(cy + 1), next, e.orientation, 0});
      queue.push_back(EZWEntry{uint16_t(cx + 1), cy, next, e.orientation, 0});
    }
  }
  return true;
}

// Thresholds from the first down to 1: the dominant pass, then the
// refinement of every listed sample with the bit below the threshold.
// Side also: void Refine(const EZWRefineEntry&, AdaptiveModel&, uint32_t t2).
template <class Side, class T>
void ThresholdLoop(Side& side, typename CEZWCoder<T>::Scratch& s, uint32_t threshold, uint32_t limit) {
  const int levels = s.map.shape->levels;
  Models models(limit);
  s.map.Clear();
  s.refine.clear();
  while (threshold != 0) {
    side.threshold = threshold;
    if (!DominantPass(side, s.map, s.queue, models, levels)) return;
    const uint32_t t2 = threshold >> 1;
    if (t2 >= 1)
      for (EZWRefineEntry& entry : s.refine) {
        if (side.Spent()) return;
        side.Refine(entry, models.m[kRefineModel], t2);
      }
    threshold = t2;
    models.Reset();
  }
}

template <class T>
struct EncodeSide {
  const CEZWCoder<T>& coder;
  ArithmeticEncoder& encoder;
  typename CEZWCoder<T>::Scratch& s;
  uint32_t budget, threshold;

  bool Spent() const { return encoder.EncodedBits() / 8 > budget; }
  uint8_t Code(const EZWEntry& at, AdaptiveModel& model) {
    const uint8_t symbol = coder.ClassifyCoefficient(s.bands, s.masks, at, threshold, s.refine);
    encoder.EncodeSymbol(model, symbol);
    return symbol;
  }
  void Refine(EZWRefineEntry& entry, AdaptiveModel& model, uint32_t t2) {
    const bool one = (entry.magnitude & t2) != 0;
    entry.value += one ? int32_t(t2 >> 1) : -int32_t(t2 >> 1);
    encoder.EncodeSymbol(model, one ? 1 : 0);
  }
};

template <class T>
struct DecodeSide {
  const CEZWCoder<T>& coder;
  ArithmeticDecoder& decoder;
  typename CEZWCoder<T>::Scratch& s;
  uint32_t budget, threshold;

  bool Spent() const { return decoder.DecodedBits() / 8 >= budget; }
  uint8_t Code(const EZWEntry& at, AdaptiveModel& model) {
    const uint8_t symbol = uint8_t(decoder.DecodeSymbol(model, true));
    if (Significant(symbol)) coder.PlaceSymbol(s.bands, at, symbol, threshold, s.refine);
    return symbol;
  }
  void Refine(EZWRefineEntry& entry, AdaptiveModel& model, uint32_t t2) {
    coder.DecodeRefinement(decoder, model, s.bands, entry, t2);
  }
};

template <class T>
void LoadBands(EZWPyramid<T>& bands, int32_t* const* rows) {
  for (const EZWBand& b : bands.shape->bands)
    for (int y = 0; y < b.height; ++y)
      for (int x = 0; x < b.width; ++x) bands.data[size_t(b.offset + y * b.width + x)] = T(rows[b.y0 + y][b.x0 + x]);
}

template <class T>
void StoreBands(const EZWPyramid<T>& bands, int32_t* const* rows) {
  for (const EZWBand& b : bands.shape->bands)
    for (int y = 0; y < b.height; ++y)
      for (int x = 0; x < b.width; ++x) {
        const double v = double(bands.data[size_t(b.offset + y * b.width + x)]);
        rows[b.y0 + y][b.x0 + x] = int32_t(std::clamp(v, -2147483648.0, 2147483647.0));
      }
}

}  // namespace

template <class T>
void CEZWCoder<T>::BuildDescendantMasks(EZWPyramid<T>& bands, EZWPyramid<uint32_t>& masks) const {
  const EZWShape& shape = *bands.shape;
  const int last = shape.bandCount - 1;
  for (int band = last; band >= 0; --band) {
    const EZWBand& b = shape.bands[size_t(band)];
    for (int y = 0; y < b.height; ++y)
      for (int x = 0; x < b.width; ++x) {
        const uint32_t m = Magnitude(bands.At(band, x, y));
        const int exponent = m ? 31 - __builtin_clz(m) : 0;
        uint32_t mask = exponent > 0 ? 1u << exponent : 0u;
        if (band == 0) {
          for (int o = 1; o <= 3; ++o)
            if (o <= last && masks.Holds(o, x, y)) mask |= masks.At(o, x, y);
        } else if (band <= last - 3) {
          const int child = band + 3;
          for (int dy = 0; dy < 2; ++dy)
            for (int dx = 0; dx < 2; ++dx)
              if (masks.Holds(child, 2 * x + dx, 2 * y + dy)) mask |= masks.At(child, 2 * x + dx, 2 * y + dy);
        }
        masks.At(band, x, y) = mask;
      }
  }
}

template <class T>
uint8_t CEZWCoder<T>::ClassifyCoefficient(EZWPyramid<T>& bands, const EZWPyramid<uint32_t>& masks,
                                          const EZWEntry& at, uint32_t threshold,
                                          std::vector<EZWRefineEntry>& refine) const {
  const int band = EZWBandOf(at.level, at.orientation);
  T& sample = bands.At(band, at.x, at.y);
  const uint32_t magnitude = Magnitude(sample);
  if (magnitude < threshold) return (masks.At(band, at.x, at.y) & threshold) ? kIsolatedZero : kZerotree;
  const uint8_t symbol = Positive(sample) ? kPositive : kNegative;
  refine.push_back(EZWRefineEntry{at.x, at.y, at.level, at.orientation, magnitude,
                                  int32_t((threshold >> 1) + (threshold & ~1u))});
  sample = T(0);
  return symbol;
}

template <class T>
void CEZWCoder<T>::PlaceSymbol(EZWPyramid<T>& bands, const EZWEntry& at, uint8_t symbol, uint32_t threshold,
                               std::vector<EZWRefineEntry>& refine) const {
  // 1.5 T for a positive sample, -3 x (T / 2) for a negative one; 0 at T = 1.
  const int64_t value = symbol == kPositive ? int64_t(threshold >> 1) + (threshold & ~1u) : -3 * int64_t(threshold >> 1);
  bands.At(EZWBandOf(at.level, at.orientation), at.x, at.y) = T(value);
  refine.push_back(EZWRefineEntry{at.x, at.y, at.level, at.orientation, 0, 0});
}

template <class T>
void CEZWCoder<T>::DecodeRefinement(ArithmeticDecoder& decoder, AdaptiveModel& model, EZWPyramid<T>& bands,
                                    const EZWRefineEntry& entry, uint32_t t2) const {
  const uint32_t one = decoder.DecodeSymbol(model, true);
  const T step = T(t2 >> 1);
  T& sample = bands.At(EZWBandOf(entry.level, entry.orientation), entry.x, entry.y);
  const bool away = one != 0;
  if (sample < T(0))
    sample = away ? sample - step : sample + step;
  else
    sample = away ? sample + step : sample - step;
}

template <class T>
void CEZWCoder<T>::EncodeBlock(ArithmeticEncoder& encoder, int32_t* const* rows, Scratch& s, uint32_t budget,
                               uint32_t limit) const {
  LoadBands(s.bands, rows);
  uint32_t largest = 0;
  for (T v : s.bands.data) {
    const uint32_t m = Magnitude(v);
    largest = m > largest ? m : largest;
  }
  BuildDescendantMasks(s.bands, s.masks);
  // The logarithm has no value for an all-zero block: its threshold is 1.
  const uint32_t exponent =
      largest ? std::min(uint32_t(std::floor(std::log10(double(largest)) / std::log10(2.0))), kTopExponent) : 0;
  encoder.EncodeBits(exponent, 10);
  EncodeSide<T> side{*this, encoder, s, budget, 1u << exponent};
  ThresholdLoop<EncodeSide<T>, T>(side, s, 1u << exponent, limit);
}

template <class T>
void CEZWCoder<T>::DecodeBlock(ArithmeticDecoder& decoder, int32_t* const* rows, Scratch& s, uint32_t budget,
                               uint32_t limit) const {
  s.bands.Clear();
  const uint32_t exponent = decoder.DecodeBits(10);
  // A larger exponent comes only from a damaged stream: the block stays zero.
  if (exponent <= kTopExponent) {
    DecodeSide<T> side{*this, decoder, s, budget, 1u << exponent};
    ThresholdLoop<DecodeSide<T>, T>(side, s, 1u << exponent, limit);
  }
  StoreBands(s.bands, rows);
}

uint32_t CFloatEZWCoder::Magnitude(float value) const {
  const double m = std::round(std::fabs(double(value)));
  return m < 4294967295.0 ? uint32_t(m) : 4294967295u;
}

template class CEZWCoder<int32_t>;
template class CEZWCoder<float>;
