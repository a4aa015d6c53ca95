#include "FED_DataDescriptorPattern.h"

#include <algorithm>
#include <limits>

#include "FED_Message.h"
#include "FED_OnfInfoPool.h"
#include "QeltaInitOrder.h"

namespace {

constexpr std::size_t kFieldCount = FED_DataDescriptor::FIELD_COUNT;

FED_DataDescriptor::ResultIndex Field(std::size_t i) { return FED_DataDescriptor::CastIndex(i); }

bool IsInCategory(int onf, int category) {
  const std::vector<FED_OnfId>& numbers =
      FED_OnfInfoPool::GetOnfListForCategory(static_cast<FED_OnfCategoryId>(category));
  return std::find(numbers.begin(), numbers.end(), onf) != numbers.end();
}

bool IsExtremeMode(std::int32_t mode) {
  return mode == FED_DataDescriptorPattern::MATCH_HIGHEST ||
         mode == FED_DataDescriptorPattern::MATCH_LOWEST;
}

}  // namespace

struct FED_DataDescriptorPatternLayout {
  static_assert(offsetof(FED_DataDescriptorPattern, m_Entries) == 0);
  static_assert(offsetof(FED_DataDescriptorPattern::Entry, mode) == 0);
  static_assert(offsetof(FED_DataDescriptorPattern::Entry, value) == 4);
  static_assert(sizeof(FED_DataDescriptorPattern::Entry) == 8);
};

QELTA_INIT_EARLY const std::string FED_DataDescriptorPattern::FDP_NAME_ITEMS[9] = {
    "MATCH_EXACT",  "MATCH_ALL",     "MATCH_PRESENT",    "MATCH_MISSING", "MATCH_HIGHEST",
    "MATCH_LOWEST", "MATCH_LESS_EQ", "MATCH_GREATER_EQ", "MATCH_CATEGORY"};

FED_DataDescriptorPattern::MatchStateData::MatchStateData(MatchStateData&& other) noexcept {
  *this = std::move(other);
}

FED_DataDescriptorPattern::MatchStateData& FED_DataDescriptorPattern::MatchStateData::operator=(
    MatchStateData&& other) noexcept {
  if (this == &other) return *this;
  std::copy_n(other.m_Maxima, kFieldCount, m_Maxima);
  std::copy_n(other.m_Minima, kFieldCount, m_Minima);
  m_Candidates = std::move(other.m_Candidates);
  m_Criteria = std::move(other.m_Criteria);
  other.m_Candidates.clear();
  other.m_Criteria.clear();
  return *this;
}

void FED_DataDescriptorPattern::MatchStateData::Reset() {
  std::fill_n(m_Maxima, kFieldCount, std::numeric_limits<std::int32_t>::min());
  std::fill_n(m_Minima, kFieldCount, std::numeric_limits<std::int32_t>::max());
  m_Candidates.clear();
  m_Criteria.clear();
}

bool FED_DataDescriptorPattern::MatchStateData::Holds(const Criterion& criterion) const {
  return criterion.mode == MATCH_HIGHEST ? m_Maxima[criterion.field] <= criterion.value
                                         : m_Minima[criterion.field] >= criterion.value;
}

void FED_DataDescriptorPattern::MatchStateData::GetMatched(
    std::vector<FED_DataDescriptor>& out) const {
  out.clear();
  for (std::size_t k = 0; k < m_Candidates.size(); ++k) {
    const std::vector<Criterion>& criteria = m_Criteria[k];
    const bool selected = std::all_of(criteria.begin(), criteria.end(),
                                      [this](const Criterion& c) { return Holds(c); });
    if (selected) out.push_back(m_Candidates[k]);
  }
}

FED_DataDescriptorPattern::FED_DataDescriptorPattern() {
  std::fill_n(m_Entries, kFieldCount, Entry{MATCH_ALL, 0});
}

FED_DataDescriptorPattern::FED_DataDescriptorPattern(const FED_DataDescriptor& descriptor) {
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    m_Entries[i] = descriptor.Has(Field(i)) ? Entry{MATCH_EXACT, descriptor.m_Slots[i]}
                                            : Entry{MATCH_MISSING, 0};
  }
}

bool FED_DataDescriptorPattern::operator==(const FED_DataDescriptorPattern& other) const {
  return std::equal(
      m_Entries, m_Entries + kFieldCount, other.m_Entries,
      [](const Entry& a, const Entry& b) { return a.mode == b.mode && a.value == b.value; });
}

