#include "QeltaSeriesAxis.h"

#include <FED_Failure.h>
#include <FED_OnfInfoPool.h>

#include "QeltaNames.h"
#include "QeltaQuantities.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

struct FrameValue {
  const char* name;
  FED_OnfId kind;
};

constexpr FrameValue kFrameValues[] = {
    {"time", ONF_FRAME_TIME}, {"frequency", ONF_FRAME_FREQUENCY}, {"factor", ONF_BUCKLING_FACTOR}};

// The fields by which the frames of a solver are told apart.
constexpr Key::ResultIndex kFrameFields[] = {Key::ITERATION, Key::STATE,    Key::LOADCASE,
                                             Key::SUBSTEP,   Key::ANALYSIS, Key::INCREMENT};

Key FrameKeyOf(const Key& key, FED_OnfId kind) {
  Key frame(kind);
  for (const Key::ResultIndex field : kFrameFields) {
    if (key.Has(field)) frame.SetInteger(field, key.GetInteger(field));
  }
  return frame;
}

std::optional<double> FirstNumber(const FED_DataBlock& block) {
  std::optional<double> number;
  const std::vector<QeltaComponent> numbers = NumbersOf(block);
  VisitRecords(block, [&](std::size_t, std::size_t, const unsigned char* records) {
    if (!number) number = numbers.front().Read(records);
  });
  return number;
}

}  // namespace

QeltaSeriesAxis::QeltaSeriesAxis(Field field)
    : m_Name(Key::RD_NAME_TYPE_ITEMS[field].name), m_Field(field) {}

QeltaSeriesAxis::QeltaSeriesAxis(const std::string& text) : m_Name(text) {
  for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
    if (!IsSameName(Key::RD_NAME_TYPE_ITEMS[i].name, text)) continue;
    if (Key::RD_NAME_TYPE_ITEMS[i].type == Key::STRING_FIELD) {
      FED_Failure::Throw("310000000961", "|%P|QeltaIo|QeltaSeriesAxis",
                         "%s holds texts, which have no place on an axis; take a field of numbers.",
                         text.c_str());
    }
    *this = QeltaSeriesAxis(Key::CastIndex(i));
    return;
  }
  for (const FrameValue& value : kFrameValues) {
    if (!IsSameName(value.name, text)) continue;
    m_Name = value.name;
    m_FrameKind = value.kind;
    return;
  }
  m_IsIndex = IsSameName("index", text);
  if (m_IsIndex) m_Name = "record index";
  if (!m_IsIndex) m_Column = text;
}

std::optional<double> QeltaSeriesAxis::XOf(const FED_Database& database, const Key& key) const {
  if (m_Field) {
    if (!key.Has(*m_Field)) return std::nullopt;
    return key.GetInteger(*m_Field);
  }
  if (!m_FrameKind) return 0;
  const Key frame = FrameKeyOf(key, *m_FrameKind);
  if (!database.HasBlock(frame)) return std::nullopt;
  return FirstNumber(database.GetDataBlock(frame));
}

std::string QeltaSeriesAxis::GetUnit() const {
  return m_FrameKind ? FED_OnfInfoPool::GetOnfInfo(*m_FrameKind).unit : std::string();
}

const std::vector<QeltaSeriesAxis::Field>& QeltaSeriesAxis::PreferredFields() {
  static const std::vector<Field> kFields = {
      Key::ITERATION, Key::INCREMENT, Key::STATE,      Key::LOADCASE,  Key::SUBSTEP, Key::ANALYSIS,
      Key::LAYER,     Key::SUB_LEVEL, Key::MICROPHONE, Key::DIRECTION, Key::ID_TYPE};
  return kFields;
}

}  // namespace qelta
