#include "QeltaBlockStatistics.h"

#include <BlockMetaData.h>

#include <array>
#include <cmath>

#include "QeltaComponents.h"
#include "QeltaTensor.h"

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

// What is derived from the components of a vector or tensor, of which the first is named.
class Derived {
 public:
  Derived(std::size_t first, BlockDataType type, const std::string& name)
      : m_First(first), m_IsVector(type == BLOCK_DATA_VECTOR) {
    const std::vector<std::string> titles =
        m_IsVector
            ? std::vector<std::string>{".magnitude"}
            : std::vector<std::string>{".mises", ".principal1", ".principal2", ".principal3"};
    for (const std::string& title : titles) m_Results.emplace_back(name + title);
  }

  void Add(std::size_t index, const std::vector<double>& values) {
    const double* const v = values.data() + m_First;
    if (m_IsVector) {
      m_Results[0].Add(index, std::hypot(v[0], v[1], v[2]));
      return;
    }
    m_Results[0].Add(index, VonMises(v));
    const std::array<double, 3> principal = PrincipalValues(v);
    for (std::size_t i = 0; i < principal.size(); ++i) m_Results[i + 1].Add(index, principal[i]);
  }

  std::size_t GetEnd() const { return m_First + (m_IsVector ? 3 : 6); }
  const std::vector<Accumulator>& GetResults() const { return m_Results; }

 private:
  std::size_t m_First;
  bool m_IsVector;
  std::vector<Accumulator> m_Results;
};

bool HoldsStresses(const FED_OnfMetaData& kind) { return kind.unit == "stress"; }

std::vector<Derived> DerivedOf(const FED_DataBlock& block,
                               const std::vector<QeltaComponent>& numbers) {
  const FED_OnfMetaData& kind = MetaDataOf(block);
  std::vector<Derived> derived;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const std::size_t field = numbers[i].field;
    const BlockDataType type = kind.dataTypes[field - 1];
    const bool isFirst = i == 0 || numbers[i - 1].field != field;
    if (isFirst &&
        (type == BLOCK_DATA_VECTOR || (type == BLOCK_DATA_TENSOR && HoldsStresses(kind)))) {
      derived.emplace_back(i, type, kind.fieldNames[field - 1]);
    }
  }
  return derived;
}

}  // namespace

std::vector<QeltaStatistics> ComputeStatistics(const FED_DataBlock& block) {
  const std::vector<QeltaComponent> numbers = NumbersOf(block);
  std::vector<Derived> derived = DerivedOf(block, numbers);
  std::vector<Accumulator> plain;
  plain.reserve(numbers.size());
  for (const QeltaComponent& number : numbers) plain.emplace_back(number.title);
  std::vector<double> values(numbers.size());
  const auto add = [&](std::size_t first, std::size_t count, const unsigned char* records) {
    for (std::size_t i = 0; i < count; ++i, records += block.GetRecordSize()) {
      for (std::size_t k = 0; k < numbers.size(); ++k) {
        values[k] = numbers[k].Read(records);
        plain[k].Add(first + i, values[k]);
      }
      for (Derived& one : derived) one.Add(first + i, values);
    }
  };
  if (!numbers.empty()) VisitRecords(block, add);

  std::vector<QeltaStatistics> results;
  auto next = derived.begin();
  for (std::size_t k = 0; k < plain.size(); ++k) {
    results.push_back(plain[k].Finish());
    if (next == derived.end() || next->GetEnd() != k + 1) continue;
    for (const Accumulator& one : next->GetResults()) results.push_back(one.Finish());
    ++next;
  }
  return results;
}

}  // namespace qelta
