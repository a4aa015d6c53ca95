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

std::string DescribeSize(double bytes) { return Format("%.1f MB", bytes / 1e6); }

std::string DescribeRate(double rate, bool inBytes) {
  return inBytes ? Format("%.0f MB/s", rate / 1e6) : DescribeTime(1 / rate);
}

std::string DescribeGoal(double goal, double ratio) {
  if (goal == Peer::kNoGoal) return "";
  return Format("%.2f", goal) + (ratio <= goal ? "" : "  missed");
}

}  // namespace

bool RatioReporter::ReportContext(const Context&) {
  GetErrorStream() << "measuring, about a minute, or some minutes for storage ...\n";
  return true;
}

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.error_occurred && run.repetition_index == 0) {
      GetErrorStream() << run.run_name.function_name << ": " << run.error_message << '\n';
    }
    if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
    Measured& measured = m_Measured[run.run_name.function_name];
    measured.inBytes = run.counters.count("bytes_per_second") != 0;
    measured.rates.push_back(
        run.counters.at(measured.inBytes ? "bytes_per_second" : "items_per_second"));
    const auto size = run.counters.find(kSizeCounter);
    if (size != run.counters.end()) measured.sizes.push_back(size->second);
  }
}

void RatioReporter::Finalize() {
  GetOutputStream() << "Medians of several repetitions in one run, for storage the best. Ratio: "
                       "our time by the peer's time, less is better.\n\n"
                    << Row("case", "ours", "peer", "peer's", "ratio", "goal");
  for (const Suite::Comparison& comparison : m_Suite.GetComparisons()) {
    for (const Peer& peer : comparison.peers) PrintRows(comparison, peer);
  }
}

// What the filter left out, or what failed, has no row.
void RatioReporter::PrintRows(const Suite::Comparison& comparison, const Peer& peer) {
  const auto ours = m_Measured.find(Suite::NameOfOurs(comparison));
  const auto theirs = m_Measured.find(Suite::NameOfPeer(comparison, peer));
  if (ours == m_Measured.end() || theirs == m_Measured.end()) return;
  const double ourRate = Typical(ours->second.rates, comparison.clock);
  const double theirRate = Typical(theirs->second.rates, comparison.clock);
  const bool inBytes = ours->second.inBytes;
  GetOutputStream() << Row(comparison.name, DescribeRate(ourRate, inBytes), peer.name,
                           DescribeRate(theirRate, inBytes), Format("%.2f", theirRate / ourRate),
                           DescribeGoal(peer.goal, theirRate / ourRate));
  if (ours->second.sizes.empty() || theirs->second.sizes.empty()) return;
  const double ourSize = Median(ours->second.sizes);
  const double theirSize = Median(theirs->second.sizes);
  GetOutputStream() << Row(comparison.name + ", size", DescribeSize(ourSize), peer.name,
                           DescribeSize(theirSize), Format("%.2f", ourSize / theirSize),
                           DescribeGoal(peer.sizeGoal, ourSize / theirSize));
}

double RatioReporter::Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// What disturbs long work only adds to it, and its repetitions are too few for a median.
double RatioReporter::Typical(const std::vector<double>& rates, Clock clock) {
  return clock == Clock::Own ? *std::max_element(rates.begin(), rates.end()) : Median(rates);
}

}  // namespace qelta::bench
