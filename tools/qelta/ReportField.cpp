#include "ReportField.h"

#include <QeltaBlockStatistics.h>
#include <QeltaComponents.h>
#include <QeltaRecordRows.h>

#include <map>
#include <string>

#include "JsonText.h"

namespace qelta {
namespace {

using Json = nlohmann::ordered_json;

// What a block takes beside its numbers, for each value: two extremes, and where they are.
constexpr std::uint64_t kRangeBytes = 80;
constexpr std::uint64_t kDerivedValues = 4;

const char* MotionName(QeltaMeshField::Motion motion) {
  constexpr const char* kNames[] = {"none", "displacement", "shape"};
  return kNames[static_cast<std::size_t>(motion)];
}

std::string BehindDot(const std::string& title) { return title.substr(title.rfind('.') + 1); }

// What each of the statistics of a block is made of: the component at a place, or a rule on those
// from a place on. Titles of blocks with one field are shortened.
Json ValuesOf(const FED_DataBlock& block, const std::vector<QeltaStatistics>& statistics) {
  const std::vector<QeltaComponent> numbers = NumbersOf(block);
  const bool isOneField = numbers.front().field == numbers.back().field;
  std::map<std::string, std::size_t> firstPlaces;
  Json values = Json::array();
  std::size_t next = 0;
  for (const QeltaStatistics& one : statistics) {
    const std::string stem = one.title.substr(0, one.title.rfind('.'));
    Json value = {{"name", isOneField ? BehindDot(one.title) : one.title}};
    if (next < numbers.size() && numbers[next].title == one.title) {
      firstPlaces.emplace(stem, next);
      value["place"] = next++;
    } else {
      value["place"] = firstPlaces.at(stem);
      value["rule"] = BehindDot(one.title);
    }
    values.push_back(std::move(value));
  }
  return values;
}

Json RangeOf(const QeltaStatistics& one, const QeltaRecordRows& rows) {
  if (one.count == 0) return nullptr;
  return {ToJson(one.lowest), ToText(rows.Key(one.lowestAt), kAllDigits), ToJson(one.highest),
          ToText(rows.Key(one.highestAt), kAllDigits)};
}

}  // namespace

std::uint64_t ReportField::MostBytesOfBlock() const {
  const FED_DataBlock& block = m_Database.GetDataBlock(m_Field.blocks.front().key);
  const std::size_t numbers = NumbersOf(block).size();
  return ReportArrays::MostBytes(numbers * Seen().size() * sizeof(float)) +
         kRangeBytes * (numbers + kDerivedValues);
}

Json ReportField::Write(ReportArrays& arrays, const std::function<void()>& onBlock) const {
  Json values;
  Json blocks = Json::array();
  std::map<FED_DataDescriptor, Json> blocksOfKeys;  // one may hold at several steps
  for (const QeltaMeshField::Block& block : m_Field.blocks) {
    onBlock();
    const auto [written, isNew] = blocksOfKeys.emplace(block.key, Json());
    if (isNew) written->second = WriteBlock(block.key, arrays, values);
    blocks.push_back(written->second);
    if (block.step) blocks.back()["step"] = *block.step;
  }
  return {{"name", m_Field.name},           {"unit", m_Field.unit},
          {"isOnCells", m_Field.isOnCells}, {"motion", MotionName(m_Field.motion)},
          {"values", std::move(values)},    {"blocks", std::move(blocks)}};
}

Json ReportField::WriteBlock(const FED_DataDescriptor& key, ReportArrays& arrays,
                             Json& values) const {
  const FED_DataBlock& data = m_Database.GetDataBlock(key);
  const std::vector<QeltaStatistics> statistics = ComputeStatistics(data);
  if (values.is_null()) values = ValuesOf(data, statistics);
  const QeltaRecordRows rows(data, m_Database.GetIdMapsPool());
  Json ranges = Json::array();
  for (const QeltaStatistics& one : statistics) ranges.push_back(RangeOf(one, rows));
  Json json;
  json["ranges"] = std::move(ranges);
  const QeltaPositions& all = m_Field.isOnCells ? m_Mesh.GetCells() : m_Mesh.GetNodes();
  json["array"] = arrays.Write(ReadAtPositions(data, all, Seen()));
  return json;
}

}  // namespace qelta
