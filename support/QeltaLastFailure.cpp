#include "QeltaLastFailure.h"

#include <cstddef>
#include <cstring>

namespace {

thread_local char s_Text[1024];
thread_local char s_MessageId[16];

template <std::size_t size>
void Copy(char (&to)[size], const char* from) {
  std::strncpy(to, from, size - 1);
  to[size - 1] = '\0';
}

}  // namespace

void QeltaLastFailure::Keep(const char* messageId, const char* text) noexcept {
  Copy(s_MessageId, messageId);
  Copy(s_Text, text);
}

const char* QeltaLastFailure::Text() noexcept { return s_Text; }

const char* QeltaLastFailure::MessageId() noexcept { return s_MessageId; }
