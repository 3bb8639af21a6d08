// The coder factories of the wavelet codec.
#include "compress/wavelet/Compressor.h"
#include "compress/wavelet/EzwCompressor.h"
#include "compress/wavelet/ListPartitionCompressor.h"
#include "compress/wavelet/SimpleCompressor.h"
#include "compress/wavelet/SetPartitionCompressor.h"

namespace kestrelink::wavelet {

std::unique_ptr<CCompressor> MakeCompressor(uint32_t coderType) {
  if (coderType == 1) return std::make_unique<CSpeck2Compressor>();
  return nullptr;
}

std::unique_ptr<CCompressor> MakeCoder(CoderKind kind) {
  switch (kind) {
    case CoderKind::Speck2: return std::make_unique<CSpeck2Compressor>();
    case CoderKind::Simple: return std::make_unique<CSimpleCompressor>();
    case CoderKind::Ezw: return std::make_unique<CEZWCompressor>();
    case CoderKind::Speck: return std::make_unique<CSpeckCompressor>();
    default: return nullptr;
  }
}

}  // namespace kestrelink::wavelet
