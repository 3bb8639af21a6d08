// Looks: loading a look file (parse, then the 256^3 table filled over the
// team) with a 32-node and a 64-node 3D table; the fill alone; and the look
// stage's table, exact 8-bit, exact 16-bit and 1D paths on BGR frames in
// place, next to OpenColorIO's processor applying the same 3D table by
// trilinear interpolation to the same frames (its rows split into one band a
// thread). The table rotates the channels (red from green, green from blue,
// blue from red), so frames graded again and again keep their spread of
// colours; frames are smooth gradients with noise, as camera frames are.
#include <kestrelink/CIppBayerCorrector.h>

#include <cstdint>
#include <memory>
#include <string>

#include <unistd.h>

#include "LookWriter.h"
#include "colour/LookFile.h"
#include "colour/LookLut.h"
#include "colour/LookLutCache.h"
#include "colour/LookPrepare.h"
#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"

#ifdef KESTRELINK_HAVE_OCIO
#include <OpenColorIO/OpenColorIO.h>
namespace OCIO = OCIO_NAMESPACE;
#endif

namespace kestrelink::bench {
namespace {

constexpr uint32_t kDepth = 12;

// Result of node (a, b, c) of an n-node rotation table: red takes the green
// sample, green the blue, blue the red, each at the middle of its cell.
void RotationNode(int n, int a, int b, int c, float rgb[3]) {
  rgb[0] = (float(b) + 0.5f) / float(n);
  rgb[1] = (float(a) + 0.5f) / float(n);
  rgb[2] = (float(c) + 0.5f) / float(n);
}

std::string LookPath(int n) {
  return "/tmp/kestrelink-bench-look-" + std::to_string(getpid()) + "-" + std::to_string(n) + ".xml";
}

std::string WriteLook(int n, bool with1D) {
  const std::string path = LookPath(n) + (with1D ? ".1d" : "");
  tool::WriteLookFile(path, tool::LookDocumentText(
                                n, [n](int a, int b, int c, float rgb[3]) { RotationNode(n, a, b, c, rgb); },
                                with1D ? 1024 : 0, [](int i, float rgb[3]) {
                                  rgb[0] = float(i) / 1024;
                                  rgb[1] = 1.0f - float(i) / 1024;
                                  rgb[2] = float(i % 512) / 512;
                                }));
  return path;
}

// Smooth gradients with noise of about 1/16 of full scale.
void FillScene(uint8_t* bgr, uint16_t* bgr48, uint32_t w, uint32_t h) {
  uint64_t state = 0x10CC5EEDull;
  for (uint32_t y = 0; y < h; ++y)
    for (uint32_t x = 0; x < w; ++x) {
      const size_t at = 3 * (size_t(y) * w + x);
      const uint32_t base[3] = {x * 4095 / w, y * 4095 / h, (x + y) * 4095 / (w + h)};
      for (int k = 0; k < 3; ++k) {
        state = state * 6364136223846793005ull + 1442695040888963407ull;
        const int v = int(base[k]) + int((state >> 33) % 256) - 128;
        const uint16_t s = uint16_t(v < 0 ? 0 : v > 4095 ? 4095 : v);
        bgr48[at + k] = s;
        bgr[at + k] = uint8_t(s >> 4);
      }
    }
}

struct LookFrames : FrameSize {
  FrameBuffer bgr{3 * pixels};
  FrameBuffer bgr48{6 * pixels};
  std::string path32 = WriteLook(32, true), path64 = WriteLook(64, false);
  CIppBayerCorrector table, exact8, exact16, curve8, curve16;
  LookLut fillOnly;

  static void Setup(CIppBayerCorrector& c, const std::string& path, CORRECTIONAL_ALG alg, uint32_t w, uint32_t h,
                    bool words) {
    bool has3D, has1D;
    c.LoadIridasLookLUT(path.c_str(), has3D, has1D);
    c.SetColorCorrectionMode(CORRECTION_AUTO);
    c.SetCBAlgorithm(alg);
    c.SetImageInfo4CB(w, h, words ? 48 : 24, words ? kDepth : 8, 200, true);
  }

