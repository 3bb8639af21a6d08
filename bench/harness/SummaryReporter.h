#pragma once
// Console reporter of the benchmark programs. While the benchmarks run it
// shows one line per benchmark (the median); at the end it prints the
// summary table: per operation and mode, our median frame time, bandwidth,
// spread, the ratio to memcpy of the output size and to each peer.
#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kestrelink::bench {

class SummaryReporter : public benchmark::ConsoleReporter {
 public:
  SummaryReporter();

  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& reports) override;
  void Finalize() override;

 private:
  struct Result {
    double seconds = 0;  // median frame time
    double cv = -1;      // coefficient of variation over the repetitions, if known
    std::string error;
  };
  using Key = std::pair<size_t, int>;  // case index, mode index

  const Result* Find(size_t caseIndex, int modeIndex) const;
  void PrintTable(std::ostream& out) const;
  void PrintLegend(std::ostream& out) const;

  std::map<Key, Result> m_Results;
  int m_Cpus = 0;
  double m_Mhz = 0;
};

}  // namespace kestrelink::bench
