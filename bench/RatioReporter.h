#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

#include "Suite.h"

namespace qelta::bench {

/// Collects all runs and prints one row for each peer, or two where there are sizes to compare:
/// what is typical of ours, of the peer, and the ratio.
class RatioReporter : public benchmark::BenchmarkReporter {
 public:
  /// The suite outlives the reporter.
  explicit RatioReporter(const Suite& suite) : m_Suite(suite) {}

  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  // One entry for each repetition.
  struct Measured {
    std::vector<double> rates;  // items or bytes per second
    std::vector<double> sizes;  // or none
    bool inBytes = false;
  };
  static double Median(std::vector<double> values);
  static double Typical(const std::vector<double>& rates, Clock clock);
  void PrintRows(const Suite::Comparison& comparison, const Peer& peer);

  const Suite& m_Suite;
  std::map<std::string, Measured> m_Measured;  // by benchmark name
};

}  // namespace qelta::bench