  LookFrames() {
    FillScene(bgr.data(), bgr48.words(), w, h);
    Setup(table, path32, CB_ALG_LOOK_3D_TABLE, w, h, false);
    Setup(exact8, path32, CB_ALG_LOOK_3D_EXACT, w, h, false);
    Setup(exact16, path32, CB_ALG_LOOK_3D_EXACT, w, h, true);
    Setup(curve8, path32, CB_ALG_LOOK_1D, w, h, false);
    Setup(curve16, path32, CB_ALG_LOOK_1D, w, h, true);
    fillOnly.path = path32;
    colour::ReadLookFile(fillOnly);
    colour::BuildCornerWeights(fillOnly);
  }
  ~LookFrames() {
    unlink(path32.c_str());
    unlink(path64.c_str());
  }
};

LookFrames& Frames() { return Shared<LookFrames>(); }

template <class Call>
void Ours(const char* operation, size_t readPerPixel, size_t writtenPerPixel, Call call) {
  RegisterOurs<LookFrames>(operation, readPerPixel, writtenPerPixel, call);
}

// A fresh look object read from the file and prepared, as a first load does.
bool LoadLook(const std::string& path) {
  LookLut look;
  look.path = path;
  if (!colour::ReadLookFile(look).has3D) return false;
  colour::PrepareLook3D(look);
  return look.table3D != nullptr;
}

void RegisterLoad(const char* operation, int n) {
  Register(Case{operation, kOurs, 0, LookLut::kTableBytes, LibraryTeam(), [n](int) {
                  LookFrames& f = Frames();
                  return LoadLook(n == 32 ? f.path32 : f.path64);
                }});
}

#ifdef KESTRELINK_HAVE_OCIO
void Ocio(const char* operation, bool words) {
  LookFrames& f = Frames();
  const int n = 32;
  auto lut = OCIO::Lut3DTransform::Create(n);
  for (int r = 0; r < n; ++r)
    for (int g = 0; g < n; ++g)
      for (int b = 0; b < n; ++b) {
        float rgb[3];
        RotationNode(n, b, g, r, rgb);  // our a is blue, c red
        lut->setValue(r, g, b, rgb[0], rgb[1], rgb[2]);
      }
  lut->setInterpolation(OCIO::INTERP_LINEAR);
  const OCIO::BitDepth depth = words ? OCIO::BIT_DEPTH_UINT16 : OCIO::BIT_DEPTH_UINT8;
  auto cpu = OCIO::Config::CreateRaw()->getProcessor(lut)->getOptimizedCPUProcessor(depth, depth,
                                                                                    OCIO::OPTIMIZATION_DEFAULT);
  const size_t sample = words ? 2 : 1;
  uint8_t* frame = words ? f.bgr48.data() : f.bgr.data();
  const uint32_t w = f.w, h = f.h;
  Register(Case{operation, "opencolorio", 3 * sample * f.pixels, 3 * sample * f.pixels, SplitRowsTeam(),
                [cpu, frame, w, h, sample, depth](int threads) {
                  SplitRows(h, threads, [&](uint32_t first, uint32_t rows) {
                    const ptrdiff_t rowBytes = ptrdiff_t(3 * sample * w);
                    OCIO::PackedImageDesc image(frame + size_t(first) * size_t(rowBytes), long(w), long(rows),
                                                OCIO::CHANNEL_ORDERING_BGR, depth, ptrdiff_t(sample),
                                                ptrdiff_t(3 * sample), rowBytes);
                    cpu->apply(image);
                  });
                  return true;
                }});
}
#endif

}  // namespace

void RegisterCases() {
  for (uint32_t bytesPerPixel : {3u, 6u}) RegisterMemcpy(bytesPerPixel);

  RegisterLoad("LoadLook:32nodes", 32);
  RegisterLoad("LoadLook:64nodes", 64);
  Register(Case{"FillTable:32nodes", kOurs, 0, LookLut::kTableBytes, LibraryTeam(), [](int) {
                  colour::FillLookTable(Frames().fillOnly);
                  return true;
                }});

  Ours("Look3DTable:BGR24", 3, 3, [](LookFrames& f) { return f.table.BGRApplyColorBalance(f.bgr.data(), false); });
  Ours("Look3DExact:BGR24", 3, 3, [](LookFrames& f) { return f.exact8.BGRApplyColorBalance(f.bgr.data(), false); });
  Ours("Look3DExact:BGR48", 6, 6,
       [](LookFrames& f) { return f.exact16.BGRApplyColorBalance(f.bgr48.data(), false); });
  Ours("Look1D:BGR24", 3, 3, [](LookFrames& f) { return f.curve8.BGRApplyColorBalance(f.bgr.data(), false); });
  Ours("Look1D:BGR48", 6, 6, [](LookFrames& f) { return f.curve16.BGRApplyColorBalance(f.bgr48.data(), false); });
#ifdef KESTRELINK_HAVE_OCIO
  Ocio("Look3DTable:BGR24", false);
  Ocio("Look3DExact:BGR24", false);
  Ocio("Look3DExact:BGR48", true);
#endif
}

}  // namespace kestrelink::bench
