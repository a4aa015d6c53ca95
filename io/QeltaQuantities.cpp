#include "QeltaQuantities.h"

#include <BlockMetaData.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "QeltaTensor.h"

namespace qelta {
namespace {

constexpr std::size_t kMostInputs = 6;
constexpr std::size_t kMostValues = 3;

void Copy(const double* in, double* out) { *out = *in; }
void Magnitude(const double* in, double* out) { *out = std::hypot(in[0], in[1], in[2]); }
void Mises(const double* in, double* out) { *out = VonMises(in); }
void Principal(const double* in, double* out) {
  const std::array<double, 3> values = PrincipalValues(in);
  std::copy(values.begin(), values.end(), out);
}

}  // namespace

QeltaQuantities::QeltaQuantities(const FED_DataBlock& block) {
  const FED_OnfMetaData& kind = MetaDataOf(block);
  const std::vector<QeltaComponent> numbers = NumbersOf(block);
  for (auto begin = numbers.begin(), end = begin; begin != numbers.end(); begin = end) {
    const std::size_t field = begin->field;
    end = std::find_if(begin, numbers.end(), [field](const auto& n) { return n.field != field; });
    std::for_each(begin, end, [this](const QeltaComponent& number) { AddPlain(number); });
    AddDerived({begin, end}, kind.fieldNames[field - 1], kind.dataTypes[field - 1],
               kind.unit == "stress");
  }
}

void QeltaQuantities::AddPlain(const QeltaComponent& number) {
  m_Parts.push_back({{number}, 0, 1, Copy});
  m_Titles.push_back(number.title);
}

void QeltaQuantities::AddDerived(std::vector<QeltaComponent> inputs, const std::string& name,
                                 BlockDataType type, bool areStresses) {
  if (type == BLOCK_DATA_VECTOR) {
    m_Parts.push_back({std::move(inputs), 0, 1, Magnitude});
    m_Titles.push_back(name + ".magnitude");
  } else if (type == BLOCK_DATA_TENSOR && areStresses) {
    m_Parts.push_back({inputs, 0, 1, Mises});
    m_Parts.push_back({std::move(inputs), 0, 3, Principal});
    m_Titles.push_back(name + ".mises");
    for (const char* which : {"1", "2", "3"}) m_Titles.push_back(name + ".principal" + which);
  }
}

void QeltaQuantities::Read(const unsigned char* record, double* values) const {
  double inputs[kMostInputs];
  double results[kMostValues];
  for (const Part& part : m_Parts) {
    for (std::size_t i = 0; i < part.inputs.size(); ++i) inputs[i] = part.inputs[i].Read(record);
    part.compute(inputs, results);
    values = std::copy_n(results + part.first, part.count, values);
  }
}

QeltaQuantities QeltaQuantities::Only(const std::string& title) const {
  QeltaQuantities one;
  auto name = m_Titles.begin();
  for (const Part& part : m_Parts) {
    for (std::size_t i = 0; i < part.count; ++i, ++name) {
      if (*name != title) continue;
      one.m_Parts = {{part.inputs, part.first + i, 1, part.compute}};
      one.m_Titles = {title};
    }
  }
  return one;
}

}  // namespace qelta
