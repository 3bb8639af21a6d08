// The Merge... members: a weighted blend of the two layers as mono, or each
// frame written into the BGR bytes that its channel picks.
#include <kestrelink/CIppImageMerger.h>

#include <algorithm>
#include <cstring>

#include "frame/RowLoop.h"
#include "merge/MergeCall.h"
#include "merge/MergeOverlay.h"
#include "merge/MergeRows.h"
#include "merge/OverlayTables.h"

using kestrelink::merge::BeginCall;
using kestrelink::merge::BlendWeight;
using kestrelink::merge::MergeCall;
using kestrelink::merge::OverlayRows;
using kestrelink::merge::OverlayRuns;

bool CIppImageMerger::MergeMono8ToMono8(uint32_t width1, uint32_t height1, void* image1, float weight, uint32_t width2,
                                        uint32_t height2, void* image2, void* dst, int offsetX, int offsetY,
                                        int centerX, int centerY, double gamma, double angle, int mirror,
                                        int interpolation, bool bSmoothEdge) {
  MergeCall<uint8_t> call;
  if (!BeginCall(call, 8, [&](int bits) { ReBuildGamma(gamma, bits); }, width1, height1, image1, nullptr, width2,
                 height2, image2, nullptr, dst, 1, offsetX, offsetY,
                 {centerX, centerY, angle, mirror, interpolation, bSmoothEdge}))
    return false;
  const uint16_t* g = gammaTable.data();
  const int64_t w = BlendWeight(weight);
  const kestrelink::merge::MonoNeither<uint8_t> neither{&call.p, call.cleared};
  auto* out = static_cast<uint8_t*>(dst);
  if (w >= 0 && w <= 256) {
    // Weights within 0..1 need no clamp; the identity gamma needs no look-up.
    const auto& rows = kestrelink::merge::MergeRows();
    const uint32_t wa = uint32_t(w);
    if (gammaIsIdentity) {
      const auto copy = [](const uint8_t* v, uint8_t* o, uint32_t n) { std::memcpy(o, v, n); };
      OverlayRuns(
          call.p, call.plan, call.layers.first, call.layers.second, out, copy, copy,
          [&rows, wa](const uint8_t* a, const uint8_t* b, uint8_t* o, uint32_t n) { rows.blend8(a, b, o, n, wa); },
          neither);
      return true;
    }
    const kestrelink::merge::GammaBytes gamma8(g);
    const auto single = [&](const uint8_t* v, uint8_t* o, uint32_t n) { rows.lookup8(v, o, n, gamma8.entry); };
    OverlayRuns(
        call.p, call.plan, call.layers.first, call.layers.second, out, single, single,
        [&](const uint8_t* a, const uint8_t* b, uint8_t* o, uint32_t n) {
          rows.blendLookup8(a, b, o, n, wa, gamma8.entry);
        },
        neither);
    return true;
  }
  const auto single = [g](uint8_t v) { return uint8_t(g[v]); };
  OverlayRows(
      call.p, call.plan, call.layers.first, call.layers.second, out, single, single,
      [g, w](uint8_t a, uint8_t b) { return uint8_t(g[std::clamp<int64_t>(((256 - w) * b + a * w) >> 8, 0, 255)]); },
      neither);
  return true;
}

