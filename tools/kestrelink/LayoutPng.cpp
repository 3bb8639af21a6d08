#include "LayoutPng.h"

#include <utility>

#include "ToolError.h"

namespace kestrelink::tool {

namespace {

// B,G,R[,x] pixels to R,G,B.
void BgrToRgb(const uint8_t* in, uint32_t inStep, uint8_t* out, size_t pixels) {
  for (size_t i = 0; i < pixels; ++i, in += inStep, out += 3) {
    out[0] = in[2];
    out[1] = in[1];
    out[2] = in[0];
  }
}

// Little-endian words to PNG's big-endian, each shifted left by `shift`.
void WordsToBigEndian(const uint8_t* in, uint8_t* out, size_t samples, uint32_t shift) {
  for (size_t i = 0; i < samples; ++i, in += 2, out += 2) {
    const uint16_t word = uint16_t((in[0] | in[1] << 8) << shift);
    out[0] = uint8_t(word >> 8);
    out[1] = uint8_t(word);
  }
}

// Big-endian 16-bit B, G, R pixels to R, G, B.
void SwapOuterWords(uint8_t* pixels, size_t count) {
  for (size_t i = 0; i < count; ++i, pixels += 6)
    for (int b = 0; b < 2; ++b) std::swap(pixels[b], pixels[4 + b]);
}

}  // namespace

PngImage LayoutToPng(LayoutId layout, uint32_t width, uint32_t height, uint32_t depth,
                     std::span<const uint8_t> frame) {
  const size_t pixels = size_t(width) * height;
  if (frame.size() < pixels * LayoutOf(layout).bytesPerPixel) throw RunError("frame too short for a PNG");
  PngImage image;
  image.width = width;
  image.height = height;
  switch (layout) {
    case LayoutId::Mono8:
      image.pixel = PngPixel::Grey8;
      image.bytes.assign(frame.begin(), frame.begin() + pixels);
      break;
    case LayoutId::Mono16:  // a right-justified d-bit sample moved to the top so full scale is white
    case LayoutId::Mono16Msb:
      image.pixel = PngPixel::Grey16;
      image.bytes.resize(pixels * 2);
      WordsToBigEndian(frame.data(), image.bytes.data(), pixels,
                       layout == LayoutId::Mono16 && depth <= 16 ? 16 - depth : 0);
      break;
    case LayoutId::Bgrx:
    case LayoutId::Bgr24:
      image.pixel = PngPixel::Rgb8;
      image.bytes.resize(pixels * 3);
      BgrToRgb(frame.data(), layout == LayoutId::Bgrx ? 4 : 3, image.bytes.data(), pixels);
      break;
    case LayoutId::Mono16MsbSwap:  // high byte first: PNG's own byte order
      image.pixel = PngPixel::Grey16;
      image.bytes.assign(frame.begin(), frame.begin() + 2 * pixels);
      break;
    case LayoutId::Rgb24:
      image.pixel = PngPixel::Rgb8;
      image.bytes.assign(frame.begin(), frame.begin() + 3 * pixels);
      break;
    case LayoutId::Bgr48:  // samples narrower than 16 bits moved to the top; 8-bit sources come widened already
    case LayoutId::Rgb48:
      image.pixel = PngPixel::Rgb16;
      image.bytes.resize(pixels * 6);
      WordsToBigEndian(frame.data(), image.bytes.data(), 3 * pixels, depth > 8 && depth <= 16 ? 16 - depth : 0);
      if (layout == LayoutId::Bgr48) SwapOuterWords(image.bytes.data(), pixels);
      break;
    case LayoutId::Bgr24p:  // planes B, G, R, one after another
      image.pixel = PngPixel::Rgb8;
      image.bytes.resize(pixels * 3);
      for (size_t i = 0; i < pixels; ++i)
        for (int c = 0; c < 3; ++c) image.bytes[3 * i + c] = frame[(2 - c) * pixels + i];
      break;
    case LayoutId::Mono12p:
    case LayoutId::Mono12p8448:
    case LayoutId::Mono12pco:
    case LayoutId::Rbg32:
    case LayoutId::Bgr64:
    case LayoutId::Bgr555:
    case LayoutId::Bgr565:
    case LayoutId::Bgr10:
    case LayoutId::Bgr10Phoenix:
    case LayoutId::Rgb10Phoenix:
    case LayoutId::GvspBgr10v1:
    case LayoutId::GvspBgr10v2:
    case LayoutId::Bgr30p:
    case LayoutId::Bgr36p:
    case LayoutId::Bgr42p:
    case LayoutId::Bgr48p:
      throw RunError(std::string(LayoutOf(layout).name) + " is a source only; convert it to make a PNG");
    case LayoutId::Yuv422:
    case LayoutId::Uvy422:
    case LayoutId::Uvy411:
    case LayoutId::Uvy444:
    case LayoutId::Yuv422_20Bit:
    case LayoutId::Yuv422_10BitPP:
    case LayoutId::Yuv422p:
    case LayoutId::Yuv420p:
      throw RunError(std::string(LayoutOf(layout).name) + " has no PNG form; write a raw file or convert to bgr24");
  }
  return image;
}

}  // namespace kestrelink::tool
