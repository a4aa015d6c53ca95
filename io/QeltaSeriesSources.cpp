#include "QeltaSeriesSources.h"

#include <BlockMetaData.h>
#include <FED_Failure.h>
#include <QeltaBulkAccess.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <utility>

#include "QeltaNames.h"
#include "QeltaQuantityText.h"
#include "QeltaSeries.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;
using Field = Key::ResultIndex;

constexpr const char* kBadRequest = "310000000960";

// What may tell blocks of one kind and label apart, the plainest first.
constexpr Field kTellingFields[] = {Key::OBJECTIVE_ID, Key::LOADCASE,  Key::LAYER,
                                    Key::SUB_LEVEL,    Key::DIRECTION, Key::MICROPHONE,
                                    Key::ANALYSIS,     Key::STATE,     Key::INCREMENT,
                                    Key::ITERATION,    Key::SUBSTEP,   Key::ID_TYPE};

std::string ValueText(const Key& key, Field field) {
  if (!key.Has(field)) return {};
  const bool isText = Key::RD_NAME_TYPE_ITEMS[field].type == Key::STRING_FIELD;
  if (isText) return key.GetString(field);
  return Key::RD_NAME_TYPE_ITEMS[field].name + " " + std::to_string(key.GetInteger(field));
}

std::vector<std::string> ValueTexts(const Key& key, const std::vector<Field>& fields) {
  std::vector<std::string> texts;
  texts.reserve(fields.size());
  for (const Field field : fields) texts.push_back(ValueText(key, field));
  return texts;
}

// "DISP.y" of "DISPLACEMENT.y" where the block has one field; else "HISTORY.FIELD_2".
std::string NameOf(const FED_DataBlock& block, const std::string& title) {
  const std::string name = BlockNameOf(block.GetDescriptor());
  const std::size_t dot = std::min(title.find('.'), title.size());
  const std::string rest =
      MetaDataOf(block).dataTypes.size() == 1 ? title.substr(dot) : "." + title;
  return name.empty() ? title : name + rest;
}

// The title that a text means in a block; nothing when it means none there.
std::optional<std::string> TitleIn(const FED_DataBlock& block, const QeltaQuantityText& text,
                                   const std::vector<std::string>& titles) {
  const std::vector<std::string> meant = text.Choose(block, titles);
  if (meant.empty()) return std::nullopt;
  if (meant.size() == 1) return meant.front();
  std::vector<std::string> names;
  names.reserve(meant.size());
  for (const std::string& title : meant) names.push_back(NameOf(block, title));
  RefuseSeries("'" + text.GetText() + "' means several numbers of " +
               block.GetDescriptor().ToString() + "; take one of " + Join(names) + ".");
}

// What the user may have meant: a number of the blocks that are named, else another block.
[[noreturn]] void RefuseUnknown(const std::string& text, const std::set<std::string>& numbers,
                                const std::set<std::string>& blocks) {
  const std::size_t dot = std::min(text.find('.'), text.size());
  std::vector<std::string> known(numbers.begin(), numbers.end());
  if (numbers.empty()) {
    for (const std::string& block : blocks) known.push_back(block + text.substr(dot));
  }
  RefuseSeries("No selected block has the number '" + text + "'." + Suggest(text, known));
}

}  // namespace

void RefuseSeries(const std::string& text) {
  FED_Failure::Throw(kBadRequest, "|%P|QeltaIo|QeltaSeries", "%s", text.c_str());
}

bool IsBadSeriesRequest(const FED_Exception& failure) {
  return failure.GetMessageId() == kBadRequest;
}

QeltaSeriesSources::QeltaSeriesSources(const FED_DataBlock& block, QeltaQuantities quantity)
    : m_Kind(&MetaDataOf(block)),
      m_Quantity(std::move(quantity)),
      m_Name(NameOf(block, m_Quantity.GetTitles().front())) {}

