#include "FED_OnfCatalogue.h"

#include <algorithm>

#include "OnfFormatStringTool.h"

namespace qelta {
namespace {

enum class Lookup { RECORD, ALL };

struct Row {
  FED_OnfId onf;
  const char* name;
  const char* title;
  const char* unit;
  const char* format;
  std::vector<FED_IdType> idTypes;
  Lookup registers;
  std::vector<std::string> fieldNames;
};

std::vector<Row> Rows() {
  constexpr FED_IdType node = ID_TYPE_NODE, elem = ID_TYPE_ELEMENT,
                       csys = ID_TYPE_COORDINATE_SYSTEM, nodeGroup = ID_TYPE_NODE_GROUP,
                       elemGroup = ID_TYPE_ELEMENT_GROUP, property = ID_TYPE_PROPERTY,
                       material = ID_TYPE_MATERIAL, loadCase = ID_TYPE_LOAD_CASE,
                       variable = ID_TYPE_DESIGN_VARIABLE, response = ID_TYPE_RESPONSE,
                       constraint = ID_TYPE_CONSTRAINT, surface = ID_TYPE_SURFACE,
                       pair = ID_TYPE_CONTACT_PAIR, mic = ID_TYPE_MICROPHONE, mode = ID_TYPE_MODE,
                       none = ID_TYPE_RECORD_INDEX;
  // Named entities are referred to by `S`, so that copies carry their names: their ids are
  // nobody's. Writing registers new ids: of the records, and in a model's own description of all it
  // names.
  constexpr Lookup record = Lookup::RECORD, all = Lookup::ALL;
  return {
      // clang-format off
      // geometry: 1 to 99
      {ONF_COORDINATE_SYSTEM, "COORDINATE_SYSTEM", "Coordinate system", "length", "I|VVV", {csys, none, none, none}, all, {"ORIGIN", "AXIS_1", "AXIS_2"}},
      {ONF_NODE_COORDINATES, "NODE_COORDINATES", "Node coordinates", "length", "I|V", {node, none}, all, {"COORDINATES"}},
      {ONF_NODE_NORMAL, "NODE_NORMAL", "Unit normal at nodes", "", "I|V", {node, none}, all, {"NORMAL"}},
      {ONF_NODE_GROUP, "NODE_GROUP", "Node group", "", "S|O", {nodeGroup, node}, all, {"NODES"}},
      {ONF_ELEMENT_GROUP, "ELEMENT_GROUP", "Element group", "", "S|O", {elemGroup, elem}, all, {"ELEMENTS"}},
      {ONF_SURFACE, "SURFACE", "Surface: element faces", "", "S|LL", {surface, elem, none}, all, {"ELEMENTS", "FACES"}},
      {ONF_MATERIAL, "MATERIAL", "Material", "", "S|S", {material, none}, all, {"DESCRIPTION"}},
      {ONF_PROPERTY, "PROPERTY", "Property", "", "S|SS", {property, none, material}, all, {"DESCRIPTION", "MATERIAL"}},
      {ONF_ELEMENT_THICKNESS, "ELEMENT_THICKNESS", "Shell thickness", "length", "I|d", {elem, none}, all, {"THICKNESS"}},
      {ONF_ELEMENT_VOLUME, "ELEMENT_VOLUME", "Element volume", "volume", "I|d", {elem, none}, all, {"VOLUME"}},
      {ONF_ELEMENT_ATTRIBUTES, "ELEMENT_ATTRIBUTES", "Element group and material", "", "I|SS", {elem, elemGroup, material}, all, {"GROUP", "MATERIAL"}},
      {ONF_ELEMENT_TOPOLOGY, "ELEMENT_TOPOLOGY", "Element topology and type", "", "I|IL", {elem, none, node}, all, {"TYPE", "NODES"}},
      {ONF_CONTACT_PAIR, "CONTACT_PAIR", "Contact pair", "", "S|SS", {pair, surface, surface}, all, {"SLAVE", "MASTER"}},
      // nodal: 100 to 199
      {ONF_DISPLACEMENT, "DISPLACEMENT", "Displacement", "length", "I|V", {node, none}, record, {"DISPLACEMENT"}},
      {ONF_VELOCITY, "VELOCITY", "Velocity", "length/time", "I|V", {node, none}, record, {"VELOCITY"}},
      {ONF_ACCELERATION, "ACCELERATION", "Acceleration", "length/time^2", "I|V", {node, none}, record, {"ACCELERATION"}},
      {ONF_ROTATION, "ROTATION", "Rotation", "rad", "I|V", {node, none}, record, {"ROTATION"}},
      {ONF_REACTION_FORCE, "REACTION_FORCE", "Reaction force", "force", "I|V", {node, none}, record, {"FORCE"}},
      {ONF_TEMPERATURE, "TEMPERATURE", "Temperature", "temperature", "I|d", {node, none}, record, {"TEMPERATURE"}},
      {ONF_NODAL_STRESS, "NODAL_STRESS", "Stress at nodes", "stress", "I|T", {node, none}, record, {"STRESS"}},
      {ONF_NODAL_STRAIN, "NODAL_STRAIN", "Total strain at nodes", "", "I|T", {node, none}, record, {"STRAIN"}},
      {ONF_NODAL_MECHANICAL_STRAIN, "NODAL_MECHANICAL_STRAIN", "Mechanical strain at nodes", "", "I|T", {node, none}, record, {"STRAIN"}},
      {ONF_NODAL_THERMAL_STRAIN, "NODAL_THERMAL_STRAIN", "Thermal strain at nodes", "", "I|T", {node, none}, record, {"STRAIN"}},
      {ONF_NODAL_PLASTIC_STRAIN, "NODAL_PLASTIC_STRAIN", "Plastic strain at nodes", "", "I|T", {node, none}, record, {"STRAIN"}},
      {ONF_NODAL_EQUIVALENT_PLASTIC_STRAIN, "NODAL_EQUIVALENT_PLASTIC_STRAIN", "Equivalent plastic strain at nodes", "", "I|d", {node, none}, record, {"STRAIN"}},
      {ONF_NODAL_STRAIN_ENERGY_DENSITY, "NODAL_STRAIN_ENERGY_DENSITY", "Strain energy density at nodes", "energy/volume", "I|d", {node, none}, record, {"ENERGY_DENSITY"}},
      {ONF_MODE_SHAPE, "MODE_SHAPE", "Mode shape", "", "I|V", {node, none}, record, {"SHAPE"}},
      {ONF_HEAT_FLUX, "HEAT_FLUX", "Heat flux at nodes", "power/area", "I|V", {node, none}, record, {"FLUX"}},
      {ONF_REACTION_HEAT, "REACTION_HEAT", "Reaction heat flow at nodes", "power", "I|d", {node, none}, record, {"HEAT"}},
      {ONF_CONTACT_PRESSURE, "CONTACT_PRESSURE", "Contact pressure", "stress", "I|d", {node, none}, record, {"PRESSURE"}},
      {ONF_CONTACT_STATE, "CONTACT_STATE", "Contact opening, slip and stress", "", "I|dddddd", {node, none, none, none, none, none, none}, record, {"OPENING", "SLIP_1", "SLIP_2", "PRESSURE", "SHEAR_1", "SHEAR_2"}},
      {ONF_NODAL_STRESS_ERROR, "NODAL_STRESS_ERROR", "Estimated stress error", "percent", "I|d", {node, none}, record, {"ERROR"}},
      {ONF_NODAL_TEMPERATURE_ERROR, "NODAL_TEMPERATURE_ERROR", "Estimated temperature error", "percent", "I|d", {node, none}, record, {"ERROR"}},
      {ONF_ELECTRIC_POTENTIAL, "ELECTRIC_POTENTIAL", "Electric potential", "potential", "I|d", {node, none}, record, {"POTENTIAL"}},
      {ONF_CURRENT_DENSITY, "CURRENT_DENSITY", "Electric current density", "current/area", "I|V", {node, none}, record, {"CURRENT"}},
      {ONF_ELECTRIC_FIELD, "ELECTRIC_FIELD", "Electric field", "potential/length", "I|V", {node, none}, record, {"FIELD"}},
      {ONF_MAGNETIC_FLUX_DENSITY, "MAGNETIC_FLUX_DENSITY", "Magnetic flux density", "flux/area", "I|V", {node, none}, record, {"FLUX"}},
      {ONF_EXTERNAL_FORCE, "EXTERNAL_FORCE", "External force", "force", "I|V", {node, none}, record, {"FORCE"}},
      // element: 200 to 299
      {ONF_ELEMENT_STRESS, "ELEMENT_STRESS", "Stress in elements", "stress", "I|T", {elem, none}, record, {"STRESS"}},
      {ONF_ELEMENT_STRAIN, "ELEMENT_STRAIN", "Total strain in elements", "", "I|T", {elem, none}, record, {"STRAIN"}},
      {ONF_ELEMENT_PLASTIC_STRAIN, "ELEMENT_PLASTIC_STRAIN", "Plastic strain in elements", "", "I|T", {elem, none}, record, {"STRAIN"}},
      {ONF_ELEMENT_EQUIVALENT_PLASTIC_STRAIN, "ELEMENT_EQUIVALENT_PLASTIC_STRAIN", "Equivalent plastic strain in elements", "", "I|d", {elem, none}, record, {"STRAIN"}},
      {ONF_ELEMENT_STRAIN_ENERGY_DENSITY, "ELEMENT_STRAIN_ENERGY_DENSITY", "Strain energy density in elements", "energy/volume", "I|d", {elem, none}, record, {"ENERGY_DENSITY"}},
      {ONF_ELEMENT_STRAIN_ENERGY, "ELEMENT_STRAIN_ENERGY", "Strain energy of elements", "energy", "I|d", {elem, none}, record, {"ENERGY"}},
      {ONF_ELEMENT_HEAT_FLUX, "ELEMENT_HEAT_FLUX", "Heat flux in elements", "power/area", "I|V", {elem, none}, record, {"FLUX"}},
      // global: 300 to 399
      {ONF_FRAME_TIME, "FRAME_TIME", "Time of a frame", "time", "I|t", {none, none}, record, {"TIME"}},
      {ONF_FRAME_FREQUENCY, "FRAME_FREQUENCY", "Frequency of a frame", "1/time", "I|t", {none, none}, record, {"FREQUENCY"}},
      {ONF_BUCKLING_FACTOR, "BUCKLING_FACTOR", "Buckling factor", "", "I|d", {none, none}, record, {"FACTOR"}},
      {ONF_EIGENVALUE, "EIGENVALUE", "Eigenvalue, squared angular frequency", "1/time^2", "I|d", {mode, none}, record, {"EIGENVALUE"}},
      {ONF_GENERALISED_MASS, "GENERALISED_MASS", "Generalised mass", "mass", "I|d", {mode, none}, record, {"MASS"}},
      {ONF_TOTAL_FORCE, "TOTAL_FORCE", "Total force", "force", "I|V", {loadCase, none}, record, {"FORCE"}},
      {ONF_TOTAL_ENERGY, "TOTAL_ENERGY", "Total energy", "energy", "I|d", {loadCase, none}, record, {"ENERGY"}},
      {ONF_TEXT_NOTE, "TEXT_NOTE", "Text note", "", "I|S", {none, none}, record, {"TEXT"}},
      // optimisation: 400 to 499
      {ONF_OBJECTIVE_VALUE, "OBJECTIVE_VALUE", "Objective value", "", "S|d", {response, none}, record, {"VALUE"}},
      {ONF_RESPONSE_VALUE, "RESPONSE_VALUE", "Response value", "", "S|d", {response, none}, record, {"VALUE"}},
      {ONF_CONSTRAINT_VALUE, "CONSTRAINT_VALUE", "Constraint value with bounds", "", "S|ddd", {constraint, none, none, none}, record, {"VALUE", "LOWER", "UPPER"}},
      {ONF_DESIGN_VARIABLE, "DESIGN_VARIABLE", "Design variable with bounds", "", "S|ddd", {variable, none, none, none}, record, {"VALUE", "LOWER", "UPPER"}},
      {ONF_ELEMENT_DENSITY, "ELEMENT_DENSITY", "Element density", "", "I|d", {elem, none}, record, {"DENSITY"}},
      {ONF_ELEMENT_SENSITIVITY, "ELEMENT_SENSITIVITY", "Sensitivity of a response to element densities", "", "I|d", {elem, none}, record, {"SENSITIVITY"}},
      {ONF_NODAL_SENSITIVITY, "NODAL_SENSITIVITY", "Sensitivity of a response to node positions along the normal", "", "I|d", {node, none}, record, {"SENSITIVITY"}},
      {ONF_NODAL_SENSITIVITY_VECTOR, "NODAL_SENSITIVITY_VECTOR", "Sensitivity of a response to node positions", "", "I|V", {node, none}, record, {"SENSITIVITY"}},
      {ONF_DESIGN_SENSITIVITY, "DESIGN_SENSITIVITY", "Sensitivity of a response to design variables", "", "S|d", {variable, none}, record, {"SENSITIVITY"}},
      // acoustics: 500 to 599
      {ONF_SOUND_PRESSURE, "SOUND_PRESSURE", "Sound pressure at microphones", "pressure", "I|dd", {mic, none, none}, record, {"REAL", "IMAGINARY"}},
      {ONF_SOUND_POWER, "SOUND_POWER", "Sound power at microphones", "power", "I|d", {mic, none}, record, {"POWER"}},
      {ONF_NODAL_SOUND_PRESSURE, "NODAL_SOUND_PRESSURE", "Sound pressure at nodes", "pressure", "I|dd", {node, none, none}, record, {"REAL", "IMAGINARY"}},
      // clang-format on
  };
}

FED_OnfCategoryId CategoryOf(int onf) {
  for (const FED_OnfCategoryInfo& info : MakeOnfCategories()) {
    if (info.first <= onf && onf <= info.last) return info.category;
  }
  return static_cast<FED_OnfCategoryId>(0);
}

FED_OnfMetaData MakeMetaData(const Row& row) {
  FED_OnfMetaData meta = MakeCustomMetaData(row.format);
  meta.onfId = row.onf;
  meta.name = row.name;
  meta.title = row.title;
  meta.unit = row.unit;
  meta.category = CategoryOf(row.onf);
  meta.idTypes = row.idTypes;
  meta.writeLookup[0] = true;
  for (std::size_t i = 1; i < meta.idTypes.size(); ++i) {
    meta.writeLookup[i] = row.registers == Lookup::ALL && meta.idTypes[i] != ID_TYPE_RECORD_INDEX;
  }
  meta.fieldNames = row.fieldNames;
  return meta;
}

}  // namespace

std::vector<FED_OnfCategoryInfo> MakeOnfCategories() {
  return {{ONF_CATEGORY_GEOMETRY, "geometry", 1, 99},
          {ONF_CATEGORY_NODAL, "nodal", 100, 199},
          {ONF_CATEGORY_ELEMENT, "element", 200, 299},
          {ONF_CATEGORY_GLOBAL, "global", 300, 399},
          {ONF_CATEGORY_OPTIMISATION, "optimisation", 400, 499},
          {ONF_CATEGORY_ACOUSTICS, "acoustics", 500, 599}};
}

FED_OnfMetaData MakeCustomMetaData(const std::string& format) {
  FED_OnfMetaData meta{};
  int size = 0;
  OnfFormatStringTool::GetFormatSizeInformation(format.c_str(), size, meta.dataTypes);
  meta.title = "Custom records";
  meta.format = format;
  meta.recordSize = static_cast<std::uint64_t>(size);
  meta.fieldDim = OnfFormatStringTool::DetermineFieldDim(meta.dataTypes);
  meta.idTypes.assign(meta.dataTypes.size() + 1, ID_TYPE_RECORD_INDEX);
  meta.writeLookup.assign(meta.dataTypes.size() + 1, false);
  for (std::size_t i = 1; i <= meta.dataTypes.size(); ++i) {
    meta.fieldNames.push_back("FIELD_" + std::to_string(i));
  }
  return meta;
}

std::vector<FED_OnfMetaData> MakeOnfCatalogue() {
  std::vector<FED_OnfMetaData> catalogue;
  for (const Row& row : Rows()) catalogue.push_back(MakeMetaData(row));
  return catalogue;
}

}  // namespace qelta
