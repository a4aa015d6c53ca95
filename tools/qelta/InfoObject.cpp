#include "InfoObject.h"

#include <QeltaKeyValues.h>

#include "JsonText.h"
#include "KindRows.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;
using Json = nlohmann::ordered_json;

Json StepObject(const FrdStepSummary& step) {
  Json object;
  object["step"] = step.step ? Json(*step.step) : Json();
  object["analysis"] = GetFrdAnalysisName(step.analysis);
  object["frames"] = ToText(step.frames);
  object["increments"] = ToText(step.increments);
  object["modes"] = ToText(step.modes);
  object["lowest"] = ToJson(QeltaCell(step.lowestValue));
  object["highest"] = ToJson(QeltaCell(step.highestValue));
  return object;
}

Json KindObject(const KindRow& row) {
  Json object;
  object["onf"] = row.onf == 0 ? Json() : Json(row.onf);
  object["kind"] = row.kind;
  object["label"] = row.label.empty() ? Json() : Json(row.label);
  object["format"] = row.format;
  object["blocks"] = row.blocks;
  object["records"] = row.records;
  return object;
}

Json FieldsOf(const std::vector<QeltaBlockInfo>& blocks) {
  std::vector<Key> keys;
  keys.reserve(blocks.size());
  for (const QeltaBlockInfo& block : blocks) keys.push_back(block.key);
  Json fields = Json::object();
  for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
    const std::string values = DescribeValues(keys, Key::CastIndex(i));
    if (!values.empty()) fields[Key::RD_NAME_TYPE_ITEMS[i].name] = values;
  }
  return fields;
}

void AddBlocks(Json& object, const std::vector<QeltaBlockInfo>& blocks) {
  object["blocks"] = blocks.size();
  object["kinds"] = Json::array();
  for (const KindRow& row : GroupByKind(blocks)) object["kinds"].push_back(KindObject(row));
  object["fields"] = FieldsOf(blocks);
}

}  // namespace

Json ToObject(const std::string& name, const FrdFileSummary& summary,
              const std::vector<QeltaBlockInfo>& blocks) {
  Json object;
  object["source"] = name;
  object["type"] = summary.isBinary ? "binary result file" : "text result file";
  object["complete"] = summary.isComplete;
  object["model"] = summary.model;
  object["heading"] = summary.heading;
  object["headers"] = summary.headers;
  object["materials"] = summary.materials;
  object["nodes"] = summary.nodes;
  object["nodes_without_coordinates"] = summary.nodesWithoutCoordinates;
  object["elements"] = summary.elements;
  object["steps"] = Json::array();
  for (const FrdStepSummary& step : summary.steps) object["steps"].push_back(StepObject(step));
  AddBlocks(object, blocks);
  return object;
}

Json ToObject(const std::string& name, const FED_IdMapsPool& maps,
              const std::vector<QeltaBlockInfo>& blocks) {
  Json object;
  object["source"] = name;
  object["type"] = "database";
  std::uint64_t bytes = 0;
  for (const QeltaBlockInfo& block : blocks) bytes += block.bytes;
  object["bytes"] = bytes;
  object["ids"] = Json::object();
  for (const auto& [type, count] : CountIds(maps)) object["ids"][type] = count;
  AddBlocks(object, blocks);
  return object;
}

std::vector<std::pair<std::string, std::uint64_t>> CountIds(const FED_IdMapsPool& maps) {
  std::vector<std::pair<std::string, std::uint64_t>> counts;
  for (int type = ID_TYPE_NODE; type < ID_TYPE_RECORD_INDEX; ++type) {
    const FED_IdMap& map = maps.GetMap(static_cast<FED_IdType>(type));
    const auto count = static_cast<std::uint64_t>(map.GetMaxIndex() + 1);
    if (count > 0) counts.emplace_back(FED_ID_TYPE_INFO[type].name, count);
  }
  return counts;
}

}  // namespace qelta
