// Set-up of the wavelet codec and its encode and decode flows: blocks in,
// the lifting levels per block in parallel, then the coder; and back.
#include "compress/wavelet/WaveletCompression.h"

#include <chrono>
#include <cstdio>

#include "platform/DebugSink.h"
#include "platform/OpenMP.h"

namespace {

double MillisecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

void PrintTime(const char* format, double ms) {
  char line[96];
  std::snprintf(line, sizeof line, format, ms);
  kestrelink::platform::OutputDebugString(line);
}

}  // namespace

void CWaveletCompression::Reset() {
  for (auto& plane : m_planes) plane.reset();
  m_filters.reset();
  m_compressor.reset();
  m_filterType = m_coderType = 0;
  m_planeCount = 0;
  m_width = m_height = 0;
  m_quantBits = m_pixelBits = 0;
  m_encodeRatio = m_decodeRatio = 100;
  m_levels = 1;
  m_kind = 0;
}

bool CWaveletCompression::Setup(uint32_t kind, int width, int height, int quantBits, int pixelBits, int levels,
                                uint32_t filterType, std::unique_ptr<CCompressor> coder) {
  Reset();
  m_kind = kind;
  m_width = width;
  m_height = height;
  m_quantBits = quantBits;
  m_pixelBits = pixelBits;
  m_levels = levels;
  m_filterType = filterType;
  if (filterType != 1 || !coder) {
    Reset();
    return false;
  }
  m_filters = std::make_unique<WaveletFilterSet>();
  m_filters->integerFilter = std::make_unique<CDaubcies53Filter>();
  m_compressor = std::move(coder);
  m_compressor->m_owner = this;
  if (!m_compressor->SetInteger(m_filters->isInteger != 0)) {
    Reset();
    return false;
  }
  CreateBlocks(m_filters->isInteger != 0, levels + 1, width, height);
  return true;
}

WaveletPlane* CWaveletCompression::PlanePointers(WaveletPlane** out) {
  for (int p = 0; p < 3; ++p) out[p] = m_planes[p].get();
  return out[0];
}

void CWaveletCompression::Transform(bool forward) {
  CWaveletFilter<int32_t>& filter = *m_filters->integerFilter;
  const int levels = m_levels;
  for (int p = 0; p < m_planeCount; ++p) {
    WaveletPlane& plane = *m_planes[p];
    const int64_t count = plane.blockCount;
#pragma omp parallel for schedule(static) num_threads(kestrelink::platform::TeamSize())
    for (int64_t b = 0; b < count; ++b) {
      int32_t** rows = plane.blocks[size_t(b)]->rows;
      if (forward) {
        for (int l = 0; l < levels; ++l)
          if (!filter.Forward(32 >> l, 32 >> l, rows)) break;
      } else {
        for (int l = levels - 1; l >= 0; --l)
          if (!filter.Inverse(32 >> l, 32 >> l, rows)) break;
      }
    }
  }
}

bool CWaveletCompression::EncodeFrame(const void* src, void* dst) {
  if (!m_compressor || !m_filters || m_planeCount < 1) return false;
  const auto start = std::chrono::steady_clock::now();
  ImageToBlocks(src);
  Transform(true);
  PrintTime("Encode Time is ************************%f(ms),", MillisecondsSince(start));
  const auto coding = std::chrono::steady_clock::now();
  WaveletPlane* planes[3];
  PlanePointers(planes);
  const bool ok = m_compressor->Encode(m_planeCount, planes, dst);
  PrintTime("Compression Time is ************************%f(ms),", MillisecondsSince(coding));
  return ok;
}

bool CWaveletCompression::DecodeFrame(const void* src, uint32_t srcBytes, void* dst) {
  if (!m_compressor || !m_filters || m_planeCount < 1) return false;
  WaveletPlane* planes[3];
  PlanePointers(planes);
  if (!m_compressor->Decode(src, srcBytes, m_planeCount, planes)) return false;
  Transform(false);
  BlocksToImage(dst);
  return true;
}

uint32_t CWaveletCompression::MaxFrameBytes() {
  if (!m_compressor || m_planeCount < 1) return 0;
  WaveletPlane* planes[3];
  PlanePointers(planes);
  return m_compressor->MaxFrameBytes(m_planeCount, planes);
}
