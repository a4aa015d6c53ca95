#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "QeltaSeries.h"
#include "QeltaSeriesSources.h"

namespace qelta {

/// Reads the values of series, group by group.
class QeltaSeriesReader {
 public:
  /// All of these must outlive this object. `total` blocks are to be read.
  QeltaSeriesReader(const FED_Database& database, const QeltaSeriesAxis& axis,
                    const QeltaSeriesRequest& request, std::uint64_t total,
                    const QeltaSeriesProgress& progress)
      : m_Database(database),
        m_Axis(axis),
        m_Request(request),
        m_Total(total),
        m_Progress(progress) {}

  /// The series of a group: one, or one for each of the request's records.
  void Read(const QeltaSeriesSources& sources, const QeltaSeriesGroup& group);

  /// Everything that was read; names are told apart by their kinds where need be.
  std::vector<QeltaSeries> Finish();

 private:
  const FED_DataBlock& NextBlock(const FED_DataDescriptor& key);
  void ReadRecords(const QeltaSeriesSources& sources, const QeltaSeriesGroup& group);
  void ReadReduced(const QeltaSeriesSources& sources, const QeltaSeriesGroup& group);
  void ReadWithin(const QeltaSeriesSources& sources, const QeltaSeriesGroup& group);
  QeltaSeries Begin(const QeltaSeriesSources& sources, const QeltaSeriesGroup& group) const;
  void Add(QeltaSeries series, const QeltaSeriesSources& sources);

  const FED_Database& m_Database;
  const QeltaSeriesAxis& m_Axis;
  const QeltaSeriesRequest& m_Request;
  std::uint64_t m_Total;
  std::uint64_t m_Done = 0;
  const QeltaSeriesProgress& m_Progress;
  std::vector<QeltaSeries> m_Series;
  std::vector<std::string> m_Kinds;  // of the series
};

}  // namespace qelta
