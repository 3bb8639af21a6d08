// Progressive encoding: the whole frame is transformed first, then each scan
// of the script is coded twice, once to count its symbols for a Huffman table
// of its own and once to write them. The scan coder follows the standard's
// successive-approximation rules: DC first and refinement, AC first with
// end-of-band runs, AC refinement with its correction bits.
#include <algorithm>
#include <cstring>
#include <vector>

#include "jpeg/CJPEGEncoder.h"

namespace kestrelink::jpeg {
namespace {

struct ScanRecord {
  int count;
  int comps[4];
  int ss, se, ah, al;
};

// The scan script for 1, 3 or 4 components; empty for other counts.
std::vector<ScanRecord> ScanScript(int components) {
  std::vector<ScanRecord> s;
  if (components == 1) {
    s = {{1, {0}, 0, 0, 0, 1},  {1, {0}, 1, 5, 0, 2}, {1, {0}, 6, 63, 0, 2},
         {1, {0}, 1, 63, 2, 1}, {1, {0}, 0, 0, 1, 0}, {1, {0}, 1, 63, 1, 0}};
  } else if (components == 3) {
    s = {{3, {0, 1, 2}, 0, 0, 0, 1}, {1, {0}, 1, 5, 0, 2},  {1, {2}, 1, 63, 0, 1}, {1, {1}, 1, 63, 0, 1},
         {1, {0}, 6, 63, 0, 2},      {1, {0}, 1, 63, 2, 1}, {3, {0, 1, 2}, 0, 0, 1, 0}, {1, {2}, 1, 63, 1, 0},
         {1, {1}, 1, 63, 1, 0},      {1, {0}, 1, 63, 1, 0}};
  } else if (components == 4) {
    s.push_back({4, {0, 1, 2, 3}, 0, 0, 0, 1});
    for (int c = 0; c < 4; ++c) s.push_back({1, {c}, 1, 5, 0, 2});
    for (int c = 0; c < 4; ++c) s.push_back({1, {c}, 6, 63, 0, 2});
    for (int c = 0; c < 4; ++c) s.push_back({1, {c}, 1, 63, 2, 1});
    s.push_back({4, {0, 1, 2, 3}, 0, 0, 1, 0});
    for (int c = 0; c < 4; ++c) s.push_back({1, {c}, 1, 63, 1, 0});
  }
  return s;
}

// Codes (or, counting, tallies) the symbols and bits of one scan.
class ScanCoder {
 public:
  ScanCoder(bool counting, CJPEGEncoderHuffmanState& state, const CJPEGEncoderHuffmanTable* tables)
      : m_counting(counting), m_state(state), m_tables(tables) {}

  uint32_t freq[4][256] = {};

  void Symbol(int table, int symbol) {
    if (m_counting)
      ++freq[table][symbol];
    else
      m_state.Put(m_tables[table].m_code[symbol], m_tables[table].m_length[symbol]);
  }
  void Bits(uint32_t value, uint32_t n) {
    if (!m_counting && n) m_state.Put(value & ((1u << n) - 1), n);
  }
  void EmitEobRun(int table) {
    if (m_eobRun == 0) return;
    int n = 0;
    for (uint32_t t = m_eobRun; t >>= 1;) ++n;
    Symbol(table, n << 4);
    Bits(m_eobRun, uint32_t(n));
    m_eobRun = 0;
    EmitCorrections(m_pending.data(), m_pending.size());
    m_pending.clear();
  }
  void EmitCorrections(const uint8_t* bits, size_t n) {
    for (size_t i = 0; i < n; ++i) Bits(bits[i], 1);
  }

  void DcFirst(const int16_t* zz, int32_t& lastDc, int table, int al) {
    const int32_t v = int32_t(zz[0]) >> al;  // arithmetic shift, as the standard's point transform
    const int32_t diff = v - lastDc;
    lastDc = v;
    const uint32_t n = MagnitudeBits(diff);
    Symbol(table, int(n));
    Bits(MagnitudeCode(diff, n), n);
  }
  void DcRefine(const int16_t* zz, int al) { Bits(uint32_t(zz[0] >> al) & 1, 1); }

