#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "FrdEvents.h"
#include "FrdIdIndex.h"
#include "FrdSource.h"

namespace qelta {

/// Reads node and result tables: a node id and some values in each record.
class FrdRecordReader {
 public:
  using Delivery = std::function<void(const FrdRecords&)>;

  /// Registers every id it meets in `nodes`. Both arguments must outlive the reader.
  FrdRecordReader(FrdSource& source, FrdIdIndex& nodes);

  /// Reads the whole table, `valueCount` values a record, and delivers it in batches.
  void Read(const FrdTable& table, std::size_t valueCount, const Delivery& deliver);

 private:
  void ReadText(std::size_t idWidth);
  void ReadValues(std::string_view line, std::size_t start, double* values);
  void ReadValuesOfLine(std::string_view line, std::size_t start, double* values,
                        std::size_t count);
  template <class T>
  void ReadBinary(std::size_t recordCount);

  void StartBatch(std::size_t valueCount);
  double* Add(std::int32_t id);
  void Deliver();
  std::size_t GetCapacity() const { return m_Ids.size(); }

  FrdSource& m_Source;
  FrdIdIndex& m_Nodes;
  FrdSeenIndices m_Seen;
  const Delivery* m_Deliver = nullptr;
  std::size_t m_ValueCount = 1;
  std::size_t m_Count = 0;  // of the records in the batch
  std::vector<std::int32_t> m_Ids;
  std::vector<std::int32_t> m_Indices;
  std::vector<double> m_Values;
};

}  // namespace qelta
