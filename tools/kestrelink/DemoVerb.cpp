// kestrelink demo: example conversions of the synthetic scene, as PNG files.
#include <algorithm>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "Args.h"
#include "ColourMap.h"
#include "Conversions.h"
#include "DemosaicVerb.h"
#include "FrameFile.h"
#include "Jpeg2kVerb.h"
#include "LayoutPng.h"
#include "LookWriter.h"
#include "MirrorRotateVerbs.h"
#include "PngFile.h"
#include "ResizeVerb.h"
#include "JpegDemo.h"
#include "SyntheticScene.h"
#include "ToolError.h"
#include "Verbs.h"
#include "WaveletVerb.h"

namespace kestrelink::tool {

namespace {

namespace fs = std::filesystem;

constexpr uint32_t kDemoDepth = 12;
constexpr FrameSize kDemoSize{1920, 1080};
constexpr const char* kDemoFolder = "kestrelink-demo";
constexpr uint32_t kDemoH264Frames = 30;

// One picture of the demo: a conversion of the scene under one colour-map setting.
struct DemoShot {
  const char* file;
  const char* what;
  LayoutId to;
  bool flip;
  ColourMapSettings colourMap;
};

ColourMapSettings Pseudo(int32_t mode) {
  ColourMapSettings settings;
  settings.pseudoMode = mode;
  return settings;
}

ColourMapSettings Asc(double gain, double offset, double gamma) {
  ColourMapSettings settings;
  settings.asc = {gain, offset, gamma};
  return settings;
}

ColourMapSettings Clip(int32_t level) {
  ColourMapSettings settings;
  settings.clipLevel = level;
  return settings;
}

std::vector<DemoShot> DemoShots() {
  return {
      {"02-mono8.png", "Mono16ToMono8", LayoutId::Mono8, false, {}},
      {"03-bgrx.png", "Mono16ToBGRx", LayoutId::Bgrx, false, {}},
      {"04-bgr-flipped.png", "Mono16ToBGR, flipped", LayoutId::Bgr24, true, {}},
      {"05-mono16msb.png", "Mono16ToMono16MSB, 16-bit grey as it stands", LayoutId::Mono16Msb, false, {}},
      {"06-pseudo0-rainbow.png", "Mono16ToBGRx, pseudo-colour 0: rainbow from red", LayoutId::Bgrx, false, Pseudo(0)},
      {"07-pseudo1-rainbow.png", "Mono16ToBGRx, pseudo-colour 1: rainbow from blue", LayoutId::Bgrx, false, Pseudo(1)},
      {"08-pseudo2-heat.png", "Mono16ToBGRx, pseudo-colour 2: heat", LayoutId::Bgrx, false, Pseudo(2)},
      {"09-pseudo3-heat-swapped.png", "Mono16ToBGRx, pseudo-colour 3: heat, blue and red exchanged",
       LayoutId::Bgrx, false, Pseudo(3)},
      {"10-pseudo4-negative.png", "Mono16ToBGRx, pseudo-colour 4: negative", LayoutId::Bgrx, false, Pseudo(4)},
      {"11-asc-gain1.5-gamma0.6.png", "Mono16ToBGRx, ASC curve gain 1.5, offset 0, gamma 0.6", LayoutId::Bgrx,
       false, Asc(1.5, 0.0, 0.6)},
      {"12-clip1.png", "Mono16ToBGRx, clip level 1: samples 0..511 over the whole range", LayoutId::Bgrx, false,
       Clip(1)},
  };
}

fs::path MakeFolder(const std::string& folder) {
  std::error_code error;
  fs::path path = fs::absolute(folder, error);
  if (!error) fs::create_directories(path, error);
  if (error) throw RunError("cannot create the folder '" + folder + "': " + error.message());
  if (!fs::is_directory(path)) throw RunError("'" + folder + "' is not a folder");
  return path.lexically_normal();
}

}  // namespace

void PrintDemoUsage(std::ostream& out) {
  out << "usage: kestrelink demo [--out DIR] [--size WxH]\n"
         "\n"
         "Makes a synthetic 12-bit camera frame (gradients, bars, checker squares, a disc,\n"
         "colour patches and fixed-seed noise, the same at every run) as mono16 at depth 12,\n"
         "and writes it and conversions of it as PNG files into DIR: grey, BGRx, flipped BGR,\n"
         "each pseudo-colour map, an ASC curve and a clip level, a demosaiced Bayer frame, the\n"
         "BGRx picture mirrored and turned by 12.5 degrees, the BGRx picture as a lossless JP2\n"
         "file, the scene resized to half size, the scene as JPEG, a look file of its own and\n"
         "the Bayer frame graded by it.\n"
         "Prints the folder and the files.\n"
         "Then encodes 30 frames of the scene, panning, to H.264 records and decodes them back,\n"
         "printing the stream's size, bit rate and PSNR, and writes the scene as a JPEG\n"
         "(19-scene.jpg, through CJpegConversion) and decodes it back, printing its size and PSNR.\n"
         "\n"
         "options:\n"
         "  --out DIR     folder for the pictures, made if need be (default ./"
      << kDemoFolder
      << ")\n"
         "  --size WxH    frame size (default "
      << kDemoSize.width << "x" << kDemoSize.height
      << ")\n"
         "  -h, --help    show this help\n";
}

int RunDemo(std::span<const std::string_view> args) {
  std::string folder = kDemoFolder;
  FrameSize size = kDemoSize;
  const OptionSpec options[] = {
      {"--out", "DIR", [&](std::string_view v) { folder = std::string(v); }},
      {"--size", "WxH", [&](std::string_view v) { size = ParseSize("--size", v); }},
  };
  std::vector<std::string_view> extra;
  if (!ParseOptions(args, options, extra)) {
    PrintDemoUsage(std::cout);
    return 0;
  }
  if (!extra.empty()) throw UsageError("demo takes no file names; unexpected '" + std::string(extra[0]) + "'");
  if (folder.empty()) throw UsageError("--out wants a folder name");
  const fs::path path = MakeFolder(folder);

  const uint32_t w = size.width, h = size.height;
  std::vector<uint16_t> samples = scene::MakeMonoFrame(w, h, kDemoDepth);
  const std::span<uint8_t> frame(reinterpret_cast<uint8_t*>(samples.data()), samples.size() * 2);  // little-endian host

  std::vector<std::pair<std::string, std::string>> written;
  const std::string rawFile = "01-scene-mono16.png";
  WritePng((path / rawFile).string(), LayoutToPng(LayoutId::Mono16, w, h, kDemoDepth, frame));
  written.emplace_back(rawFile, "the synthetic frame, mono16 at depth 12, shown as 16-bit grey");
  for (const DemoShot& shot : DemoShots()) {
    const Conversion* conversion = FindConversion(LayoutId::Mono16, shot.to);
    if (!conversion) continue;  // every shot names a conversion of the table
    const std::vector<uint8_t> dst = RunConversion(*conversion, shot.colourMap, w, h, kDemoDepth, frame, shot.flip);
    WritePng((path / shot.file).string(), LayoutToPng(shot.to, w, h, kDemoDepth, dst));
    written.emplace_back(shot.file, shot.what);
  }

  std::vector<uint16_t> mosaic = MakeBayerFrame(size, kDemoDepth);
  const std::string bayerRaw = "13-bayer-rggb12.raw", bayerPng = "14-bayer-demosaic.png";
  WriteRawFile((path / bayerRaw).string(), std::span(reinterpret_cast<const uint8_t*>(mosaic.data()), mosaic.size() * 2));
  written.emplace_back(bayerRaw, "the scene as a raw RGGB Bayer frame, 12 bits in 16-bit words");
  WritePng((path / bayerPng).string(), DemosaicToPng(size, kDemoDepth, mosaic));
  written.emplace_back(bayerPng, "that Bayer frame demosaiced (kestrelink demosaic)");

  // The BGRx picture mirrored left to right, and turned by 12.5 degrees about its centre.
  std::vector<uint8_t> bgrx = RunConversion(*FindConversion(LayoutId::Mono16, LayoutId::Bgrx), {}, w, h, kDemoDepth,
                                            frame, false);
  const std::string mirroredPng = "15-bgrx-mirrored.png", rotatedPng = "16-bgrx-rotated-12.5.png";
  WritePng((path / mirroredPng).string(), LayoutToPng(LayoutId::Bgrx, w, h, 8, MirrorFrame(LayoutId::Bgrx, size, bgrx, false, true)));
  written.emplace_back(mirroredPng, "the BGRx picture mirrored about the vertical axis (kestrelink mirror --axis v)");
  RotateRequest tilt;
  tilt.angle = 12.5;
  tilt.interpolation = 2;
  tilt.smooth = true;
  WritePng((path / rotatedPng).string(), LayoutToPng(LayoutId::Bgrx, w, h, 8, RotateFrame(LayoutId::Bgrx, size, bgrx, tilt).bytes));
  written.emplace_back(rotatedPng, "the BGRx picture turned 12.5 degrees clockwise, bicubic, smooth edge");
  const std::string jp2File = "18-bgrx-lossless.jp2";
  const uint64_t jp2Bytes = WriteBgrxJp2((path / jp2File).string(), size, bgrx);
  written.emplace_back(jp2File, "the BGRx picture as a lossless JP2 file, " + std::to_string(jp2Bytes) +
                                    " bytes (kestrelink j2k)");
  const FrameSize half{std::max(1u, w / 2), std::max(1u, h / 2)};
  const std::string resizedPng = "17-resized-half-lanczos.png";
  const std::vector<uint8_t> resized =
      ResizeFrame(LayoutId::Mono16, size, half, 3, std::vector<uint8_t>(frame.begin(), frame.end()));
  WritePng((path / resizedPng).string(), LayoutToPng(LayoutId::Mono16, half.width, half.height, kDemoDepth, resized));
  written.emplace_back(resizedPng, "the scene at half size, Lanczos (kestrelink resize)");
  const std::string jpegFile = "19-scene.jpg";
  const std::optional<JpegTrip> jpeg = JpegRoundTrip((path / jpegFile).string(), w, h, kDemoDepth, frame);
  if (jpeg) written.emplace_back(jpegFile, "the scene as JPEG, format 101 at quality 90 (kestrelink jpeg encode --format)");
  const std::string lookFile = "20-look-warm-contrast.xml", gradedPng = "21-bayer-graded.png";
  const int lookNodes = 32;
  if (!WriteLookFile((path / lookFile).string(),
                     LookDocumentText(
                         lookNodes, [](int a, int b, int c, float rgb[3]) { DemoGradeNode(lookNodes, a, b, c, rgb); },
                         0, {})))
    throw RunError("cannot write " + (path / lookFile).string());
  written.emplace_back(lookFile, "a look file: warm highlights, cool shadows, more contrast (32-node 3D table)");
  WritePng((path / gradedPng).string(), DemosaicToPng(size, kDemoDepth, mosaic, (path / lookFile).string()));
  written.emplace_back(gradedPng, "the Bayer frame demosaiced and graded by that look (kestrelink demosaic --look)");

  std::cout << path.string() << '\n';
  for (const auto& [file, what] : written) std::cout << "  " << std::left << std::setw(30) << file << what << '\n';
  RunH264Demo(w, h, kDemoH264Frames);
  std::vector<uint8_t> waveletStream;
  const WaveletTrip trip =
      WaveletRoundTrip(size, int(kDemoDepth), 3, std::vector<uint8_t>(frame.begin(), frame.end()), waveletStream);
  std::cout << "wavelet round trip (12 bits, 3 levels): " << frame.size() << " bytes -> " << trip.bytes
            << " bytes, largest difference " << trip.largestDifference << '\n';
  if (jpeg) {
    std::cout << "jpeg round trip (format 101, 12 bits, quality 90): " << frame.size() << " bytes -> " << jpeg->bytes
              << " bytes, PSNR " << std::fixed << std::setprecision(2) << jpeg->psnr << " dB\n";
  } else {
    std::cout << "jpeg round trip: a " << w << "x" << h << " frame is too small for its JPEG stream\n";
  }
  return 0;
}

}  // namespace kestrelink::tool
