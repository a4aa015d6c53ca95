#include "QeltaDatabaseDiff.h"

#include <algorithm>
#include <deque>

#include "BlockComparison.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

bool IsEmpty(const Key& key) { return key.EqualTo(Key()); }

Key Without(const Key& key, const std::vector<Key::ResultIndex>& ignored) {
  Key rest = key.Duplicate();
  for (const Key::ResultIndex field : ignored) rest.Unset(field);
  return rest;
}

}  // namespace

QeltaBlockDifference CompareBlocks(const FED_DataBlock& a, const FED_IdMapsPool& mapsOfA,
                                   const FED_DataBlock& b, const FED_IdMapsPool& mapsOfB,
                                   const QeltaTolerances& tolerances) {
  return BlockComparison(a, mapsOfA, b, mapsOfB, tolerances).Compare();
}

std::vector<QeltaDatabaseDiff::Pair> QeltaDatabaseDiff::Match(
    const std::vector<Key>& first, const std::vector<Key>& second,
    const std::vector<Key::ResultIndex>& ignored) {
  std::map<Key, std::deque<std::size_t>> waiting;
  for (std::size_t i = 0; i < second.size(); ++i) {
    waiting[Without(second[i], ignored)].push_back(i);
  }
  std::vector<bool> isMatched(second.size());
  std::vector<Pair> pairs;
  for (const Key& key : first) {
    const auto found = waiting.find(Without(key, ignored));
    pairs.push_back({key, {}});
    if (found == waiting.end() || found->second.empty()) continue;
    pairs.back().second = second[found->second.front()];
    isMatched[found->second.front()] = true;
    found->second.pop_front();
  }
  for (std::size_t i = 0; i < second.size(); ++i) {
    if (!isMatched[i]) pairs.push_back({{}, second[i]});
  }
  return pairs;
}

QeltaBlockDifference QeltaDatabaseDiff::Compare(const Pair& pair) const {
  QeltaBlockDifference result;
  if (IsEmpty(pair.first) || IsEmpty(pair.second)) {
    const bool isFirst = IsEmpty(pair.second);
    result.key = isFirst ? pair.first : pair.second;
    result.state =
        isFirst ? QeltaBlockDifference::ONLY_IN_FIRST : QeltaBlockDifference::ONLY_IN_SECOND;
    return result;
  }
  QeltaTolerances tolerances = m_Tolerances;
  if (pair.first.Has(Key::LABEL)) {
    const auto own = tolerances.relativeOfLabel.find(pair.first.GetString(Key::LABEL));
    if (own != tolerances.relativeOfLabel.end()) tolerances.relative = own->second;
  }
  result = CompareBlocks(m_First.GetDataBlock(pair.first), m_First.GetIdMapsPool(),
                         m_Second.GetDataBlock(pair.second), m_Second.GetIdMapsPool(), tolerances);
  result.key = pair.first;
  return result;
}

}  // namespace qelta
