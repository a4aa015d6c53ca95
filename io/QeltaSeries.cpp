#include "QeltaSeries.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <set>

#include "QeltaQuantityText.h"
#include "QeltaSeriesAxis.h"
#include "QeltaSeriesReader.h"
#include "QeltaSeriesSources.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;
using Field = Key::ResultIndex;

using AllSources = std::vector<QeltaSeriesSources>;

// How well a field would do as x.
struct Fitness {
  bool isEverywhere;
  bool varies;
  bool tellsApart;
};

Fitness FitnessOf(Field field, const FED_Database& database, AllSources all,
                  const std::vector<Field>& by) {
  for (QeltaSeriesSources& one : all) one.Locate(database, QeltaSeriesAxis(field));
  const auto varies = std::mem_fn(&QeltaSeriesSources::Varies);
  const auto isEmpty = std::mem_fn(&QeltaSeriesSources::IsEmpty);
  const auto isSplit = [&by](const QeltaSeriesSources& one) { return one.IsSplitBy(by); };
  return {std::none_of(all.begin(), all.end(), isEmpty),
          std::any_of(all.begin(), all.end(), varies),
          std::all_of(all.begin(), all.end(), isSplit)};
}

QeltaSeriesAxis ChooseAxis(const FED_Database& database, const AllSources& all,
                           const QeltaSeriesRequest& request, const std::vector<Field>& by) {
  if (!request.x.empty()) return QeltaSeriesAxis(request.x);
  std::optional<Field> varying, present;
  for (const Field field : QeltaSeriesAxis::PreferredFields()) {
    const Fitness fitness = FitnessOf(field, database, all, by);
    if (fitness.varies && fitness.isEverywhere && fitness.tellsApart) return QeltaSeriesAxis(field);
    if (fitness.varies && !varying) varying = field;
    if (fitness.isEverywhere && !present) present = field;
  }
  if (varying) return QeltaSeriesAxis(*varying);
  const bool wantsRecords = request.records.empty() && !request.of;
  const bool hasRecords = std::any_of(all.begin(), all.end(), [&database](const auto& one) {
    return one.HasSeveralRecords(database);
  });
  if (!present && !request.records.empty()) {
    RefuseSeries(
        "The blocks have no field of numbers that a single record could stand at; leave "
        "the record out to see all of them.");
  }
  if (!present || (wantsRecords && hasRecords)) return QeltaSeriesAxis::Index();
  return QeltaSeriesAxis(*present);
}

}  // namespace

std::vector<QeltaSeries> CollectSeries(const FED_Database& database, const std::vector<Key>& keys,
                                       const QeltaSeriesRequest& request,
                                       const QeltaSeriesProgress& progress) {
  std::vector<Field> by;
  if (request.by) by.push_back(*request.by);
  AllSources all;
  for (const std::string& y : request.y) {
    for (QeltaSeriesSources& one : QeltaSeriesSources::Find(database, keys, y)) {
      all.push_back(std::move(one));
    }
  }
  const QeltaSeriesAxis axis = ChooseAxis(database, all, request, by);
  if (axis.IsWithinBlocks() && !request.records.empty()) {
    RefuseSeries("Over " + axis.GetName() + " all records of a block are shown, not some of them.");
  }
  std::uint64_t total = 0;
  bool hasX = false;
  for (QeltaSeriesSources& one : all) {
    one.Locate(database, axis);
    hasX = hasX || !one.IsEmpty();
    total += one.Size();
  }
  if (!hasX) RefuseSeries("None of the blocks has " + axis.GetName() + ".");
  QeltaSeriesReader reader(database, axis, request, total, progress);
  for (QeltaSeriesSources& one : all) {
    for (const QeltaSeriesGroup& group : one.Split(by)) reader.Read(one, group);
  }
  return reader.Finish();
}

std::vector<Key> KeysForSeries(const std::vector<Key>& selected, const std::vector<Key>& all,
                               const QeltaSeriesRequest& request) {
  const std::vector<QeltaQuantityText> texts(request.y.begin(), request.y.end());
  std::set<Key> keys;
  for (const Key& key : selected) {
    const auto fits = [&key](const QeltaQuantityText& text) { return text.MayFit(key); };
    if (std::any_of(texts.begin(), texts.end(), fits)) keys.insert(key);
  }
  if (!request.x.empty()) {
    const std::optional<FED_OnfId> frames = QeltaSeriesAxis(request.x).GetFrameKind();
    for (const Key& key : all) {
      const bool isFrame = frames && key.Has(Key::ONF) && key.GetInteger(Key::ONF) == *frames;
      if (isFrame) keys.insert(key);
    }
  }
  return {keys.begin(), keys.end()};
}

bool HasValues(const QeltaSeries& series) {
  return std::any_of(series.y.begin(), series.y.end(), [](double y) { return !std::isnan(y); });
}

}  // namespace qelta
