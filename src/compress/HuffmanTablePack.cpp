// The packed code-length table that opens every Huffman payload.
//
//   unit       size      field
//   nibble     4 bits    high nibble of each byte first
//   13,14,15   1 nibble  bank selector: the base becomes 0, 13 or 26 and
//                        stays until changed (it starts at 0); the next
//                        nibble is a value nibble
//   0..12      1 nibble  value nibble: the number is the nibble plus the base
//   (padding)  4 bits    0 in the low half of a last half-filled byte; the
//                        table ends at that byte boundary
//
// The numbers are the 256 code lengths of byte values 0 to 255, with runs:
// when a number equals the one before it twice in a row (before the first
// length stands a 0), the next number c repeats it c more times. So a value
// and r copies after it are written v, v, v, r - 2; a table that opens with
// zeros needs no first copy. Lengths and repeat counts share the bank. The
// writer cuts a run at 34 copies and starts the next one with the 35th.
#include <algorithm>

#include "compress/HuffmanKernels.h"

namespace {

inline constexpr int kRunLimit = 34;

class NibbleWriter {
 public:
  NibbleWriter(Ipp8u* dst, Ipp32s room) : m_Dst(dst), m_Room(room) {}

  void Number(int x) {
    const int base = x < 13 ? 0 : x < 26 ? 13 : 26;
    if (base != m_Base) {
      Nibble(13 + base / 13);
      m_Base = base;
    }
    Nibble(x - base);
  }
  // Bytes taken, the last half-filled one included; -1 when they overran the room.
  Ipp32s Finish() const { return m_Overrun ? -1 : (m_Nibbles + 1) / 2; }

 private:
  void Nibble(int v) {
    const Ipp32s byte = m_Nibbles / 2;
    if (byte >= m_Room) {
      m_Overrun = true;
    } else if (m_Nibbles % 2 == 0) {
      m_Dst[byte] = Ipp8u(v << 4);
    } else {
      m_Dst[byte] = Ipp8u(m_Dst[byte] | v);
    }
    ++m_Nibbles;
  }

  Ipp8u* m_Dst;
  Ipp32s m_Room;
  Ipp32s m_Nibbles = 0;
  int m_Base = 0;
  bool m_Overrun = false;
};

class NibbleReader {
 public:
  NibbleReader(const Ipp8u* src, Ipp32s size) : m_Src(src), m_Size(size) {}

  // False when the input ends first.
  bool Number(int& x) {
    int v;
    if (!Nibble(v)) return false;
    if (v >= 13) {
      m_Base = (v - 13) * 13;
      if (!Nibble(v)) return false;
    }
    x = v + m_Base;
    return true;
  }
  Ipp32s BytesTaken() const { return (m_Nibbles + 1) / 2; }

 private:
  bool Nibble(int& v) {
    const Ipp32s byte = m_Nibbles / 2;
    if (byte >= m_Size) return false;
    v = m_Nibbles % 2 == 0 ? m_Src[byte] >> 4 : m_Src[byte] & 15;
    ++m_Nibbles;
    return true;
  }

  const Ipp8u* m_Src;
  Ipp32s m_Size;
  Ipp32s m_Nibbles = 0;
  int m_Base = 0;
};

}  // namespace

IppStatus ippsHuffLenCodeTablePack_8u(const Ipp32s codeLenTable[256], Ipp8u* pDst, Ipp32s* pDstLen) {
  if (!codeLenTable || !pDst || !pDstLen) return ippStsNullPtrErr;
  if (*pDstLen <= 0) return ippStsSizeErr;
  NibbleWriter out(pDst, *pDstLen);
  int previous = 0, run = 0;  // the run counts copies after the first one
  auto flush = [&] {
    if (run > 0) out.Number(previous);
    if (run > 1) {
      out.Number(previous);
      out.Number(run - 2);
    }
  };
  for (int s = 0; s < 256; ++s) {
    const int v = codeLenTable[s];
    if (v < 0 || v > 38) return ippStsSizeErr;  // no number a nibble and a bank can carry
    if (v == previous && run != kRunLimit) {
      ++run;
      continue;
    }
    flush();
    if (v == previous) {  // the run stood at its limit
      run = 1;
      continue;
    }
    run = 0;
    previous = v;
    out.Number(v);
  }
  flush();
  const Ipp32s taken = out.Finish();
  if (taken < 0) return ippStsSizeErr;
  *pDstLen = taken;
  return ippStsNoErr;
}

IppStatus ippsHuffLenCodeTableUnpack_8u(const Ipp8u* pSrc, Ipp32s* pSrcLen, Ipp32s codeLenTable[256]) {
  if (!pSrc || !pSrcLen || !codeLenTable) return ippStsNullPtrErr;
  if (*pSrcLen <= 0) return ippStsSizeErr;
  NibbleReader in(pSrc, *pSrcLen);
  int previous = 0, same = 0, count = 0;
  while (count < 256) {
    int v;
    if (!in.Number(v)) return ippStsSizeErr;
    same = v == previous ? same + 1 : 0;
    codeLenTable[count++] = v;
    previous = v;
    if (same == 2) {
      int repeat;
      if (!in.Number(repeat)) return ippStsSizeErr;
      const int stored = std::min(repeat, 256 - count);  // never past entry 255
      std::fill(codeLenTable + count, codeLenTable + count + stored, v);
      count += stored;
      same = 0;
    }
  }
  *pSrcLen = in.BytesTaken();
  return ippStsNoErr;
}
