#include "colour/LookLutCache.h"

#include <cstring>

#include "colour/LookFile.h"
#include "colour/LookGpu.h"
#include "colour/LookLut.h"
#include "colour/LookPrepare.h"
#include "platform/FileTime.h"

namespace kestrelink::colour {

LookLutCache::~LookLutCache() = default;

LookLutCache& TheLookLutCache() {
  static LookLutCache cache;
  return cache;
}

void PrepareLook3D(LookLut& look) {
  PlaceLookOnGpu(look);
  if (look.gpuLutId != 0) return;  // a look on the GPU has neither table nor weights
  BuildCornerWeights(look);
  FillLookTable(look);
}

LookLut* LookLutCache::Find(const char* path) {
  std::lock_guard<std::mutex> hold(m_listLock);
  for (const auto& look : m_looks)
    if (look->path == path) return look.get();
  return nullptr;
}

LookLut* LookLutCache::Load(const char* path) {
  if (!path) return nullptr;
  if (LookLut* cached = Find(path)) return cached;
  auto look = std::make_unique<LookLut>();
  look->path = path;
  const LookDocumentParts parts = ReadLookFile(*look);
  if (!parts.parsed) return nullptr;
  if (parts.has3D) PrepareLook3D(*look);
  look->fileTime = platform::FileWriteTime(path);
  if (!parts.has1D && !parts.has3D) return nullptr;
  std::lock_guard<std::mutex> hold(m_listLock);
  m_looks.push_back(std::move(look));
  return m_looks.back().get();
}

void LookLutCache::Reload(const char* path) {
  if (!path) return;
  LookLut* look = Find(path);
  if (!look) {
    Load(path);
    return;
  }
  const int64_t written = platform::FileWriteTime(path);
  if (written <= look->fileTime) return;
  if (ReadLookFile(*look).has3D) PrepareLook3D(*look);
  look->fileTime = written;
}

}  // namespace kestrelink::colour
