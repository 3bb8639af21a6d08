#include "jpeg2000/Codestream.h"

namespace kestrelink::j2k {
namespace {

void PutType(ByteStream& out, const char (&type)[5]) {
  for (int i = 0; i < 4; ++i) out.PutByte(uint8_t(type[i]));
}

}  // namespace

void WriteJp2Boxes(ByteStream& out, const CodestreamShape& shape) {
  out.PutUInt32(12);
  PutType(out, "jP  ");
  out.PutUInt32(0x0D0A870A);

  out.PutUInt32(20);
  PutType(out, "ftyp");
  PutType(out, "jp2 ");
  out.PutUInt32(0);
  PutType(out, "jp2 ");

  out.PutUInt32(8 + 22 + 15);
  PutType(out, "jp2h");
  out.PutUInt32(22);
  PutType(out, "ihdr");
  out.PutUInt32(shape.width);  // width first: settled behaviour of the files
  out.PutUInt32(shape.height);
  out.PutUInt16(shape.components);
  out.PutByte(7);
  out.PutByte(7);
  out.PutByte(0);
  out.PutByte(0);
  out.PutUInt32(15);
  PutType(out, "colr");
  out.PutByte(1);
  out.PutByte(0);
  out.PutByte(0);
  out.PutUInt32(shape.components == 3 ? 16 : 17);

  out.PutUInt32(0);
  PutType(out, "jp2c");
}

void WriteMainHeader(ByteStream& out, const CodestreamShape& shape) {
  out.PutUInt16(0xFF4F);

  out.PutUInt16(0xFF51);
  out.PutUInt16(38 + 3 * shape.components);
  out.PutUInt16(0);
  out.PutUInt32(shape.width);
  out.PutUInt32(shape.height);
  out.PutUInt32(0);
  out.PutUInt32(0);
  out.PutUInt32(shape.width);
  out.PutUInt32(shape.height);
  out.PutUInt32(0);
  out.PutUInt32(0);
  out.PutUInt16(shape.components);
  for (uint32_t c = 0; c < shape.components; ++c) {
    out.PutByte(7);
    out.PutByte(1);
    out.PutByte(1);
  }

  out.PutUInt16(0xFF52);
  out.PutUInt16(12);
  out.PutByte(0);
  out.PutByte(0);
  out.PutUInt16(1);
  out.PutByte(shape.components == 3 ? 1 : 0);
  out.PutByte(uint8_t(shape.levels));
  out.PutByte(4);
  out.PutByte(4);
  out.PutByte(0);
  out.PutByte(1);

  // Without the wavelet the segment goes out with an empty body: settled behaviour of the format.
  const uint32_t bands = shape.useWavelet ? 1 + 3 * shape.levels : 0;
  out.PutUInt16(0xFF5C);
  out.PutUInt16(shape.useWavelet ? 3 + bands : 2);
  if (!shape.useWavelet) return;
  // One set of exponents for every component, colour-transformed ones too: settled behaviour of the format.
  out.PutByte(uint8_t(kGuardBits << 5));
  out.PutByte(uint8_t(kExponentLL << 3));
  for (uint32_t l = 0; l < shape.levels; ++l) {
    out.PutByte(uint8_t(kExponentHLLH << 3));
    out.PutByte(uint8_t(kExponentHLLH << 3));
    out.PutByte(uint8_t(kExponentHH << 3));
  }
}

void WriteTilePartHeader(ByteStream& out) {
  out.PutUInt16(0xFF90);
  out.PutUInt16(10);
  out.PutUInt16(0);
  out.PutUInt32(0);
  out.PutByte(0);
  out.PutByte(1);
  out.PutUInt16(0xFF93);
}

void WriteEndOfCodestream(ByteStream& out) { out.PutUInt16(0xFFD9); }

}  // namespace kestrelink::j2k
