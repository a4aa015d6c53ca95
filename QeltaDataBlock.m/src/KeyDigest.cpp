#include "KeyDigest.h"

#include <algorithm>

namespace qelta {
namespace {

constexpr unsigned kMaskBits = 15;
constexpr unsigned kFieldBits = 28;
constexpr int kFields = 4;
static_assert(kMaskBits + kFields * kFieldBits + 1 == 128);
static_assert(kMaskBits > FED_DataDescriptor::FIELD_COUNT);

// What does not fit is represented by these, which nothing else uses, and ends the digest: what
// follows must not decide between keys that differ here.
constexpr std::uint64_t kUnknownMask = (std::uint64_t{1} << kMaskBits) - 1;
constexpr std::int64_t kTooLow = 0;
constexpr std::int64_t kTooHigh = (std::int64_t{1} << kFieldBits) - 1;

constexpr std::int64_t kZero = std::int64_t{1} << (kFieldBits - 1);

}  // namespace

KeyDigest::KeyDigest(const FED_DataDescriptor& key) {
  std::uint32_t rest = key.SpecifiedBits();
  bool fits = rest == key.m_Mask;
  Append(fits ? rest : kUnknownMask, kMaskBits);
  for (int i = 0; i < kFields; ++i) {
    std::int64_t value = 0;
    if (fits && rest != 0) {
      value = std::clamp(key.m_Slots[__builtin_ctz(rest)] + kZero, kTooLow, kTooHigh);
      fits = value != kTooLow && value != kTooHigh;
      rest &= rest - 1;
    }
    Append(static_cast<std::uint64_t>(value), kFieldBits);
  }
  Append(fits && rest == 0 ? 0 : 1, 1);
}

}  // namespace qelta
