// kestrelink jpeg encode|decode|info over the JPEG codec (CJPEGEncoder,
// CJPEGDecoder, CJPEGMetaData).
#include "JpegVerb.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "Args.h"
#include "FrameFile.h"
#include "JpegFrontEncode.h"
#include "PngFile.h"
#include "ToolError.h"
#include "jpeg/CJPEGDecoder.h"
#include "jpeg/CJPEGEncoder.h"
#include "jpeg/JpegStreams.h"

namespace kestrelink::tool {

namespace {

using namespace kestrelink::jpeg;

struct Layout {
  std::string_view name;
  int channels;
  JCOLOR colour;
};
constexpr Layout kLayouts[] = {{"gray", 1, JC_GRAY}, {"bgr24", 3, JC_BGR}, {"rgb24", 3, JC_RGB}};

void Check(JERRCODE status, const std::string& what) {
  if (status != JPEG_OK) throw RunError(what + ": " + JPEGErrorText(status));
}

std::vector<uint8_t> ReadWhole(const std::string& path) {
  std::error_code error;
  const uint64_t size = std::filesystem::file_size(path, error);
  if (error) throw RunError("cannot open '" + path + "': " + error.message());
  if (size > (uint64_t(1) << 31)) throw RunError("'" + path + "' is too large");
  return ReadFrameFile(path, size, "the whole file");
}

int Encode(std::span<const std::string_view> args) {
  std::optional<FrameSize> size;
  const Layout* layout = nullptr;
  int quality = 85;
  bool progressive = false, full = false;
  FrontEncodeRequest front;
  const OptionSpec options[] = {
      {"--format", "CODE", [&](std::string_view v) { front.format = uint32_t(ParseInteger("--format", v, 1, 999)); }},
      {"--bits", "N", [&](std::string_view v) { front.bits = uint32_t(ParseInteger("--bits", v, 1, 64)); }},
      {"--sample-bits", "S",
       [&](std::string_view v) { front.sampleBits = uint32_t(ParseInteger("--sample-bits", v, 0, 64)); }},
      {"--gpu", "", [&](std::string_view) { front.gpu = true; }},
      {"--size", "WxH", [&](std::string_view v) { size = ParseSize("--size", v); }},
      {"--layout", "L",
       [&](std::string_view v) {
         for (const Layout& l : kLayouts)
           if (l.name == v) layout = &l;
         if (!layout) throw UsageError("unknown --layout '" + std::string(v) + "' (gray, bgr24, rgb24)");
       }},
      {"--quality", "Q", [&](std::string_view v) { quality = int(ParseInteger("--quality", v, 0, 100)); }},
      {"--progressive", "", [&](std::string_view) { progressive = true; }},
      {"--444", "", [&](std::string_view) { full = true; }},
  };
  std::vector<std::string_view> files;
  if (!ParseOptions(args, options, files)) {
    PrintJpegUsage(std::cout);
    return 0;
  }
  if (!size) throw UsageError("missing --size WxH");
  if (size->width > 65535 || size->height > 65535) throw UsageError("--size: a JPEG side is at most 65535");
  if (files.size() != 2) throw UsageError("jpeg encode takes IN and OUT.jpg");
  if (front.format != 0) {
    if (layout || progressive || full) throw UsageError("--format takes no --layout, --progressive or --444");
    if (front.bits == 0) throw UsageError("--format needs --bits N");
    front.size = *size;
    front.quality = quality;
    front.in = std::string(files[0]);
    front.out = std::string(files[1]);
    if (front.sampleBits == 0) front.sampleBits = front.bits == 16 || front.bits == 48 || front.bits == 64 ? 16 : 8;
    return EncodeThroughFront(front);
  }
  if (front.bits != 0 || front.sampleBits != 0 || front.gpu) throw UsageError("--bits, --sample-bits and --gpu go with --format");
  if (!layout) throw UsageError("missing --layout gray|bgr24|rgb24");
  const std::string in(files[0]), out(files[1]);
  const uint64_t bytes = uint64_t(size->width) * size->height * layout->channels;
  const std::vector<uint8_t> raw = ReadFrameFile(
      in, bytes, "a " + std::to_string(size->width) + "x" + std::to_string(size->height) + " " +
                     std::string(layout->name) + " frame");
  std::vector<uint8_t> stream(bytes + 65536);
  CMemBuffOutput sink;
  sink.Open(stream.data(), uint32_t(stream.size()));
  CJPEGEncoder enc;
  const int w = int(size->width), h = int(size->height);
  Check(enc.SetSource(raw.data(), w * layout->channels, {w, h}, layout->channels, layout->colour, JS_444, 8),
        "encoder source");
  Check(enc.SetDestination(&sink), "encoder destination");
  const bool grey = layout->channels == 1;
  Check(enc.SetParams(progressive ? JPEG_PROGRESSIVE : JPEG_BASELINE, grey ? JC_GRAY : JC_YCBCR,
                      grey || full ? JS_444 : JS_411, 0, false, quality),
        "encoder parameters");
  Check(enc.WriteHeader(), "writing the header");
  Check(enc.WriteData(), "writing the data");
  stream.resize(sink.m_position);
  WriteRawFile(out, stream);
  std::cout << in << ": " << raw.size() << " bytes -> " << stream.size() << " bytes\n";
  return 0;
}

struct Decoded {
  int width = 0, height = 0, channels = 0, precision = 8;
  std::vector<uint8_t> pixels;  // 16-bit words (host order) above 8 bits
};

void Decode(const std::vector<uint8_t>& stream, CJPEGDecoder& dec, Decoded& out) {
  CMemBuffInput source;
  Check(source.Open(stream.data(), uint32_t(stream.size())), "input");
  Check(dec.SetSource(&source), "decoder source");
  int channels = 0, precision = 0;
  JCOLOR colour;
  JSS sampling;
  Check(dec.ReadHeader(&out.width, &out.height, &channels, &colour, &sampling, &precision), "reading the header");
  out.channels = channels == 1 ? 1 : 3;
  out.precision = precision;
  if (channels == 4) throw RunError("four-component frames have no PNG layout here");
  const int sampleBytes = precision > 8 ? 2 : 1;
  out.pixels.assign(size_t(out.width) * out.height * out.channels * sampleBytes, 0);
  Check(dec.SetDestination(out.pixels.data(), out.width * out.channels * sampleBytes, {out.width, out.height},
                           out.channels, out.channels == 1 ? JC_GRAY : JC_RGB, JS_444, precision, 1),
        "decoder destination");
  Check(dec.ReadData(), "decoding");
}

int DecodeVerb(std::span<const std::string_view> args) {
  std::vector<std::string_view> files;
  if (!ParseOptions(args, {}, files)) {
    PrintJpegUsage(std::cout);
    return 0;
  }
  if (files.size() != 2) throw UsageError("jpeg decode takes IN.jpg and OUT.png");
  const std::vector<uint8_t> stream = ReadWhole(std::string(files[0]));
  CJPEGDecoder dec;
  Decoded d;
  Decode(stream, dec, d);
  PngImage png;
  png.width = uint32_t(d.width);
  png.height = uint32_t(d.height);
  if (d.precision > 8) {
    // Deeper samples become 16-bit PNG samples, scaled to the full range by
    // repeating their top bits below them.
    png.pixel = d.channels == 1 ? PngPixel::Grey16 : PngPixel::Rgb16;
    const int up = 16 - d.precision, down = d.precision - up;
    for (size_t i = 0; i + 1 < d.pixels.size(); i += 2) {
      const uint32_t v = uint32_t(d.pixels[i] | (d.pixels[i + 1] << 8));
      const uint32_t wide = (v << up) | (v >> down);
      d.pixels[i] = uint8_t(wide >> 8);
      d.pixels[i + 1] = uint8_t(wide);
    }
  } else {
    png.pixel = d.channels == 1 ? PngPixel::Grey8 : PngPixel::Rgb8;
  }
  png.bytes = std::move(d.pixels);
  WritePng(std::string(files[1]), png);
  return 0;
}

int Info(std::span<const std::string_view> args) {
  std::vector<std::string_view> files;
  if (!ParseOptions(args, {}, files)) {
    PrintJpegUsage(std::cout);
    return 0;
  }
  if (files.size() != 1) throw UsageError("jpeg info takes IN.jpg");
  const std::vector<uint8_t> stream = ReadWhole(std::string(files[0]));
  CJPEGDecoder dec;
  Decoded d;
  CMemBuffInput source;
  source.Open(stream.data(), uint32_t(stream.size()));
  dec.SetSource(&source);
  int w = 0, h = 0, channels = 0, precision = 0;
  JCOLOR colour = JC_UNKNOWN;
  JSS sampling = JS_444;
  Check(dec.ReadHeader(&w, &h, &channels, &colour, &sampling, &precision), "reading the header");
  static const char* const modes[] = {"", "baseline", "extended", "progressive", "lossless"};
  static const char* const colours[] = {"unknown", "gray", "RGB", "BGR", "YCbCr", "CMYK", "YCCK"};
  std::cout << "frame: " << modes[dec.Mode()] << ", " << w << "x" << h << ", " << precision << " bits, "
            << channels << " components, " << colours[colour] << "\n";
  for (int i = 0; i < channels; ++i) {
    const CJPEGColorComponent& c = dec.Component(i);
    std::cout << "  component " << c.id << ": sampling " << c.h << "x" << c.v << ", quantisation table "
              << c.quantTable << "\n";
  }
  if (dec.RestartInterval()) std::cout << "restart interval: " << dec.RestartInterval() << " MCUs\n";
  // The scans and the tables that follow the first one come with the data.
  if (channels != 4) {
    Decoded whole;
    CJPEGDecoder full;
    Decode(stream, full, whole);
    std::cout << "scans: " << full.Scans().size() << "\n";
    for (const JpegScanInfo& s : full.Scans()) {
      std::cout << "  components";
      for (int i = 0; i < s.count; ++i) std::cout << " " << full.Component(s.comps[i]).id;
      std::cout << ": Ss " << s.ss << ", Se " << s.se << ", Ah " << s.ah << ", Al " << s.al << "\n";
    }
  }
  for (int t = 0; t < 4; ++t)
    if (const uint16_t* q = dec.QuantTable(t)) {
      std::cout << "quantisation table " << t << ":";
      for (int k = 0; k < 64; ++k) std::cout << (k % 16 == 0 ? "\n   " : "") << " " << q[k];
      std::cout << "\n";
    }
  for (int cls = 0; cls < 2; ++cls)
    for (int t = 0; t < 4; ++t)
      if (dec.HuffmanTableDefined(cls, t)) std::cout << "Huffman table: " << (cls ? "AC " : "DC ") << t << "\n";
  if (dec.HasExif()) {
    const CJPEGMetaData& meta = dec.MetaData();
    static const char* const ifds[] = {"IFD 0", "IFD 1", "Exif", "GPS", "Interoperability"};
    for (int i = 0; i < 5; ++i) {
      if (meta.CountOf(i) == 0) continue;
      std::cout << "exif " << ifds[i] << ":\n";
      for (uint32_t e = 0; e < meta.CountOf(i); ++e) {
        char* text = CJPEGMetaData::Format(meta.IfdRecord(i).entries[e]);
        if (text) std::cout << "  " << text << "\n";
        std::free(text);
      }
    }
  }
  return 0;
}

}  // namespace

void PrintJpegUsage(std::ostream& out) {
  out << "usage: kestrelink jpeg encode --layout gray|bgr24|rgb24 --size WxH [--quality Q]\n"
         "                             [--progressive] [--444] IN OUT.jpg\n"
         "       kestrelink jpeg encode --format CODE --bits N [--sample-bits S] --size WxH\n"
         "                             [--quality Q] [--gpu] IN OUT.jpg\n"
         "       kestrelink jpeg decode IN.jpg OUT.png\n"
         "       kestrelink jpeg info IN.jpg\n"
         "\n"
         "encode compresses one raw frame (tightly packed rows) with the library's JPEG\n"
         "codec: baseline, or progressive with --progressive; colour frames are YCbCr\n"
         "with 2 x 2 chroma subsampling, or none with --444. decode writes a grey or RGB\n"
         "PNG. info prints the frame, its scans and tables, and the Exif entries.\n"
         "\n"
         "With --format, encode takes a frame in any camera layout through CJpegConversion:\n"
         "it is normalised to 8-bit mono, BGR24 or BGRx and encoded by the software\n"
         "back-ends (8- and 24-bit frames by the library's codec, with JPEGbaselineMode and\n"
         "JPEG444Mode from the registry store; other depths by libjpeg-turbo), or with --gpu\n"
         "by the GPU companion (8-bit mono, at least 128 x 128), whose messages are shown\n"
         "when it is not there. Codes: 100/101 mono 8 or 16, 112-115 mono 16, 123-125\n"
         "10-bit packed colour (48), 200 BGR 24/48, 300 three planes (24; 48 with sample\n"
         "bits 30, 36, 42; the planes follow one another in IN), 400 RGB 24/48, 500 BGRx\n"
         "32/64, 600 YCbCr 4:2:2 (16), 700 UVY422 (16), 800 UVY411, 900 three bytes\n"
         "without colour meaning (24), 905 BGR555, 906 BGR565.\n"
         "\n"
         "options:\n"
         "  --layout L       gray (one byte a pixel), bgr24 or rgb24 (three)\n"
         "  --size WxH       frame size in pixels, each side at most 65535\n"
         "  --quality Q      0 to 100 (default 85; 0 keeps the standard's example tables)\n"
         "  --progressive    write a progressive stream\n"
         "  --444            no chroma subsampling\n"
         "  --format CODE    the frame's format code (see above)\n"
         "  --bits N         bits a pixel of the camera frame\n"
         "  --sample-bits S  significant bits a sample (default 16 for 16, 48 and 64 bits, else 8)\n"
         "  --gpu            encode with the GPU companion\n"
         "  -h, --help       show this help\n"
         "\n"
         "example:\n"
         "  kestrelink jpeg encode --layout bgr24 --size 1920x1080 --quality 90 frame.raw frame.jpg\n"
         "  kestrelink jpeg decode frame.jpg frame.png\n"
         "  kestrelink jpeg encode --format 101 --bits 16 --sample-bits 12 --size 1920x1080 mono12.raw mono.jpg\n";
}

int RunJpeg(std::span<const std::string_view> args) {
  if (args.empty()) throw UsageError("missing encode, decode or info");
  if (args[0] == "-h" || args[0] == "--help") {
    PrintJpegUsage(std::cout);
    return 0;
  }
  if (args[0] == "encode") return Encode(args.subspan(1));
  if (args[0] == "decode") return DecodeVerb(args.subspan(1));
  if (args[0] == "info") return Info(args.subspan(1));
  throw UsageError("unknown jpeg command '" + std::string(args[0]) + "' (encode, decode, info)");
}

}  // namespace kestrelink::tool
