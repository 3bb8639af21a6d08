// The Media SDK back-end at the frame size and at that size aligned to 16
// rows (1920x1080 and 1920x1088 by default), in one run:
//  - NV12 packing of planar and mono sources, against memcpy of the packed
//    output (the aligned frame at 1.5 bytes a pixel);
//  - EncodeImage of the back-end around the stand-in run-time (which writes a
//    few bytes a frame and does no coding), against the software back-end's
//    EncodeImage on the same frame: ours/peer is the back-end's own per-frame
//    cost as a share of a software-encoded frame.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <dlfcn.h>

#include "h264/CIPPH264Conversion.h"
#include "h264/CIntelMediaH264Conversion.h"
#include "h264/Nv12Pack.h"
#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "standins/mfx/MfxStandinState.h"

namespace kestrelink::bench {
namespace {

struct Source {
  uint32_t w, h;
  std::vector<uint8_t> y, u, v;
  Source(uint32_t width, uint32_t height) : w(width), h(height) {
    const uint32_t chromaRows = ((h + 15) & ~15u) / 2;  // the packing reads this many chroma rows
    y.resize(size_t(w) * h);
    u.resize(size_t(w / 2) * chromaRows);
    v.resize(u.size());
    for (size_t i = 0; i < y.size(); ++i) y[i] = uint8_t(i * 13 + (i >> 11));
    for (size_t i = 0; i < u.size(); ++i) u[i] = uint8_t(i * 7), v[i] = uint8_t(i * 5 + 3);
  }
};

struct Packing {
  Source source;
  uint32_t W, H;
  std::vector<uint8_t> luma, chroma;
  Packing(uint32_t w, uint32_t h)
      : source(w, h), W((w + 15) & ~15u), H((h + 15) & ~15u), luma(size_t(W) * H), chroma(size_t(W) * H / 2) {}
  h264::Nv12Frame Frame() { return {luma.data(), chroma.data(), source.w, source.h, W, H}; }
};

// The stand-in, registered as the current user's only software run-time.
void RegisterStandin() {
  static bool done = false;
  if (done) return;
  done = true;
  const std::string hive = std::string(std::getenv("TMPDIR") ? std::getenv("TMPDIR") : "/tmp") +
                           "/kestrelink-bench-mediasdk-" + std::to_string(getpid()) + ".reg";
  FILE* file = std::fopen(hive.c_str(), "w");
  if (file == nullptr) return;
  std::fprintf(file,
               "Windows Registry Editor Version 5.00\n\n"
               "[HKEY_CURRENT_USER\\Software\\Intel\\MediaSDK\\Dispatch\\standin]\n"
               "\"APIVersion\"=dword:00000103\n\"VendorID\"=dword:00000000\n\"DeviceID\"=dword:00000000\n"
               "\"Merit\"=dword:00000001\n\"Path\"=\"%s\"\n",
               KESTRELINK_MFX_STANDIN);
  std::fclose(file);
  ::setenv("KESTRELINK_HKCU", hive.c_str(), 1);
  // Keep the stand-in loaded and quiet: no surface copies, no luma sums.
  void* standin = ::dlopen(KESTRELINK_MFX_STANDIN, RTLD_NOW | RTLD_LOCAL);
  if (standin == nullptr) return;
  auto state = reinterpret_cast<MfxStandinStateBlock* (*)()>(::dlsym(standin, "MfxStandinState"));
  if (state != nullptr) state()->knobs.quiet = 1;
}

struct Encoding {
  Source source;
  std::vector<uint8_t> record;
  std::unique_ptr<CH264ConversionBase> backEnd;
  Encoding(uint32_t w, uint32_t h, bool media) : source(w, h), record(size_t(w) * h * 2 + 16) {
    if (media) {
      RegisterStandin();
      backEnd = std::make_unique<CIntelMediaH264Conversion>();
    } else {
      backEnd = std::make_unique<CIPPH264Conversion>();
    }
    backEnd->Initialize(true, w, h, H264_SOURCE_YUV_PLANAR, 30, 5000000, 8, 0);
  }
  bool Run() { return backEnd->EncodeImage(record.data(), source.y.data(), source.u.data(), source.v.data()); }
};

void RegisterSize(uint32_t w, uint32_t h) {
  const std::string size = std::to_string(w) + "x" + std::to_string(h);
  auto packing = std::make_shared<Packing>(w, h);
  const size_t out = size_t(packing->W) * packing->H * 3 / 2;
  Register(Case{"NV12 pack planar " + size, kOurs, size_t(w) * h * 3 / 2, out, LibraryTeam(), [packing](int) {
                  h264::PackNv12Planar(packing->source.y.data(), packing->source.u.data(), packing->source.v.data(),
                                       packing->Frame());
                  return true;
                }});
  Register(Case{"NV12 pack mono " + size, kOurs, size_t(w) * h, out, LibraryTeam(), [packing](int) {
                  h264::PackNv12Mono(packing->source.y.data(), packing->Frame());
                  return true;
                }});
  auto media = std::make_shared<Encoding>(w, h, true);
  auto software = std::make_shared<Encoding>(w, h, false);
  const std::string operation = "EncodeImage planar " + size;
  Register(Case{operation, kOurs, size_t(w) * h * 3 / 2, size_t(w) * h * 2, LibraryTeam(),
                [media](int) { return media->Run(); }});
  Register(Case{operation, "software back-end", size_t(w) * h * 3 / 2, size_t(w) * h * 2, LibraryTeam(),
                [software](int) { return software->Run(); }});
}

}  // namespace

void RegisterCases() {
  const Settings& s = BenchSettings();
  const uint32_t aligned = (s.height + 15) & ~15u;
  RegisterSize(s.width, s.height);
  if (aligned != s.height) RegisterSize(s.width, aligned);
  // memcpy of the packed output: the aligned frame at 1.5 bytes a pixel.
  RegisterMemcpyFrame((s.width + 15) & ~15u, aligned * 3 / 2, 1);
}

}  // namespace kestrelink::bench
