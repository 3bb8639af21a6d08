#pragma once
// Writing look files: an XML document whose root `look` holds a 3D table
// (`LUT`) and a 1D table (`LUT1D`), each as a quoted size and hexadecimal
// float data, as CIppBayerCorrector::LoadIridasLookLUT reads them.
#include <functional>
#include <string>

namespace kestrelink::tool {

// Node (a, b, c) of a 3D table, a the slowest axis (the blue sample), c the
// fastest (red), each from 0 to size - 1; fills red, green and blue results
// at 1.0 full scale.
using LookNode = std::function<void(int a, int b, int c, float rgb[3])>;
// Entry i of the 1D table: red, green and blue.
using LookEntry = std::function<void(int i, float rgb[3])>;

// The document's text; a size of 0 leaves that table out.
std::string LookDocumentText(int size, const LookNode& node, int size1D, const LookEntry& entry);

// Writes the document to `path`; false when it can't be written.
bool WriteLookFile(const std::string& path, const std::string& document);

// The demo's grade: warm highlights, cool shadows and an S-shaped contrast,
// with a little saturation added.
void DemoGradeNode(int size, int a, int b, int c, float rgb[3]);

}  // namespace kestrelink::tool
