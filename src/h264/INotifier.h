#pragma once
// Sink for finished bitstreams of the encode pipeline's delivery thread.
#include <mfx/mfxstructures.h>

class INotifier {
 public:
  virtual ~INotifier() = default;
  // 0 when the bitstream was taken.
  virtual int OnBitstream(mfxBitstream* bitstream) = 0;
};