  void AcFirst(const int16_t* zz, int table, int ss, int se, int al) {
    int run = 0;
    for (int k = ss; k <= se; ++k) {
      int32_t v = zz[k];
      int32_t mag = v < 0 ? -v : v;
      mag >>= al;
      if (mag == 0) {
        ++run;
        continue;
      }
      const int32_t coded = v < 0 ? -mag : mag;
      EmitEobRun(table);
      for (; run > 15; run -= 16) Symbol(table, 0xF0);
      const uint32_t n = MagnitudeBits(coded);
      Symbol(table, (run << 4) | int(n));
      Bits(MagnitudeCode(coded, n), n);
      run = 0;
    }
    if (run > 0) {
      if (++m_eobRun == 0x7FFF) EmitEobRun(table);
    }
  }

  void AcRefine(const int16_t* zz, int table, int ss, int se, int al) {
    int absolute[64];
    int eob = 0;
    for (int k = ss; k <= se; ++k) {
      const int32_t v = zz[k];
      absolute[k] = (v < 0 ? -v : v) >> al;
      if (absolute[k] == 1) eob = k;  // the last newly nonzero coefficient
    }
    int run = 0;
    uint8_t here[64];
    size_t hereCount = 0;
    for (int k = ss; k <= se; ++k) {
      const int a = absolute[k];
      if (a == 0) {
        ++run;
        continue;
      }
      while (run > 15 && k <= eob) {
        EmitEobRun(table);
        Symbol(table, 0xF0);
        run -= 16;
        EmitCorrections(here, hereCount);
        hereCount = 0;
      }
      if (a > 1) {
        here[hereCount++] = uint8_t(a & 1);  // a correction bit of an older coefficient
        continue;
      }
      EmitEobRun(table);
      Symbol(table, (run << 4) | 1);
      Bits(zz[k] < 0 ? 0 : 1, 1);
      EmitCorrections(here, hereCount);
      hereCount = 0;
      run = 0;
    }
    if (run > 0 || hereCount > 0) {
      ++m_eobRun;
      m_pending.insert(m_pending.end(), here, here + hereCount);
      // Keep the buffered corrections within what one reservation covers.
      if (m_eobRun == 0x7FFF || m_pending.size() > 1000 - 63) EmitEobRun(table);
    }
  }

  uint32_t m_eobRun = 0;

