#pragma once
// The process-wide list of looks, searched by exact path. Looks are never
// removed while the process runs: every Bayer corrector borrows them.
#include <memory>
#include <mutex>
#include <vector>

struct LookLut;

namespace kestrelink::colour {

class LookLutCache {
 public:
  ~LookLutCache();

  // The look of `path`: the cached one as it is, however its file changed,
  // or a new one read from the file; nullptr when the file can't be read or
  // holds neither table.
  LookLut* Load(const char* path);

  // Reads the file of `path` into its cached look again when the file was
  // written after the look last read it; loads it as new when not cached.
  void Reload(const char* path);

 private:
  LookLut* Find(const char* path);

  std::mutex m_listLock;  // guards the list itself, not the looks in it
  std::vector<std::unique_ptr<LookLut>> m_looks;
};

LookLutCache& TheLookLutCache();

// Prepares a freshly read 3D table: on the companion's GPU when it takes it,
// else the weights and the table of the processor path.
void PrepareLook3D(LookLut& look);

}  // namespace kestrelink::colour