bool CIppImageMerger::MergeMono16ToMono16(uint32_t width1, uint32_t height1, uint32_t bitDepth, void* image1,
                                          float weight, uint32_t width2, uint32_t height2, void* image2, void* dst,
                                          int offsetX, int offsetY, int centerX, int centerY, double gamma,
                                          double angle, int mirror, int interpolation, bool bSmoothEdge) {
  using namespace kestrelink::merge;
  MergeCall<uint16_t> call;
  if (!BeginCall(call, bitDepth, [&](int bits) { ReBuildGamma(gamma, bits); }, width1, height1, image1, nullptr, width2,
                 height2, image2, nullptr, dst, 2, offsetX, offsetY,
                 {centerX, centerY, angle, mirror, interpolation, bSmoothEdge}))
    return false;
  const uint32_t top = call.top;
  const uint16_t* g = gammaTable.data();
  const int64_t w = BlendWeight(weight);
  const MonoNeither<uint16_t> neither{&call.p, call.cleared};
  auto* out = static_cast<uint16_t*>(dst);
  if (w >= 0 && w <= 256) {
    // Weights within 0..1 need no clamp; the identity gamma needs no look-up.
    const auto& rows = MergeRows();
    const uint32_t wa = uint32_t(w);
    if (gammaIsIdentity) {
      const auto hold = [&](const uint16_t* v, uint16_t* o, uint32_t n) { rows.hold16(v, o, n, top); };
      OverlayRuns(
          call.p, call.plan, call.layers.first, call.layers.second, out, hold, hold,
          [&](const uint16_t* a, const uint16_t* b, uint16_t* o, uint32_t n) { rows.blend16(a, b, o, n, wa, top); },
          neither);
      return true;
    }
    const auto single = [&](const uint16_t* v, uint16_t* o, uint32_t n) { rows.lookup16(v, o, n, g, top); };
    OverlayRuns(
        call.p, call.plan, call.layers.first, call.layers.second, out, single, single,
        [&](const uint16_t* a, const uint16_t* b, uint16_t* o, uint32_t n) {
          rows.blend16(a, b, o, n, wa, top);
          rows.lookup16(o, o, n, g, top);
        },
        neither);
    return true;
  }
  const auto single = [g, top](uint16_t v) { return g[std::min<uint32_t>(v, top)]; };
  OverlayRows(
      call.p, call.plan, call.layers.first, call.layers.second, static_cast<uint16_t*>(dst), single, single,
      [g, w, top](uint16_t a, uint16_t b) {
        const int64_t sa = std::min<uint32_t>(a, top), sb = std::min<uint32_t>(b, top);
        return g[std::clamp<int64_t>(((256 - w) * sb + sa * w) >> 8, 0, top)];
      },
      neither);
  return true;
}

namespace {

// Which bytes of a BGR pixel a channel code writes: blue 1, green 2, red 4.
constexpr uint8_t kChannelBytes[6] = {1, 2, 4, 1 | 4, 1 | 2, 2 | 4};

bool ChannelValid(int channel) { return channel >= 0 && channel <= 5; }

template <class T, class Value>
void CopyToChannel(uint32_t width, uint32_t height, const T* image, int channel, uint8_t* dst, uint32_t dstWidth,
                   uint32_t x0, uint32_t y0, Value value) {
  const uint8_t bytes = kChannelBytes[channel];
  kestrelink::ForEachRow(height, false, [&](uint32_t y, uint32_t) {
    const T* in = image + size_t(y) * width;
    uint8_t* out = dst + (size_t(y0 + y) * dstWidth + x0) * 3;
    for (uint32_t x = 0; x < width; ++x) {
      const uint8_t v = value(in[x]);
      if (bytes & 1) out[3 * x] = v;
      if (bytes & 2) out[3 * x + 1] = v;
      if (bytes & 4) out[3 * x + 2] = v;
    }
  });
}

}  // namespace

void CIppImageMerger::Copy8BitImageToOneBGRChannel(uint32_t width, uint32_t height, const void* image, int channel,
                                                   void* dst, uint32_t dstWidth, uint32_t x, uint32_t y) {
  const uint16_t* g = gammaTable.data();
  CopyToChannel(width, height, static_cast<const uint8_t*>(image), channel, static_cast<uint8_t*>(dst), dstWidth, x, y,
                [g](uint8_t v) { return uint8_t(g[v]); });
}

void CIppImageMerger::Copy16BitImageToOneBGRChannel(uint32_t width, uint32_t height, uint32_t bitDepth,
                                                    const void* image, int channel, void* dst, uint32_t dstWidth,
                                                    uint32_t x, uint32_t y) {
  const uint16_t* g = gammaTable.data();
  const uint32_t top = kestrelink::merge::DepthMax(bitDepth);
  CopyToChannel(
      width, height, static_cast<const uint16_t*>(image), channel, static_cast<uint8_t*>(dst), dstWidth, x, y,
      [g, top, bitDepth](uint16_t v) {
        return uint8_t(std::min<uint32_t>(kestrelink::merge::ToByte(g[std::min<uint32_t>(v, top)], bitDepth), 255));
      });
}

