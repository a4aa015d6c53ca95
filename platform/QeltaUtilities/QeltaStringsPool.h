#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "QeltaExport.h"
#include "QeltaStrongType.h"

/// Number of a text in a QeltaStringsPool; value() gives it as a 32-bit integer.
using Qelta_SP_STRING_ID = QeltaStrongType<std::int32_t, struct QeltaStringsPoolTag>;

/// Keeps every text once and gives it a number.
///
/// Numbers count up from 0 in the order of first use; the same text always gets the same number,
/// different texts different ones. A number means something to the pool that gave it and to no
/// other, so it must never leave the process. Texts are never removed. Any number of threads may
/// use a pool at the same time.
class QELTA_EXPORT QeltaStringsPool {
 public:
  /// `sizeHint`: how many texts to expect; the pool grows beyond it.
  explicit QeltaStringsPool(std::size_t sizeHint);
  virtual ~QeltaStringsPool();

  QeltaStringsPool(const QeltaStringsPool&) = delete;
  QeltaStringsPool& operator=(const QeltaStringsPool&) = delete;

  /// The number of `text`, which is stored if it is new. The text may hold any bytes.
  /// std::bad_alloc or std::length_error (2^31 texts) leave the pool unchanged.
  Qelta_SP_STRING_ID AddString(const std::string& text);

  /// The text of `id`, valid while the pool lives and never moved. A text with a zero byte inside
  /// ends there for whoever reads the C string. A number that this pool never gave yields "".
  const char* GetString(Qelta_SP_STRING_ID id) const;

 private:
  bool Find(const std::string& text, Qelta_SP_STRING_ID& id) const;
  Qelta_SP_STRING_ID Append(const std::string& text);

  mutable std::shared_mutex m_Mutex;
  std::deque<std::string> m_Texts;
  std::unordered_map<std::string_view, Qelta_SP_STRING_ID> m_Ids;
};
