#pragma once
// The Huffman method's workers, shared by CIppImageCompress and
// CHuffmanEntropy. Their messages go to standard error.
#include <cstdint>

namespace kestrelink::compress {

// Writes the packed code-length table and the code bits of `size` bytes of
// src into dst. `length` is the room on the way in and the bytes written
// on the way out; after a failure it keeps the room. Answers 0, or the
// status for a table that does not fit.
int32_t EncodeHuffman(const uint8_t* src, uint32_t size, uint8_t* dst, uint32_t& length);

// Decodes srcLen bytes (table, then code bits) into dst, at most `size`
// bytes; once the code bits are reached `size` becomes the number decoded.
// Answers the first failing status, or 0.
int32_t DecodeHuffman(const uint8_t* src, int32_t srcLen, uint8_t* dst, uint32_t& size);

}  // namespace kestrelink::compress