void FED_DataDescriptorPattern::SetMatchExact(ResultIndex i, const std::string& text) {
  m_Entries[i].mode = MATCH_EXACT;
  m_Entries[i].value = FED_DataDescriptor::s_StrPool.AddString(text).value();
}

void FED_DataDescriptorPattern::GetData(FED_DataDescriptor& descriptor) const {
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    descriptor.SetSlot(Field(i), m_Entries[i].value);
    if (m_Entries[i].mode != MATCH_EXACT) descriptor.Unset(Field(i));
  }
}

bool FED_DataDescriptorPattern::PassesTest(const Entry& entry, ResultIndex i,
                                           const FED_DataDescriptor& descriptor) {
  const std::int32_t value = descriptor.m_Slots[i];
  switch (entry.mode) {
    case MATCH_EXACT:
      return descriptor.Has(i) && value == entry.value;
    case MATCH_PRESENT:
      return descriptor.Has(i);
    case MATCH_MISSING:
      return !descriptor.Has(i);
    case MATCH_LESS_EQ:
      return descriptor.Has(i) && value <= entry.value;
    case MATCH_GREATER_EQ:
      return descriptor.Has(i) && value >= entry.value;
    case MATCH_CATEGORY:
      return descriptor.Has(FED_DataDescriptor::ONF) &&
             IsInCategory(descriptor.m_Slots[FED_DataDescriptor::ONF], entry.value);
    default:
      return true;
  }
}

bool FED_DataDescriptorPattern::PassesTests(const FED_DataDescriptor& descriptor) const {
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    if (!PassesTest(m_Entries[i], Field(i), descriptor)) return false;
  }
  return true;
}

void FED_DataDescriptorPattern::Match(const FED_DataDescriptor& descriptor,
                                      MatchStateData& state) const {
  if (!PassesTests(descriptor)) return;
  std::vector<MatchStateData::Criterion> criteria;
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    const std::int32_t mode = m_Entries[i].mode;
    if (!IsExtremeMode(mode)) continue;
    if (!descriptor.Has(Field(i))) return;
    const std::int32_t value = descriptor.m_Slots[i];
    std::int32_t& extreme = mode == MATCH_HIGHEST ? state.m_Maxima[i] : state.m_Minima[i];
    if (mode == MATCH_HIGHEST ? value < extreme : value > extreme) return;
    extreme = value;
    criteria.push_back({mode, i, value});
  }
  // The lists stay parallel even when an earlier candidate found no memory.
  state.m_Criteria.resize(state.m_Candidates.size());
  state.m_Criteria.push_back(std::move(criteria));
  state.m_Candidates.push_back(descriptor);
}

std::vector<FED_DataDescriptor> FED_DataDescriptorPattern::Match(
    const std::vector<FED_DataDescriptor>& descriptors) const {
  MatchStateData state;
  for (const FED_DataDescriptor& descriptor : descriptors) Match(descriptor, state);
  std::vector<FED_DataDescriptor> matched;
  state.GetMatched(matched);
  return matched;
}

std::string FED_DataDescriptorPattern::ToString() const {
  constexpr std::int32_t modeCount = static_cast<std::int32_t>(std::size(FDP_NAME_ITEMS));
  std::string text;
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    const FED_DataDescriptor::NameAndType& item = FED_DataDescriptor::RD_NAME_TYPE_ITEMS[i];
    const auto [mode, value] = m_Entries[i];
    const bool known = 0 <= mode && mode < modeCount;
    text += FED_MESSAGE("%s:%s", item.name.c_str(),
                        known ? FDP_NAME_ITEMS[mode].c_str() : "MATCH_UNKNOWN");
    const bool showsValue = mode == MATCH_EXACT || mode == MATCH_LESS_EQ ||
                            mode == MATCH_GREATER_EQ || mode == MATCH_CATEGORY;
    if (item.type == FED_DataDescriptor::INTEGER_FIELD && showsValue) {
      text += FED_MESSAGE("(%d)", value);
    } else if (item.type == FED_DataDescriptor::STRING_FIELD && mode == MATCH_EXACT) {
      text +=
          FED_MESSAGE("(%s)", FED_DataDescriptor::s_StrPool.GetString(Qelta_SP_STRING_ID(value)));
    }
    text += " / ";
  }
  text.resize(text.size() - 3);
  return text;
}
