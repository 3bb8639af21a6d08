#pragma once
// The JPEG 2000 peer library through memory streams: decoding a codestream
// or JP2 file to its component samples, and a lossless encode with the
// coding settings of our own encoder, for size comparisons.
#include <cstdint>
#include <cstring>
#include <vector>

#include <openjpeg.h>

namespace j2kpeer {

struct Decoded {
  bool ok = false;
  uint32_t width = 0, height = 0;
  std::vector<std::vector<int32_t>> components;
};

struct MemoryStream {
  std::vector<uint8_t> data;
  size_t pos = 0;

  static OPJ_SIZE_T Read(void* buffer, OPJ_SIZE_T n, void* user) {
    auto* s = static_cast<MemoryStream*>(user);
    if (s->pos >= s->data.size()) return OPJ_SIZE_T(-1);
    const size_t take = std::min<size_t>(n, s->data.size() - s->pos);
    std::memcpy(buffer, s->data.data() + s->pos, take);
    s->pos += take;
    return take;
  }
  static OPJ_SIZE_T Write(void* buffer, OPJ_SIZE_T n, void* user) {
    auto* s = static_cast<MemoryStream*>(user);
    if (s->data.size() < s->pos + n) s->data.resize(s->pos + n);
    std::memcpy(s->data.data() + s->pos, buffer, n);
    s->pos += n;
    return n;
  }
  static OPJ_OFF_T Skip(OPJ_OFF_T n, void* user) {
    auto* s = static_cast<MemoryStream*>(user);
    s->pos = size_t(OPJ_OFF_T(s->pos) + n);
    return n;
  }
  static OPJ_BOOL Seek(OPJ_OFF_T to, void* user) {
    static_cast<MemoryStream*>(user)->pos = size_t(to);
    return OPJ_TRUE;
  }

  opj_stream_t* Open(bool input) {
    opj_stream_t* stream = opj_stream_create(1 << 16, input ? OPJ_TRUE : OPJ_FALSE);
    opj_stream_set_user_data(stream, this, nullptr);
    opj_stream_set_user_data_length(stream, data.size());
    if (input) opj_stream_set_read_function(stream, Read);
    else opj_stream_set_write_function(stream, Write);
    opj_stream_set_skip_function(stream, Skip);
    opj_stream_set_seek_function(stream, Seek);
    return stream;
  }
};

// Component records of 8-bit unsigned planes of one size, for either peer.
template <class Parameters>
std::vector<Parameters> EightBitComponents(size_t count, uint32_t width, uint32_t height) {
  std::vector<Parameters> parms(count);
  for (auto& p : parms) {
    std::memset(&p, 0, sizeof p);
    p.dx = p.dy = 1;
    p.w = width;
    p.h = height;
    p.prec = 8;
  }
  return parms;
}

// jp2 selects the file format; otherwise the bytes are a bare codestream.
inline Decoded OpenJpegDecode(const uint8_t* bytes, size_t size, bool jp2, int threads = 1) {
  Decoded out;
  MemoryStream memory;
  memory.data.assign(bytes, bytes + size);
  opj_stream_t* stream = memory.Open(true);
  opj_codec_t* codec = opj_create_decompress(jp2 ? OPJ_CODEC_JP2 : OPJ_CODEC_J2K);
  opj_dparameters_t params;
  opj_set_default_decoder_parameters(&params);
  opj_image_t* image = nullptr;
  if (opj_setup_decoder(codec, &params) && opj_codec_set_threads(codec, threads) &&
      opj_read_header(stream, codec, &image) && opj_decode(codec, stream, image) && opj_end_decompress(codec, stream)) {
    out.ok = true;
    out.width = image->x1 - image->x0;
    out.height = image->y1 - image->y0;
    for (uint32_t c = 0; c < image->numcomps; ++c) {
      const opj_image_comp_t& comp = image->comps[c];
      out.components.emplace_back(comp.data, comp.data + size_t(comp.w) * comp.h);
    }
  }
  if (image) opj_image_destroy(image);
  opj_destroy_codec(codec);
  opj_stream_destroy(stream);
  return out;
}

// Lossless J2K codestream of 8-bit planes: one tile, 5 levels, 64x64
// code-blocks, one layer, LRCP, the colour transform on three components.
inline std::vector<uint8_t> OpenJpegEncode(const std::vector<const uint8_t*>& planes, uint32_t width, uint32_t height,
                                           int threads = 1) {
  auto parms = EightBitComponents<opj_image_cmptparm_t>(planes.size(), width, height);
  opj_image_t* image =
      opj_image_create(OPJ_UINT32(planes.size()), parms.data(), planes.size() == 3 ? OPJ_CLRSPC_SRGB : OPJ_CLRSPC_GRAY);
  image->x1 = width;
  image->y1 = height;
  for (size_t c = 0; c < planes.size(); ++c)
    for (size_t i = 0; i < size_t(width) * height; ++i) image->comps[c].data[i] = planes[c][i];
  opj_cparameters_t params;
  opj_set_default_encoder_parameters(&params);
  params.numresolution = 6;
  params.cblockw_init = params.cblockh_init = 64;
  params.tcp_numlayers = 1;
  params.tcp_rates[0] = 0;
  params.cp_disto_alloc = 1;
  params.irreversible = 0;
  params.prog_order = OPJ_LRCP;
  params.tcp_mct = planes.size() == 3 ? 1 : 0;
  MemoryStream memory;
  opj_codec_t* codec = opj_create_compress(OPJ_CODEC_J2K);
  opj_stream_t* stream = memory.Open(false);
  bool ok = opj_setup_encoder(codec, &params, image) && opj_codec_set_threads(codec, threads) &&
            opj_start_compress(codec, image, stream) && opj_encode(codec, stream) && opj_end_compress(codec, stream);
  opj_stream_destroy(stream);
  opj_destroy_codec(codec);
  opj_image_destroy(image);
  if (!ok) memory.data.clear();
  return memory.data;
}

}  // namespace j2kpeer
