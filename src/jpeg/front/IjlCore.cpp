#include "jpeg/front/IjlCore.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <vector>

#include <jpeglib.h>  // after <cstdio>: it needs FILE and size_t

#include "jpeg/front/YcbcraRows.h"

namespace kestrelink::jpegfront {
namespace {

// libjpeg reports a failure by calling error_exit, which must not return:
// it jumps back to the call's entry with the status to give.
struct ErrorManager {
  jpeg_error_mgr base;
  std::jmp_buf jump;
  int status;
};

void ErrorExit(j_common_ptr info) {
  auto* manager = reinterpret_cast<ErrorManager*>(info->err);
  std::longjmp(manager->jump, 1);
}

void Quiet(j_common_ptr) {}

void InitErrors(ErrorManager& manager) {
  jpeg_std_error(&manager.base);
  manager.base.error_exit = &ErrorExit;
  manager.base.output_message = &Quiet;
  manager.status = kIjlCodecError;
}

// Writes into the caller's buffer of fixed capacity.
struct BufferDestination {
  jpeg_destination_mgr base;
  uint8_t* start;
  uint32_t capacity;
};

void DestinationInit(j_compress_ptr info) {
  auto* d = reinterpret_cast<BufferDestination*>(info->dest);
  d->base.next_output_byte = d->start;
  d->base.free_in_buffer = d->capacity;
}

boolean DestinationFull(j_compress_ptr info) {
  auto* manager = reinterpret_cast<ErrorManager*>(info->err);
  manager->status = kIjlBufferTooSmall;
  std::longjmp(manager->jump, 1);
}

void DestinationTerm(j_compress_ptr) {}

inline uint8_t Clamp(int v) { return static_cast<uint8_t>(std::clamp(v, 0, 255)); }

// The reverse of RgbaRowToYcbcra, in the same fixed point.
void YcbcraRowToRgba(const uint8_t* in, uint8_t* out, int width) {
  for (int x = 0; x < width; ++x, in += 4, out += 4) {
    const int y = in[0], cb = in[1] - 128, cr = in[2] - 128;
    out[0] = Clamp(y + ((91881 * cr + 32768) >> 16));
    out[1] = Clamp(y - ((22554 * cb + 46802 * cr - 32768) >> 16));
    out[2] = Clamp(y + ((116130 * cb + 32768) >> 16));
    out[3] = in[3];
  }
}

// Bytes Y0 Cb Y1 Cr to full-size Y Cb Cr triplets, each pair sharing its
// chroma. Rows are 2 x width bytes: the last pixel of an odd width has no Cr
// in its row and takes the neutral 128.
void Ycbcr422RowToYcbcr(const uint8_t* in, uint8_t* out, int width) {
  for (int x = 0; x < width; ++x, out += 3) {
    const uint8_t* pair = in + (x / 2) * 4;
    out[0] = pair[(x & 1) * 2];
    out[1] = pair[1];
    out[2] = (x | 1) < width ? pair[3] : 128;
  }
}

void YcbcrRowToYcbcr422(const uint8_t* in, uint8_t* out, int width) {
  for (int x = 0; x < width; ++x, in += 3) {
    uint8_t* pair = out + (x / 2) * 4;
    pair[(x & 1) * 2] = in[0];
    if ((x & 1) == 0) {
      pair[1] = in[1];
      if (x + 1 < width) pair[3] = in[2];  // within the row's 2 x width bytes
    }
  }
}

size_t DibRowBytes(const IjlProperties& p) {
  return p.dibColour == kIjlYcbcr && p.dibSampling == kIjl422 ? size_t(p.dibWidth) * 2
                                                              : size_t(p.dibWidth) * p.dibChannels;
}

bool SetSampling(jpeg_compress_struct& c, int h0, int v0) {
  c.comp_info[0].h_samp_factor = h0;
  c.comp_info[0].v_samp_factor = v0;
  for (int i = 1; i < c.num_components; ++i) {
    c.comp_info[i].h_samp_factor = 1;
    c.comp_info[i].v_samp_factor = 1;
  }
  return true;
}

// The JPEG side of a frame: input colour space, components, their sampling.
bool Describe(jpeg_compress_struct& c, const IjlProperties& p) {
  c.image_width = JDIMENSION(p.dibWidth);
  c.image_height = JDIMENSION(p.dibHeight);
  if (p.dibChannels == 1 && (p.dibColour == kIjlGray || p.dibColour == kIjlOther)) {
    c.input_components = 1;
    c.in_color_space = JCS_GRAYSCALE;
    jpeg_set_defaults(&c);
    return true;
  }
  if (p.dibChannels == 3 && (p.dibColour == kIjlBgr || p.dibColour == kIjlRgb)) {
    c.input_components = 3;
    c.in_color_space = p.dibColour == kIjlBgr ? JCS_EXT_BGR : JCS_RGB;
    jpeg_set_defaults(&c);
    return p.jpgSampling == kIjl411 ? SetSampling(c, 2, 2) : p.jpgSampling == kIjl422 ? SetSampling(c, 2, 1)
                                                                                        : SetSampling(c, 1, 1);
  }
  if (p.dibChannels == 3 && p.dibColour == kIjlYcbcr) {
    c.input_components = 3;
    c.in_color_space = JCS_YCbCr;
    jpeg_set_defaults(&c);
    return SetSampling(c, 2, 1);
  }
  if (p.dibChannels == 3 && p.dibColour == kIjlOther) {
    c.input_components = 3;
    c.in_color_space = JCS_UNKNOWN;
    jpeg_set_defaults(&c);
    jpeg_set_colorspace(&c, JCS_UNKNOWN);
    return SetSampling(c, 1, 1);
  }
  if (p.dibChannels == 4 && p.dibColour == kIjlRgba) {
    c.input_components = 4;
    c.in_color_space = JCS_UNKNOWN;  // converted to YCbCrA here
    jpeg_set_defaults(&c);
    jpeg_set_colorspace(&c, JCS_UNKNOWN);
    SetSampling(c, 2, 2);
    c.comp_info[3].h_samp_factor = 2;
    c.comp_info[3].v_samp_factor = 2;
    for (int i = 1; i < 3; ++i) {
      c.comp_info[i].quant_tbl_no = 1;
      c.comp_info[i].dc_tbl_no = 1;
      c.comp_info[i].ac_tbl_no = 1;
    }
    return true;
  }
  return false;
}

// The body of a write, between the jump point and the end: only trivially
// destructible state lives here.
int WriteFrame(IjlProperties& p, IjlMode mode, std::vector<uint8_t>& row) {
  ErrorManager errors;
  jpeg_compress_struct c;
  BufferDestination destination;
  std::FILE* volatile file = nullptr;  // read again after a jump
  InitErrors(errors);
  c.err = &errors.base;
  if (setjmp(errors.jump) != 0) {
    jpeg_destroy_compress(&c);
    if (file != nullptr) std::fclose(file);
    return errors.status;
  }
  jpeg_create_compress(&c);
  if (mode == kIjlWriteFile) {
    file = p.jpgFile != nullptr ? std::fopen(p.jpgFile, "wb") : nullptr;
    if (file == nullptr) {
      jpeg_destroy_compress(&c);
      return kIjlFileError;
    }
    jpeg_stdio_dest(&c, file);
  } else {
    destination.base.init_destination = &DestinationInit;
    destination.base.empty_output_buffer = &DestinationFull;
    destination.base.term_destination = &DestinationTerm;
    destination.start = p.jpgBytes;
    destination.capacity = p.jpgSizeBytes;
    c.dest = &destination.base;
  }
  if (!Describe(c, p)) {
    jpeg_destroy_compress(&c);
    if (file != nullptr) std::fclose(file);
    return kIjlBadParameter;
  }
  jpeg_set_quality(&c, p.quality, TRUE);
  jpeg_start_compress(&c, TRUE);
  const size_t rowBytes = DibRowBytes(p);
  const bool rgba = p.dibColour == kIjlRgba;
  const bool ycbcr422 = p.dibColour == kIjlYcbcr;
  while (c.next_scanline < c.image_height) {
    uint8_t* in = p.dibBytes + size_t(c.next_scanline) * rowBytes;
    if (rgba) {
      RgbaRowToYcbcra(in, row.data(), p.dibWidth);
      in = row.data();
    } else if (ycbcr422) {
      Ycbcr422RowToYcbcr(in, row.data(), p.dibWidth);
      in = row.data();
    }
    JSAMPROW rows[1] = {in};
    jpeg_write_scanlines(&c, rows, 1);
  }
  jpeg_finish_compress(&c);
  if (mode == kIjlWriteBuffer) p.jpgSizeBytes = uint32_t(p.jpgSizeBytes - destination.base.free_in_buffer);
  jpeg_destroy_compress(&c);
  if (file != nullptr && std::fclose(file) != 0) return kIjlFileError;
  return kIjlOk;
}

int ReadFrame(IjlProperties& p, IjlMode mode, std::vector<uint8_t>& row) {
  ErrorManager errors;
  jpeg_decompress_struct d;
  InitErrors(errors);
  d.err = &errors.base;
  if (setjmp(errors.jump) != 0) {
    jpeg_destroy_decompress(&d);
    return errors.status;
  }
  jpeg_create_decompress(&d);
  jpeg_mem_src(&d, p.jpgBytes, p.jpgSizeBytes);
  jpeg_read_header(&d, TRUE);
  p.jpgWidth = int(d.image_width);
  p.jpgHeight = int(d.image_height);
  p.jpgChannels = d.num_components;
  p.jpgColour = d.num_components == 1 ? kIjlGray : d.num_components == 3 ? kIjlYcbcr : kIjlYcbcra;
  if (mode == kIjlReadParamsBuffer) {
    jpeg_destroy_decompress(&d);
    return kIjlOk;
  }
  const bool rgba = p.dibColour == kIjlRgba;
  const bool ycbcr422 = p.dibColour == kIjlYcbcr;
  const int wanted = rgba ? 4 : p.dibChannels;
  if (p.dibBytes == nullptr || d.num_components != wanted) {
    jpeg_destroy_decompress(&d);
    return kIjlBadParameter;
  }
  if (p.dibColour == kIjlBgr || p.dibColour == kIjlRgb) {
    d.out_color_space = p.dibColour == kIjlBgr ? JCS_EXT_BGR : JCS_RGB;
  } else if (ycbcr422) {
    d.jpeg_color_space = JCS_YCbCr;
    d.out_color_space = JCS_YCbCr;
    d.do_fancy_upsampling = FALSE;  // each pair's first chroma sample as stored
  } else if (wanted > 1) {
    d.jpeg_color_space = JCS_UNKNOWN;  // no colour transform
    d.out_color_space = JCS_UNKNOWN;
  } else {
    d.out_color_space = JCS_GRAYSCALE;
  }
  p.dibWidth = p.jpgWidth;
  p.dibHeight = p.jpgHeight;
  const size_t rowBytes = DibRowBytes(p);
  row.resize(size_t(p.dibWidth) * 4);
  jpeg_start_decompress(&d);
  while (d.output_scanline < d.output_height) {
    uint8_t* out = p.dibBytes + size_t(d.output_scanline) * rowBytes;
    JSAMPROW rows[1] = {rgba || ycbcr422 ? row.data() : out};
    jpeg_read_scanlines(&d, rows, 1);
    if (rgba) YcbcraRowToRgba(row.data(), out, p.dibWidth);
    if (ycbcr422) YcbcrRowToYcbcr422(row.data(), out, p.dibWidth);
  }
  jpeg_finish_decompress(&d);
  jpeg_destroy_decompress(&d);
  return kIjlOk;
}

// The row a frame is converted through: one a thread, grown as needed and
// kept, so a frame allocates nothing of its own beside the general library.
std::vector<uint8_t>& RowBuffer() {
  thread_local std::vector<uint8_t> row;
  return row;
}

}  // namespace

int IjlWrite(IjlProperties& properties, IjlMode mode) {
  if ((mode != kIjlWriteFile && mode != kIjlWriteBuffer) || properties.dibBytes == nullptr ||
      properties.dibWidth <= 0 || properties.dibHeight <= 0 || properties.dibWidth > 65500 ||
      properties.dibHeight > 65500)
    return kIjlBadParameter;
  if (mode == kIjlWriteBuffer && properties.jpgBytes == nullptr) return kIjlBadParameter;
  std::vector<uint8_t>& row = RowBuffer();
  if (row.size() < size_t(properties.dibWidth) * 4) row.resize(size_t(properties.dibWidth) * 4);
  return WriteFrame(properties, mode, row);
}

int IjlRead(IjlProperties& properties, IjlMode mode) {
  if ((mode != kIjlReadParamsBuffer && mode != kIjlReadImageBuffer) || properties.jpgBytes == nullptr ||
      properties.jpgSizeBytes == 0)
    return kIjlBadParameter;
  return ReadFrame(properties, mode, RowBuffer());
}

}  // namespace kestrelink::jpegfront
