#pragma once
#include <cstdint>

#include <kestrelink/Export.h>

// Source layout of EncodeImage. The encoders test it only for zero or not.
enum H264EndoerSorceFormat {
  H264_SOURCE_MONO = 0,         // 8-bit luma alone, width * height bytes
  H264_SOURCE_YUV_PLANAR = 1,   // Y, U, V planes; U and V width / 2 by height / 2
};

// Key type of SetParamers. No value has any effect.
enum H264PARAM_TYPE {
  H264_PARAM_NONE = 0,
};

class CH264ConversionBase;

// H.264 compression. EncodeImage turns planar frames into encoded frame
// records (a 32-bit record size that counts the 8-byte header, a 16-bit GOP
// size on key frames, a 16-bit count of frames since the key frame, then the
// Annex B payload); DecodeImage turns records back into BGR24 images whose
// rows are padded to a multiple of 4 bytes; the live-stream calls decode
// Annex B bytes handed over in pieces. The first bool of Initialize,
// UnInitialize and SetParamers picks the encoder (true) or the decoder.
class KESTRELINK_API CH264Conversion {
 public:
  CH264Conversion();
  ~CH264Conversion();
  CH264Conversion(const CH264Conversion&) = delete;
  // Copies both back-end pointers: the two objects then share back-ends, and
  // only one of them may be destroyed.
  CH264Conversion& operator=(const CH264Conversion& other);

  bool Initialize(bool encoder, uint32_t width, uint32_t height, H264EndoerSorceFormat format, int gopSize,
                  int bitRate, uint32_t bitDepth, int reserved);
  bool UnInitialize(bool encoder);
  bool SetParamers(bool encoder, H264PARAM_TYPE type, int value);

  // `record` holds at least width * height * 2 bytes (8 more for planar
  // sources); plane1 and plane2 are not read for a mono source.
  bool EncodeImage(void* record, void* plane0, void* plane1, void* plane2);
  // `frameIndex` starts at 1 and rises by one; any other step, or 1 again,
  // restarts at a record that opens with a sequence parameter set. A record
  // must be followed by 8 readable bytes. `image` holds
  // ((height + 15) & ~15) * width * 3 bytes of the size given to Initialize.
  bool DecodeImage(uint32_t frameIndex, void* record, void* image);
  void ReleaseDecodeResource();
  uint32_t GetLastDecodeFrameIndex();

  // Whether a Media SDK run-time encodes on the graphics hardware here. Asked
  // once a process; the answer is kept.
  static bool IsHardwareEncodingSupported();

  bool InitWithRTSP();
  // 1: an image was written; 0: none yet, `consumed` bytes were taken (present
  // the rest again with what follows); -1: the decoder could not start.
  int DecodeImageFromRTSP(int inputSize, void* input, void* image, int imageSize, int& consumed);
  bool UnInitWithRTSP();

 private:
  CH264ConversionBase* m_pEncoder;
  CH264ConversionBase* m_pDecoder;
};