// Settled behaviour of the format: the weights are not read here.
bool CIppImageMerger::MergeMono8ToBGR(uint32_t width1, uint32_t height1, void* image1, int channel1, float /*weight1*/,
                                      uint32_t width2, uint32_t height2, void* image2, int channel2, float /*weight2*/,
                                      void* dst, int offsetX, int offsetY, int centerX, int centerY, double gamma,
                                      double angle, int mirror, int interpolation, bool bSmoothEdge) {
  if (!ChannelValid(channel1) || !ChannelValid(channel2)) return false;
  MergeCall<uint8_t> call;
  if (!BeginCall(call, 8, [&](int bits) { ReBuildGamma(gamma, bits); }, width1, height1, image1, nullptr, width2,
                 height2, image2, nullptr, dst, 3, offsetX, offsetY,
                 {centerX, centerY, angle, mirror, interpolation, bSmoothEdge}))
    return false;
  const auto& p = call.p;
  if (call.cleared) kestrelink::merge::ClearFrame(dst, uint64_t(p.width) * 3, p.height);
  Copy8BitImageToOneBGRChannel(p.w1, p.h1, call.layers.first, channel1, dst, p.width, uint32_t(p.x1), uint32_t(p.y1));
  Copy8BitImageToOneBGRChannel(p.w2, p.h2, call.layers.second, channel2, dst, p.width, uint32_t(p.x2), uint32_t(p.y2));
  return true;
}

bool CIppImageMerger::MergeMono16ToBGR(uint32_t width1, uint32_t height1, uint32_t bitDepth, void* image1, int channel1,
                                       float /*weight1*/, uint32_t width2, uint32_t height2, void* image2, int channel2,
                                       float /*weight2*/, void* dst, int offsetX, int offsetY, int centerX, int centerY,
                                       double gamma, double angle, int mirror, int interpolation, bool bSmoothEdge) {
  using namespace kestrelink::merge;
  if (!ChannelValid(channel1) || !ChannelValid(channel2)) return false;
  MergeCall<uint16_t> call;
  if (!BeginCall(call, bitDepth, [&](int bits) { ReBuildGamma(gamma, bits); }, width1, height1, image1, nullptr, width2,
                 height2, image2, nullptr, dst, 3, offsetX, offsetY,
                 {centerX, centerY, angle, mirror, interpolation, bSmoothEdge}))
    return false;
  const auto& p = call.p;
  if (call.cleared) ClearFrame(dst, uint64_t(p.width) * 3, p.height);
  Copy16BitImageToOneBGRChannel(p.w1, p.h1, bitDepth, call.layers.first, channel1, dst, p.width, uint32_t(p.x1),
                                uint32_t(p.y1));
  Copy16BitImageToOneBGRChannel(p.w2, p.h2, bitDepth, call.layers.second, channel2, dst, p.width, uint32_t(p.x2),
                                uint32_t(p.y2));
  return true;
}

void CIppImageMerger::SubImage8(uint32_t width, uint32_t height, const void* image, const void* background, void* dst) {
  kestrelink::merge::AbsDiffFrame<uint8_t>(width, height, 255, static_cast<const uint8_t*>(image),
                                           static_cast<const uint8_t*>(background), static_cast<uint8_t*>(dst));
}

void CIppImageMerger::SubImage16(uint32_t width, uint32_t height, uint32_t bitDepth, const void* image,
                                 const void* background, void* dst) {
  kestrelink::merge::AbsDiffFrame<uint16_t>(width, height, kestrelink::merge::DepthMax(bitDepth),
                                            static_cast<const uint16_t*>(image),
                                            static_cast<const uint16_t*>(background), static_cast<uint16_t*>(dst));
}
