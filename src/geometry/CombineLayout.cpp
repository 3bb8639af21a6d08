#include "geometry/CombineLayout.h"

namespace kestrelink::combine {
namespace {

bool AllGiven(std::initializer_list<const void*> pointers) {
  for (const void* p : pointers)
    if (!p) return false;
  return true;
}

}  // namespace

bool Usable(const Layout& L, std::initializer_list<const void*> first, std::initializer_list<const void*> second,
            std::initializer_list<const void*> dst) {
  const uint64_t wide = L.side ? uint64_t(L.w1) + L.w2 : 0, tall = L.side ? 0 : uint64_t(L.h1) + L.h2;
  if (wide > UINT32_MAX || tall > UINT32_MAX) return false;
  if (uint64_t(L.W) * L.H != 0 && !AllGiven(dst)) return false;
  if (uint64_t(L.w1) * L.h1 != 0 && !AllGiven(first)) return false;
  if (uint64_t(L.w2) * L.h2 != 0 && !AllGiven(second)) return false;
  return true;
}

}  // namespace kestrelink::combine
