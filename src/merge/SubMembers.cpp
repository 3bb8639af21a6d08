// The Sub... members: the ratio of the two layers where they overlap, as
// mono or through the pseudo-colour table.
#include <kestrelink/CIppImageMerger.h>

#include <algorithm>

#include "merge/MergeCall.h"
#include "merge/MergeOverlay.h"
#include "merge/MergeRows.h"
#include "merge/OverlayTables.h"

using kestrelink::merge::BeginCall;
using kestrelink::merge::Bgr;
using kestrelink::merge::MergeCall;
using kestrelink::merge::OverlayRows;
using kestrelink::merge::OverlayRuns;

bool CIppImageMerger::SubMono8ToMono8(uint32_t width1, uint32_t height1, void* image1, void* background1,
                                      uint32_t width2, uint32_t height2, void* image2, void* background2, void* dst,
                                      int offsetX, int offsetY, int centerX, int centerY, double gamma, double angle,
                                      int mirror, int interpolation, bool bSmoothEdge) {
  MergeCall<uint8_t> call;
  if (!BeginCall(call, 8, [&](int bits) { ReBuildGamma(gamma, bits); }, width1, height1, image1, background1, width2,
                 height2, image2, background2, dst, 1, offsetX, offsetY,
                 {centerX, centerY, angle, mirror, interpolation, bSmoothEdge}))
    return false;
  // gamma(ratio(a, b)): by the ratio through slope and gamma, or for b 0 by a through gamma.
  const kestrelink::merge::GammaBytes byValue(gammaTable.data());
  uint8_t byRatio[256];
  for (int q = 0; q < 256; ++q) byRatio[q] = byValue.entry[slopeTable[size_t(q)]];
  const auto& rows = kestrelink::merge::MergeRows();
  const auto single = [&](const uint8_t* v, uint8_t* o, uint32_t n) { rows.lookup8(v, o, n, byValue.entry); };
  OverlayRuns(
      call.p, call.plan, call.layers.first, call.layers.second, static_cast<uint8_t*>(dst), single, single,
      [&](const uint8_t* a, const uint8_t* b, uint8_t* o, uint32_t n) {
        rows.ratioLookup8(a, b, o, n, byRatio, byValue.entry);
      },
      kestrelink::merge::MonoNeither<uint8_t>{&call.p, call.cleared});
  return true;
}

bool CIppImageMerger::SubMono8ToBGRByPseudoColor(uint32_t width1, uint32_t height1, void* image1, void* background1,
                                                 uint32_t width2, uint32_t height2, void* image2, void* background2,
                                                 void* dst, int offsetX, int offsetY, int centerX, int centerY,
                                                 double gamma, double angle, int mirror, int interpolation,
                                                 bool bSmoothEdge) {
  MergeCall<uint8_t> call;
  if (!BeginCall(call, 8, [&](int bits) { ReBuildGamma(gamma, bits); }, width1, height1, image1, background1, width2,
                 height2, image2, background2, dst, 3, offsetX, offsetY,
                 {centerX, centerY, angle, mirror, interpolation, bSmoothEdge}))
    return false;
  // The colour of gamma(ratio(a, b)): by the ratio through slope, gamma and
  // the colours, or for b 0 by a through gamma and the colours.
  using kestrelink::merge::ColourTable;
  const uint16_t* g = gammaTable.data();
  const auto colour = [this](uint32_t v, uint8_t& blue, uint8_t& green, uint8_t& red) {
    blue = pseudoBlue[v], green = pseudoGreen[v], red = pseudoRed[v];
  };
  const ColourTable byValue = kestrelink::merge::MakeColourTable([g](int v) { return g[v]; }, colour);
  const ColourTable byRatio =
      kestrelink::merge::MakeColourTable([this, g](int q) { return g[slopeTable[size_t(q)]]; }, colour);
  const auto& rows = kestrelink::merge::MergeRows();
  const auto single = [&](const uint8_t* v, Bgr* o, uint32_t n) {
    rows.colour8(v, reinterpret_cast<uint8_t*>(o), n, byValue);
  };
  OverlayRuns(
      call.p, call.plan, call.layers.first, call.layers.second, static_cast<Bgr*>(dst), single, single,
      [&](const uint8_t* a, const uint8_t* b, Bgr* o, uint32_t n) {
        rows.ratioColour8(a, b, reinterpret_cast<uint8_t*>(o), n, byRatio, byValue);
      },
      kestrelink::merge::BgrNeither{Bgr{pseudoBlue[0], pseudoGreen[0], pseudoRed[0]}});
  return true;
}

