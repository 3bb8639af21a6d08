// Colour-map path of the Mono16MSB and Mono16MSBSwap sources: the sample,
// right-justified, is the table index. Mono16MSB indexes by s >> (16 - d),
// Mono16MSBSwap by ((s & 255) << (d - 8)) | (s >> (24 - d)), except to
// Mono16, where the swapped source goes through the Mono16MSB loop and its
// bytes are not exchanged: a settled behaviour that callers depend on.
#include "convert/ColorMapEngine.h"
#include "convert/ColorMapPackedMonoLooks.h"
#include "convert/PackedMonoFrame.h"
#include "convert/rows/PackedMonoRows.h"

using kestrelink::RowAt;
namespace packedmono = kestrelink::packedmono;
namespace rows = kestrelink::rows;
using namespace kestrelink::colormap;

namespace {

using IndexKernel = void (*)(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);

// Every row's indices by `kernel`, a few hundred at a time, written by
// look(indices, out, n) at `pixelBytes` a pixel.
template <class Look>
void IndexRows(uint32_t w, uint32_t h, bool flip, const void* src, IndexKernel kernel, uint32_t shift, void* dst,
               uint32_t pixelBytes, Look&& look) {
  constexpr packedmono::Grouping kWords{1, 2, 1};
  const packedmono::RowSpan span{uint64_t(pixelBytes) * w, pixelBytes, w};
  packedmono::StageRows<uint16_t>(
      h, flip, kWords, span, dst, [&](uint32_t row) { return RowAt(src, 2 * size_t(w), row); },
      [&](const uint8_t* row, uint64_t first, uint32_t n, uint8_t* out) { kernel(row + 2 * first, out, n, shift); },
      [&](const uint16_t* staged, uint8_t* out, uint32_t n) {
        look(reinterpret_cast<const uint8_t*>(staged), out, n);
      });
}

}  // namespace

bool CColorMapEngine::Mono16MSBToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, false)) return false;  // no pseudo-colour for this one
  IndexRows(w, h, flip, src, rows::PackedMonoRows().rshift16, packedmono::JustifyShift(d), dst, 4,
            BgrxLook{ColorBgrx(), ColorMask()});
  return true;
}

bool CColorMapEngine::Mono16MSBToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, true)) return false;
  IndexRows(w, h, flip, src, rows::PackedMonoRows().rshift16, packedmono::JustifyShift(d), dst, 3,
            BgrLook{ColorBgrx(), ColorMask()});
  return true;
}

bool CColorMapEngine::Mono16MSBToMono8(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureMonoTable(int32_t(d), 8)) return false;
  IndexRows(w, h, flip, src, rows::PackedMonoRows().rshift16, packedmono::JustifyShift(d), dst, 1,
            ByteLook{MonoTable(), MonoMask()});
  return true;
}

bool CColorMapEngine::Mono16MSBToMono16(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureMonoTable(int32_t(d), int32_t(d))) return false;
  IndexRows(w, h, flip, src, rows::PackedMonoRows().rshift16, packedmono::JustifyShift(d), dst, 2,
            WordLook{MonoTable(), MonoMask()});
  return true;
}

bool CColorMapEngine::Mono16MSBSwapToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, true)) return false;
  IndexRows(w, h, flip, src, rows::PackedMonoRows().swap_rshift16, packedmono::SwappedJustifyShift(d), dst, 4,
            BgrxLook{ColorBgrx(), ColorMask()});
  return true;
}

bool CColorMapEngine::Mono16MSBSwapToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, true)) return false;
  IndexRows(w, h, flip, src, rows::PackedMonoRows().swap_rshift16, packedmono::SwappedJustifyShift(d), dst, 3,
            BgrLook{ColorBgrx(), ColorMask()});
  return true;
}

bool CColorMapEngine::Mono16MSBSwapToMono8(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureMonoTable(int32_t(d), 8)) return false;
  IndexRows(w, h, flip, src, rows::PackedMonoRows().swap_rshift16, packedmono::SwappedJustifyShift(d), dst, 1,
            ByteLook{MonoTable(), MonoMask()});
  return true;
}

bool CColorMapEngine::Mono16MSBSwapToMono16(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  return Mono16MSBToMono16(w, h, d, src, dst, flip);  // the bytes stay as they are
}
