#include "FED_DataDescriptor.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "FED_Failure.h"
#include "FED_Message.h"
#include "FED_OnfInfoPool.h"
#include "QeltaInitOrder.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaDataDescriptor|FED_DataDescriptor";
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

}  // namespace

struct FED_DataDescriptorLayout {
  static_assert(offsetof(FED_DataDescriptor, m_Slots) == 0);
  static_assert(offsetof(FED_DataDescriptor, m_Mask) == 56);
  static_assert(offsetof(FED_DataDescriptor, m_TableID) == 60);
  static_assert(offsetof(FED_DataDescriptor, m_BlockID) == 64);
  static_assert(offsetof(FED_DataDescriptor, m_MissStamp) == 72);
};

QELTA_INIT_EARLY QeltaStringsPool FED_DataDescriptor::s_StrPool(65536);

std::uint64_t FED_DataDescriptor::s_ComparisonCounter = 0;

QELTA_INIT_EARLY const FED_DataDescriptor::NameAndType
    FED_DataDescriptor::RD_NAME_TYPE_ITEMS[FIELD_COUNT] = {
        {"ITERATION", INTEGER_FIELD, -1, kHighest},
        {"ONF", INTEGER_FIELD, kLowest, kHighest},
        {"STATE", INTEGER_FIELD, 0, kHighest},
        {"LOADCASE", INTEGER_FIELD, 1, kHighest},
        {"SUBSTEP", INTEGER_FIELD, 0, kHighest},
        {"ANALYSIS", INTEGER_FIELD, kLowest, kHighest},
        {"INCREMENT", INTEGER_FIELD, 0, kHighest},
        {"OBJECTIVE_ID", STRING_FIELD, 0, 0},
        {"LABEL", STRING_FIELD, 0, 0},
        {"LAYER", INTEGER_FIELD, 1, 3},
        {"MICROPHONE", INTEGER_FIELD, 0, kHighest},
        {"ID_TYPE", INTEGER_FIELD, 0, 14},
        {"DIRECTION", INTEGER_FIELD, 0, 2},
        {"SUB_LEVEL", INTEGER_FIELD, 0, 7}};

FED_DataDescriptor::FED_DataDescriptor(FED_OnfId onf) : FED_DataDescriptor() {
  SetInteger(ONF, onf);
}

FED_DataDescriptor::FED_DataDescriptor(int iteration, FED_OnfId onf) : FED_DataDescriptor(onf) {
  SetInteger(ITERATION, iteration);
}

FED_DataDescriptor::FED_DataDescriptor(int iteration, FED_OnfId onf, int state)
    : FED_DataDescriptor(iteration, onf) {
  SetInteger(STATE, state);
}

FED_DataDescriptor::FED_DataDescriptor(int iteration, FED_OnfId onf, int loadcase, int substep)
    : FED_DataDescriptor(iteration, onf) {
  SetInteger(LOADCASE, loadcase);
  SetInteger(SUBSTEP, substep);
}

void FED_DataDescriptor::Init() {
  std::fill_n(m_Slots, FIELD_COUNT, kLowest);
  m_Slots[INCREMENT] = 0;
  m_Mask = 0;
  ForgetPosition();
  m_MissStamp = 0;
}

FED_DataDescriptor FED_DataDescriptor::Duplicate() const {
  FED_DataDescriptor copy(*this);
  copy.ForgetPosition();
  copy.m_MissStamp = 0;
  return copy;
}

void FED_DataDescriptor::SetString(ResultIndex i, const std::string& text) {
  SetSlot(i, s_StrPool.AddString(text).value());
}

void FED_DataDescriptor::Unset(ResultIndex i) {
  m_Mask &= ~Bit(i);
  ForgetPosition();
}

int FED_DataDescriptor::GetInteger(ResultIndex i) const {
  if (Has(i)) return m_Slots[i];
  FED_Failure::Throw("113201110810", kLocation,
                     "The metadata element %s is not specified by the descriptor %s",
                     RD_NAME_TYPE_ITEMS[i].name.c_str(), ToString().c_str());
}

