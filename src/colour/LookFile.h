#pragma once
// Reading look files into look objects (see LookFile.cpp for the format).
#include <cstddef>
#include <cstdint>

struct LookLut;

namespace kestrelink::colour {

// Largest 1D curve taken from a file; a larger size counts as no 1D table.
inline constexpr int32_t kMaxLook1DSize = 1 << 20;

// The number in a size text: the decimal between the first and the last
// double quote (at most 31 characters of it); 0 without two quotes.
int32_t ParseLookSize(const char* text);

// Reads up to `capacity` floats from hexadecimal data text into `out`;
// answers how many were read. A partial float at the end is dropped.
size_t ReadLookFloats(const char* text, float* out, size_t capacity);

// What a document held, for the caller to finish the 3D part.
struct LookDocumentParts {
  bool parsed = false;  // the bytes were an XML document
  bool has1D = false;   // LUT1D was read into the curves
  bool has3D = false;   // LUT was read into lut3D (size and buffer set)
};

// Parses an XML look document and reads LUT1D, then LUT, into `look`. The 3D
// part stops at its raw nodes: the caller prepares the GPU or processor use.
LookDocumentParts ReadLookDocument(LookLut& look, const void* bytes, size_t length);

// Reads the file at look.path as above; parsed is false if it can't be read.
LookDocumentParts ReadLookFile(LookLut& look);

}  // namespace kestrelink::colour
