#include "Hdf5Attributes.h"

#include <FED_Failure.h>

#include <algorithm>

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

void Write(hid_t object, const std::string& name, hid_t type, hid_t space, const void* value) {
  const Hdf5Handle attribute(
      H5Acreate2(object, name.c_str(), type, space, H5P_DEFAULT, H5P_DEFAULT));
  CheckHdf5(H5Awrite(attribute, type, value));
}

bool HasAttribute(hid_t object, const std::string& name) {
  return CheckHdf5(H5Aexists(object, name.c_str())) > 0;
}

// One value of the kind that `isKind` accepts.
template <class IsKind>
Hdf5Handle OpenAttribute(hid_t object, const std::string& name, const char* kind, IsKind isKind) {
  if (!HasAttribute(object, name)) throw Hdf5Problem{"there is no attribute " + name};
  Hdf5Handle attribute(H5Aopen(object, name.c_str(), H5P_DEFAULT));
  const Hdf5Handle space(H5Aget_space(attribute));
  const Hdf5Handle type(H5Aget_type(attribute));
  if (CheckHdf5(H5Sget_simple_extent_npoints(space)) != 1 || !isKind(type)) {
    throw Hdf5Problem{"attribute " + name + " is no " + kind};
  }
  return attribute;
}

bool IsInteger(hid_t type) {
  const bool fits = H5Tget_size(type) < 8 || H5Tget_sign(type) == H5T_SGN_2;
  return H5Tget_class(type) == H5T_INTEGER && fits;
}

bool IsText(hid_t type) { return H5Tget_class(type) == H5T_STRING && H5Tis_variable_str(type) > 0; }

}  // namespace

void WriteAttribute(hid_t object, const std::string& name, std::int64_t value) {
  const Hdf5Handle space(H5Screate(H5S_SCALAR));
  Write(object, name, H5T_NATIVE_INT64, space, &value);
}

void WriteAttribute(hid_t object, const std::string& name, const std::string& text) {
  const Hdf5Handle space(H5Screate(H5S_SCALAR));
  const char* const value = text.c_str();
  Write(object, name, MakeTextType(), space, &value);
}

void WriteAttribute(hid_t object, const std::string& name, const std::vector<std::string>& texts) {
  const hsize_t count = texts.size();
  const Hdf5Handle space(H5Screate_simple(1, &count, nullptr));
  std::vector<const char*> values;
  std::transform(texts.begin(), texts.end(), std::back_inserter(values),
                 [](const std::string& text) { return text.c_str(); });
  Write(object, name, MakeTextType(), space, values.data());
}

std::int64_t ReadInteger(hid_t object, const std::string& name) {
  const Hdf5Handle attribute = OpenAttribute(object, name, "integer", IsInteger);
  std::int64_t value = 0;
  CheckHdf5(H5Aread(attribute, H5T_NATIVE_INT64, &value));
  return value;
}

int ReadInteger(hid_t object, const std::string& name, int lowest, int highest) {
  const std::int64_t value = ReadInteger(object, name);
  if (value < lowest || value > highest) {
    throw Hdf5Problem{"attribute " + name + " is " + std::to_string(value)};
  }
  return static_cast<int>(value);
}

std::string ReadText(hid_t object, const std::string& name) {
  const Hdf5Handle attribute = OpenAttribute(object, name, "text", IsText);
  char* value = nullptr;
  CheckHdf5(H5Aread(attribute, MakeTextType(), &value));
  std::string text = value == nullptr ? "" : value;
  H5free_memory(value);
  return text;
}

void WriteKey(hid_t object, const Key& key) {
  WriteAttribute(object, "key", key.ToString());
  for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
    const Key::ResultIndex field = Key::CastIndex(i);
    const Key::NameAndType& info = Key::RD_NAME_TYPE_ITEMS[i];
    if (!key.Has(field)) continue;
    if (info.type == Key::STRING_FIELD) {
      WriteAttribute(object, info.name, key.GetString(field));
    } else {
      WriteAttribute(object, info.name, std::int64_t{key.GetInteger(field)});
    }
  }
}

Key ReadKey(hid_t object) {
  Key key;
  for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
    const Key::NameAndType& info = Key::RD_NAME_TYPE_ITEMS[i];
    if (!HasAttribute(object, info.name)) continue;
    if (info.type == Key::STRING_FIELD) {
      key.SetString(Key::CastIndex(i), ReadText(object, info.name));
    } else {
      key.SetInteger(Key::CastIndex(i), ReadInteger(object, info.name, info.lowest, info.highest));
    }
  }
  try {
    key.CheckValidity();
  } catch (const FED_Failure& failure) {
    throw Hdf5Problem{failure.what()};
  }
  return key;
}

}  // namespace qelta
