#include "QeltaSeriesReader.h"

#include <BlockMetaData.h>
#include <QeltaBulkAccess.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "QeltaBlockStatistics.h"
#include "QeltaNames.h"
#include "QeltaQuantityText.h"
#include "QeltaRecordRows.h"

namespace qelta {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const char* NameOf(QeltaReduction of) {
  constexpr const char* kNames[] = {"max", "min", "mean", "norm"};
  return kNames[static_cast<std::size_t>(of)];
}

double Reduce(const QeltaStatistics& values, QeltaReduction of) {
  if (values.count == 0) return kNaN;
  switch (of) {
    case QeltaReduction::Min:
      return values.lowest;
    case QeltaReduction::Mean:
      return values.mean;
    case QeltaReduction::Norm:
      return values.norm;
    case QeltaReduction::Max:
      break;
  }
  return values.highest;
}

std::optional<std::size_t> Find(const QeltaRecordRows& rows, const FED_DataBlock& block,
                                const QeltaRecordChoice& choice) {
  using By = QeltaRecordChoice::By;
  if (choice.by == By::Id) return rows.IndexOfId(choice.number);
  if (choice.by == By::Name) return rows.IndexOfName(choice.name);
  const auto index = static_cast<std::size_t>(choice.number);
  return choice.number >= 0 && block.HasRecord(index) ? std::optional(index) : std::nullopt;
}

double ReadAt(const FED_DataBlock& block, const QeltaQuantities& quantity, std::size_t index) {
  std::vector<unsigned char> record(block.GetRecordSize());
  QeltaBulkAccess::ReadRun(block, index, 1, record.data());
  double value = kNaN;
  quantity.Read(record.data(), &value);
  return value;
}

std::string RecordText(const QeltaRecordRows& rows, const QeltaRecordChoice& choice) {
  using By = QeltaRecordChoice::By;
  if (choice.by == By::Name) return choice.name;
  if (choice.by == By::Index) return "record " + std::to_string(choice.number);
  return rows.KeyTitle() + " " + std::to_string(choice.number);
}

// The quantity that gives the x of the records.
QeltaQuantities ColumnOf(const FED_DataBlock& block, const std::string& text) {
  const QeltaQuantities quantities(block);
  const std::vector<std::string> meant =
      QeltaQuantityText(text).Choose(block, quantities.GetTitles());
  if (meant.size() == 1) return quantities.Only(meant.front());
  RefuseSeries("There is no x '" + text + "': it is no field of the key, not time, frequency, " +
               "factor or index, and no number of " + block.GetDescriptor().ToString() +
               ", which has " + Join(quantities.GetTitles()) + ".");
}

}  // namespace

void QeltaSeriesReader::Read(const QeltaSeriesSources& sources, const QeltaSeriesGroup& group) {
  if (m_Axis.IsWithinBlocks()) {
    ReadWithin(sources, group);
  } else if (m_Request.records.empty()) {
    ReadReduced(sources, group);
  } else {
    ReadRecords(sources, group);
  }
}

const FED_DataBlock& QeltaSeriesReader::NextBlock(const FED_DataDescriptor& key) {
  if (m_Progress) m_Progress(m_Done, m_Total);
  ++m_Done;
  return m_Database.GetDataBlock(key);
}

QeltaSeries QeltaSeriesReader::Begin(const QeltaSeriesSources& sources,
                                     const QeltaSeriesGroup& group) const {
  QeltaSeries series;
  series.name = sources.GetName() + (group.name.empty() ? "" : ", " + group.name);
  if (sources.GetKind().onfId != 0) series.quantity = sources.GetKind().title;
  series.unit = sources.GetKind().unit;
  series.xName = m_Axis.GetName();
  series.xUnit = m_Axis.GetUnit();
  series.hasWholeX = m_Axis.IsWhole();
  return series;
}

void QeltaSeriesReader::Add(QeltaSeries series, const QeltaSeriesSources& sources) {
  m_Series.push_back(std::move(series));
  m_Kinds.push_back(sources.GetKind().name);
}

void QeltaSeriesReader::ReadRecords(const QeltaSeriesSources& sources,
                                    const QeltaSeriesGroup& group) {
  std::vector<QeltaSeries> all(m_Request.records.size(), Begin(sources, group));
  std::vector<std::string> texts(all.size());
  for (const std::size_t i : group.members) {
    const FED_DataBlock& block = NextBlock(sources.GetKey(i));
    const QeltaRecordRows rows(block, m_Database.GetIdMapsPool());
    for (std::size_t k = 0; k < all.size(); ++k) {
      const auto index = Find(rows, block, m_Request.records[k]);
      all[k].x.push_back(sources.GetX(i));
      all[k].y.push_back(index ? ReadAt(block, sources.GetQuantity(), *index) : kNaN);
      texts[k] = RecordText(rows, m_Request.records[k]);
    }
  }
  for (std::size_t k = 0; k < all.size(); ++k) {
    all[k].name.insert(sources.GetName().size(), ", " + texts[k]);
    Add(std::move(all[k]), sources);
  }
}

void QeltaSeriesReader::ReadReduced(const QeltaSeriesSources& sources,
                                    const QeltaSeriesGroup& group) {
  const QeltaReduction of = m_Request.of.value_or(QeltaReduction::Max);
  QeltaSeries series = Begin(sources, group);
  bool isReduced = false;
  for (const std::size_t i : group.members) {
    const FED_DataBlock& block = NextBlock(sources.GetKey(i));
    const QeltaStatistics values = ComputeStatistics(block, sources.GetQuantity()).front();
    const bool isOne = values.count + values.notANumber == 1;
    isReduced = isReduced || !isOne;
    series.x.push_back(sources.GetX(i));
    series.y.push_back(Reduce(values, isOne ? QeltaReduction::Max : of));
  }
  if (isReduced) series.name = NameOf(of) + (" " + series.name);
  Add(std::move(series), sources);
}

void QeltaSeriesReader::ReadWithin(const QeltaSeriesSources& sources,
                                   const QeltaSeriesGroup& group) {
  for (const std::size_t member : group.members) {
    const FED_DataBlock& block = NextBlock(sources.GetKey(member));
    std::optional<QeltaQuantities> column;
    if (!m_Axis.IsIndex()) column = ColumnOf(block, m_Axis.GetColumn());
    QeltaSeries series = Begin(sources, group);
    VisitRecords(block, [&](std::size_t first, std::size_t count, const unsigned char* record) {
      for (std::size_t i = 0; i < count; ++i, record += block.GetRecordSize()) {
        double x = static_cast<double>(first + i), y = kNaN;
        if (column) column->Read(record, &x);
        sources.GetQuantity().Read(record, &y);
        series.x.push_back(x);
        series.y.push_back(y);
      }
    });
    if (column) series.xUnit = sources.GetKind().unit;
    Add(std::move(series), sources);
  }
}

std::vector<QeltaSeries> QeltaSeriesReader::Finish() {
  std::vector<std::string> names;
  for (const QeltaSeries& series : m_Series) names.push_back(series.name);
  for (std::size_t i = 0; i < names.size(); ++i) {
    const bool isUnique = std::count(names.begin(), names.end(), names[i]) == 1;
    if (!isUnique && !m_Kinds[i].empty()) m_Series[i].name += ", " + m_Kinds[i];
  }
  return std::move(m_Series);
}

}  // namespace qelta
