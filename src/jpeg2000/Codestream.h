#pragma once
// The markers and boxes around the packets, written once here.
//
// JP2 file, all fields big-endian:
//   offset  size  field
//   0       12    signature box: LBox 12, "jP  ", 0D 0A 87 0A
//   12      20    file type box: LBox 20, "ftyp", BR "jp2 ", MinV 0, CL "jp2 "
//   32      45    header box: LBox 45, "jp2h", holding
//   40      22      image header: LBox 22, "ihdr", width (32), height (32),
//                   components (16), BPC 7, C 7, UnkC 0, IPR 0
//   62      15      colour: LBox 15, "colr", METH 1, PREC 0, APPROX 0,
//                   EnumCS 16 (sRGB, three components) or 17 (grey)
//   77      8     codestream box: LBox 0 (to the end of the file), "jp2c"
//   85            main header, tile-part header, packets, EOC
//
// The image header carries the width where the box layout names the height
// and the height where it names the width: a settled behaviour of the files.
//
// Codestream segments (marker, 16-bit length counting itself, fields):
//   SOC FF4F
//   SIZ FF51  Rsiz 0, Xsiz, Ysiz, XOsiz 0, YOsiz 0, XTsiz, YTsiz, XTOsiz 0,
//             YTOsiz 0, Csiz, then per component Ssiz 7, XRsiz 1, YRsiz 1
//   COD FF52  Scod 0, LRCP, 1 layer, colour transform flag, levels,
//             code-block exponents 4 and 4 (64 x 64), style 0, 5-3 filter
//   QCD FF5C  Sqcd 0x40 (2 guard bits, no quantisation), LL exponent 8, then
//             per level HL 9, LH 9, HH 10, each as exponent << 3
//   SOT FF90  Isot 0, Psot 0 (to EOC), TPsot 0, TNsot 1
//   SOD FF93, EOC FFD9
#include <cstdint>

#include "jpeg2000/ByteStream.h"

namespace kestrelink::j2k {

struct CodestreamShape {
  uint32_t width;
  uint32_t height;
  uint32_t components;
  uint32_t levels;
  bool useWavelet;
};

void WriteJp2Boxes(ByteStream& out, const CodestreamShape& shape);
void WriteMainHeader(ByteStream& out, const CodestreamShape& shape);
void WriteTilePartHeader(ByteStream& out);
void WriteEndOfCodestream(ByteStream& out);

// Guard bits and exponents of the quantisation segment, which bound the
// bit-planes of each band: guard + exponent - 1.
inline constexpr uint32_t kGuardBits = 2;
inline constexpr uint32_t kExponentLL = 8, kExponentHLLH = 9, kExponentHH = 10;

}  // namespace kestrelink::j2k
