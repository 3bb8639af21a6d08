#include "jpeg2000/Jpeg2kConversionBase.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "frame/RowLoop.h"
#include "jpeg2000/ByteStream.h"
#include "jpeg2000/Codestream.h"
#include "jpeg2000/SampleLayouts.h"
#include "jpeg2000/TileEncoder.h"
#include "jpeg2000/Wavelet53.h"
#include "jpeg2000/WaveletKernels.h"
#include "platform/DebugSink.h"

using namespace kestrelink;
using namespace kestrelink::j2k;

namespace {

// The one tile covers the image, whose sides the single precinct of each
// resolution (exponent 15) bounds.
constexpr uint32_t kLargestSide = 1u << 15;

// One plane of samples per component, width * height each, plus the column
// pass's scratch. Each is its own allocation, left uninitialised unless
// asked: blocks of a frame's size come back from the allocator's heap on
// the next call rather than as fresh pages to fault in and clear.
struct Planes {
  std::unique_ptr<int32_t[]> storage[4];
  int32_t* plane[3] = {nullptr, nullptr, nullptr};
  int32_t* scratch = nullptr;
  Planes(uint32_t width, uint32_t height, uint32_t components, bool zeroed) {
    const size_t n = size_t(width) * height;
    for (uint32_t i = 0; i <= components; ++i)
      storage[i] = zeroed ? std::make_unique<int32_t[]>(n) : std::unique_ptr<int32_t[]>(new int32_t[n]);
    for (uint32_t c = 0; c < components; ++c) plane[c] = storage[c].get();
    scratch = storage[components].get();
  }
};

void ColourRows(uint32_t width, uint32_t height, int32_t* const p[3], bool forward) {
  const WaveletKernels& k = ActiveWaveletKernels();
  const auto row = forward ? k.rctForward : k.rctInverse;
  ForEachRow(height, false, [&](uint32_t y, uint32_t) {
    const size_t at = size_t(y) * width;
    row(p[0] + at, p[1] + at, p[2] + at, width);
  });
}

}  // namespace

void CJpeg2kConversionBase::Init(uint32_t width, uint32_t height, uint32_t third, uint32_t format) {
  m_width = width;
  m_height = height;
  m_param3a = m_param3b = third;
  m_format = format;
  m_components = IsMonoFormat(format) ? 1 : 3;
  ExponentRows precincts, blocks;
  for (auto& row : precincts) row = {15, 15, 15};
  for (auto& row : blocks) row = {6, 6, 6};
  m_componentDepths.assign(m_components, ComponentDepth{8, m_levels});
  m_componentLevels.assign(m_components, m_levels);
  m_precinctWidthExp.assign(m_components, precincts);
  m_precinctHeightExp.assign(m_components, precincts);
  m_codeblockWidthExp.assign(m_components, blocks);
  m_codeblockHeightExp.assign(m_components, blocks);
  m_componentRects.assign(m_components, ComponentRect{0, 0, width, height});
  m_componentBits.assign(m_components, 8);
}

bool CJpeg2kConversionBase::Codable() const {
  return m_width > 0 && m_height > 0 && m_width <= kLargestSide && m_height <= kLargestSide;
}

bool CJpeg2kConversionBase::WritePackets(void* plane0, void* plane1, void* plane2, ByteStream& out) {
  void* const sources[3] = {plane0, plane1, plane2};
  if (plane2 == nullptr || (m_format == 300 && (plane0 == nullptr || plane1 == nullptr))) return false;
  Planes planes(m_width, m_height, m_components, false);
  LoadSamples(m_format, m_width, m_height, sources, planes.plane);
  if (m_components == 3) ColourRows(m_width, m_height, planes.plane, true);
  if (m_useWavelet)
    for (uint32_t c = 0; c < m_components; ++c)
      Forward53(PlaneView{planes.plane[c], m_width, m_width, m_height}, m_componentLevels[c], planes.scratch);
  const TileSettings tile{m_width,           m_height, m_components, m_useWavelet ? m_levels : 0,
                          m_codeblockWidthExp[0][0][0], m_codeblockHeightExp[0][0][0]};
  WriteTilePackets(tile, planes.plane, out);
  return true;
}

bool CJpeg2kConversionBase::Encode(void* plane0, void* plane1, void* plane2, void* out) {
  if (out == nullptr || !Codable()) return false;
  ByteStream stream;
  if (!WritePackets(plane0, plane1, plane2, stream)) return false;
  const uint32_t count = uint32_t(stream.Count());
  uint8_t* bytes = static_cast<uint8_t*>(out);
  for (int i = 0; i < 4; ++i) bytes[i] = uint8_t(count >> (8 * i));
  stream.Drain(bytes + 4);
  return true;
}

bool CJpeg2kConversionBase::WriteToFile(const char* path, void* plane0, void* plane1, void* plane2) {
  if (path == nullptr || !Codable()) return false;
  const CodestreamShape shape{m_width, m_height, m_components, m_levels, m_useWavelet};
  ByteStream stream;
  WriteJp2Boxes(stream, shape);
  WriteMainHeader(stream, shape);
  WriteTilePartHeader(stream);
  if (!WritePackets(plane0, plane1, plane2, stream)) return false;
  WriteEndOfCodestream(stream);
  std::vector<uint8_t> file(stream.Count());
  stream.Drain(file.data());
  // Failures are told and still answer true: settled behaviour of the format.
  std::FILE* f = std::fopen(path, "w+b");
  if (f == nullptr) {
    platform::OutputDebugString("Jpeg2kconversion - Error creating file.");
    return true;
  }
  if (std::fwrite(file.data(), 1, file.size(), f) != file.size() || std::fflush(f) != 0)
    platform::OutputDebugString("Jpeg2kconversion - File write error.");
  std::fclose(f);
  return true;
}

// The packets at `in` are not read: the image follows from the settings
// alone and comes out flat. Settled behaviour of the format.
bool CJpeg2kConversionBase::Decode(void*, void* out0, void* out1, void* out2) {
  m_components = IsMonoFormat(m_format) ? 1 : 3;
  m_useColorTransform = m_components == 3;
  if (out2 == nullptr || (m_format == 300 && (out0 == nullptr || out1 == nullptr)) || !Codable()) return false;
  Planes planes(m_width, m_height, m_components, true);  // empty bands
  if (m_useWavelet)
    for (uint32_t c = 0; c < m_components; ++c)
      Inverse53(PlaneView{planes.plane[c], m_width, m_width, m_height}, m_levels, planes.scratch);
  if (m_useColorTransform) ColourRows(m_width, m_height, planes.plane, false);
  void* const targets[3] = {out0, out1, out2};
  const int32_t* const samples[3] = {planes.plane[0], planes.plane[1], planes.plane[2]};
  StoreSamples(m_format, m_width, m_height, samples, targets);
  return true;
}
