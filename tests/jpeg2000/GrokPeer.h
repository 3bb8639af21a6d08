#pragma once
// The second JPEG 2000 peer library: decoding from memory, and a lossless
// encode with our coding settings to a file (its size is the compressed
// size). Its pool of worker threads is process-wide and fixed by the first
// start: after a restart (deinitialise, initialise) it runs with no workers
// at all, on the caller's thread, whatever count it is given.
#include <grok.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "jpeg2000/OpenJpegPeer.h"

namespace j2kpeer {

// Starts the library with `threads` workers on the first call; later calls
// keep that pool. Answers the pool's size.
inline uint32_t GrokStart(uint32_t threads) {
  static const uint32_t started = [threads] {
    grk_initialize(nullptr, threads);
    grk_set_msg_handlers(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    return threads;
  }();
  return started;
}

inline Decoded GrokDecode(const uint8_t* bytes, size_t size) {
  GrokStart(1);
  Decoded out;
  std::vector<uint8_t> copy(bytes, bytes + size);
  grk_stream_params stream;
  std::memset(&stream, 0, sizeof stream);
  stream.buf = copy.data();
  stream.len = copy.size();
  grk_decompress_core_params params;
  std::memset(&params, 0, sizeof params);
  grk_decompress_set_default_params(&params);
  grk_codec* codec = grk_decompress_init(&stream, &params);
  if (codec == nullptr) return out;
  grk_header_info header;
  std::memset(&header, 0, sizeof header);
  if (grk_decompress_read_header(codec, &header) && grk_decompress(codec, nullptr)) {
    if (grk_image* image = grk_decompress_get_composited_image(codec)) {
      out.ok = true;
      out.width = image->x1 - image->x0;
      out.height = image->y1 - image->y0;
      for (uint16_t c = 0; c < image->numcomps; ++c) {
        const grk_image_comp& comp = image->comps[c];
        std::vector<int32_t> samples;
        samples.reserve(size_t(comp.w) * comp.h);
        for (uint32_t y = 0; y < comp.h; ++y)
          samples.insert(samples.end(), comp.data + size_t(y) * comp.stride,
                         comp.data + size_t(y) * comp.stride + comp.w);
        out.components.push_back(std::move(samples));
      }
    }
  }
  grk_object_unref(codec);
  return out;
}

// Lossless codestream at `path` with 5 levels, 64x64 blocks, one layer,
// LRCP and the colour transform on three components, on the pool that
// GrokStart set up (one worker unless started otherwise); answers its size,
// 0 on failure.
inline size_t GrokEncodeToFile(const std::vector<const uint8_t*>& planes, uint32_t width, uint32_t height,
                               const std::string& path) {
  const uint32_t threads = GrokStart(1);
  auto parms = EightBitComponents<grk_image_comp>(planes.size(), width, height);
  grk_image* image =
      grk_image_new(uint16_t(planes.size()), parms.data(), planes.size() == 3 ? GRK_CLRSPC_SRGB : GRK_CLRSPC_GRAY);
  if (image == nullptr) return 0;
  image->x0 = image->y0 = 0;
  image->x1 = width;
  image->y1 = height;
  for (size_t c = 0; c < planes.size(); ++c) {
    grk_image_comp& comp = image->comps[c];
    if (comp.data == nullptr) {
      grk_object_unref(&image->obj);
      return 0;
    }
    for (uint32_t y = 0; y < height; ++y)
      for (uint32_t x = 0; x < width; ++x) comp.data[size_t(y) * comp.stride + x] = planes[c][size_t(y) * width + x];
  }
  grk_cparameters params;
  grk_compress_set_default_params(&params);
  params.numresolution = 6;
  params.cblockw_init = params.cblockh_init = 64;
  params.numlayers = 1;
  params.irreversible = false;
  params.prog_order = GRK_LRCP;
  params.mct = planes.size() == 3 ? 1 : 0;
  params.cod_format = GRK_FMT_J2K;
  params.numThreads = threads;
  grk_stream_params stream;
  std::memset(&stream, 0, sizeof stream);
  stream.file = path.c_str();
  grk_codec* codec = grk_compress_init(&stream, &params, image);
  bool ok = codec != nullptr && grk_compress(codec, nullptr);
  if (codec) grk_object_unref(codec);
  grk_object_unref(&image->obj);
  if (!ok) return 0;
  size_t size = 0;
  if (std::FILE* f = std::fopen(path.c_str(), "rb")) {
    std::fseek(f, 0, SEEK_END);
    size = size_t(std::ftell(f));
    std::fclose(f);
  }
  return size;
}

}  // namespace j2kpeer
