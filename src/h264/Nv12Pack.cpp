#include "h264/Nv12Pack.h"

#include "frame/RowLoop.h"
#include "frame/StreamCopy.h"
#include "h264/Nv12Rows.h"
#include "platform/OpenMP.h"

namespace kestrelink::h264 {

namespace {

// Whether the planes, shared out over the team, are large enough a thread
// for streaming stores to pay: at 1920 by 1088 they are faster than ordinary
// stores from a cold source and no slower from a cached one.
bool StreamPlanes(const Nv12Frame& f) {
  const size_t bytes = size_t(f.alignedWidth) * f.alignedHeight * 3 / 2;
  return bytes / size_t(platform::TeamSize()) >= kStreamCopyBytes;
}

// Luma row r: w bytes, then up to W the single byte that follows the row in
// the source (the first byte of the next row), a settled behaviour of the
// format. Past the frame's last row that byte is outside the frame, so the
// last row repeats its own last byte instead.
void PackLumaRow(Nv12LumaRow row, const uint8_t* y, const Nv12Frame& f, uint32_t r) {
  const uint8_t* src = y + size_t(r) * f.width;
  // A frame of no columns has no byte to repeat: its pad is 0.
  const uint8_t pad = f.width == 0 ? 0 : r + 1 < f.height ? src[f.width] : src[f.width - 1];
  row(src, f.width, pad, f.alignedWidth, f.luma + size_t(r) * f.alignedWidth);
}

// Luma rows 0 .. h-1 and then the H / 2 chroma rows make one run of rows of
// W bytes each, shared out over the team in one parallel loop; chroma(k,
// stream, c, out) writes chroma row c. Luma rows h .. H-1 are not written:
// they keep their earlier value.
template <class ChromaRow>
void PackPlanes(const uint8_t* y, const Nv12Frame& f, ChromaRow chroma) {
  const bool stream = StreamPlanes(f);
  const Nv12RowKernels& k = Nv12Rows();
  const Nv12LumaRow luma = stream ? k.lumaStream : k.luma;
  ForEachRow(f.height + f.alignedHeight / 2, false, [&](uint32_t r, uint32_t) {
    if (r < f.height) {
      PackLumaRow(luma, y, f, r);
    } else {
      const size_t c = r - f.height;
      chroma(k, stream, c, f.chroma + c * f.alignedWidth);
    }
  });
  if (stream) StreamCopyDone();
}

}  // namespace

void PackNv12Planar(const uint8_t* y, const uint8_t* u, const uint8_t* v, const Nv12Frame& f) {
  const uint32_t sourcePairs = f.width / 2, pairs = f.alignedWidth / 2;
  PackPlanes(y, f, [&](const Nv12RowKernels& k, bool stream, size_t c, uint8_t* out) {
    (stream ? k.chromaStream : k.chroma)(u + c * sourcePairs, v + c * sourcePairs, sourcePairs, pairs, out);
  });
}

// Luma alone: the chroma plane becomes 128, grey.
void PackNv12Mono(const uint8_t* y, const Nv12Frame& f) {
  PackPlanes(y, f, [&](const Nv12RowKernels& k, bool stream, size_t, uint8_t* out) {
    (stream ? k.fillStream : k.fill)(out, 128, f.alignedWidth);
  });
}

}  // namespace kestrelink::h264
