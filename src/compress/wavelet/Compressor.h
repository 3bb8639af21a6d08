#pragma once
// The coefficient coder interface of the wavelet codec and its factories.
#include <cstdint>
#include <memory>

class CWaveletCompression;
struct WaveletPlane;

class CCompressor {
 public:
  // Writes the compressed frame; answers true.
  virtual bool Encode(int planeCount, WaveletPlane** planes, void* dst) = 0;
  // Fills the blocks' coefficients from a frame of at most srcBytes bytes.
  // Answers false only when the frame is too short for its blocks.
  virtual bool Decode(const void* src, uint32_t srcBytes, int planeCount, WaveletPlane** planes) = 0;
  // Stores the flag; coders create their inner coder here. Answers false
  // for a flag the coder cannot work with.
  virtual bool SetInteger(bool isInteger) {
    m_isInteger = isInteger;
    return true;
  }
  // The most bytes a frame of the owner's set-up can take.
  virtual uint32_t MaxFrameBytes(int planeCount, WaveletPlane** planes) = 0;
  virtual ~CCompressor() = default;

  CWaveletCompression* m_owner = nullptr;
  bool m_isInteger = false;
};

namespace kestrelink::wavelet {

// The coders this library can build. Only the set-partition coder of
// quadtrees in Morton order has a coderType (1); the others stand ready for
// a wider factory.
enum class CoderKind { Speck2 = 1, Simple, Ezw, Speck };

// The coder for Initialize's coderType; null for an unknown type.
std::unique_ptr<CCompressor> MakeCompressor(uint32_t coderType);
// Any of the coders, by kind.
std::unique_ptr<CCompressor> MakeCoder(CoderKind kind);

}  // namespace kestrelink::wavelet
