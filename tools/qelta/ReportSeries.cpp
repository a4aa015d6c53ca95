#include <QeltaComponents.h>
#include <QeltaQuantityText.h>
#include <QeltaSeries.h>

#include <map>
#include <string>
#include <vector>

#include "JsonText.h"
#include "ReportFacts.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;
using Json = nlohmann::ordered_json;

Json ToArray(const std::vector<double>& numbers) {
  Json array = Json::array();
  for (const double number : numbers) array.push_back(ToJson(number));
  return array;
}

// Series that show nothing are left out: of one point, or without numbers.
void Append(Json& list, const FED_Database& database, const std::vector<Key>& keys,
            const QeltaSeriesRequest& request) {
  for (const QeltaSeries& one : CollectSeries(database, keys, request)) {
    if (one.x.size() < 2 || !HasValues(one)) continue;
    list.push_back({{"name", one.name},
                    {"unit", one.unit},
                    {"xName", one.xName},
                    {"x", ToArray(one.x)},
                    {"y", ToArray(one.y)}});
  }
}

}  // namespace

Json ReportSeries(const FED_Database& database, const std::vector<QeltaBlockInfo>& blocks) {
  std::map<std::string, std::vector<Key>> single;
  Json list = Json::array();
  for (const QeltaBlockInfo& info : blocks) {
    const FED_DataBlock& block = database.GetDataBlock(info.key);
    const std::string name = BlockNameOf(info.key);
    if (name.empty() || NumbersOf(block).empty()) continue;
    QeltaSeriesRequest history;
    history.y = {name};
    history.x = "index";
    if (info.records == 1) single[name].push_back(info.key);
    if (info.records > 1 && RecordIdTypeOf(block) == ID_TYPE_RECORD_INDEX) {
      Append(list, database, {info.key}, history);
    }
  }
  for (const auto& [name, keys] : single) {
    QeltaSeriesRequest request;
    request.y = {name};
    if (keys.size() > 1) Append(list, database, keys, request);
  }
  return list;
}

}  // namespace qelta
