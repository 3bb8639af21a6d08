#pragma once
// libjpeg-turbo as the JPEG tests' peer: it encodes the streams our decoder
// must read and decodes the streams our encoder writes. Also the test frames
// and the measures the tests compare by.
#include <jpeglib.h>

#include <cmath>
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <random>
#include <vector>

namespace jpegpeer {

struct Image {
  int width = 0, height = 0, channels = 0;  // channels 1 (grey) or 3 (R, G, B)
  std::vector<uint8_t> pixels;
};

// A smooth scene with edges and a little noise: what a camera gives.
inline Image Scene(int width, int height, int channels, uint32_t seed = 1) {
  Image im{width, height, channels, std::vector<uint8_t>(size_t(width) * height * channels)};
  std::mt19937 rng(seed);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      for (int c = 0; c < channels; ++c) {
        double v = 128 + 90 * std::sin(x * (0.031 + 0.01 * c) + y * 0.017) * std::cos(y * 0.023 - c);
        if ((x / 37 + y / 29) % 5 == 0) v = 40 + 60 * c;
        v += int(rng() % 9) - 4;
        im.pixels[(size_t(y) * width + x) * channels + c] = uint8_t(v < 0 ? 0 : v > 255 ? 255 : v);
      }
  return im;
}

// Same pixels with the channel order reversed (R, G, B <-> B, G, R).
inline std::vector<uint8_t> Swapped(const Image& im) {
  std::vector<uint8_t> out = im.pixels;
  if (im.channels == 3)
    for (size_t i = 0; i < out.size(); i += 3) std::swap(out[i], out[i + 2]);
  return out;
}

inline double Psnr(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
  double se = 0;
  for (size_t i = 0; i < a.size(); ++i) se += double(a[i] - b[i]) * (a[i] - b[i]);
  if (se == 0) return 99;
  return 10 * std::log10(255.0 * 255.0 * double(a.size()) / se);
}

inline int MaxDifference(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
  int m = 0;
  for (size_t i = 0; i < a.size() && i < b.size(); ++i) m = std::max(m, std::abs(a[i] - b[i]));
  return m;
}

struct ErrorJump {
  jpeg_error_mgr mgr;
  std::jmp_buf jump;
};
inline void OnError(j_common_ptr info) { std::longjmp(reinterpret_cast<ErrorJump*>(info->err)->jump, 1); }
inline void Quiet(j_common_ptr, int) {}

// Decodes to grey or R, G, B; false if libjpeg-turbo refuses the stream.
inline bool Decode(const std::vector<uint8_t>& stream, Image& out, bool toGrey = false) {
  jpeg_decompress_struct d;
  ErrorJump err;
  d.err = jpeg_std_error(&err.mgr);
  err.mgr.error_exit = OnError;
  err.mgr.emit_message = Quiet;
  if (setjmp(err.jump)) {
    jpeg_destroy_decompress(&d);
    return false;
  }
  jpeg_create_decompress(&d);
  jpeg_mem_src(&d, stream.data(), static_cast<unsigned long>(stream.size()));
  jpeg_read_header(&d, TRUE);
  d.out_color_space = (toGrey || d.num_components == 1) ? JCS_GRAYSCALE : d.num_components == 4 ? JCS_CMYK : JCS_RGB;
  d.dct_method = JDCT_ISLOW;
  jpeg_start_decompress(&d);
  out.width = int(d.output_width);
  out.height = int(d.output_height);
  out.channels = d.output_components;
  out.pixels.assign(size_t(out.width) * out.height * out.channels, 0);
  while (d.output_scanline < d.output_height) {
    JSAMPROW row = out.pixels.data() + size_t(d.output_scanline) * out.width * out.channels;
    jpeg_read_scanlines(&d, &row, 1);
  }
  jpeg_finish_decompress(&d);
  jpeg_destroy_decompress(&d);
  return true;
}

struct EncodeOptions {
  int quality = 85;
  int hSamp = 2, vSamp = 2;  // luma factors of a colour frame
  bool progressive = false;
  bool optimise = false;
  int restartInterval = 0;
};

inline std::vector<uint8_t> Encode(const Image& im, const EncodeOptions& o) {
  jpeg_compress_struct c;
  jpeg_error_mgr err;
  c.err = jpeg_std_error(&err);
  jpeg_create_compress(&c);
  unsigned char* buffer = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&c, &buffer, &size);
  c.image_width = JDIMENSION(im.width);
  c.image_height = JDIMENSION(im.height);
  c.input_components = im.channels;
  c.in_color_space = im.channels == 1 ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_set_defaults(&c);
  jpeg_set_quality(&c, o.quality, TRUE);
  c.dct_method = JDCT_ISLOW;
  if (im.channels == 3) {
    c.comp_info[0].h_samp_factor = o.hSamp;
    c.comp_info[0].v_samp_factor = o.vSamp;
  }
  c.optimize_coding = o.optimise ? TRUE : FALSE;
  c.restart_interval = unsigned(o.restartInterval);
  if (o.progressive) jpeg_simple_progression(&c);
  jpeg_start_compress(&c, TRUE);
  while (c.next_scanline < c.image_height) {
    JSAMPROW row = const_cast<uint8_t*>(im.pixels.data()) + size_t(c.next_scanline) * im.width * im.channels;
    jpeg_write_scanlines(&c, &row, 1);
  }
  jpeg_finish_compress(&c);
  std::vector<uint8_t> out(buffer, buffer + size);
  jpeg_destroy_compress(&c);
  free(buffer);
  return out;
}

}  // namespace jpegpeer
