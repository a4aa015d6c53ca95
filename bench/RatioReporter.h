#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

#include "Suite.h"

namespace qelta::bench {

/// Collects all runs and prints one row for each peer: our median, the peer's, and their ratio.
class RatioReporter : public benchmark::BenchmarkReporter {
 public:
  /// The suite outlives the reporter.
  explicit RatioReporter(const Suite& suite) : m_Suite(suite) {}

  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  // Items or bytes per second, one entry for each repetition.
  struct Rates {
    std::vector<double> values;
    bool inBytes = false;
  };
  static double Median(const Rates& rates);
  static std::string Describe(const Rates& rates);
  void PrintRow(const Suite::Comparison& comparison, const Peer& peer);

  const Suite& m_Suite;
  std::map<std::string, Rates> m_Rates;  // by benchmark name
};

}  // namespace qelta::bench
