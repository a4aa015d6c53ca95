#include "QeltaQuantityText.h"

#include <BlockMetaData.h>

#include <algorithm>

#include "QeltaNames.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

const FED_OnfMetaData* KindOf(const Key& key) {
  if (!key.Has(Key::ONF)) return nullptr;
  return &FED_OnfInfoPool::GetOnfInfo(static_cast<FED_OnfId>(key.GetInteger(Key::ONF)));
}

// Label and kind.
std::vector<std::string> BlockNames(const Key& key) {
  std::vector<std::string> names;
  if (key.Has(Key::LABEL)) names.push_back(key.GetString(Key::LABEL));
  if (const FED_OnfMetaData* kind = KindOf(key)) names.push_back(kind->name);
  return names;
}

// The text is the name, or goes on behind it with a dot.
bool BeginsWith(const std::string& text, const std::string& name) {
  const std::string end = text.substr(std::min(name.size(), text.size()));
  return IsSameName(text.substr(0, name.size()), name) && (end.empty() || end.front() == '.');
}

// What may stand for a title behind the name of its block: the title, or its component alone.
std::vector<std::string> ShortNames(const std::string& title) {
  const std::size_t dot = title.find('.');
  if (dot == std::string::npos) return {title};
  return {title, title.substr(dot + 1)};
}

}  // namespace

bool QeltaQuantityText::IsBehindAny(const std::vector<std::string>& names,
                                    const std::string& rest) const {
  return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
    return m_Text.size() == name.size() + 1 + rest.size() && BeginsWith(m_Text, name) &&
           IsSameName(m_Text.substr(name.size() + 1), rest);
  });
}

QeltaQuantityText::QeltaQuantityText(const std::string& text) : m_Text(text) {
  const std::string alias = "von_mises";
  const std::size_t end = text.size() - std::min(text.size(), alias.size());
  if (IsSameName(text.substr(end), alias)) m_Text.replace(end, alias.size(), "mises");
}

bool QeltaQuantityText::MayFit(const Key& key) const {
  const FED_OnfMetaData* const kind = KindOf(key);
  if (kind == nullptr || m_Text.find('.') == std::string::npos) return true;
  std::vector<std::string> names = BlockNames(key);
  names.insert(names.end(), kind->fieldNames.begin(), kind->fieldNames.end());
  return std::any_of(names.begin(), names.end(),
                     [this](const std::string& name) { return BeginsWith(m_Text, name); });
}

std::vector<std::string> QeltaQuantityText::Choose(const FED_DataBlock& block,
                                                   const std::vector<std::string>& titles) const {
  const std::vector<std::string> names = BlockNames(block.GetDescriptor());
  const auto isMeant = [&](const std::string& title) {
    const std::vector<std::string> shortNames = ShortNames(title);
    return std::any_of(shortNames.begin(), shortNames.end(), [&](const std::string& shortName) {
      return IsSameName(m_Text, shortName) || IsBehindAny(names, shortName);
    });
  };
  std::vector<std::string> meant;
  std::copy_if(titles.begin(), titles.end(), std::back_inserter(meant), isMeant);
  if (!meant.empty()) return meant;
  // A field of several numbers is a block of its own in this respect.
  std::copy_if(titles.begin(), titles.end(), std::back_inserter(meant),
               [this](const std::string& title) { return BeginsWith(title, m_Text); });
  const bool isBlock = std::any_of(names.begin(), names.end(), [this](const std::string& name) {
    return IsSameName(m_Text, name);
  });
  return isBlock ? titles : meant;
}

std::string BlockNameOf(const Key& key) {
  const std::vector<std::string> names = BlockNames(key);
  return names.empty() ? std::string() : names.front();
}

}  // namespace qelta
