// The converter object: fixed tables, thread setup, the engine, and the
// engine settings forwarded as they stand.
#include <kestrelink/CIppImageConverter.h>

#include "convert/ColorMapEngine.h"
#include "convert/ConverterTables.h"
#include "frame/FrameCopy.h"
#include "frame/ThreadSetup.h"

namespace kestrelink {

void FillLateStepTable(uint32_t* table, uint32_t bits, uint32_t channelShift) {
  const uint32_t size = 1u << bits, groupShift = bits - 8;
  table[0] = 0;
  for (uint32_t i = 1; i < size; ++i) table[i] = ((i - 1) >> groupShift) << channelShift;
}

}  // namespace kestrelink

CIppImageConverter::CIppImageConverter() {
  for (uint32_t i = 0; i < 256; ++i) {
    Gray8[i] = i * 0x10101u;
    Red8[i] = i << 16;
    Green8[i] = i << 8;
    Blue8[i] = i;
  }
  kestrelink::FillLateStepTable(Red10, 10, 16);
  kestrelink::FillLateStepTable(Green10, 10, 8);
  kestrelink::FillLateStepTable(Blue10, 10, 0);
  kestrelink::FillLateStepTable(Red12, 12, 16);
  kestrelink::FillLateStepTable(Green12, 12, 8);
  kestrelink::FillLateStepTable(Blue12, 12, 0);
  kestrelink::SetupThreads(0);
  m_Engine = new CColorMapEngine();
}

CIppImageConverter::~CIppImageConverter() { delete m_Engine; }

void CIppImageConverter::FlipImage(const void* src, uint32_t rowBytes, uint32_t rows, void* dst) {
  kestrelink::CopyFrame(src, rowBytes, rows, dst, /*flip=*/true);
}

void CIppImageConverter::SetImageColorMap(bool enable) { m_Engine->SetImageColorMap(enable); }
bool CIppImageConverter::EnableImageColorMap() { return m_Engine->EnableImageColorMap(); }
void CIppImageConverter::SetASCColorMap(bool enable) { m_Engine->SetASCColorMap(enable); }
bool CIppImageConverter::GetASCColorMap() { return m_Engine->GetASCColorMap(); }
bool CIppImageConverter::GetASCColorMapParam(double gain[3], double offset[3], double gamma[3]) {
  return m_Engine->GetASCColorMapParam(gain, offset, gamma);
}
bool CIppImageConverter::SetASCColorMapParam(const double gain[3], const double offset[3], const double gamma[3]) {
  return m_Engine->SetASCColorMapParam(gain, offset, gamma);
}
void CIppImageConverter::SetImageClipLevel(int32_t level) { m_Engine->SetImageClipLevel(level); }
int32_t CIppImageConverter::GetImageClipLevel() { return m_Engine->GetImageClipLevel(); }
void CIppImageConverter::SetMonoPseudoColorMode(int32_t mode) { m_Engine->SetMonoPseudoColorMode(mode); }
int32_t CIppImageConverter::GetMonoPseudoColorMode() { return m_Engine->GetMonoPseudoColorMode(); }
bool CIppImageConverter::LoadLUTFrom(const char* path) { return m_Engine->LoadLUTFrom(path); }
bool CIppImageConverter::ExportCurrentColorLUT(const char* path) { return m_Engine->ExportCurrentColorLUT(path); }
bool CIppImageConverter::ExportCurrentMonoLUT(const char* path) { return m_Engine->ExportCurrentMonoLUT(path); }
