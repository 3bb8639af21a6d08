// Entropy decoding of the scans into the coefficient blocks: sequential
// blocks, and the four kinds of progressive scan (DC first and refinement,
// AC first and refinement with end-of-band runs). Coefficients are stored in
// natural order; damaged codes give zeros, never a write outside the block.
#include <atomic>
#include <cstring>
#include <thread>

#include <omp.h>

#include "jpeg/CJPEGDecoder.h"
#include "jpeg/JpegTables.h"

namespace kestrelink::jpeg {

void CJPEGDecoder::DecodeSequentialBlock(int16_t* coef, CJPEGColorComponent& c) {
  CJPEGDecoderHuffmanState& br = m_bits;
  const CJPEGDecoderHuffmanTable& dc = m_dcTable[c.dcTable];
  const CJPEGDecoderHuffmanTable& ac = m_acTable[c.acTable];
  std::memset(coef, 0, 64 * sizeof(int16_t));
  int t = br.Decode(dc);
  if (t > 15) t = 15;
  c.lastDc += CJPEGDecoderHuffmanState::Extend(br.Bits(t), t);
  coef[0] = int16_t(c.lastDc);
  for (int k = 1; k < 64;) {
    if (br.m_bits < 32) br.Fill();
    const int32_t fast = ac.m_fastAc[br.Peek(CJPEGDecoderHuffmanTable::kLookBits)];
    if (fast) {
      br.Skip(fast & 0xFF);
      k += (fast >> 8) & 0xFF;
      coef[kZigzagToNatural[k]] = int16_t(fast >> 16);
      ++k;
      continue;
    }
    const int rs = br.Decode(ac), r = rs >> 4, s = rs & 15;
    if (s) {
      k += r;
      coef[kZigzagToNatural[k]] = int16_t(CJPEGDecoderHuffmanState::Extend(br.Bits(s), s));
      ++k;
    } else if (r == 15) {
      k += 16;
    } else {
      break;
    }
  }
}

void CJPEGDecoder::DecodeDcFirst(int16_t* coef, CJPEGColorComponent& c) {
  int t = m_bits.Decode(m_dcTable[c.dcTable]);
  if (t > 15) t = 15;
  c.lastDc += CJPEGDecoderHuffmanState::Extend(m_bits.Bits(t), t);
  coef[0] = int16_t(uint32_t(c.lastDc) << m_al);
}

void CJPEGDecoder::DecodeDcRefine(int16_t* coef) {
  if (m_bits.Bits(1)) coef[0] = int16_t(coef[0] | (1 << m_al));
}

void CJPEGDecoder::DecodeAcFirst(int16_t* coef) {
  if (m_eobRun > 0) {
    --m_eobRun;
    return;
  }
  const CJPEGDecoderHuffmanTable& ac = m_acTable[m_comp[m_scanComps[0]].acTable];
  for (int k = m_ss; k <= m_se; ++k) {
    const int rs = m_bits.Decode(ac), r = rs >> 4, s = rs & 15;
    if (s) {
      k += r;
      const int32_t v = CJPEGDecoderHuffmanState::Extend(m_bits.Bits(s), s);
      coef[kZigzagToNatural[k]] = int16_t(uint32_t(v) << m_al);
    } else if (r < 15) {
      m_eobRun = (1 << r) - 1;
      if (r) m_eobRun += int(m_bits.Bits(r));
      break;
    } else {
      k += 15;
    }
  }
}

void CJPEGDecoder::DecodeAcRefine(int16_t* coef) {
  const CJPEGDecoderHuffmanTable& ac = m_acTable[m_comp[m_scanComps[0]].acTable];
  const int p1 = 1 << m_al, m1 = -p1;
  int k = m_ss;
  auto refine = [&](int16_t& v) {
    if (m_bits.Bits(1) && (v & p1) == 0) v = int16_t(v >= 0 ? v + p1 : v + m1);
  };
  if (m_eobRun == 0) {
    for (; k <= m_se; ++k) {
      const int rs = m_bits.Decode(ac);
      int r = rs >> 4, s = rs & 15, value = 0;
      if (s) {
        value = m_bits.Bits(1) ? p1 : m1;  // a new coefficient is always one bit
      } else if (r != 15) {
        m_eobRun = 1 << r;
        if (r) m_eobRun += int(m_bits.Bits(r));
        break;
      }
      // Skip r zero coefficients, refining the nonzero ones on the way.
      for (; k <= m_se; ++k) {
        int16_t& v = coef[kZigzagToNatural[k]];
        if (v != 0) {
          refine(v);
        } else {
          if (r == 0) break;
          --r;
        }
      }
      if (value && k <= m_se) coef[kZigzagToNatural[k]] = int16_t(value);
    }
  }
  if (m_eobRun > 0) {
    for (; k <= m_se; ++k) {
      int16_t& v = coef[kZigzagToNatural[k]];
      if (v != 0) refine(v);
    }
    --m_eobRun;
  }
}

void CJPEGDecoder::DecodeMcu(int16_t* const row[4], int mx) {
  for (int i = 0; i < m_scanCompCount; ++i) {
    const int comp = m_scanComps[i];
    CJPEGColorComponent& c = m_comp[comp];
    for (int y = 0; y < c.v; ++y)
      for (int x = 0; x < c.h; ++x)
        DecodeSequentialBlock(row[comp] + (size_t(y) * c.blocksX + size_t(mx) * c.h + x) * 64, c);
  }
}

// A sequential scan of every component: each MCU row is decoded into a slot
// and inverse-transformed straight into the planes, and the output rows are
// converted behind the transforms. With a team, one thread decodes the rows
// in order and a second transforms and converts behind it (further threads
// have no part in this stage); a slot is taken again once its last row's
// transform is done.
// No per-block or per-row allocation: the slots are made with the planes.
JERRCODE CJPEGDecoder::DecodeRowsDirect(const std::function<JERRCODE(bool)>& beforeMcu) {
  MakeDequantTables();
  auto slot = [&](int my, int16_t* row[4]) {
    int16_t* at = reinterpret_cast<int16_t*>(m_slotBuffer.Data()) + size_t(my % m_slotCount) * m_slotBlocks * 64;
    for (int c = 0; c < m_channels; ++c) {
      row[c] = at;
      at += size_t(m_comp[c].blocksX) * m_comp[c].v * 64;
    }
  };
  auto decodeRow = [&](int my, int16_t* const row[4]) -> JERRCODE {
    for (int mx = 0; mx < m_mcusX; ++mx) {
      if (JERRCODE s = beforeMcu(mx == 0 && my == 0)) return s;
      DecodeMcu(row, mx);
    }
    return JPEG_OK;
  };
  auto transformRow = [&](int my, int16_t* const row[4]) {
    for (int c = 0; c < m_channels; ++c)
      for (int y = 0; y < m_comp[c].v; ++y)
        TransformBlockRow(c, my * m_comp[c].v + y, row[c] + size_t(y) * m_comp[c].blocksX * 64);
  };
  JERRCODE status = JPEG_OK;
  if (m_slotCount == 1) {
    // One thread: each MCU row's output rows are converted once the row
    // below is transformed (the upsampling looks one chroma row ahead), while
    // the planes are still in the cache.
    const bool convert = m_dctScale == 1 && m_dst && CheckOutput() == JPEG_OK;
    int16_t* row[4];
    slot(0, row);
    for (int my = 0; my < m_mcusY && status == JPEG_OK; ++my) {
      status = decodeRow(my, row);
      if (status != JPEG_OK) break;
      transformRow(my, row);
      if (convert && my > 0) ConvertRange((my - 1) * m_mcuHeight, my * m_mcuHeight);
    }
    if (convert && status == JPEG_OK) {
      ConvertRange((m_mcusY - 1) * m_mcuHeight, m_height);
      m_converted = true;
    }
  } else {
    // A team: the first thread decodes the rows in order into the ring of
    // slots; the second takes each row once it is decoded, transforms it
    // and converts the output rows behind it, as the single thread does.
    // The hand-offs are two counters; a thread that waits gives up its core.
    const bool convert = m_dctScale == 1 && m_dst && CheckOutput() == JPEG_OK;
    std::atomic<int> decoded{0}, transformed{0};
    std::atomic<bool> finished{false};
    auto transformUpTo = [&](int rows) {
      for (int my = transformed.load(std::memory_order_relaxed); my < rows; ++my) {
        int16_t* row[4];
        slot(my, row);
        transformRow(my, row);
        if (convert && my > 0) ConvertRange((my - 1) * m_mcuHeight, my * m_mcuHeight);
        transformed.store(my + 1, std::memory_order_release);
      }
    };
#pragma omp parallel num_threads(2)
    {
      const bool alone = omp_get_num_threads() == 1;
      if (omp_get_thread_num() == 0) {
        for (int my = 0; my < m_mcusY; ++my) {
          while (my - transformed.load(std::memory_order_acquire) >= m_slotCount) {
            if (alone) transformUpTo(my);
            else std::this_thread::yield();
          }
          int16_t* row[4];
          slot(my, row);
          status = decodeRow(my, row);
          if (status != JPEG_OK) break;
          decoded.store(my + 1, std::memory_order_release);
        }
        finished.store(true, std::memory_order_release);
        if (alone) transformUpTo(decoded.load(std::memory_order_relaxed));
        // Waits for the last transforms here, yielding its core, rather than
        // spinning at the team's barrier.
        while (transformed.load(std::memory_order_acquire) < decoded.load(std::memory_order_relaxed))
          std::this_thread::yield();
      }
      if (omp_get_thread_num() == 1) {
        for (;;) {
          const bool last = finished.load(std::memory_order_acquire);
          const int rows = decoded.load(std::memory_order_acquire);
          if (rows > transformed.load(std::memory_order_relaxed)) transformUpTo(rows);
          else if (last) break;
          else std::this_thread::yield();
        }
      }
    }
    if (convert && status == JPEG_OK) {
      ConvertRange((m_mcusY - 1) * m_mcuHeight, m_height);
      m_converted = true;
    }
  }
  if (status != JPEG_OK) return status;
  for (int c = 0; c < m_channels; ++c) m_planeDone[c] = true;
  return JPEG_OK;
}

bool CJPEGDecoder::QuantTablesDefined() const {
  for (int c = 0; c < m_channels; ++c)
    if (!m_quantDefined[m_comp[c].quantTable]) return false;
  return true;
}

JERRCODE CJPEGDecoder::ProcessRestart() {
  // The coder padded its last byte; the marker must follow.
  m_bits.Restart();
  int b = 0;
  if (JERRCODE s = m_in.ReadByte(b)) return s;
  while (b == 0xFF) {
    if (JERRCODE s = m_in.ReadByte(b)) return s;
    if (b != 0xFF) break;
  }
  if (b != 0xD0 + m_nextRestart) return JPEG_BAD_RESTART;
  m_nextRestart = (m_nextRestart + 1) & 7;
  for (int c = 0; c < m_channels; ++c) m_comp[c].lastDc = 0;
  m_eobRun = 0;
  return JPEG_OK;
}

JERRCODE CJPEGDecoder::DecodeScan() {
  if (m_mode == JPEG_LOSSLESS) return DecodeLosslessScan();
  for (int i = 0; i < m_scanCompCount; ++i) {
    const CJPEGColorComponent& c = m_comp[m_scanComps[i]];
    const bool needDc = m_ss == 0 && m_ah == 0, needAc = m_se > 0;
    if (needDc && !m_dcTable[c.dcTable].m_defined) return JPEG_BAD_HUFF_SEGMENT;
    if (needAc && (m_ah == 0 || m_mode != JPEG_PROGRESSIVE) && !m_acTable[c.acTable].m_defined)
      return JPEG_BAD_HUFF_SEGMENT;
    if (needAc && m_mode == JPEG_PROGRESSIVE && !m_acTable[c.acTable].m_defined) return JPEG_BAD_HUFF_SEGMENT;
  }
  for (int c = 0; c < m_channels; ++c) m_comp[c].lastDc = 0;
  for (int i = 0; i < m_scanCompCount; ++i) m_scanned[m_scanComps[i]] = true;
  m_eobRun = 0;
  m_nextRestart = 0;
  m_bits.Start(&m_in);
  m_bits.m_ranOut = false;

  const bool progressive = m_mode == JPEG_PROGRESSIVE;
  enum Kind { kSequential, kDcFirst, kDcRefine, kAcFirst, kAcRefine };
  const Kind kind = !progressive ? kSequential
                    : m_ss == 0  ? (m_ah == 0 ? kDcFirst : kDcRefine)
                                 : (m_ah == 0 ? kAcFirst : kAcRefine);
  auto decodeBlock = [&](int comp, int bx, int by) {
    int16_t* coef = Block(comp, bx, by);
    switch (kind) {
      case kSequential: DecodeSequentialBlock(coef, m_comp[comp]); break;
      case kDcFirst: DecodeDcFirst(coef, m_comp[comp]); break;
      case kDcRefine: DecodeDcRefine(coef); break;
      case kAcFirst: DecodeAcFirst(coef); break;
      case kAcRefine: DecodeAcRefine(coef); break;
    }
  };

  int restartsLeft = m_restartInterval;
  const std::function<JERRCODE(bool)> beforeMcu = [&](bool first) -> JERRCODE {
    if (m_restartInterval == 0) return JPEG_OK;
    if (restartsLeft == 0 && !first) {
      if (JERRCODE s = ProcessRestart()) return s;
      restartsLeft = m_restartInterval;
    }
    --restartsLeft;
    return JPEG_OK;
  };

  if (kind == kSequential && m_scanCompCount == m_channels && QuantTablesDefined()) {
    if (JERRCODE s = DecodeRowsDirect(beforeMcu)) return s;
  } else {
    if (JERRCODE s = EnsureCoefficientStore()) return s;
    for (int i = 0; i < m_scanCompCount; ++i) m_planeDone[m_scanComps[i]] = false;
    m_converted = false;
    if (m_scanCompCount == 1) {
      // One component: an MCU is one block, over the blocks that hold samples.
      const int comp = m_scanComps[0];
      const CJPEGColorComponent& c = m_comp[comp];
      for (int by = 0; by < c.usedBlocksY; ++by)
        for (int bx = 0; bx < c.usedBlocksX; ++bx) {
          if (JERRCODE s = beforeMcu(bx == 0 && by == 0)) return s;
          decodeBlock(comp, bx, by);
        }
    } else {
      for (int my = 0; my < m_mcusY; ++my)
        for (int mx = 0; mx < m_mcusX; ++mx) {
          if (JERRCODE s = beforeMcu(mx == 0 && my == 0)) return s;
          for (int i = 0; i < m_scanCompCount; ++i) {
            const int comp = m_scanComps[i];
            const CJPEGColorComponent& c = m_comp[comp];
            for (int y = 0; y < c.v; ++y)
              for (int x = 0; x < c.h; ++x) decodeBlock(comp, mx * c.h + x, my * c.v + y);
          }
        }
    }
  }
  // A stream that ends inside its scan data is a truncated file.
  if (m_bits.m_ranOut) return JPEG_BUFF_TOO_SMALL;
  return JPEG_OK;
}

}  // namespace kestrelink::jpeg
