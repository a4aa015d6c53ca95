#include "FrdFieldMap.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace qelta {
namespace {

enum class Shape { Scalar, Vector, Tensor, Contact };

struct KnownField {
  const char* name;
  FED_OnfId kind;
  Shape shape;
  int layer = 0;
  int subLevel = 0;  // FRD_AMPLITUDE: amplitudes, then as many phases
};

constexpr KnownField kKnownFields[] = {
    {"DISP", ONF_DISPLACEMENT, Shape::Vector},
    {"VELO", ONF_VELOCITY, Shape::Vector},
    {"ACCE", ONF_ACCELERATION, Shape::Vector},
    {"FORC", ONF_REACTION_FORCE, Shape::Vector},
    {"FLUX", ONF_HEAT_FLUX, Shape::Vector},
    {"CURR", ONF_CURRENT_DENSITY, Shape::Vector},
    {"EMFE", ONF_ELECTRIC_FIELD, Shape::Vector},
    {"EMFB", ONF_MAGNETIC_FLUX_DENSITY, Shape::Vector},
    {"NORM", ONF_NODE_NORMAL, Shape::Vector},
    {"STRESS", ONF_NODAL_STRESS, Shape::Tensor},
    {"ZZSTR", ONF_NODAL_STRESS, Shape::Tensor},
    {"STRNEG", ONF_NODAL_STRESS, Shape::Tensor, 1},
    {"STRMID", ONF_NODAL_STRESS, Shape::Tensor, 2},
    {"STRPOS", ONF_NODAL_STRESS, Shape::Tensor, 3},
    {"TOSTRAIN", ONF_NODAL_STRAIN, Shape::Tensor},
    {"MESTRAIN", ONF_NODAL_MECHANICAL_STRAIN, Shape::Tensor},
    {"THSTRAIN", ONF_NODAL_THERMAL_STRAIN, Shape::Tensor},
    {"NDTEMP", ONF_TEMPERATURE, Shape::Scalar},
    {"PE", ONF_NODAL_EQUIVALENT_PLASTIC_STRAIN, Shape::Scalar},
    {"ENER", ONF_NODAL_STRAIN_ENERGY_DENSITY, Shape::Scalar},
    {"ELPOT", ONF_ELECTRIC_POTENTIAL, Shape::Scalar},
    {"RFL", ONF_REACTION_HEAT, Shape::Scalar},
    {"ERROR", ONF_NODAL_STRESS_ERROR, Shape::Scalar},
    {"HERROR", ONF_NODAL_TEMPERATURE_ERROR, Shape::Scalar},
    {"CONTACT", ONF_CONTACT_STATE, Shape::Contact},
    {"DISPI", ONF_DISPLACEMENT, Shape::Vector, 0, FRD_IMAGINARY_PART},
    {"FORCI", ONF_REACTION_FORCE, Shape::Vector, 0, FRD_IMAGINARY_PART},
    {"EMFEI", ONF_ELECTRIC_FIELD, Shape::Vector, 0, FRD_IMAGINARY_PART},
    {"EMFBI", ONF_MAGNETIC_FLUX_DENSITY, Shape::Vector, 0, FRD_IMAGINARY_PART},
    {"STRESSI", ONF_NODAL_STRESS, Shape::Tensor, 0, FRD_IMAGINARY_PART},
    {"ZZSTRI", ONF_NODAL_STRESS, Shape::Tensor, 0, FRD_IMAGINARY_PART},
    {"TOSTRAII", ONF_NODAL_STRAIN, Shape::Tensor, 0, FRD_IMAGINARY_PART},
    {"MESTRAII", ONF_NODAL_MECHANICAL_STRAIN, Shape::Tensor, 0, FRD_IMAGINARY_PART},
    {"ERRORI", ONF_NODAL_STRESS_ERROR, Shape::Scalar, 0, FRD_IMAGINARY_PART},
    {"HERRORI", ONF_NODAL_TEMPERATURE_ERROR, Shape::Scalar, 0, FRD_IMAGINARY_PART},
    {"CONTACTI", ONF_CONTACT_STATE, Shape::Contact, 0, FRD_IMAGINARY_PART},
    {"PDISP", ONF_DISPLACEMENT, Shape::Vector, 0, FRD_AMPLITUDE},
    {"PFORC", ONF_REACTION_FORCE, Shape::Vector, 0, FRD_AMPLITUDE},
    {"PSTRESS", ONF_NODAL_STRESS, Shape::Tensor, 0, FRD_AMPLITUDE},
    {"PNDTEMP", ONF_TEMPERATURE, Shape::Scalar, 0, FRD_AMPLITUDE},
    {"PCONTAC", ONF_CONTACT_STATE, Shape::Contact, 0, FRD_AMPLITUDE},
};

using Components = std::vector<FrdComponent>;

std::size_t SizeOf(Shape shape) {
  switch (shape) {
    case Shape::Scalar:
      return 1;
    case Shape::Vector:
      return 3;
    case Shape::Tensor:
    case Shape::Contact:
      return 6;
  }
  return 0;
}

bool AreOfType(const Components& all, std::size_t first, std::size_t count, std::int32_t type) {
  return first + count <= all.size() &&
         std::all_of(all.begin() + static_cast<std::ptrdiff_t>(first),
                     all.begin() + static_cast<std::ptrdiff_t>(first + count),
                     [type](const FrdComponent& component) { return component.type == type; });
}

bool IsTensorOfType(const Components& all, std::size_t first, std::int32_t type) {
  constexpr std::array<std::pair<int, int>, 6> kOrder = {
      {{1, 1}, {2, 2}, {3, 3}, {1, 2}, {2, 3}, {3, 1}}};
  if (!AreOfType(all, first, kOrder.size(), type)) return false;
  for (std::size_t i = 0; i < kOrder.size(); ++i) {
    const FrdComponent& component = all[first + i];
    if (std::make_pair(component.row, component.column) != kOrder[i]) return false;
  }
  return true;
}

// Amplitudes and phases have the types 12 and 14 in place of 2 and 4.
bool IsVector(const Components& all, std::size_t first, bool isPair) {
  return AreOfType(all, first, 3, isPair ? 12 : 2);
}
bool IsTensor(const Components& all, std::size_t first, bool isPair) {
  return IsTensorOfType(all, first, isPair ? 14 : 4);
}

bool HasShape(const Components& all, std::size_t first, Shape shape, bool isPair) {
  switch (shape) {
    case Shape::Vector:
      return IsVector(all, first, isPair);
    case Shape::Tensor:
      return IsTensor(all, first, isPair);
    case Shape::Scalar:
    case Shape::Contact:
      return first + SizeOf(shape) <= all.size();
  }
  return false;
}

FrdFieldPart KnownPart(const KnownField& field, std::size_t first, int subLevel) {
  FrdFieldPart part{field.kind, {}, first, SizeOf(field.shape)};
  part.layer = field.layer;
  part.subLevel = subLevel;
  return part;
}

std::vector<FrdFieldPart> MapKnown(const KnownField& field, const Components& all) {
  const bool isPair = field.subLevel == FRD_AMPLITUDE;
  const std::size_t size = SizeOf(field.shape);
  const std::size_t last = isPair ? size : 0;  // where the last part begins
  if (all.size() != last + size) return {};
  if (!HasShape(all, 0, field.shape, isPair) || !HasShape(all, last, field.shape, isPair)) {
    return {};
  }
  std::vector<FrdFieldPart> parts = {KnownPart(field, 0, field.subLevel)};
  if (isPair) parts.push_back(KnownPart(field, last, FRD_PHASE));
  return parts;
}

// Sensitivities come raw and filtered under one name, "SENMASS" for that of the mass.
std::vector<FrdFieldPart> MapSensitivity(const FrdDataset& dataset) {
  const Components& all = dataset.components;
  if (all.size() != 2 || all[0].name != "DFDN" || all[1].name != "DFDNFIL") return {};
  const bool hasPrefix = dataset.name.substr(0, 3) == "SEN" && dataset.name.size() > 3;
  FrdFieldPart raw{ONF_NODAL_SENSITIVITY, {}, 0, 1};
  raw.objective = hasPrefix ? dataset.name.substr(3) : dataset.name;
  FrdFieldPart filtered = raw;
  filtered.first = 1;
  filtered.subLevel = FRD_FILTERED;
  return {raw, filtered};
}

std::string CustomFormat(const Components& all) {
  std::string format = "I|";
  for (std::size_t i = 0; i < all.size();) {
    const Shape shape = IsVector(all, i, false)   ? Shape::Vector
                        : IsTensor(all, i, false) ? Shape::Tensor
                                                  : Shape::Scalar;
    format += shape == Shape::Vector ? 'V' : shape == Shape::Tensor ? 'T' : 'd';
    i += SizeOf(shape);
  }
  return format;
}

FrdFieldPart CustomPart(const char* format, std::size_t first, std::size_t count, int subLevel) {
  FrdFieldPart part{static_cast<FED_OnfId>(0), format, first, count};
  part.subLevel = subLevel;
  return part;
}

std::vector<FrdFieldPart> MapCustom(const Components& all) {
  if (all.size() == 6 && IsVector(all, 0, true) && IsVector(all, 3, true)) {
    return {CustomPart("I|V", 0, 3, FRD_AMPLITUDE), CustomPart("I|V", 3, 3, FRD_PHASE)};
  }
  if (all.size() == 12 && IsTensor(all, 0, true) && IsTensor(all, 6, true)) {
    return {CustomPart("I|T", 0, 6, FRD_AMPLITUDE), CustomPart("I|T", 6, 6, FRD_PHASE)};
  }
  return {CustomPart(CustomFormat(all).c_str(), 0, all.size(), 0)};
}

}  // namespace

std::vector<FrdFieldPart> MapFrdDataset(const FrdDataset& dataset) {
  const auto* const known =
      std::find_if(std::begin(kKnownFields), std::end(kKnownFields),
                   [&](const KnownField& field) { return dataset.name == field.name; });
  std::vector<FrdFieldPart> parts = known == std::end(kKnownFields)
                                        ? MapSensitivity(dataset)
                                        : MapKnown(*known, dataset.components);
  return parts.empty() ? MapCustom(dataset.components) : parts;
}

}  // namespace qelta
