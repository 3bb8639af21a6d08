// The ...ByHSL members: each region coloured by its own hue tables, entered
// with the gamma-free sample (the ratio or the blend where both lie) and
// then passed through the gamma table.
#include <kestrelink/CIppImageMerger.h>

#include <algorithm>

#include "merge/MergeCall.h"
#include "merge/MergeOverlay.h"
#include "merge/MergeRows.h"
#include "merge/OverlayTables.h"

using kestrelink::merge::BeginCall;
using kestrelink::merge::Bgr;
using kestrelink::merge::BgrNeither;
using kestrelink::merge::BlendWeight;
using kestrelink::merge::MergeCall;
using kestrelink::merge::ColourTable;
using kestrelink::merge::OverlayRows;
using kestrelink::merge::OverlayRuns;

namespace {

// The colour of lightness l from one region's tables, through the gamma
// table of `bitDepth` bits (8 for the 8-bit members).
struct RegionColour {
  const uint16_t *red, *green, *blue, *gamma;
  uint32_t bitDepth;
  uint8_t Channel(uint16_t v) const {
    using kestrelink::merge::FromByte;
    using kestrelink::merge::ToByte;
    return uint8_t(std::min<uint32_t>(ToByte(gamma[FromByte(std::min<uint16_t>(v, 255), bitDepth)], bitDepth), 255));
  }
  Bgr operator()(uint32_t l) const { return Bgr{Channel(blue[l]), Channel(green[l]), Channel(red[l])}; }
};

// The first layer's, the second layer's and the overlap's colours.
// (Named members rather than a structured binding, since the row lambdas
// capture them.)
struct HslRegions {
  RegionColour one, two, both;
};

HslRegions RegionsOf(const CIppImageMerger& m, uint32_t bitDepth) {
  const uint16_t* g = m.gammaTable.data();
  return {{m.hslRed1, m.hslGreen1, m.hslBlue1, g, bitDepth},
          {m.hslRed2, m.hslGreen2, m.hslBlue2, g, bitDepth},
          {m.hslRedW, m.hslGreenW, m.hslBlueW, g, bitDepth}};
}

// One region's colour of every byte v, entered at index(v).
template <class Index>
kestrelink::merge::ColourTable TableOf(const RegionColour& region, Index index) {
  return kestrelink::merge::MakeColourTable(index, [&region](uint32_t l, uint8_t& blue, uint8_t& green, uint8_t& red) {
    const Bgr c = region(l);
    blue = c.b, green = c.g, red = c.r;
  });
}

uint8_t* Bytes(Bgr* p) { return reinterpret_cast<uint8_t*>(p); }

}  // namespace

bool CIppImageMerger::SubMono8ToBGRByHSL(uint32_t width1, uint32_t height1, void* image1, void* background1,
                                         uint32_t hue1, uint32_t width2, uint32_t height2, void* image2,
                                         void* background2, uint32_t hue2, void* dst, int offsetX, int offsetY,
                                         int centerX, int centerY, double gamma, double angle, int mirror,
                                         int interpolation, bool bSmoothEdge) {
  MergeCall<uint8_t> call;
  if (!BeginCall(call, 8, [&](int bits) { ReBuildGamma(gamma, bits); }, width1, height1, image1, background1, width2,
                 height2, image2, background2, dst, 3, offsetX, offsetY,
                 {centerX, centerY, angle, mirror, interpolation, bSmoothEdge}))
    return false;
  PrepareHslTables(hue1, hue2);
  const HslRegions regions = RegionsOf(*this, 8);
  const RegionColour &one = regions.one, &two = regions.two, &both = regions.both;
  // The overlap by ratio(a, b): through slope, or for b 0 by a itself.
  const ColourTable firstColours = TableOf(one, [](int v) { return v; });
  const ColourTable secondColours = TableOf(two, [](int v) { return v; });
  const ColourTable byValue = TableOf(both, [](int v) { return v; });
  const ColourTable byRatio = TableOf(both, [this](int q) { return slopeTable[size_t(q)]; });
  const auto& rows = kestrelink::merge::MergeRows();
  OverlayRuns(
      call.p, call.plan, call.layers.first, call.layers.second, static_cast<Bgr*>(dst),
      [&](const uint8_t* a, Bgr* o, uint32_t n) { rows.colour8(a, Bytes(o), n, firstColours); },
      [&](const uint8_t* b, Bgr* o, uint32_t n) { rows.colour8(b, Bytes(o), n, secondColours); },
      [&](const uint8_t* a, const uint8_t* b, Bgr* o, uint32_t n) {
        rows.ratioColour8(a, b, Bytes(o), n, byRatio, byValue);
      },
      BgrNeither{Bgr{0, 0, 0}});
  return true;
}

