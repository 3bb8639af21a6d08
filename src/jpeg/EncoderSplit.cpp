// The split scan: with a team and no restart interval, the MCU rows are cut
// into one run per thread. Each thread transforms and codes its run; a run
// but the first starts from the DC values of the block before it, which its
// thread takes from the transform of the previous run's last row (done
// twice, once by each thread). The first run goes straight into the output;
// each later one is coded into bytes of its own as if it began the scan,
// and is joined on by taking its stuffing out again and putting its bits
// through the output's coder, so the joined stream is the single thread's,
// byte for byte.
#include <algorithm>

#include <omp.h>

#include "jpeg/CJPEGEncoder.h"

namespace kestrelink::jpeg {

JERRCODE CJPEGEncoder::CodeSplit() {
  const int rows = m_mcusY, parts = std::min(m_threads, rows);
  if (int(m_parts.size()) < parts) m_parts.resize(size_t(parts));
  const size_t mcuBytes = size_t(kBlockBytes) * size_t(BlocksPerMcu());
  JERRCODE status = JPEG_OK;
#pragma omp parallel num_threads(parts)
  {
    const int thread = omp_get_thread_num();
    const CoefRow slot = SlotRow(thread);
    uint8_t* const scratch = SlotScratch(thread);
    auto rowOf = [&](int r) {
      if (m_coefReady) return FrameRow(r);
      TransformRow(r, scratch, slot);
      return slot;
    };
#pragma omp for schedule(static, 1)
    for (int p = 0; p < parts; ++p) {
      const int first = int(int64_t(rows) * p / parts), end = int(int64_t(rows) * (p + 1) / parts);
      if (p == 0) {
        int restartsLeft = 0, nextRestart = 0;
        JERRCODE s = JPEG_OK;
        for (int r = first; r < end && s == JPEG_OK; ++r) s = CodeRow(rowOf(r), restartsLeft, nextRestart);
        if (s != JPEG_OK) status = s;
        continue;
      }
      // The last block of each component in the row before the run.
      int32_t lastDc[4] = {};
      const CoefRow before = rowOf(first - 1);
      for (int c = 0; c < m_jpegChannels; ++c) {
        const CJPEGColorComponent& comp = m_comp[c];
        lastDc[c] = before.comp[c][(size_t(comp.v - 1) * comp.blocksX + size_t(m_mcusX) * comp.h - 1) * 64];
      }
      Part& part = m_parts[size_t(p)];
      part.used = 0;
      CJPEGEncoderHuffmanState state;
      state.Reset();
      for (int r = first; r < end; ++r) {
        const CoefRow row = rowOf(r);
        for (int mx = 0; mx < m_mcusX; ++mx) {
          if (part.bytes.size() - part.used < mcuBytes)
            part.bytes.resize(std::max(2 * part.bytes.size(), part.used + mcuBytes + 65536));
          state.m_out = part.bytes.data() + part.used;
          CodeMcu(row, mx, state, lastDc);
          part.used = size_t(state.m_out - part.bytes.data());
        }
      }
      part.tail = state;
    }
  }
  for (int p = 1; p < parts && status == JPEG_OK; ++p) status = JoinPart(m_parts[size_t(p)]);
  return status;
}

JERRCODE CJPEGEncoder::JoinPart(const Part& part) {
  // In pieces of at most 16384 coded bytes, which give at most twice as
  // many with the stuffing redone.
  constexpr size_t kPiece = 16384;
  size_t i = 0;
  while (i < part.used) {
    if (JERRCODE s = m_out.Reserve(uint32_t(2 * kPiece + 16))) return s;
    uint8_t* base = m_out.Current();
    m_state.m_out = base;
    const size_t end = std::min(part.used, i + kPiece);
    uint32_t word = 0, bytes = 0;
    while (i < end) {
      const uint8_t b = part.bytes[i];
      i += b == 0xFF ? 2 : 1;  // a 0xFF byte is always followed by its stuffed zero
      word = (word << 8) | b;
      if (++bytes == 4) {
        m_state.Put(word, 32);
        word = bytes = 0;
      }
    }
    if (bytes) m_state.Put(word, 8 * bytes);
    m_out.Advance(uint32_t(m_state.m_out - base));
  }
  if (const uint32_t n = part.tail.PendingCount()) {
    if (JERRCODE s = m_out.Reserve(16)) return s;
    uint8_t* base = m_out.Current();
    m_state.m_out = base;
    m_state.Put(uint32_t(part.tail.PendingBits()), n);
    m_out.Advance(uint32_t(m_state.m_out - base));
  }
  return JPEG_OK;
}

}  // namespace kestrelink::jpeg
