#include "PngFile.h"

#include <png.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "FrameFile.h"
#include "ToolError.h"

namespace kestrelink::tool {

namespace {

struct PngFailure {
  char message[256];
};

void OnPngError(png_structp png, png_const_charp message) {
  auto* failure = static_cast<PngFailure*>(png_get_error_ptr(png));
  std::snprintf(failure->message, sizeof failure->message, "%s", message ? message : "libpng failed");
  png_longjmp(png, 1);
}

void OnPngWarning(png_structp, png_const_charp) {}  // nothing we write draws a warning worth a line

// Kept free of C++ objects: libpng reports errors by longjmp, which must
// not cross a destructor.
bool WriteWithLibpng(FILE* file, const PngImage& image, png_bytepp rows, PngFailure* failure) {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, failure, OnPngError, OnPngWarning);
  if (!png) return false;
  png_infop info = png_create_info_struct(png);
  if (!info) {
    png_destroy_write_struct(&png, nullptr);
    return false;
  }
  if (setjmp(png_jmpbuf(png))) {
    png_destroy_write_struct(&png, &info);
    return false;
  }
  const int bitDepth = image.pixel == PngPixel::Grey16 || image.pixel == PngPixel::Rgb16 ? 16 : 8;
  const int colourType =
      image.pixel == PngPixel::Rgb8 || image.pixel == PngPixel::Rgb16 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY;
  png_init_io(png, file);
  png_set_compression_level(png, 3);  // noisy camera frames gain little from the default level at several times the cost
  png_set_IHDR(png, info, image.width, image.height, bitDepth, colourType, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  png_write_image(png, rows);
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  return true;
}

}  // namespace

uint32_t PngBytesPerPixel(PngPixel pixel) {
  switch (pixel) {
    case PngPixel::Grey8: return 1;
    case PngPixel::Grey16: return 2;
    case PngPixel::Rgb8: return 3;
    case PngPixel::Rgb16: return 6;
  }
  return 1;
}

void WritePng(const std::string& path, const PngImage& image) {
  const size_t rowBytes = size_t(image.width) * PngBytesPerPixel(image.pixel);
  if (image.width == 0 || image.height == 0 || image.bytes.size() < rowBytes * image.height)
    throw RunError("no picture to write to '" + path + "'");
  std::vector<png_bytep> rows(image.height);
  for (uint32_t y = 0; y < image.height; ++y) rows[y] = const_cast<png_bytep>(image.bytes.data() + rowBytes * y);

  FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) throw RunError("cannot write '" + path + "': " + std::strerror(errno));
  PngFailure failure{"libpng could not start"};
  const bool written = WriteWithLibpng(file, image, rows.data(), &failure);
  const bool closed = std::fclose(file) == 0;
  const std::string why = written ? std::strerror(errno) : failure.message;
  if (!written || !closed) {
    RemovePartialOutput(path);
    throw RunError("cannot write '" + path + "': " + why);
  }
}

}  // namespace kestrelink::tool
