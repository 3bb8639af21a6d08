// CIppImageWrapper::Compute1DFFT over 1080 rows of 1024 and 2048 samples
// next to FFTW's single-precision real transform planned with FFTW_MEASURE
// on the same rows: each row widened to float, transformed, and the
// magnitudes of all `length` bins (the upper half as conjugates) summed
// into a double spectrum the same way. Both run on the calling thread; the
// two-thread modes time the same single-threaded work.
#include <kestrelink/CIppImageWrapper.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"

#ifdef KESTRELINK_HAVE_FFTW3F
#include <fftw3.h>
#endif

namespace kestrelink::bench {
namespace {

constexpr uint32_t kRows = 1080;

struct Rows {
  int order;
  uint32_t length;
  FrameBuffer samples;
  std::vector<short*> pointers;
  std::vector<double> spectrum;
  explicit Rows(int o) : order(o), length(1u << o), samples(2 * size_t(kRows) * length), spectrum(length, 0.0) {
    FillSamples16(samples.words(), size_t(kRows) * length, 12, 0x4242u + unsigned(o));
    for (uint32_t r = 0; r < kRows; ++r) pointers.push_back(reinterpret_cast<short*>(samples.words()) + r * length);
  }
};

Team CallerThread() { return Team{"the calling thread only", {}}; }

void Ours(const std::string& name, std::shared_ptr<Rows> rows) {
  Register(Case{name, kOurs, 2 * size_t(kRows) * rows->length, 8 * rows->length, CallerThread(), [rows](int) {
                  CIppImageWrapper wrapper;
                  return wrapper.Compute1DFFT(0, int(rows->length), rows->order, int(kRows), 8, HintNone,
                                              rows->pointers.data(), rows->spectrum.data());
                }});
}

#ifdef KESTRELINK_HAVE_FFTW3F
struct FftwState {
  std::shared_ptr<Rows> rows;
  float* in;
  fftwf_complex* out;
  fftwf_plan plan;
  explicit FftwState(std::shared_ptr<Rows> r) : rows(std::move(r)) {
    in = fftwf_alloc_real(rows->length);
    out = fftwf_alloc_complex(rows->length / 2 + 1);
    plan = fftwf_plan_dft_r2c_1d(int(rows->length), in, out, FFTW_MEASURE);
  }
};

void Fftw(const std::string& name, std::shared_ptr<Rows> rows) {
  auto state = std::make_shared<FftwState>(rows);
  Register(Case{name, "fftw", 2 * size_t(kRows) * rows->length, 8 * rows->length, CallerThread(), [state](int) {
                  Rows& r = *state->rows;
                  const uint32_t n = r.length, half = n / 2;
                  double* spectrum = r.spectrum.data();
                  for (uint32_t row = 0; row < kRows; ++row) {
                    const short* s = r.pointers[row];
                    for (uint32_t i = 0; i < n; ++i) state->in[i] = float(s[i]);
                    fftwf_execute(state->plan);
                    for (uint32_t i = 0; i <= half; ++i) {
                      const float re = state->out[i][0], im = state->out[i][1];
                      spectrum[i] += double(std::sqrt(re * re + im * im));
                    }
                    for (uint32_t i = half + 1; i < n; ++i) {
                      const float re = state->out[n - i][0], im = state->out[n - i][1];
                      spectrum[i] += double(std::sqrt(re * re + im * im));
                    }
                  }
                  return true;
                }});
}
#endif

}  // namespace

void RegisterCases() {
  for (int order : {10, 11}) {
    auto rows = std::make_shared<Rows>(order);
    const std::string name = "spectrum of 1080 rows of " + std::to_string(1u << order);
    Ours(name, rows);
#ifdef KESTRELINK_HAVE_FFTW3F
    Fftw(name, rows);
#endif
  }
}

}  // namespace kestrelink::bench
