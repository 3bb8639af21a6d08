#include "convert/ColorMapEngine.h"

#include <algorithm>
#include <algorithm>
#include <memory>
#include <numeric>

#include "convert/ColorMapTables.h"
#include "convert/LutFile.h"

namespace {

// Depths a table can be built for: 2^in entries, at most 65536.
bool TableDepthsValid(int32_t inBits, int32_t outBits) {
  return inBits >= 1 && inBits <= 16 && outBits >= 1 && outBits <= 16;
}

struct TableSet {
  explicit TableSet(int channels, uint32_t size) : channels(channels), size(size) {
    for (int c = 0; c < channels; ++c) {
      table[c] = std::make_unique<uint16_t[]>(size);
      flags[c] = std::make_unique<uint8_t[]>(size);  // zeroed
      std::iota(table[c].get(), table[c].get() + size, uint16_t(0));  // identity start
    }
  }
  kestrelink::lutfile::LutTarget Target() const {
    kestrelink::lutfile::LutTarget t;
    for (int c = 0; c < channels; ++c) {
      t.table[c] = table[c].get();
      t.flags[c] = flags[c].get();
    }
    t.channels = channels;
    t.size = size;
    return t;
  }
  int channels;
  uint32_t size;
  std::unique_ptr<uint16_t[]> table[3];
  std::unique_ptr<uint8_t[]> flags[3];
};

}  // namespace

CColorMapEngine::~CColorMapEngine() { Reset(); }

void CColorMapEngine::SetImageColorMap(bool enable) {
  if (enable == m_Enabled) return;
  if (enable)
    m_Enabled = true;
  else
    Reset();  // the map stays on: settings and tables are cleared, the path remains
}

void CColorMapEngine::Reset() {
  std::lock_guard<std::mutex> lock(m_Lock);
  m_ColorInBits = m_ColorOutBits = 0;
  for (int c = 0; c < 3; ++c) {
    m_Gain[c] = 1.0;
    m_Offset[c] = 0.0;
    m_Gamma[c] = 1.0;
  }
  m_AscEnabled = false;
  m_ColorDirty = m_MonoDirty = true;
  FreeTables();
  m_MonoInBits = m_MonoOutBits = 0;
}

void CColorMapEngine::FreeTables() {
  for (auto*& t : m_ColorTable) {
    delete[] t;
    t = nullptr;
  }
  delete[] m_ColorBgrx;
  m_ColorBgrx = nullptr;
  delete[] m_MonoTable;
  m_MonoTable = nullptr;
}

void CColorMapEngine::SetASCColorMap(bool enable) {
  m_AscEnabled = enable;
  m_ColorDirty = m_MonoDirty = true;
}

bool CColorMapEngine::SetASCColorMapParam(const double gain[3], const double offset[3], const double gamma[3]) {
  if (!m_AscEnabled || !gain || !offset || !gamma) return false;
  for (int c = 0; c < 3; ++c) {
    m_Gain[c] = gain[c];
    m_Offset[c] = offset[c];
    if (gamma[c] > 0.0) m_Gamma[c] = gamma[c];
  }
  m_ColorDirty = m_MonoDirty = true;
  return true;
}

bool CColorMapEngine::GetASCColorMapParam(double gain[3], double offset[3], double gamma[3]) const {
  if (!m_AscEnabled || !gain || !offset || !gamma) return false;
  for (int c = 0; c < 3; ++c) {
    gain[c] = m_Gain[c];
    offset[c] = m_Offset[c];
    gamma[c] = m_Gamma[c];
  }
  return true;
}

void CColorMapEngine::SetImageClipLevel(int32_t level) {
  m_ClipLevel = level;
  m_ColorDirty = m_MonoDirty = true;
}

void CColorMapEngine::SetMonoPseudoColorMode(int32_t mode) {
  m_PseudoMode = mode;
  m_ColorDirty = true;  // pseudo-colour never reaches the mono table
}

bool CColorMapEngine::LoadLUTFrom(const char* path) {
  m_LutPath = path ? path : "";
  if (!kestrelink::lutfile::ParseFile(m_LutPath.c_str(), kestrelink::lutfile::LutTarget{})) return false;
  m_ColorDirty = m_MonoDirty = true;
  return true;
}

bool CColorMapEngine::EnsureColorTables(int32_t inBits, int32_t outBits, bool pseudoAllowed) {
  if (!m_Enabled) return false;
  if (!TableDepthsValid(inBits, outBits)) return false;
  if (!m_ColorDirty && inBits == m_ColorInBits && outBits == m_ColorOutBits && m_ColorTable[0]) {
    const bool stand = pseudoAllowed ? (m_PseudoInTable || m_PseudoMode < 0) : !m_PseudoInTable;
    if (stand) return true;
  }
  RebuildColorTables(inBits, outBits, pseudoAllowed);
  m_ColorDirty = false;
  return true;
}

