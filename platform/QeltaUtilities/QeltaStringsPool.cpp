#include "QeltaStringsPool.h"

#include <limits>
#include <mutex>
#include <stdexcept>

QeltaStringsPool::QeltaStringsPool(std::size_t sizeHint) { m_Ids.reserve(sizeHint); }

QeltaStringsPool::~QeltaStringsPool() = default;

Qelta_SP_STRING_ID QeltaStringsPool::AddString(const std::string& text) {
  Qelta_SP_STRING_ID id;
  {
    const std::shared_lock<std::shared_mutex> lock(m_Mutex);
    if (Find(text, id)) return id;
  }
  const std::unique_lock<std::shared_mutex> lock(m_Mutex);
  return Find(text, id) ? id : Append(text);
}

const char* QeltaStringsPool::GetString(Qelta_SP_STRING_ID id) const {
  const std::shared_lock<std::shared_mutex> lock(m_Mutex);
  const bool known = id.value() >= 0 && static_cast<std::size_t>(id.value()) < m_Texts.size();
  return known ? m_Texts[static_cast<std::size_t>(id.value())].c_str() : "";
}

bool QeltaStringsPool::Find(const std::string& text, Qelta_SP_STRING_ID& id) const {
  const auto found = m_Ids.find(text);
  if (found != m_Ids.end()) id = found->second;
  return found != m_Ids.end();
}

Qelta_SP_STRING_ID QeltaStringsPool::Append(const std::string& text) {
  constexpr std::size_t kMostTexts = std::numeric_limits<std::int32_t>::max();
  if (m_Texts.size() > kMostTexts) throw std::length_error("the string pool is full");
  const Qelta_SP_STRING_ID id(static_cast<std::int32_t>(m_Texts.size()));
  m_Texts.push_back(text);
  try {
    m_Ids.emplace(m_Texts.back(), id);
  } catch (...) {
    m_Texts.pop_back();
    throw;
  }
  return id;
}
