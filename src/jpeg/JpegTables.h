#pragma once
// Fixed tables of the format: the zigzag order, the example quantisation and
// Huffman tables of the standard's Annex K, and the quality rule.
#include <cstdint>

namespace kestrelink::jpeg {

// kZigzagToNatural[k]: natural (row-major) index of the k-th coefficient in
// zigzag order; 16 extra entries of 63 let a damaged run land harmlessly.
extern const uint8_t kZigzagToNatural[64 + 16];
extern const uint8_t kNaturalToZigzag[64];

// Annex K tables K.1 (luminance) and K.2 (chrominance), in zigzag order.
extern const uint8_t kLumaQuantZigzag[64];
extern const uint8_t kChromaQuantZigzag[64];

// Annex K Huffman tables: 16 code-length counts, then the values.
struct HuffmanSpec {
  uint8_t bits[16];
  uint8_t values[256];
  int count;
};
extern const HuffmanSpec kLumaDcSpec;
extern const HuffmanSpec kLumaAcSpec;
extern const HuffmanSpec kChromaDcSpec;
extern const HuffmanSpec kChromaAcSpec;

// The quality rule: quality 0 keeps the table; 1 to 49 scale 5000 / quality,
// from 50 on 200 - 2 x quality; entries (entry x scale + 50) / 100 held in
// 1 .. 255. Answers false for a negative quality.
bool ScaleQuantTable(const uint8_t in[64], int quality, uint16_t out[64]);

}  // namespace kestrelink::jpeg
