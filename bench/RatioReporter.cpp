#include "RatioReporter.h"

#include <FED_Message.h>

#include <algorithm>
#include <cstdio>
#include <ostream>

namespace qelta::bench {
namespace {

constexpr const char* kRow = "%-30s %11s  %-22s %11s %7s  %s\n";

std::string Format(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

std::string Row(const std::string& name, const std::string& ours, const std::string& peerName,
                const std::string& peer, const std::string& ratio, const std::string& goal) {
  return FED_MESSAGE(kRow, name.c_str(), ours.c_str(), peerName.c_str(), peer.c_str(),
                     ratio.c_str(), goal.c_str());
}

std::string DescribeTime(double seconds) {
  if (seconds < 1e-6) return Format("%.2f ns", seconds * 1e9);
  if (seconds < 1e-3) return Format("%.2f us", seconds * 1e6);
  return Format("%.2f ms", seconds * 1e3);
}

std::string DescribeGoal(double goal, double ratio) {
  if (goal == Peer::kNoGoal) return "";
  return Format("%.2f", goal) + (ratio <= goal ? "" : "  missed");
}

}  // namespace

bool RatioReporter::ReportContext(const Context&) {
  GetErrorStream() << "measuring, about a minute for all cases ...\n";
  return true;
}

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.error_occurred && run.repetition_index == 0) {
      GetErrorStream() << run.run_name.function_name << ": " << run.error_message << '\n';
    }
    if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
    Rates& rates = m_Rates[run.run_name.function_name];
    rates.inBytes = run.counters.count("bytes_per_second") != 0;
    rates.values.push_back(
        run.counters.at(rates.inBytes ? "bytes_per_second" : "items_per_second"));
  }
}

void RatioReporter::Finalize() {
  GetOutputStream() << "Medians of several repetitions in one run. Ratio: our time by the peer's "
                       "time, less is better.\n\n"
                    << Row("case", "ours", "peer", "peer's", "ratio", "goal");
  for (const Suite::Comparison& comparison : m_Suite.GetComparisons()) {
    for (const Peer& peer : comparison.peers) PrintRow(comparison, peer);
  }
}

// What the filter left out, or what failed, has no row.
void RatioReporter::PrintRow(const Suite::Comparison& comparison, const Peer& peer) {
  const auto ours = m_Rates.find(Suite::NameOfOurs(comparison));
  const auto theirs = m_Rates.find(Suite::NameOfPeer(comparison, peer));
  if (ours == m_Rates.end() || theirs == m_Rates.end()) return;
  const double ratio = Median(theirs->second) / Median(ours->second);
  GetOutputStream() << Row(comparison.name, Describe(ours->second), peer.name,
                           Describe(theirs->second), Format("%.2f", ratio),
                           DescribeGoal(peer.goal, ratio));
}

double RatioReporter::Median(const Rates& rates) {
  std::vector<double> values = rates.values;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

std::string RatioReporter::Describe(const Rates& rates) {
  const double median = Median(rates);
  return rates.inBytes ? Format("%.0f MB/s", median / 1e6) : DescribeTime(1 / median);
}

}  // namespace qelta::bench
