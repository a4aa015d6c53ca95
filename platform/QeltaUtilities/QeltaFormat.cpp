#include "QeltaFormat.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr char kFlagsWidthPrecision[] = "-+ #0'123456789.*";

// Only a conversion "%Iu" changes; "%%Iu" is a percent sign and two letters.
std::string InCLibraryTerms(const char* format) {
  std::string result;
  while (*format != '\0') {
    if (*format != '%') {
      result += *format++;
      continue;
    }
    const std::size_t prefix = 1 + std::strspn(format + 1, kFlagsWidthPrecision);
    const bool unsigned64 = std::strncmp(format + prefix, "Iu", 2) == 0;
    const std::size_t length = prefix + (format[prefix] == '\0' ? 0 : 1);
    result.append(format, unsigned64 ? prefix : length);
    if (unsigned64) result += "ll";
    format += length;
  }
  return result;
}

class CFormat {
 public:
  explicit CFormat(const char* format)
      : m_Translated(std::strstr(format, "Iu") == nullptr ? "" : InCLibraryTerms(format)),
        m_Text(m_Translated.empty() ? format : m_Translated.c_str()) {}
  CFormat(const CFormat&) = delete;
  CFormat& operator=(const CFormat&) = delete;

  const char* text() const { return m_Text; }

 private:
  std::string m_Translated;
  const char* m_Text;
};

void CopyTruncated(char* buffer, std::size_t size, const char* text) {
  const std::size_t length = std::strlen(text) < size ? std::strlen(text) : size - 1;
  std::memcpy(buffer, text, length);
  buffer[length] = '\0';
}

}  // namespace

std::string QeltaFormat::Format(const char* format, std::va_list arguments) {
  if (format == nullptr) return {};
  const CFormat cFormat(format);
  char buffer[512];
  std::va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(buffer, sizeof buffer, cFormat.text(), arguments);
  std::string text = format;
  if (length >= 0 && static_cast<std::size_t>(length) < sizeof buffer) {
    text.assign(buffer, static_cast<std::size_t>(length));
  } else if (length >= 0) {
    text.resize(static_cast<std::size_t>(length));
    std::vsnprintf(text.data(), text.size() + 1, cFormat.text(), again);
  }
  va_end(again);
  return text;
}

void QeltaFormat::FormatTo(char* buffer, std::size_t size, const char* format,
                           std::va_list arguments) {
  if (size == 0) return;
  buffer[0] = '\0';
  if (format == nullptr) return;
  const int length = std::vsnprintf(buffer, size, CFormat(format).text(), arguments);
  if (length < 0) CopyTruncated(buffer, size, format);
}
