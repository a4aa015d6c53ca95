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

// Every number of a block, by the text that names it.
std::vector<std::string> NumbersOfBlock(const std::string& name, const FED_DataBlock& block) {
  const std::vector<QeltaComponent> numbers = NumbersOf(block);
  if (numbers.size() == 1) return {name};
  const bool isOneField = !numbers.empty() && numbers.front().field == numbers.back().field;
  std::vector<std::string> texts;
  for (const QeltaComponent& number : numbers) {
    const std::size_t dot = number.title.find('.');
    texts.push_back(name + "." + (isOneField ? number.title.substr(dot + 1) : number.title));
  }
  return texts;
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
  // Blocks of one name may differ in what they hold.
  std::map<std::pair<std::string, const FED_OnfMetaData*>, std::vector<Key>> single;
  Json list = Json::array();
  for (const QeltaBlockInfo& info : blocks) {
    const FED_DataBlock& block = database.GetDataBlock(info.key);
    const std::string name = BlockNameOf(info.key);
    if (name.empty() || NumbersOf(block).empty()) continue;
    if (info.records == 1) single[{name, info.kind}].push_back(info.key);
    if (info.records > 1 && RecordIdTypeOf(block) == ID_TYPE_RECORD_INDEX) {
      QeltaSeriesRequest history;
      history.y = NumbersOfBlock(name, block);
      history.x = "index";
      Append(list, database, {info.key}, history);
    }
  }
  for (const auto& [nameAndKind, keys] : single) {
    QeltaSeriesRequest request;
    request.y = NumbersOfBlock(nameAndKind.first, database.GetDataBlock(keys.front()));
    if (keys.size() > 1) Append(list, database, keys, request);
  }
  return list;
}

}  // namespace qelta