bool CColorMapEngine::EnsureMonoTable(int32_t inBits, int32_t outBits) {
  if (!m_Enabled) return false;
  if (!TableDepthsValid(inBits, outBits)) return false;
  if (!m_MonoDirty && inBits == m_MonoInBits && outBits == m_MonoOutBits && m_MonoTable) return true;
  RebuildMonoTable(inBits, outBits);
  m_MonoDirty = false;
  return true;
}

void CColorMapEngine::RebuildColorTables(int32_t inBits, int32_t outBits, bool pseudoAllowed) {
  namespace cm = kestrelink::colormap;
  const uint32_t n = 1u << inBits;
  TableSet set(3, n);
  if (m_PseudoMode >= 0 && pseudoAllowed) {
    cm::FillPseudoColor(m_PseudoMode, inBits, set.table[0].get(), set.table[1].get(), set.table[2].get());
    m_PseudoInTable = true;
  } else {
    m_PseudoInTable = false;
  }
  if (!m_LutPath.empty()) kestrelink::lutfile::ParseFile(m_LutPath.c_str(), set.Target());
  for (int c = 0; c < 3; ++c) {
    uint16_t* t = set.table[c].get();
    if (m_AscEnabled) {  // ASC replaces clip
      cm::ApplyAscCurve(t, n, inBits, outBits, m_Gain[c], m_Offset[c], m_Gamma[c]);
      std::fill_n(set.flags[c].get(), n, uint8_t(1));
    } else if (m_ClipLevel >= 0) {
      cm::ApplyClipLevel(t, n, inBits, outBits, m_ClipLevel, outBits);
      std::fill_n(set.flags[c].get(), n, uint8_t(1));
    }
    if (inBits > outBits) cm::ShiftUnflagged(t, set.flags[c].get(), n, inBits - outBits);
  }
  uint32_t* bgrx = nullptr;
  if (outBits <= 8) {
    bgrx = new uint32_t[n];
    for (uint32_t i = 0; i < n; ++i)
      bgrx[i] = (set.table[0][i] & 0xFFu) | (set.table[1][i] & 0xFFu) << 8 | (set.table[2][i] & 0xFFu) << 16;
  }
  std::lock_guard<std::mutex> lock(m_Lock);
  for (int c = 0; c < 3; ++c) {
    delete[] m_ColorTable[c];
    m_ColorTable[c] = set.table[c].release();
  }
  delete[] m_ColorBgrx;
  m_ColorBgrx = bgrx;
  m_ColorInBits = inBits;
  m_ColorOutBits = outBits;
}

void CColorMapEngine::RebuildMonoTable(int32_t inBits, int32_t outBits) {
  namespace cm = kestrelink::colormap;
  const uint32_t n = 1u << inBits;
  TableSet set(1, n);
  uint16_t* t = set.table[0].get();
  if (!m_LutPath.empty()) kestrelink::lutfile::ParseFile(m_LutPath.c_str(), set.Target());
  if (m_AscEnabled) {
    cm::ApplyAscCurve(t, n, inBits, outBits, m_Gain[0], m_Offset[0], m_Gamma[0]);
    std::fill_n(set.flags[0].get(), n, uint8_t(1));
  } else if (m_ClipLevel >= 0) {
    cm::ApplyClipLevel(t, n, inBits, outBits, m_ClipLevel, 8);
    std::fill_n(set.flags[0].get(), n, uint8_t(1));
  }
  if (inBits > outBits) cm::ShiftUnflagged(t, set.flags[0].get(), n, inBits - outBits);
  std::lock_guard<std::mutex> lock(m_Lock);
  delete[] m_MonoTable;
  m_MonoTable = set.table[0].release();
  m_MonoInBits = inBits;
  m_MonoOutBits = outBits;
}

bool CColorMapEngine::ExportCurrentColorLUT(const char* path) {
  if (m_ColorDirty) return false;
  std::lock_guard<std::mutex> lock(m_Lock);
  if (!m_ColorTable[0]) return false;  // nothing built yet: no table to write
  const uint16_t* const tables[3] = {m_ColorTable[0], m_ColorTable[1], m_ColorTable[2]};
  return kestrelink::lutfile::WriteColorFile(path, tables, 1u << m_ColorInBits);
}

bool CColorMapEngine::ExportCurrentMonoLUT(const char* path) {
  if (m_MonoDirty) return false;
  std::lock_guard<std::mutex> lock(m_Lock);  // the mono file never reads the table
  return kestrelink::lutfile::WriteMonoFile(path, 1u << m_MonoInBits);
}
