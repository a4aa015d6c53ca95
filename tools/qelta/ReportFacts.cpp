#include "ReportFacts.h"

#include <FED_OnfInfoPool.h>
#include <QeltaKeyValues.h>

#include <string>

#include "BlockColumns.h"
#include "InfoObject.h"
#include "KindRows.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;
using Json = nlohmann::ordered_json;

Json FieldsOf(const Key& key) {
  Json values = Json::array();
  for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
    const Key::ResultIndex field = Key::CastIndex(i);
    const bool isText = Key::RD_NAME_TYPE_ITEMS[i].type == Key::STRING_FIELD;
    if (!key.Has(field)) {
      values.push_back(nullptr);
    } else if (isText) {
      values.push_back(key.GetString(field));
    } else {
      values.push_back(key.GetInteger(field));
    }
  }
  return values;
}

Json KindTable(const std::vector<QeltaBlockInfo>& blocks) {
  Json rows = Json::array();
  for (const KindRow& row : GroupByKind(blocks)) {
    rows.push_back({row.kind, row.label, row.blocks, row.records});
  }
  return {{"title", "Blocks"}, {"titles", {"kind", "label", "blocks", "records"}}, {"rows", rows}};
}

Json FieldTable(const std::vector<QeltaBlockInfo>& blocks) {
  std::vector<Key> keys;
  keys.reserve(blocks.size());
  for (const QeltaBlockInfo& block : blocks) keys.push_back(block.key);
  Json rows = Json::array();
  for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
    const std::string values = DescribeValues(keys, Key::CastIndex(i));
    if (!values.empty()) rows.push_back({Key::RD_NAME_TYPE_ITEMS[i].name, values});
  }
  return {{"title", "Values of the descriptor fields"}, {"rows", rows}};
}

Json IdTable(const FED_IdMapsPool& maps) {
  Json rows = Json::array();
  for (const auto& [entity, count] : CountIds(maps)) rows.push_back({entity, count});
  return {{"title", "Entities with ids"}, {"rows", rows}};
}

}  // namespace

Json ReportCatalogue() {
  Json fields = Json::array(), kinds = Json::array(), categories = Json::array();
  for (const Key::NameAndType& field : Key::RD_NAME_TYPE_ITEMS) {
    fields.push_back({{"name", field.name},
                      {"isText", field.type == Key::STRING_FIELD},
                      {"lowest", field.lowest},
                      {"highest", field.highest}});
  }
  for (const FED_OnfId id : FED_OnfInfoPool::GetAllOnfIds()) {
    kinds.push_back({static_cast<int>(id), FED_OnfInfoPool::GetOnfInfo(id).name});
  }
  for (const FED_OnfCategoryInfo& category : FED_OnfInfoPool::GetAllCategories()) {
    categories.push_back({category.name, category.first, category.last});
  }
  return {{"fields", fields}, {"kinds", kinds}, {"categories", categories}};
}

Json ReportBlocks(const std::vector<QeltaBlockInfo>& blocks) {
  Json rows = Json::array();
  for (const QeltaBlockInfo& block : blocks) {
    rows.push_back({FieldsOf(block.key), block.KindName(), block.records, block.bytes,
                    ShortFormat(block.kind->format)});
  }
  return rows;
}

Json ReportOverview(const std::vector<QeltaBlockInfo>& blocks, const FED_IdMapsPool& maps) {
  return Json::array({KindTable(blocks), FieldTable(blocks), IdTable(maps)});
}

}  // namespace qelta
