// The layout table; a new layout is one row here, its conversions in
// Conversions.cpp and its PNG form in LayoutPng.cpp.
#include "Layouts.h"

#include <algorithm>

namespace kestrelink::tool {

namespace {

constexpr Layout kLayouts[] = {
    {LayoutId::Mono8, "mono8", "Mono8", "", 1, 8, "8-bit grey, one byte a pixel", "8-bit grey"},
    {LayoutId::Mono16, "mono16", "Mono16", "", 2, 0,
     "d-bit grey, right-justified in a little-endian 16-bit word",
     "16-bit grey, each sample shifted left by 16 - depth so full scale is white"},
    {LayoutId::Mono16Msb, "mono16msb", "Mono16MSB", "", 2, 0,
     "d-bit grey, left-justified in a little-endian 16-bit word", "16-bit grey, samples as they stand"},
    {LayoutId::Bgrx, "bgrx", "BGRx", "", 4, 8, "4 bytes a pixel: B, G, R, unused",
     "8-bit RGB (the unused fourth byte is dropped)"},
    {LayoutId::Bgr24, "bgr24", "BGR24", "bgr", 3, 8, "3 bytes a pixel: B, G, R", "8-bit RGB"},
};

bool SameLetters(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
           return lower(x) == lower(y);
         });
}

}  // namespace

std::span<const Layout> AllLayouts() { return kLayouts; }

const Layout& LayoutOf(LayoutId id) {
  for (const Layout& layout : kLayouts)
    if (layout.id == id) return layout;
  return kLayouts[0];  // every id has a row; this keeps the answer defined
}

const Layout* FindLayout(std::string_view name) {
  for (const Layout& layout : kLayouts)
    if (SameLetters(name, layout.name) || SameLetters(name, layout.libraryName) ||
        (!layout.alias.empty() && SameLetters(name, layout.alias)))
      return &layout;
  return nullptr;
}

std::string LayoutNames() {
  std::string names;
  for (const Layout& layout : kLayouts) names += std::string(names.empty() ? "" : ", ") + std::string(layout.name);
  return names;
}

}  // namespace kestrelink::tool
