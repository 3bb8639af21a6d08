#pragma once
// What an H.264 back-end offers the front, in this order.
#include <cstdint>

#include <kestrelink/CH264Conversion.h>

class CH264ConversionBase {
 public:
  virtual ~CH264ConversionBase() = default;
  virtual bool Initialize(bool encoder, uint32_t width, uint32_t height, H264EndoerSorceFormat format, int gopSize,
                          int bitRate, uint32_t bitDepth, int reserved) = 0;
  virtual bool UnInitialize() = 0;
  virtual bool SetParamers(H264PARAM_TYPE type, int value) = 0;
  virtual bool EncodeImage(void* record, void* plane0, void* plane1, void* plane2) = 0;
  virtual bool DecodeImage(uint32_t frameIndex, void* record, void* image) = 0;
  virtual uint32_t GetLastDecodeFrameIndex() = 0;
  virtual void ReleaseDecodeResource() = 0;
  virtual bool InitWithRTSP() = 0;
  virtual int DecodeImageFromRTSP(int inputSize, void* input, void* image, int imageSize, int& consumed) = 0;
  virtual bool UnInitWithRTSP() = 0;
};