bool CIppImageMerger::SubMono16ToBGRByHSL(uint32_t width1, uint32_t height1, uint32_t bitDepth, void* image1,
                                          void* background1, uint32_t hue1, uint32_t width2, uint32_t height2,
                                          void* image2, void* background2, uint32_t hue2, void* dst, int offsetX,
                                          int offsetY, int centerX, int centerY, double gamma, double angle, int mirror,
                                          int interpolation, bool bSmoothEdge) {
  using namespace kestrelink::merge;
  MergeCall<uint16_t> call;
  if (!BeginCall(call, bitDepth, [&](int bits) { ReBuildGamma(gamma, bits); }, width1, height1, image1, background1,
                 width2, height2, image2, background2, dst, 3, offsetX, offsetY,
                 {centerX, centerY, angle, mirror, interpolation, bSmoothEdge}))
    return false;
  const uint32_t top = call.top;
  PrepareHslTables(hue1, hue2);
  const HslRegions regions = RegionsOf(*this, bitDepth);
  const RegionColour &one = regions.one, &two = regions.two, &both = regions.both;
  const auto light = [top, bitDepth](uint16_t v) { return ToByte(std::min<uint32_t>(v, top), bitDepth); };
  OverlayRows(
      call.p, call.plan, call.layers.first, call.layers.second, static_cast<Bgr*>(dst),
      [&](uint16_t a) { return one(light(a)); }, [&](uint16_t b) { return two(light(b)); },
      [&](uint16_t a, uint16_t b) {
        const int r = SubWithinBounds(std::min<uint32_t>(a, top), std::min<uint32_t>(b, top), 8, 0, 255);
        return both(b == 0 ? light(uint16_t(r)) : uint32_t(r));
      },
      BgrNeither{Bgr{0, 0, 0}});
  return true;
}

bool CIppImageMerger::MergeMono8ToBGRByHSL(uint32_t width1, uint32_t height1, float weight, void* image1, uint32_t hue1,
                                           uint32_t width2, uint32_t height2, void* image2, uint32_t hue2, void* dst,
                                           int offsetX, int offsetY, int centerX, int centerY, double gamma,
                                           double angle, int mirror, int interpolation, bool bSmoothEdge) {
  MergeCall<uint8_t> call;
  if (!BeginCall(call, 8, [&](int bits) { ReBuildGamma(gamma, bits); }, width1, height1, image1, nullptr, width2,
                 height2, image2, nullptr, dst, 3, offsetX, offsetY,
                 {centerX, centerY, angle, mirror, interpolation, bSmoothEdge}))
    return false;
  PrepareHslTables(hue1, hue2);
  const HslRegions regions = RegionsOf(*this, 8);
  const RegionColour &one = regions.one, &two = regions.two, &both = regions.both;
  const int64_t w = BlendWeight(weight);
  if (w >= 0 && w <= 256) {
    // Weights within 0..1 need no clamp: the blend, then the overlap's colours.
    const ColourTable firstColours = TableOf(one, [](int v) { return v; });
    const ColourTable secondColours = TableOf(two, [](int v) { return v; });
    const ColourTable bothColours = TableOf(both, [](int v) { return v; });
    const auto& rows = kestrelink::merge::MergeRows();
    const uint32_t wa = uint32_t(w);
    OverlayRuns(
        call.p, call.plan, call.layers.first, call.layers.second, static_cast<Bgr*>(dst),
        [&](const uint8_t* a, Bgr* o, uint32_t n) { rows.colour8(a, Bytes(o), n, firstColours); },
        [&](const uint8_t* b, Bgr* o, uint32_t n) { rows.colour8(b, Bytes(o), n, secondColours); },
        [&](const uint8_t* a, const uint8_t* b, Bgr* o, uint32_t n) {
          uint8_t blended[256];
          for (uint32_t i = 0; i < n; i += 256) {
            const uint32_t count = n - i < 256 ? n - i : 256;
            rows.blend8(a + i, b + i, blended, count, wa);
            rows.colour8(blended, Bytes(o + i), count, bothColours);
          }
        },
        BgrNeither{Bgr{0, 0, 0}});
    return true;
  }
  OverlayRows(
      call.p, call.plan, call.layers.first, call.layers.second, static_cast<Bgr*>(dst),
      [&](uint8_t a) { return one(a); }, [&](uint8_t b) { return two(b); },
      [&](uint8_t a, uint8_t b) { return both(uint32_t(std::clamp<int64_t>(((256 - w) * b + a * w) >> 8, 0, 255))); },
      BgrNeither{Bgr{0, 0, 0}});
  return true;
}

bool CIppImageMerger::MergeMono16ToBGRByHSL(uint32_t width1, uint32_t height1, uint32_t bitDepth, float weight,
                                            void* image1, uint32_t hue1, uint32_t width2, uint32_t height2,
                                            void* image2, uint32_t hue2, void* dst, int offsetX, int offsetY,
                                            int centerX, int centerY, double gamma, double angle, int mirror,
                                            int interpolation, bool bSmoothEdge) {
  using namespace kestrelink::merge;
  MergeCall<uint16_t> call;
  if (!BeginCall(call, bitDepth, [&](int bits) { ReBuildGamma(gamma, bits); }, width1, height1, image1, nullptr, width2,
                 height2, image2, nullptr, dst, 3, offsetX, offsetY,
                 {centerX, centerY, angle, mirror, interpolation, bSmoothEdge}))
    return false;
  const uint32_t top = call.top;
  PrepareHslTables(hue1, hue2);
  const HslRegions regions = RegionsOf(*this, bitDepth);
  const RegionColour &one = regions.one, &two = regions.two, &both = regions.both;
  const int64_t w = BlendWeight(weight);
  const auto light = [top, bitDepth](uint32_t v) { return ToByte(std::min<uint32_t>(v, top), bitDepth); };
  OverlayRows(
      call.p, call.plan, call.layers.first, call.layers.second, static_cast<Bgr*>(dst),
      [&](uint16_t a) { return one(light(a)); }, [&](uint16_t b) { return two(light(b)); },
      [&](uint16_t a, uint16_t b) {
        const int64_t sa = std::min<uint32_t>(a, top), sb = std::min<uint32_t>(b, top);
        return both(light(uint32_t(std::clamp<int64_t>(((256 - w) * sb + sa * w) >> 8, 0, top))));
      },
      BgrNeither{Bgr{0, 0, 0}});
  return true;
}
