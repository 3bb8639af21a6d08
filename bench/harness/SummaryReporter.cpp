#include "harness/SummaryReporter.h"

#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <ostream>
#include <set>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "primitives/Variant.h"

namespace kestrelink::bench {
namespace {

std::string Format(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string Format(const char* format, ...) {
  char text[512];
  va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  return text;
}

double Seconds(const benchmark::BenchmarkReporter::Run& run) {
  return run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
}

benchmark::ConsoleReporter::OutputOptions ConsoleOptions() {
  return isatty(STDOUT_FILENO) ? benchmark::ConsoleReporter::OO_Color : benchmark::ConsoleReporter::OO_None;
}

// Row layout of the table: the lead (operation, mode), our columns, then
// one block per peer. The headers are built from the same widths.
constexpr const char* kLead = "%-26s %-10s ";
constexpr const char* kOursColumns = "%10s  %8s  %8s  %5s  %7s";
constexpr const char* kPeerColumns = "    %-9s %10s  %7s  %9s";

std::string Header() {
  const std::string lead = Format(kLead, "operation", "mode");
  const std::string ours = Format(kOursColumns, "us/frame", "GB/s out", "GB/s r+w", "cv%", "/memcpy");
  const std::string peer = Format(kPeerColumns, "peer", "us/frame", "/memcpy", "ours/peer");
  auto rule = [](const std::string& title, size_t width) {
    const size_t dashes = width > title.size() + 4 ? width - title.size() - 4 : 0;
    std::string text(1, '|');
    text.append(dashes / 2, '-').append(1, ' ').append(title).append(1, ' ');
    return text.append(dashes - dashes / 2, '-').append(1, '|');
  };
  return std::string(lead.size() + 2, ' ') + rule("ours", ours.size() - 2) + "    " + rule("peer", peer.size() - 4) +
         "\n" + lead + ours + peer + "\n";
}

std::string OursColumns(const Case& c, double seconds, double cv, double memcpySeconds) {
  std::string text = Format("%10.1f  %8.2f  %8.2f", seconds * 1e6, c.bytesWritten / seconds / 1e9,
                            (c.bytesRead + c.bytesWritten) / seconds / 1e9);
  text += cv >= 0 ? Format("  %5.1f", cv * 100) : Format("  %5s", "-");
  text += memcpySeconds > 0 ? Format("  %6.2fx", seconds / memcpySeconds) : Format("  %7s", "-");
  return text;
}

std::string PeerColumns(const Case& peer, double seconds, double memcpySeconds, double oursSeconds) {
  std::string text = Format("    %-9s %10.1f", peer.implementation.c_str(), seconds * 1e6);
  text += memcpySeconds > 0 ? Format("  %6.2fx", seconds / memcpySeconds) : Format("  %7s", "-");
  text += oursSeconds > 0 ? Format("  %9.2f", oursSeconds / seconds) : Format("  %9s", "-");
  return text;
}

}  // namespace

SummaryReporter::SummaryReporter() : benchmark::ConsoleReporter(ConsoleOptions()) {}

bool SummaryReporter::ReportContext(const Context& context) {
  m_Cpus = context.cpu_info.num_cpus;
  m_Mhz = context.cpu_info.cycles_per_second / 1e6;
  return ConsoleReporter::ReportContext(context);
}

void SummaryReporter::ReportRuns(const std::vector<Run>& reports) {
  std::vector<Run> shown;
  for (const Run& run : reports) {
    RunKey key{};
    const bool known = FindRun(run.run_name.function_name, key);
    Result* result = known ? &m_Results[Key(key.caseIndex, key.modeIndex)] : nullptr;
    if (run.error_occurred) {
      shown.push_back(run);
      if (result) result->error = run.error_message;
    } else if (run.run_type == Run::RT_Aggregate) {
      if (run.aggregate_name == "median") {
        shown.push_back(run);
        if (result) result->seconds = Seconds(run);
      } else if (run.aggregate_name == "cv" && result) {
        result->cv = run.real_accumulated_time;
      }
    } else if (run.repetitions <= 1) {  // a single repetition is its own median
      shown.push_back(run);
      if (result) result->seconds = Seconds(run);
    }
  }
  if (!shown.empty()) ConsoleReporter::ReportRuns(shown);
}

const SummaryReporter::Result* SummaryReporter::Find(size_t caseIndex, int modeIndex) const {
  const auto it = m_Results.find(Key(caseIndex, modeIndex));
  return it == m_Results.end() ? nullptr : &it->second;
}

void SummaryReporter::Finalize() {
  std::ostream& out = GetOutputStream();
  PrintTable(out);
  PrintLegend(out);
  out.flush();
}

void SummaryReporter::PrintTable(std::ostream& out) const {
  const std::vector<Case>& cases = RegisteredCases();
  const Settings& s = BenchSettings();
  out << "\n"
      << Format("Summary: %ux%u frames, median of %d repetitions; kernels: %s; %d CPUs at %.0f MHz\n\n", s.width,
                s.height, s.repetitions, VariantName(ActiveVariant()), m_Cpus, m_Mhz)
      << Header();

  // Operations in the order they were registered; ours first within each.
  std::vector<std::string> operations;
  for (const Case& c : cases) {
    bool seen = false;
    for (const auto& op : operations) seen = seen || op == c.operation;
    if (!seen) operations.push_back(c.operation);
  }
  auto memcpyFor = [&](const Case& c) -> long {
    for (size_t i = 0; i < cases.size(); ++i)
      if (cases[i].implementation == kMemcpy && cases[i].bytesWritten == c.bytesWritten) return long(i);
    return -1;
  };

  for (const std::string& op : operations) {
    std::vector<size_t> members;
    for (size_t i = 0; i < cases.size(); ++i)
      if (cases[i].operation == op) members.push_back(i);
    size_t primary = members.front();
    for (size_t i : members)
      if (cases[i].implementation == kOurs) primary = i;
    const Case& ours = cases[primary];
    const long reference = ours.implementation == kMemcpy ? -1 : memcpyFor(ours);
    bool printed = false;

    for (int m = 0; m < kModeCount; ++m) {
      const Result* mine = Find(primary, m);
      const Result* ref = reference >= 0 ? Find(size_t(reference), m) : nullptr;
      const double refSeconds = ref && ref->error.empty() ? ref->seconds : 0;
      const double mineSeconds = mine && mine->error.empty() ? mine->seconds : 0;
      std::string lead = Format(kLead, printed ? "" : op.c_str(), ModeName(kModes[m]).c_str());
      std::string left;
      if (!mine) {
        left = Format("  %-*s", int(Format(kOursColumns, "", "", "", "", "").size()) - 2, "(not run)");
      } else if (!mine->error.empty()) {
        const int width = int(Format(kOursColumns, "", "", "", "", "").size()) - 2;
        left = Format("  %-*s", width, ("FAILED: " + mine->error).substr(0, size_t(width)).c_str());
      } else {
        left = OursColumns(ours, mine->seconds, mine->cv, refSeconds);
      }
      bool anyPeer = false;
      for (size_t i : members) {
        if (i == primary) continue;
        const Result* theirs = Find(i, m);
        if (!theirs) continue;
        std::string right = theirs->error.empty()
                                ? PeerColumns(cases[i], theirs->seconds, refSeconds, mineSeconds)
                                : Format("    %-9s FAILED: %s", cases[i].implementation.c_str(), theirs->error.c_str());
        out << (anyPeer ? std::string(lead.size(), ' ') + std::string(left.size(), ' ') : lead + left) << right
            << "\n";
        anyPeer = true;
      }
      if (!anyPeer && (mine || printed)) out << lead << left << "\n";
      printed = printed || mine || anyPeer;
    }
    if (printed) out << "\n";
  }
}

void SummaryReporter::PrintLegend(std::ostream& out) const {
  const Settings& s = BenchSettings();
  out << "us/frame  median wall time of one frame; GB/s out: bytes written per second; GB/s r+w: read and written.\n"
         "cv%      spread of the repetitions (standard deviation over mean).\n"
         "/memcpy  time over that of memcpy of the same output size, same mode (1.00x: the physical limit).\n"
         "ours/peer our time over the peer's: below 1 we are faster.\n"
      << Format("hot: same buffers every frame; cold: each frame after reading a %zu MiB buffer"
                " (%d frames per repetition).\n",
                s.evictBytes >> 20, s.coldFrames)
      << "Teams of n threads:\n";
  std::set<std::string> listed;
  for (const Case& c : RegisteredCases()) {
    if (!listed.insert(c.implementation).second) continue;
    out << Format("  %-8s %s\n", c.implementation.c_str(), c.team.how.c_str());
  }
  if (s.quick) out << "Quick run (KESTRELINK_BENCH_QUICK): a smoke test, not a measurement.\n";
}

}  // namespace kestrelink::bench
