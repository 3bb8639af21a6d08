// Exif payloads: arbitrary bytes parsed, every entry formatted, and the
// thumbnail looked up. The reader reads only the payload's bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "jpeg/CJPEGMetaData.h"

using namespace kestrelink::jpeg;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::unique_ptr<uint8_t[]> payload(new uint8_t[size ? size : 1]);
  for (size_t i = 0; i < size; ++i) payload[i] = data[i];
  CJPEGMetaData meta;
  meta.Parse(payload.get(), uint32_t(size));
  for (int ifd = 0; ifd < 5; ++ifd)
    for (uint32_t e = 0; e < meta.CountOf(ifd); ++e)
      if (meta.IfdRecord(ifd).entries[e]) std::free(CJPEGMetaData::Format(meta.IfdRecord(ifd).entries[e]));
  const uint8_t* thumb = meta.ThumbnailData();
  if (thumb && thumb < payload.get() + size) {
    volatile uint8_t first = *thumb;
    (void)first;
  }
  return 0;
}