std::vector<QeltaSeriesSources> QeltaSeriesSources::Find(const FED_Database& database,
                                                         const std::vector<Key>& keys,
                                                         const std::string& text) {
  const QeltaQuantityText wanted(text);
  constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  std::map<std::pair<const FED_OnfMetaData*, std::string>, std::size_t> places;
  std::vector<QeltaSeriesSources> found;
  std::set<std::string> numbers, blocks;
  for (const Key& key : keys) {
    if (!wanted.MayFit(key)) {
      blocks.insert(BlockNameOf(key));
      continue;
    }
    const FED_DataBlock& block = database.GetDataBlock(key);
    const auto [place, isNew] =
        places.try_emplace({&MetaDataOf(block), ValueText(key, Key::LABEL)}, kNone);
    if (isNew) {
      const QeltaQuantities quantities(block);
      for (const auto& title : quantities.GetTitles()) numbers.insert(NameOf(block, title));
      if (const auto title = TitleIn(block, wanted, quantities.GetTitles())) {
        place->second = found.size();
        found.push_back(QeltaSeriesSources(block, quantities.Only(*title)));
      }
    }
    if (place->second != kNone) found[place->second].m_Keys.push_back(key);
  }
  if (found.empty()) RefuseUnknown(text, numbers, blocks);
  return found;
}

void QeltaSeriesSources::Locate(const FED_Database& database, const QeltaSeriesAxis& axis) {
  std::vector<Key> keys;
  keys.swap(m_Keys);
  m_X.clear();
  for (const Key& key : keys) {
    const std::optional<double> x = axis.XOf(database, key);
    if (!x) continue;
    m_Keys.push_back(key);
    m_X.push_back(*x);
  }
}

bool QeltaSeriesSources::Varies() const {
  return std::any_of(m_X.begin(), m_X.end(), [this](double x) { return x != m_X.front(); });
}

bool QeltaSeriesSources::HasSeveralRecords(const FED_Database& database) const {
  return std::any_of(m_Keys.begin(), m_Keys.end(), [&database](const Key& key) {
    FED_IntSetIntvl<int> runs;
    QeltaBulkAccess::PresentRuns(database.GetDataBlock(key), runs);
    return runs.Size() > 1;
  });
}

bool QeltaSeriesSources::IsSplitBy(const std::vector<Field>& fields) const {
  std::set<std::pair<std::vector<std::string>, double>> taken;
  for (std::size_t i = 0; i < m_Keys.size(); ++i) {
    if (!taken.emplace(ValueTexts(m_Keys[i], fields), m_X[i]).second) return false;
  }
  return true;
}

std::vector<QeltaSeriesGroup> QeltaSeriesSources::Split(std::vector<Field> fields) const {
  for (const Field field : kTellingFields) {
    if (IsSplitBy(fields)) break;
    std::vector<Field> more = fields;
    more.push_back(field);
    if (IsSplitBy(more)) fields = more;
  }
  for (const Field field : kTellingFields) {
    if (IsSplitBy(fields)) break;
    const auto differs = [&](const Key& key) {
      return ValueText(key, field) != ValueText(m_Keys.front(), field);
    };
    if (std::any_of(m_Keys.begin(), m_Keys.end(), differs)) fields.push_back(field);
  }
  std::map<std::vector<std::string>, std::size_t> places;
  std::vector<QeltaSeriesGroup> groups;
  for (std::size_t i = 0; i < m_Keys.size(); ++i) {
    std::vector<std::string> values = ValueTexts(m_Keys[i], fields);
    const auto [place, isNew] = places.try_emplace(values, groups.size());
    if (isNew) {
      values.erase(std::remove(values.begin(), values.end(), ""), values.end());
      groups.push_back({{}, Join(values)});
    }
    groups[place->second].members.push_back(i);
  }
  for (QeltaSeriesGroup& group : groups) {
    std::stable_sort(group.members.begin(), group.members.end(),
                     [this](std::size_t a, std::size_t b) { return m_X[a] < m_X[b]; });
  }
  return groups;
}

}  // namespace qelta
