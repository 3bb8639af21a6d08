#pragma once
#include <cstdint>

#include <kestrelink/Export.h>

// Lossless methods of CIppImageCompress. The method is not recorded in the
// stream: encoder and decoder must be given the same one.
enum IppCompressType : int32_t {
  IppCompressHuffman = 1,  // order-0 Huffman over bytes
  IppCompressLZ77 = 2,     // LZSS with a 32 KiB window
  IppCompressRLE = 3,      // byte run-length coding
};

// Compresses one frame buffer without loss, as a plain run of bytes. A
// stream is a little-endian 32-bit total length (this field included), then
// the method's payload; the raw length is not recorded either.
//
//   CIppImageCompress codec;
//   const uint32_t room = codec.InitCompress(IppCompressRLE, frameBytes);
//   std::vector<uint8_t> stream(room + 4);
//   const uint32_t payload = codec.EncodeImage(frame, stream.data());  // stream holds payload + 4 bytes
//   codec.DecodeImage(stream.data(), frameCopy);                       // frameCopy holds frameBytes
//
// Failures are printed to standard error and do not reach the caller: the
// results below stand whatever the workers met.
class KESTRELINK_API CIppImageCompress {
 public:
  // Sets up the thread team; the method is Huffman and the size 0.
  CIppImageCompress();
  ~CIppImageCompress();

  // Stores both unconditionally. Answers the room a payload may need,
  // 2 * size (in 32 bits), or 0 for a type other than 1, 2 and 3.
  uint32_t InitCompress(IppCompressType type, uint32_t size);

  // Encodes m_size bytes of src. dst must hold what InitCompress answered
  // plus 4 bytes. Answers the payload length (without the 4 bytes of the
  // total), and 0 with nothing written for an unknown method. After a
  // failure the answer (and the total) is the room, 2 * m_size.
  uint32_t EncodeImage(void* src, void* dst);

  // Decodes the stream at src into dst, which must hold m_size bytes; the
  // decoder stops there. m_size becomes the number of bytes decoded, so a
  // short stream shrinks the frame that the next call on this object uses.
  // Answers true, even after a failed decode; false for an unknown method.
  bool DecodeImage(void* src, void* dst);

  // The method in force and the size of one raw frame in bytes; after a
  // decode, m_size is the number of bytes that it produced.
  IppCompressType m_type;
  uint32_t m_size;

 private:
  // The method workers: the payload goes to or comes from the given buffer.
  // `length` is the room on the way in and the payload length on the way
  // out; it keeps the room after a failure. They answer their status.
  int32_t EncodeHuffmanImage(void* src, void* dst, uint32_t& length);
  int32_t EncodeLZ77Image(void* src, void* dst, uint32_t& length);
  int32_t EncodeRLEImage(void* src, void* dst, uint32_t& length);
  int32_t DecodeHuffmanImage(void* src, int32_t srcLen, void* dst);
  int32_t DecodeLZ77Image(void* src, int32_t srcLen, void* dst);
  int32_t DecodeRLEImage(void* src, int32_t srcLen, void* dst);
};
