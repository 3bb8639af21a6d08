#pragma once
// Embedded zerotree coding of one block. Symbols of the dominant pass: 0
// zerotree root, 1 positive significant, 2 negative significant, 3 isolated
// zero; the subordinate pass refines the significant ones a bit a pass.
// Block data, through the arithmetic coder with adaptive models:
//
//   element      coded as
//   exponent     10 bits: log2 of the first threshold (0 for an all-zero
//                block)
//   passes       per threshold, the dominant pass, then the subordinate
//                pass at half the threshold; models reset after each
//   end          FinishEncoder
//
// Coding stops when the bits spent pass the block's byte budget.
#include <cstdint>
#include <vector>

#include "compress/wavelet/ArithmeticCoder.h"
#include "compress/wavelet/EzwPyramid.h"
#include "compress/wavelet/FrequencyModel.h"
#include "compress/wavelet/WaveletDebug.h"

template <class T>
class CEZWCoder : public CWaveletDebug {
 public:
  using EZWShape = kestrelink::wavelet::EZWShape;
  using EZWEntry = kestrelink::wavelet::EZWEntry;
  using EZWRefineEntry = kestrelink::wavelet::EZWRefineEntry;
  template <class U>
  using EZWPyramid = kestrelink::wavelet::EZWPyramid<U>;

  // One thread's pyramids and lists, reused from block to block.
  struct Scratch {
    explicit Scratch(const EZWShape& shape) : bands(shape), map(shape), masks(shape) {}
    EZWPyramid<T> bands;
    EZWPyramid<uint8_t> map;
    EZWPyramid<uint32_t> masks;
    std::vector<EZWEntry> queue;
    std::vector<EZWRefineEntry> refine;
  };

  virtual ~CEZWCoder() = default;

  // `budget` in bytes; `limit` the models' total before they halve.
  void EncodeBlock(kestrelink::wavelet::ArithmeticEncoder& encoder, int32_t* const* rows, Scratch& scratch,
                   uint32_t budget, uint32_t limit) const;
  void DecodeBlock(kestrelink::wavelet::ArithmeticDecoder& decoder, int32_t* const* rows, Scratch& scratch,
                   uint32_t budget, uint32_t limit) const;

  // Reads one refinement bit; the sample moves by t2 / 2 away from zero for
  // a 1, toward zero for a 0.
  virtual void DecodeRefinement(kestrelink::wavelet::ArithmeticDecoder& decoder,
                                kestrelink::wavelet::AdaptiveModel& model, EZWPyramid<T>& bands,
                                const EZWRefineEntry& entry, uint32_t t2) const;
  // Per sample, the OR of 1 << floor(log2(magnitude)) over itself and all
  // its descendants; a magnitude of 1 (or 0) adds nothing.
  virtual void BuildDescendantMasks(EZWPyramid<T>& bands, EZWPyramid<uint32_t>& masks) const;
  // The symbol of the sample at `at` for `threshold`; a significant one
  // joins the refinement list and is zeroed.
  virtual uint8_t ClassifyCoefficient(EZWPyramid<T>& bands, const EZWPyramid<uint32_t>& masks, const EZWEntry& at,
                                      uint32_t threshold, std::vector<EZWRefineEntry>& refine) const;
  // Sets the sample of a decoded significant symbol (1 or 2) and lists it.
  virtual void PlaceSymbol(EZWPyramid<T>& bands, const EZWEntry& at, uint8_t symbol, uint32_t threshold,
                           std::vector<EZWRefineEntry>& refine) const;

 protected:
  virtual uint32_t Magnitude(T value) const = 0;
  virtual bool Positive(T value) const = 0;
};

// Bands of 32-bit signed samples; the magnitude is the absolute value.
class CIntegerEZWCoder : public CEZWCoder<int32_t> {
 public:
  ~CIntegerEZWCoder() override = default;

 protected:
  uint32_t Magnitude(int32_t value) const override {
    return value < 0 ? 0u - uint32_t(value) : uint32_t(value);
  }
  bool Positive(int32_t value) const override { return value > 0; }
};

// Bands of floats; the magnitude is the absolute value rounded to nearest,
// halves away from zero, in double precision.
class CFloatEZWCoder : public CEZWCoder<float> {
 protected:
  uint32_t Magnitude(float value) const override;
  bool Positive(float value) const override { return value > 0.0f; }
};
