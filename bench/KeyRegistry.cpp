#include "KeyRegistry.h"

#include <algorithm>
#include <map>
#include <memory>
#include <random>

namespace qelta::bench {
namespace {

constexpr std::size_t kKeysOfBlock = 1000;
// A shorter order would be learned by heart by the branch predictor.
constexpr std::size_t kShortestOrder = 100000;

FED_DataDescriptor MakeKey(int number) {
  FED_DataDescriptor key(number / 100 % 10, static_cast<FED_OnfId>(ONF_DISPLACEMENT + number % 10));
  key.SetInteger(FED_DataDescriptor::LOADCASE, 1 + number / 10 % 10);
  key.SetInteger(FED_DataDescriptor::INCREMENT, number / 1000);
  return key;
}

}  // namespace

KeyRegistry& KeyRegistry::OfSize(std::size_t count) {
  static std::map<std::size_t, std::unique_ptr<KeyRegistry>> registries;
  std::unique_ptr<KeyRegistry>& registry = registries[count];
  if (registry == nullptr) registry = std::make_unique<KeyRegistry>(count);
  return *registry;
}

KeyRegistry::KeyRegistry(std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) m_Keys.push_back(MakeKey(static_cast<int>(i)));
  while (m_Shuffled.size() < kShortestOrder) {
    m_Shuffled.insert(m_Shuffled.end(), m_Keys.begin(), m_Keys.end());
  }
  std::shuffle(m_Shuffled.begin(), m_Shuffled.end(), std::mt19937(1));
  for (std::size_t i = 0; i < count; ++i) {
    FED_DataDescriptor key = m_Keys[i].Duplicate();
    if (i % kKeysOfBlock == 0) {
      m_Database.CreateDataBlock(key, 0);
    } else {
      m_Database.CreateDataBlockAlias(m_Keys[i - i % kKeysOfBlock], key);
    }
  }
}

const FED_DataDescriptor* KeyRegistry::NextOfShuffled(std::size_t count) {
  const FED_DataDescriptor* const keys = m_Shuffled.data() + m_Next;
  m_Next = (m_Next + count) % m_Shuffled.size();
  return keys;
}

}  // namespace qelta::bench
