#include "QeltaBlockStatistics.h"

#include <cmath>

#include "QeltaComponents.h"

namespace qelta {
namespace {

class Accumulator {
 public:
  explicit Accumulator(std::string title) { m_Result.title = std::move(title); }

  void Add(std::size_t index, double value) {
    if (std::isnan(value)) {
      ++m_Result.notANumber;
      return;
    }
    if (m_Result.count == 0 || value < m_Result.lowest) {
      m_Result.lowest = value;
      m_Result.lowestAt = index;
    }
    if (m_Result.count == 0 || value > m_Result.highest) {
      m_Result.highest = value;
      m_Result.highestAt = index;
    }
    ++m_Result.count;
    m_Sum += static_cast<long double>(value);
    m_Squares += static_cast<long double>(value) * static_cast<long double>(value);
  }

  QeltaStatistics Finish() const {
    QeltaStatistics result = m_Result;
    if (result.count > 0) result.mean = static_cast<double>(m_Sum / result.count);
    result.norm = static_cast<double>(std::sqrt(m_Squares));
    return result;
  }

 private:
  QeltaStatistics m_Result;
  long double m_Sum = 0;
  long double m_Squares = 0;
};

}  // namespace

std::vector<QeltaStatistics> ComputeStatistics(const FED_DataBlock& block,
                                               const QeltaQuantities& quantities) {
  std::vector<Accumulator> accumulators(quantities.GetTitles().begin(),
                                        quantities.GetTitles().end());
  std::vector<double> values(accumulators.size());
  const auto add = [&](std::size_t first, std::size_t count, const unsigned char* records) {
    for (std::size_t i = 0; i < count; ++i, records += block.GetRecordSize()) {
      quantities.Read(records, values.data());
      for (std::size_t k = 0; k < values.size(); ++k) accumulators[k].Add(first + i, values[k]);
    }
  };
  if (!values.empty()) VisitRecords(block, add);
  std::vector<QeltaStatistics> results;
  results.reserve(accumulators.size());
  for (const Accumulator& one : accumulators) results.push_back(one.Finish());
  return results;
}

std::vector<QeltaStatistics> ComputeStatistics(const FED_DataBlock& block) {
  return ComputeStatistics(block, QeltaQuantities(block));
}

}  // namespace qelta
