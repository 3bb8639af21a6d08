// Quantised planes through the Huffman coder: the planes' ranges, then the
// codes of every block in its place of the plane's raster.
#include "compress/wavelet/SimpleCompressor.h"

#include <cstdio>
#include <cstring>
#include <mutex>

#include "compress/wavelet/WaveletCompression.h"
#include "compress/wavelet/WaveletFrame.h"
#include "platform/DebugSink.h"
#include "platform/OpenMP.h"

using namespace kestrelink::wavelet;

namespace {

void StoreFloat(uint8_t* p, float v) {
  uint32_t bits;
  std::memcpy(&bits, &v, 4);
  WriteFrameTotal(p, bits);
}

float LoadFloat(const uint8_t* p) {
  const uint32_t bits = ReadFrameTotal(p);
  float v;
  std::memcpy(&v, &bits, 4);
  return v;
}

// The code of the sample at (x, y) of a plane's raster.
uint8_t* CodeAt(uint8_t* raster, const WaveletPlane& plane, int x, int y, uint32_t codeBytes) {
  return raster + (size_t(y) * size_t(plane.paddedWidth) + size_t(x)) * codeBytes;
}

}  // namespace

bool CSimpleCompressor::SetInteger(bool isInteger) {
  m_isInteger = isInteger;
  m_quantizer.Init(m_owner->m_quantBits, m_owner->m_encodeRatio);
  return true;
}

uint32_t CSimpleCompressor::RasterBytes(int planeCount, WaveletPlane** planes) const {
  uint64_t bytes = 0;
  for (int p = 0; p < planeCount; ++p)
    bytes += uint64_t(planes[p]->paddedWidth) * uint64_t(planes[p]->paddedHeight) * CodeBytes();
  return uint32_t(bytes);
}

uint32_t CSimpleCompressor::MaxFrameBytes(int planeCount, WaveletPlane** planes) {
  return kFrameHeaderBytes + 8 * uint32_t(planeCount) + 2 * RasterBytes(planeCount, planes);
}

bool CSimpleCompressor::Encode(int planeCount, WaveletPlane** planes, void* dst) {
  auto* out = static_cast<uint8_t*>(dst);
  const uint32_t codeBytes = CodeBytes();
  m_codes.assign(RasterBytes(planeCount, planes), 0);
  uint8_t* raster = m_codes.data();
  for (int p = 0; p < planeCount; ++p) {
    WaveletPlane& plane = *planes[p];
    const int64_t count = plane.blockCount;
    float max = -1e7f, min = 1e7f;
    std::mutex running;  // the plane's running range, shared by the blocks
#pragma omp parallel for schedule(static) num_threads(kestrelink::platform::TeamSize())
    for (int64_t b = 0; b < count; ++b) {
      const std::lock_guard<std::mutex> hold(running);
      for (const int32_t v : plane.blocks[size_t(b)]->samples) {
        max = std::max(max, float(v));
        min = std::min(min, float(v));
      }
    }
#pragma omp parallel for schedule(static) num_threads(kestrelink::platform::TeamSize())
    for (int64_t b = 0; b < count; ++b) {
      const WaveletBlock& block = *plane.blocks[size_t(b)];
      for (int y = 0; y < 32; ++y) {
        uint8_t* row = CodeAt(raster, plane, block.x, block.y + y, codeBytes);
        for (int x = 0; x < 32; ++x) {
          const uint32_t code = m_quantizer.Quantize(block.rows[y][x], max, min);
          row[codeBytes * size_t(x)] = uint8_t(code);
          if (codeBytes == 2) row[2 * size_t(x) + 1] = uint8_t(code >> 8);
        }
      }
    }
    StoreFloat(out + kFrameHeaderBytes + 8 * p, max);
    StoreFloat(out + kFrameHeaderBytes + 8 * p + 4, min);
    raster = CodeAt(raster, plane, 0, plane.paddedHeight, codeBytes);
  }
  const uint32_t header = kFrameHeaderBytes + 8 * uint32_t(planeCount);
  const uint32_t coded = m_entropy.EncodeBuffer(m_codes.data(), uint32_t(m_codes.size()), out + header);
  const uint32_t total = header + coded;
  WriteFrameTotal(out, total);
  char line[96];
  std::snprintf(line, sizeof line, "Compression size is ************************%f",
                double(m_owner->m_width) * m_owner->m_height / total);
  kestrelink::platform::OutputDebugString(line);
  return true;
}

bool CSimpleCompressor::Decode(const void* src, uint32_t srcBytes, int planeCount, WaveletPlane** planes) {
  const auto* frame = static_cast<const uint8_t*>(src);
  const uint32_t bound = FrameBound(frame, srcBytes);
  const uint32_t header = kFrameHeaderBytes + 8 * uint32_t(planeCount);
  if (bound < header) return false;
  const uint32_t codeBytes = CodeBytes();
  m_codes.assign(RasterBytes(planeCount, planes), 0);
  m_entropy.DecodeBuffer(bound - header, frame + header, uint32_t(m_codes.size()), m_codes.data());
  uint8_t* raster = m_codes.data();
  for (int p = 0; p < planeCount; ++p) {
    WaveletPlane& plane = *planes[p];
    const float max = LoadFloat(frame + kFrameHeaderBytes + 8 * p), min = LoadFloat(frame + kFrameHeaderBytes + 8 * p + 4);
    const int64_t count = plane.blockCount;
#pragma omp parallel for schedule(static) num_threads(kestrelink::platform::TeamSize())
    for (int64_t b = 0; b < count; ++b) {
      WaveletBlock& block = *plane.blocks[size_t(b)];
      for (int y = 0; y < 32; ++y) {
        const uint8_t* row = CodeAt(raster, plane, block.x, block.y + y, codeBytes);
        for (int x = 0; x < 32; ++x) {
          const uint32_t code = codeBytes == 2 ? uint32_t(row[2 * x] | row[2 * x + 1] << 8) : row[x];
          block.rows[y][x] = m_quantizer.Dequantize(code, max, min);
        }
      }
    }
    raster = CodeAt(raster, plane, 0, plane.paddedHeight, codeBytes);
  }
  return true;
}