bool CIppImageMerger::SubMono16ToMono16(uint32_t width1, uint32_t height1, uint32_t bitDepth, void* image1,
                                        void* background1, uint32_t width2, uint32_t height2, void* image2,
                                        void* background2, void* dst, int offsetX, int offsetY, int centerX,
                                        int centerY, double gamma, double angle, int mirror, int interpolation,
                                        bool bSmoothEdge) {
  using namespace kestrelink::merge;
  MergeCall<uint16_t> call;
  if (!BeginCall(call, bitDepth, [&](int bits) { ReBuildGamma(gamma, bits); }, width1, height1, image1, background1,
                 width2, height2, image2, background2, dst, 2, offsetX, offsetY,
                 {centerX, centerY, angle, mirror, interpolation, bSmoothEdge}))
    return false;
  const uint32_t top = call.top;
  const uint16_t* g = gammaTable.data();
  const auto single = [g, top](uint16_t v) { return g[std::min<uint32_t>(v, top)]; };
  OverlayRows(
      call.p, call.plan, call.layers.first, call.layers.second, static_cast<uint16_t*>(dst), single, single,
      [&](uint16_t a, uint16_t b) {
        const int r = SubWithinBounds(std::min<uint32_t>(a, top), std::min<uint32_t>(b, top), 8, 0, 255);
        return g[std::min<uint32_t>(b == 0 ? uint32_t(r) : FromByte(uint32_t(r), bitDepth), top)];
      },
      MonoNeither<uint16_t>{&call.p, call.cleared});
  return true;
}

bool CIppImageMerger::SubMono16ToBGRByPseudoColor(uint32_t width1, uint32_t height1, uint32_t bitDepth, void* image1,
                                                  void* background1, uint32_t width2, uint32_t height2, void* image2,
                                                  void* background2, void* dst, int offsetX, int offsetY, int centerX,
                                                  int centerY, double gamma, double angle, int mirror,
                                                  int interpolation, bool bSmoothEdge) {
  using namespace kestrelink::merge;
  MergeCall<uint16_t> call;
  if (!BeginCall(call, bitDepth, [&](int bits) { ReBuildGamma(gamma, bits); }, width1, height1, image1, background1,
                 width2, height2, image2, background2, dst, 3, offsetX, offsetY,
                 {centerX, centerY, angle, mirror, interpolation, bSmoothEdge}))
    return false;
  // Each pixel's colour index: ToByte(gamma(v)) of its value v (the first
  // layer's sample where b is 0), or through slope, FromByte and gamma for
  // the ratio; the pseudo-colour table then colours the indexes.
  const uint32_t top = call.top;
  const uint16_t* g = gammaTable.data();
  const auto indexOf = [&](uint32_t v) { return uint8_t(std::min<uint32_t>(ToByte(g[std::min(v, top)], bitDepth), 255)); };
  uint8_t byRatio[256];
  for (uint32_t q = 0; q < 256; ++q) byRatio[q] = indexOf(FromByte(slopeTable[q], bitDepth));
  const ColourTable colours = MakeColourTable([](int v) { return v; }, [this](int v, uint8_t& blue, uint8_t& green, uint8_t& red) {
    blue = pseudoBlue[v], green = pseudoGreen[v], red = pseudoRed[v];
  });
  const auto& rows = MergeRows();
  // The identity gamma only holds samples at the top.
  const bool identity = gammaIsIdentity;
  const auto gammaOf = [&rows, g, top, identity](const uint16_t* v, uint16_t* o, uint32_t n) {
    if (identity)
      rows.hold16(v, o, n, top);
    else
      rows.lookup16(v, o, n, g, top);
  };
  constexpr uint32_t kChunk = 256;
  const auto single = [&](const uint16_t* v, Bgr* o, uint32_t n) {
    uint16_t gamma[kChunk];
    uint8_t index[kChunk];
    for (uint32_t i = 0; i < n; i += kChunk) {
      const uint32_t count = std::min(n - i, kChunk);
      gammaOf(v + i, gamma, count);
      ToBytes(gamma, index, count, bitDepth);
      rows.colour8(index, reinterpret_cast<uint8_t*>(o + i), count, colours);
    }
  };
  OverlayRuns(
      call.p, call.plan, call.layers.first, call.layers.second, static_cast<Bgr*>(dst), single, single,
      [&](const uint16_t* a, const uint16_t* b, Bgr* o, uint32_t n) {
        uint16_t gamma[kChunk];
        uint8_t byValue[kChunk], index[kChunk];
        for (uint32_t i = 0; i < n; i += kChunk) {
          const uint32_t count = std::min(n - i, kChunk);
          gammaOf(a + i, gamma, count);
          ToBytes(gamma, byValue, count, bitDepth);
          rows.ratioIndex16(a + i, b + i, byValue, index, count, top, byRatio);
          rows.colour8(index, reinterpret_cast<uint8_t*>(o + i), count, colours);
        }
      },
      BgrNeither{Bgr{pseudoBlue[0], pseudoGreen[0], pseudoRed[0]}});
  return true;
}