 private:
  bool m_counting;
  CJPEGEncoderHuffmanState& m_state;
  const CJPEGEncoderHuffmanTable* m_tables;
  std::vector<uint8_t> m_pending;
};

}  // namespace

JERRCODE CJPEGEncoder::WriteProgressive() {
  const std::vector<ScanRecord> script = ScanScript(m_jpegChannels);
  if (script.empty()) return JPEG_NOT_IMPLEMENTED;
  TransformAll();
  CJPEGEncoderHuffmanTable tables[4];
  for (const ScanRecord& scan : script) {
    const bool dc = scan.ss == 0;
    const bool needsTable = !(dc && scan.ah > 0);
    // Pass 0 counts symbols (when the scan has any), pass 1 writes.
    for (int pass = needsTable ? 0 : 1; pass < 2; ++pass) {
      const bool counting = pass == 0;
      ScanCoder coder(counting, m_state, tables);
      if (!counting) {
        if (needsTable) {
          int used[4] = {};
          for (int i = 0; i < scan.count; ++i) {
            const CJPEGColorComponent& c = m_comp[scan.comps[i]];
            used[dc ? c.dcTable : c.acTable] = 1;
          }
          for (int t = 0; t < 4; ++t)
            if (used[t])
              if (JERRCODE s = WriteHuffmanTable(dc ? 0 : 1, t, tables[t])) return s;
        }
        if (JERRCODE s = WriteScanHeader(scan.count, scan.comps, scan.ss, scan.se, scan.ah, scan.al)) return s;
        m_state.Reset();
      }
      for (int c = 0; c < m_jpegChannels; ++c) m_comp[c].lastDc = 0;
      int restartsLeft = m_restartInterval, nextRestart = 0;
      auto restart = [&]() -> JERRCODE {
        if (m_restartInterval == 0) return JPEG_OK;
        if (restartsLeft == 0) {
          const int acTable = m_comp[scan.comps[0]].acTable;
          if (!dc) {
            if (!counting)
              if (JERRCODE s = m_out.Reserve(4096)) return s;
            uint8_t* base = m_out.Current();
            m_state.m_out = base;
            coder.EmitEobRun(acTable);
            if (!counting) m_out.Advance(uint32_t(m_state.m_out - base));
          }
          if (!counting) {
            if (JERRCODE s = WriteRestartMarker(nextRestart)) return s;
          } else {
            nextRestart = (nextRestart + 1) & 7;
          }
          restartsLeft = m_restartInterval;
          for (int c = 0; c < m_jpegChannels; ++c) m_comp[c].lastDc = 0;
        }
        --restartsLeft;
        return JPEG_OK;
      };
      auto codeBlock = [&](int comp, int bx, int by) -> JERRCODE {
        CJPEGColorComponent& c = m_comp[comp];
        const int16_t* zz = Block(comp, bx, by);
        uint8_t* base = nullptr;
        if (!counting) {
          if (JERRCODE s = m_out.Reserve(4096)) return s;
          base = m_out.Current();
          m_state.m_out = base;
        }
        if (dc && scan.ah == 0)
          coder.DcFirst(zz, c.lastDc, c.dcTable, scan.al);
        else if (dc)
          coder.DcRefine(zz, scan.al);
        else if (scan.ah == 0)
          coder.AcFirst(zz, c.acTable, scan.ss, scan.se, scan.al);
        else
          coder.AcRefine(zz, c.acTable, scan.ss, scan.se, scan.al);
        if (!counting) m_out.Advance(uint32_t(m_state.m_out - base));
        return JPEG_OK;
      };
      if (scan.count == 1) {
        const int comp = scan.comps[0];
        const CJPEGColorComponent& c = m_comp[comp];
        for (int by = 0; by < c.usedBlocksY; ++by)
          for (int bx = 0; bx < c.usedBlocksX; ++bx) {
            if (JERRCODE s = restart()) return s;
            if (JERRCODE s = codeBlock(comp, bx, by)) return s;
          }
      } else {
        for (int my = 0; my < m_mcusY; ++my)
          for (int mx = 0; mx < m_mcusX; ++mx) {
            if (JERRCODE s = restart()) return s;
            for (int i = 0; i < scan.count; ++i) {
              const int comp = scan.comps[i];
              const CJPEGColorComponent& c = m_comp[comp];
              for (int y = 0; y < c.v; ++y)
                for (int x = 0; x < c.h; ++x)
                  if (JERRCODE s = codeBlock(comp, mx * c.h + x, my * c.v + y)) return s;
            }
          }
      }
      // The scan's last end-of-band run and bits.
      if (!counting) {
        if (JERRCODE s = m_out.Reserve(4096)) return s;
      }
      uint8_t* base = m_out.Current();
      m_state.m_out = base;
      if (!dc) coder.EmitEobRun(m_comp[scan.comps[0]].acTable);
      if (counting) {
        for (int t = 0; t < 4; ++t) {
          bool any = false;
          for (int s = 0; s < 256; ++s) any = any || coder.freq[t][s];
          if (!any) continue;
          uint8_t bits[16], values[256];
          int n = 0;
          BuildOptimalHuffman(coder.freq[t], bits, values, n);
          tables[t].Init(bits, values, n);
        }
      } else {
        m_out.Advance(uint32_t(m_state.m_out - base));
        if (JERRCODE s = FlushBits()) return s;
      }
    }
  }
  return JPEG_OK;
}

}  // namespace kestrelink::jpeg