std::string FED_DataDescriptor::GetString(ResultIndex i) const {
  if (Has(i)) return s_StrPool.GetString(Qelta_SP_STRING_ID(m_Slots[i]));
  FED_Failure::Throw("152601091111", kLocation,
                     "The metadata element %s is not specified by the descriptor %s",
                     RD_NAME_TYPE_ITEMS[i].name.c_str(), ToString().c_str());
}

void FED_DataDescriptor::AssignSpecifiedValues(const FED_DataDescriptor& other) {
  for (std::size_t i = 0; i < FIELD_COUNT; ++i) {
    if (other.Has(CastIndex(i))) SetSlot(CastIndex(i), other.m_Slots[i]);
  }
}

bool FED_DataDescriptor::operator<(const FED_DataDescriptor& other) const {
  ++s_ComparisonCounter;
  if (m_Mask != other.m_Mask) return m_Mask < other.m_Mask;
  // Walking the set bits beats both a loop over all fields and vector instructions.
  for (std::uint32_t rest = SpecifiedBits(); rest != 0; rest &= rest - 1) {
    const int i = __builtin_ctz(rest);
    if (m_Slots[i] != other.m_Slots[i]) return m_Slots[i] < other.m_Slots[i];
  }
  return false;
}

bool FED_DataDescriptor::operator==(const FED_DataDescriptor& other) const {
  return !(*this != other);
}

bool FED_DataDescriptor::operator!=(const FED_DataDescriptor& other) const {
  return *this < other || other < *this;
}

bool FED_DataDescriptor::EqualTo(const FED_DataDescriptor& other) const {
  if (this == &other) return true;
  if (m_Mask != other.m_Mask) return false;
  for (std::uint32_t rest = SpecifiedBits(); rest != 0; rest &= rest - 1) {
    const int i = __builtin_ctz(rest);
    if (m_Slots[i] != other.m_Slots[i]) return false;
  }
  return true;
}

int FED_DataDescriptor::Hash() const {
  constexpr ResultIndex order[] = {LAYER,        LABEL,     SUB_LEVEL, DIRECTION, ID_TYPE,
                                   OBJECTIVE_ID, INCREMENT, ANALYSIS,  SUBSTEP,   ONF,
                                   LOADCASE,     STATE,     ITERATION};
  std::uint32_t hash = static_cast<std::uint32_t>(m_Slots[MICROPHONE]);
  for (const ResultIndex i : order) hash = (hash << 1) ^ static_cast<std::uint32_t>(m_Slots[i]);
  return static_cast<int>(hash);
}

void FED_DataDescriptor::CheckValidity() const {
  if (Has(ONF) && !FED_OnfInfoPool::ExistsOnfBlock(m_Slots[ONF])) {
    FED_Failure::Throw(
        "130613173901", kLocation,
        "The descriptor specifies an invalid ONF block number %d.\n  Complete descriptor: %s",
        m_Slots[ONF], ToString().c_str());
  }
  for (std::size_t i = 0; i < FIELD_COUNT; ++i) {
    const NameAndType& item = RD_NAME_TYPE_ITEMS[i];
    if (!Has(CastIndex(i)) || item.type != INTEGER_FIELD) continue;
    if (item.lowest <= m_Slots[i] && m_Slots[i] <= item.highest) continue;
    FED_Failure::Throw("130613172801", kLocation,
                       "The descriptor field %s is specified to be a positive integer value but "
                       "holds value %d\n  Complete descriptor: %s",
                       item.name.c_str(), m_Slots[i], ToString().c_str());
  }
  if (m_Mask == 0) {
    FED_Failure::Throw(
        "130613173101", kLocation,
        "The descriptor does not specify any field - empty descriptors are not valid");
  }
}

std::string FED_DataDescriptor::ToString() const {
  std::string text;
  for (std::size_t i = 0; i < FIELD_COUNT; ++i) {
    if (!Has(CastIndex(i))) continue;
    const NameAndType& item = RD_NAME_TYPE_ITEMS[i];
    text += item.type == STRING_FIELD
                ? FED_MESSAGE("%s=%s/", item.name.c_str(),
                              s_StrPool.GetString(Qelta_SP_STRING_ID(m_Slots[i])))
                : FED_MESSAGE("%s=%d/", item.name.c_str(), m_Slots[i]);
  }
  if (text.empty()) return "(empty)";
  text.pop_back();
  return text;
}
