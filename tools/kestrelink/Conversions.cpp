// The conversion table; a conversion the library gains is one row here.
#include "Conversions.h"

#include <kestrelink/CIppImageConverter.h>

#include <cstring>

#include "ToolError.h"

namespace kestrelink::tool {

namespace {

using C = CIppImageConverter;
using L = LayoutId;

// Plane i of a planar frame held plane after plane, `sample` bytes a sample.
void* Plane(void* frame, const FrameJob& j, int i, uint32_t sample) {
  return static_cast<uint8_t*>(frame) + size_t(i) * j.width * j.height * sample;
}

// Planar YUV targets, planes Y, U, V one after another. The V plane is first
// given w / 2 * h bytes after U's start, room for the h chroma rows that the
// flipped 4:2:0 encoders write, and a 4:2:0 V is then moved up behind U.
template <class Encode>
bool ToPlanarYuv(const FrameJob& j, bool is420, Encode encode) {
  const size_t luma = size_t(j.width) * j.height, room = size_t(j.width / 2) * j.height;
  auto* y = static_cast<uint8_t*>(j.dst);
  if (!encode(y, y + luma, y + luma + room)) return false;
  if (is420) std::memmove(y + luma + size_t(j.width / 2) * (j.height / 2), y + luma + room, room / 2);
  return true;
}

using YuvEncoder = bool (*)(uint32_t, uint32_t, void*, void*, void*, void*, bool);
bool Encode422(YuvEncoder encoder, const FrameJob& j) {
  return ToPlanarYuv(j, false, [&](void* y, void* u, void* v) { return encoder(j.width, j.height, j.src, y, u, v, j.flip); });
}
bool Encode420(YuvEncoder encoder, const FrameJob& j) {
  return ToPlanarYuv(j, true, [&](void* y, void* u, void* v) { return encoder(j.width, j.height, j.src, y, u, v, j.flip); });
}

const Conversion kConversions[] = {
    {L::Mono8, L::Bgrx, "Mono8ToBGRx", true,
     [](C& c, const FrameJob& j) { return c.Mono8ToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Mono8, L::Bgr24, "Mono8ToBGR", true,
     [](C& c, const FrameJob& j) { return c.Mono8ToBGR(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Mono8, L::Mono8, "Mono8ToMono8", true,
     [](C& c, const FrameJob& j) { return c.Mono8ToMono8(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Mono8, L::Mono16Msb, "Mono8ToMono16MSB", false,
     [](C& c, const FrameJob& j) { return c.Mono8ToMono16MSB(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Mono16, L::Bgrx, "Mono16ToBGRx", true,
     [](C& c, const FrameJob& j) { return c.Mono16ToBGRx(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16, L::Bgr24, "Mono16ToBGR", true,
     [](C& c, const FrameJob& j) { return c.Mono16ToBGR(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16, L::Mono8, "Mono16ToMono8", true,
     [](C& c, const FrameJob& j) { return c.Mono16ToMono8(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16, L::Mono16, "Mono16ToMono16", true,
     [](C& c, const FrameJob& j) { return c.Mono16ToMono16(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16, L::Mono16Msb, "Mono16ToMono16MSB", false,
     [](C& c, const FrameJob& j) { return c.Mono16ToMono16MSB(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    // Packed and swapped mono sources; 8448 to BGR24 spaces rows 4 bytes a
    // pixel apart on the colour-map path.
    {L::Mono16Msb, L::Bgrx, "Mono16MSBToBGRx", true,
     [](C& c, const FrameJob& j) { return c.Mono16MSBToBGRx(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16Msb, L::Bgr24, "Mono16MSBToBGR24", true,
     [](C& c, const FrameJob& j) { return c.Mono16MSBToBGR24(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16Msb, L::Mono8, "Mono16MSBToMono8", true,
     [](C& c, const FrameJob& j) { return c.Mono16MSBToMono8(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16Msb, L::Mono16, "Mono16MSBToMono16", true,
     [](C& c, const FrameJob& j) { return c.Mono16MSBToMono16(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16Msb, L::Mono16Msb, "Mono16MSBToMono16MSB", false,
     [](C& c, const FrameJob& j) { return c.Mono16MSBToMono16MSB(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Mono16MsbSwap, L::Bgrx, "Mono16MSBSwapToBGRx", true,
     [](C& c, const FrameJob& j) { return c.Mono16MSBSwapToBGRx(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16MsbSwap, L::Bgr24, "Mono16MSBSwapToBGR24", true,
     [](C& c, const FrameJob& j) { return c.Mono16MSBSwapToBGR24(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16MsbSwap, L::Mono8, "Mono16MSBSwapToMono8", true,
     [](C& c, const FrameJob& j) { return c.Mono16MSBSwapToMono8(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16MsbSwap, L::Mono16, "Mono16MSBSwapToMono16", true,
     [](C& c, const FrameJob& j) { return c.Mono16MSBSwapToMono16(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16MsbSwap, L::Mono16Msb, "Mono16MSBSwapToMono16MSB", false,
     [](C& c, const FrameJob& j) { return c.Mono16MSBSwapToMono16MSB(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Mono12p, L::Bgrx, "Mono16PixelPackedToBGRx", true,
     [](C& c, const FrameJob& j) { return c.Mono16PixelPackedToBGRx(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono12p, L::Bgr24, "Mono16PixelPackedToBGR24", true,
     [](C& c, const FrameJob& j) { return c.Mono16PixelPackedToBGR24(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono12p, L::Mono8, "Mono16PixelPackedToMono8", true,
     [](C& c, const FrameJob& j) { return c.Mono16PixelPackedToMono8(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono12p, L::Mono16, "Mono16PixelPackedToMono16", true,
     [](C& c, const FrameJob& j) { return c.Mono16PixelPackedToMono16(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono12p, L::Mono16Msb, "Mono16PixelPackedToMono16MSB", false,
     [](C& c, const FrameJob& j) { return c.Mono16PixelPackedToMono16MSB(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono12p8448, L::Bgrx, "Mono16PixelPacked8448ToBGRx", true,
     [](C& c, const FrameJob& j) { return c.Mono16PixelPacked8448ToBGRx(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono12p8448, L::Bgr24, "Mono16PixelPacked8448ToBGR24", true,
     [](C& c, const FrameJob& j) { return c.Mono16PixelPacked8448ToBGR24(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }, 4},
    {L::Mono12p8448, L::Mono8, "Mono16PixelPacked8448ToMono8", true,
     [](C& c, const FrameJob& j) { return c.Mono16PixelPacked8448ToMono8(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono12p8448, L::Mono16, "Mono16PixelPacked8448ToMono16", true,
     [](C& c, const FrameJob& j) { return c.Mono16PixelPacked8448ToMono16(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono12p8448, L::Mono16Msb, "Mono16PixelPacked8448ToMono16MSB", false,
     [](C& c, const FrameJob& j) { return c.Mono16PixelPacked8448ToMono16MSB(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono12pco, L::Bgrx, "MonoPcoPixelPackedToBGRx", true,
     [](C& c, const FrameJob& j) { return c.MonoPcoPixelPackedToBGRx(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono12pco, L::Bgr24, "MonoPcoPixelPackedToBGR24", true,
     [](C& c, const FrameJob& j) { return c.MonoPcoPixelPackedToBGR24(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono12pco, L::Mono8, "MonoPcoPixelPackedToMono8", true,
     [](C& c, const FrameJob& j) { return c.MonoPcoPixelPackedToMono8(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono12pco, L::Mono16, "MonoPcoPixelPackedToMono16", true,
     [](C& c, const FrameJob& j) { return c.MonoPcoPixelPackedToMono16(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono12pco, L::Mono16Msb, "MonoPcoPixelPackedToMono16MSB", false,
     [](C& c, const FrameJob& j) { return c.MonoPcoPixelPackedToMono16MSB(j.width, j.height, j.packedBits, j.depth, j.src, j.dst, j.flip); }},
    // Packed and planar colour sources; planar frames are read and written plane after plane.
    {L::Bgr24, L::Bgrx, "BGR24ToBGRx", true,
     [](C& c, const FrameJob& j) { return c.BGR24ToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr24, L::Bgr24, "BGR24ToBGR24", true,
     [](C& c, const FrameJob& j) { return c.BGR24ToBGR24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr24, L::Rgb24, "BGR24ToRGB24", false,
     [](C& c, const FrameJob& j) { return c.BGR24ToRGB24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr24, L::Bgr48, "BGR24ToBGR48", false,
     [](C& c, const FrameJob& j) { return c.BGR24ToBGR48(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr24, L::Rgb48, "BGR24ToRGB48", false,
     [](C& c, const FrameJob& j) { return c.BGR24ToRGB48(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr24, L::Bgr24p, "BGR24ToBGR24P", false,
     [](C& c, const FrameJob& j) { return c.BGR24ToBGR24P(j.width, j.height, j.src, Plane(j.dst, j, 0, 1), Plane(j.dst, j, 1, 1), Plane(j.dst, j, 2, 1), j.flip); }},
    {L::Rgb24, L::Bgrx, "RGB24ToBGRx", true,
     [](C& c, const FrameJob& j) { return c.RGB24ToBGRx(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Rgb24, L::Bgr24, "RGB24ToBGR24", true,
     [](C& c, const FrameJob& j) { return c.RGB24ToBGR24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgrx, L::Bgrx, "BGRxToBGRx", true,
     [](C& c, const FrameJob& j) { return c.BGRxToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgrx, L::Bgr24, "BGRxToBGR24", true,
     [](C& c, const FrameJob& j) { return c.BGRxToBGR24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Rbg32, L::Rgb24, "RBG32ToRGB24", false,
     [](C& c, const FrameJob& j) { return c.RBG32ToRGB24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr48, L::Bgrx, "BGR48ToBGRx", true,
     [](C& c, const FrameJob& j) { return c.BGR48ToBGRx(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Bgr48, L::Bgr24, "BGR48ToBGR24", true,
     [](C& c, const FrameJob& j) { return c.BGR48ToBGR24(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Bgr48, L::Bgr48, "BGR48ToBGR48", true,
     [](C& c, const FrameJob& j) { return c.BGR48ToBGR48(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Rgb48, L::Bgrx, "RGB48ToBGRx", true,
     [](C& c, const FrameJob& j) { return c.RGB48ToBGRx(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Rgb48, L::Bgr24, "RGB48ToBGR24", true,
     [](C& c, const FrameJob& j) { return c.RGB48ToBGR24(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Bgr64, L::Bgrx, "BGR64ToBGRx", true,
     [](C& c, const FrameJob& j) { return c.BGR64ToBGRx(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Bgr64, L::Bgr24, "BGR64ToBGR24", false,
     [](C& c, const FrameJob& j) { return c.BGR64ToBGR24(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Bgr64, L::Bgr48, "BGR64ToBGR48", true,
     [](C& c, const FrameJob& j) { return c.BGR64ToBGR48(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Bgr555, L::Bgrx, "BGR555PackedToBGRx", true,
     [](C& c, const FrameJob& j) { return c.BGR555PackedToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr555, L::Bgr24, "BGR555PackedToBGR24", true,
     [](C& c, const FrameJob& j) { return c.BGR555PackedToBGR24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr555, L::Rgb24, "BGR555PackedToRGB24", false,
     [](C& c, const FrameJob& j) { return c.BGR555PackedToRGB24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr565, L::Bgrx, "BGR565PackedToBGRx", true,
     [](C& c, const FrameJob& j) { return c.BGR565PackedToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr565, L::Bgr24, "BGR565PackedToBGR24", true,
     [](C& c, const FrameJob& j) { return c.BGR565PackedToBGR24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr565, L::Rgb24, "BGR565PackedToRGB24", false,
     [](C& c, const FrameJob& j) { return c.BGR565PackedToRGB24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr10, L::Bgrx, "BGR10PixelPackedToBGRx", true,
     [](C& c, const FrameJob& j) { return c.BGR10PixelPackedToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr10, L::Bgr24, "BGR10PixelPackedToBGR24", true,
     [](C& c, const FrameJob& j) { return c.BGR10PixelPackedToBGR24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr10Phoenix, L::Bgrx, "BGR10PixelPackedPhoenixToBGRx", true,
     [](C& c, const FrameJob& j) { return c.BGR10PixelPackedPhoenixToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr10Phoenix, L::Bgr24, "BGR10PixelPackedPhoenixToBGR24", true,
     [](C& c, const FrameJob& j) { return c.BGR10PixelPackedPhoenixToBGR24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Rgb10Phoenix, L::Bgrx, "RGB10PixelPackedPhoenixToBGRx", true,
     [](C& c, const FrameJob& j) { return c.RGB10PixelPackedPhoenixToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Rgb10Phoenix, L::Bgr24, "RGB10PixelPackedPhoenixToBGR24", true,
     [](C& c, const FrameJob& j) { return c.RGB10PixelPackedPhoenixToBGR24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::GvspBgr10v1, L::Bgrx, "GVSPBGR10v1ToBGRx", true,
     [](C& c, const FrameJob& j) { return c.GVSPBGR10v1ToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::GvspBgr10v1, L::Bgr24, "GVSPBGR10v1ToBGR", true,
     [](C& c, const FrameJob& j) { return c.GVSPBGR10v1ToBGR(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::GvspBgr10v2, L::Bgrx, "GVSPBGR10v2ToBGRx", true,
     [](C& c, const FrameJob& j) { return c.GVSPBGR10v2ToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::GvspBgr10v2, L::Bgr24, "GVSPBGR10v2ToBGR", true,
     [](C& c, const FrameJob& j) { return c.GVSPBGR10v2ToBGR(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr24p, L::Bgrx, "BGR24PToBGRx", true,
     [](C& c, const FrameJob& j) { return c.BGR24PToBGRx(j.width, j.height, Plane(j.src, j, 0, 1), Plane(j.src, j, 1, 1), Plane(j.src, j, 2, 1), j.dst, j.flip); }},
    {L::Bgr24p, L::Bgr24, "BGR24PToBGR24", true,
     [](C& c, const FrameJob& j) { return c.BGR24PToBGR24(j.width, j.height, Plane(j.src, j, 0, 1), Plane(j.src, j, 1, 1), Plane(j.src, j, 2, 1), j.dst, j.flip); }},
    {L::Bgr30p, L::Bgrx, "BGR30PToBGRx", true,
     [](C& c, const FrameJob& j) { return c.BGR30PToBGRx(j.width, j.height, Plane(j.src, j, 0, 2), Plane(j.src, j, 1, 2), Plane(j.src, j, 2, 2), j.dst, j.flip); }},
    {L::Bgr36p, L::Bgrx, "BGR36PToBGRx", true,
     [](C& c, const FrameJob& j) { return c.BGR36PToBGRx(j.width, j.height, Plane(j.src, j, 0, 2), Plane(j.src, j, 1, 2), Plane(j.src, j, 2, 2), j.dst, j.flip); }},
    {L::Bgr42p, L::Bgrx, "BGR42PToBGRx", true,
     [](C& c, const FrameJob& j) { return c.BGR42PToBGRx(j.width, j.height, j.depth, Plane(j.src, j, 0, 2), Plane(j.src, j, 1, 2), Plane(j.src, j, 2, 2), j.dst, j.flip); }},
    {L::Bgr48p, L::Bgr24, "BGR48PToBGR24", true,
     [](C& c, const FrameJob& j) { return c.BGR48PToBGR24(j.width, j.height, int32_t(j.depth), Plane(j.src, j, 0, 2), Plane(j.src, j, 1, 2), Plane(j.src, j, 2, 2), j.dst, j.flip); }},
    // The YUV family, and the encoders to packed and planar YUV; planar RGB
    // sources to YUV take their planes as R, G, B.
    {L::Yuv422, L::Bgrx, "YUV422ToBGRx", true, [](C& c, const FrameJob& j) { return c.YUV422ToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Yuv422, L::Bgr24, "YUV422ToBGR24", true, [](C& c, const FrameJob& j) { return c.YUV422ToBGR24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Yuv422, L::Rgb24, "YUV422ToRGB24", false, [](C& c, const FrameJob& j) { return c.YUV422ToRGB24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Yuv422, L::Yuv422p, "YUV422ToYUV422P", false, [](C&, const FrameJob& j) { return Encode422(C::YUV422ToYUV422P, j); }},
    {L::Yuv422, L::Yuv420p, "YUV422ToYUV420P", false, [](C&, const FrameJob& j) { return Encode420(C::YUV422ToYUV420P, j); }},
    {L::Uvy422, L::Bgrx, "UVY422ToBGRx", true, [](C& c, const FrameJob& j) { return c.UVY422ToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Uvy422, L::Bgr24, "UVY422ToBGR24", true, [](C& c, const FrameJob& j) { return c.UVY422ToBGR24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Uvy422, L::Rgb24, "UVY422ToRGB24", false, [](C& c, const FrameJob& j) { return c.UVY422ToRGB24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Uvy422, L::Yuv422p, "UVY422ToYUV422P", false, [](C&, const FrameJob& j) { return Encode422(C::UVY422ToYUV422P, j); }},
    {L::Uvy422, L::Yuv420p, "UVY422ToYUV420P", false, [](C&, const FrameJob& j) { return Encode420(C::UVY422ToYUV420P, j); }},
    {L::Uvy411, L::Bgrx, "UVY411ToBGRx", true, [](C& c, const FrameJob& j) { return c.UVY411ToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Uvy411, L::Bgr24, "UVY411ToBGR24", true, [](C& c, const FrameJob& j) { return c.UVY411ToBGR24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Uvy411, L::Rgb24, "UVY411ToRGB24", false, [](C& c, const FrameJob& j) { return c.UVY411ToRGB24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Uvy411, L::Yuv422, "UVY411ToYUV422", false, [](C& c, const FrameJob& j) { return c.UVY411ToYUV422(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Uvy411, L::Yuv422p, "YUV411ToYUV422P", false, [](C&, const FrameJob& j) { return Encode422(C::YUV411ToYUV422P, j); }},
    {L::Uvy411, L::Yuv420p, "YUV411ToYUV420P", false, [](C&, const FrameJob& j) { return Encode420(C::YUV411ToYUV420P, j); }},
    {L::Uvy444, L::Bgrx, "UVY444ToBGRx", true, [](C& c, const FrameJob& j) { return c.UVY444ToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Uvy444, L::Bgr24, "UVY444ToBGR24", true, [](C& c, const FrameJob& j) { return c.UVY444ToBGR24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Uvy444, L::Rgb24, "UVY444ToRGB24", false, [](C& c, const FrameJob& j) { return c.UVY444ToRGB24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Uvy444, L::Yuv422p, "YUV444ToYUV422P", false, [](C&, const FrameJob& j) { return Encode422(C::YUV444ToYUV422P, j); }},
    {L::Uvy444, L::Yuv420p, "YUV444ToYUV420P", false, [](C&, const FrameJob& j) { return Encode420(C::YUV444ToYUV420P, j); }},
    {L::Yuv422_20Bit, L::Bgrx, "YUV422_20BitToBGRx", false, [](C& c, const FrameJob& j) { return c.YUV422_20BitToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Yuv422_20Bit, L::Bgr24, "YUV422_20BitToBGR24", false, [](C& c, const FrameJob& j) { return c.YUV422_20BitToBGR24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Yuv422_10BitPP, L::Bgrx, "YUV422_10BitPPToBGRx", false, [](C& c, const FrameJob& j) { return c.YUV422_10BitPPToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Yuv422_10BitPP, L::Bgr24, "YUV422_10BitPPToBGR24", false, [](C& c, const FrameJob& j) { return c.YUV422_10BitPPToBGR24(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr24, L::Yuv422, "BGR24ToYUV422", false, [](C& c, const FrameJob& j) { return c.BGR24ToYUV422(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgrx, L::Yuv422, "BGR32ToYUV422", false, [](C& c, const FrameJob& j) { return c.BGR32ToYUV422(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Bgr24, L::Yuv422p, "BGR24PackedToYUV422P", false, [](C&, const FrameJob& j) { return Encode422(C::BGR24PackedToYUV422P, j); }},
    {L::Bgr24, L::Yuv420p, "BGR24PackedToYUV420P", false, [](C&, const FrameJob& j) { return Encode420(C::BGR24PackedToYUV420P, j); }},
    {L::Rgb24, L::Yuv422p, "RGB24PackedToYUV422P", false, [](C&, const FrameJob& j) { return Encode422(C::RGB24PackedToYUV422P, j); }},
    {L::Rgb24, L::Yuv420p, "RGB24PackedToYUV420P", false, [](C&, const FrameJob& j) { return Encode420(C::RGB24PackedToYUV420P, j); }},
    {L::Bgrx, L::Yuv422p, "BGR32PackedToYUV422P", false, [](C&, const FrameJob& j) { return Encode422(C::BGR32PackedToYUV422P, j); }},
    {L::Bgrx, L::Yuv420p, "BGR32PackedToYUV420P", false, [](C&, const FrameJob& j) { return Encode420(C::BGR32PackedToYUV420P, j); }},
    {L::Bgr555, L::Yuv422p, "BGR555PackedToYUV422P", false, [](C&, const FrameJob& j) { return Encode422(C::BGR555PackedToYUV422P, j); }},
    {L::Bgr555, L::Yuv420p, "BGR555PackedToYUV420P", false, [](C&, const FrameJob& j) { return Encode420(C::BGR555PackedToYUV420P, j); }},
    {L::Bgr565, L::Yuv422p, "BGR565PackedToYUV422P", false, [](C&, const FrameJob& j) { return Encode422(C::BGR565PackedToYUV422P, j); }},
    {L::Bgr565, L::Yuv420p, "BGR565PackedToYUV420P", false, [](C&, const FrameJob& j) { return Encode420(C::BGR565PackedToYUV420P, j); }},
    {L::Bgr24p, L::Yuv422p, "BGRPlannerToYUV422P", false, [](C&, const FrameJob& j) {
       return ToPlanarYuv(j, false, [&](void* y, void* u, void* v) { return C::BGRPlannerToYUV422P(j.width, j.height, Plane(j.src, j, 0, 1), Plane(j.src, j, 1, 1), Plane(j.src, j, 2, 1), y, u, v, j.flip); });
     }},
    {L::Bgr24p, L::Yuv420p, "BGRPlannerToYUV420P", false, [](C&, const FrameJob& j) {
       return ToPlanarYuv(j, true, [&](void* y, void* u, void* v) { return C::BGRPlannerToYUV420P(j.width, j.height, Plane(j.src, j, 0, 1), Plane(j.src, j, 1, 1), Plane(j.src, j, 2, 1), y, u, v, j.flip); });
     }},
};

}  // namespace

std::span<const Conversion> AllConversions() { return kConversions; }

const Conversion* FindConversion(LayoutId from, LayoutId to) {
  for (const Conversion& conversion : kConversions)
    if (conversion.from == from && conversion.to == to) return &conversion;
  return nullptr;
}

std::string TargetNames(LayoutId from) {
  std::string names;
  for (const Conversion& conversion : kConversions)
    if (conversion.from == from) names += (names.empty() ? "" : ", ") + std::string(LayoutOf(conversion.to).name);
  return names;
}

std::string SourceNames() {
  std::string names;
  for (const Layout& layout : AllLayouts())
    if (!TargetNames(layout.id).empty()) names += (names.empty() ? "" : ", ") + std::string(layout.name);
  return names;
}

std::vector<uint8_t> RunConversion(const Conversion& conversion, const ColourMapSettings& colourMap,
                                   uint32_t width, uint32_t height, uint32_t depth, std::span<uint8_t> src, bool flip,
                                   uint32_t packedBits) {
  const uint64_t pixels = uint64_t(width) * height;
  if (src.size() < SourceBytes(LayoutOf(conversion.from), width, height, packedBits))
    throw RunError("the source buffer is shorter than one frame");  // callers check first; this keeps it defined
  const uint32_t pixelBytes = LayoutOf(conversion.to).bytesPerPixel;
  const uint32_t rowPixelBytes =
      colourMap.Any() && conversion.mappedRowBytesPerPixel ? conversion.mappedRowBytesPerPixel : pixelBytes;
  // Packed sources write whole groups of pixels: up to nine slots of up to
  // 4 bytes a group of eight past the last row.
  std::vector<uint8_t> dst(pixels * rowPixelBytes + 36 * (uint64_t(width) / 8 + 1));
  CIppImageConverter converter;
  ApplyColourMap(converter, colourMap);
  const FrameJob job{width, height, depth, src.data(), dst.data(), flip, packedBits};
  if (!conversion.call(converter, job))
    throw RunError(std::string(conversion.method) + " refused a " + std::to_string(width) + "x" +
                   std::to_string(height) + " frame at depth " + std::to_string(depth));
  for (uint64_t row = 1; rowPixelBytes != pixelBytes && row < height; ++row)  // rows packed tightly again
    std::memmove(&dst[row * width * pixelBytes], &dst[row * width * rowPixelBytes], size_t(width) * pixelBytes);
  dst.resize(FrameBytes(LayoutOf(conversion.to), width, height));
  return dst;
}

}  // namespace kestrelink::tool
