#include "KeyCode.h"

#include <cstdint>

#include "ByteCode.h"

namespace qelta {
namespace {

constexpr std::size_t kFields = FED_DataDescriptor::FIELD_COUNT;

bool IsText(std::size_t field) {
  return FED_DataDescriptor::RD_NAME_TYPE_ITEMS[field].type == FED_DataDescriptor::STRING_FIELD;
}

void AppendText(std::string& key, const std::string& text) {
  AppendNumber(key, static_cast<std::uint32_t>(text.size()));
  key += text;
}

bool TakeInteger(ByteSource& source, FED_DataDescriptor& descriptor, std::size_t field) {
  std::int32_t value = 0;
  if (!source.Take(value)) return false;
  descriptor.SetInteger(FED_DataDescriptor::CastIndex(field), value);
  return true;
}

// Texts of descriptors end at a NUL, so that none holds any.
bool TakeText(ByteSource& source, FED_DataDescriptor& descriptor, std::size_t field) {
  std::uint32_t length = 0;
  std::string_view text;
  if (!source.Take(length) || !source.Take(length, text)) return false;
  if (text.find('\0') != text.npos) return false;
  descriptor.SetString(FED_DataDescriptor::CastIndex(field), std::string(text));
  return true;
}

}  // namespace

std::string EncodeKey(const FED_DataDescriptor& descriptor) {
  std::string key(2, '\0');
  unsigned mask = 0;
  for (std::size_t i = 0; i < kFields; ++i) {
    const auto field = FED_DataDescriptor::CastIndex(i);
    if (!descriptor.Has(field)) continue;
    mask |= 1u << i;
    if (IsText(i)) {
      AppendText(key, descriptor.GetString(field));
    } else {
      AppendNumber(key, descriptor.GetInteger(field));
    }
  }
  key[0] = static_cast<char>(mask);
  key[1] = static_cast<char>(mask >> 8);
  return key;
}

bool DecodeKey(const std::string& key, FED_DataDescriptor& descriptor) {
  descriptor.Init();
  ByteSource source(key);
  std::uint16_t mask = 0;
  if (!source.Take(mask) || mask >= 1u << kFields) return false;
  for (std::size_t i = 0; i < kFields; ++i) {
    if ((mask & 1u << i) == 0) continue;
    if (!(IsText(i) ? TakeText(source, descriptor, i) : TakeInteger(source, descriptor, i))) {
      return false;
    }
  }
  return source.GetRest() == 0;
}

}  // namespace qelta
