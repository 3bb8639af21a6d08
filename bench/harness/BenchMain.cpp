// main() of every benchmark program: reads the command line (the usual
// --benchmark_* flags) and the settings, lets the program register its
// cases, runs them and prints the summary.
#include <benchmark/benchmark.h>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/SummaryReporter.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  if (!kestrelink::bench::ApplyVariantSetting()) return 1;
  kestrelink::bench::RegisterCases();
  kestrelink::bench::SummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
