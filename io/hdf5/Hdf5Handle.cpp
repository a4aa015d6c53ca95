#include "Hdf5Handle.h"

namespace qelta {
namespace {

// The innermost entry says what went wrong, in the system's own words if it was the system.
herr_t TakeReason(unsigned depth, const H5E_error2_t* entry, void* out) {
  if (depth > 0) return 0;
  auto& problem = *static_cast<Hdf5Problem*>(out);
  const std::string text = entry->desc == nullptr ? "" : entry->desc;
  const std::string mark = "error message = '";
  const std::size_t begin = text.find(mark);
  problem.isSystem = begin != std::string::npos;
  if (problem.isSystem) {
    const std::size_t reason = begin + mark.size();
    problem.text = text.substr(reason, text.find('\'', reason) - reason);
  } else {
    problem.text = "the HDF5 library says: " + text;
  }
  return 0;
}

Hdf5Handle MakeUtf8Type(hid_t base) {
  Hdf5Handle type(H5Tcopy(base));
  CheckHdf5(H5Tset_size(type, H5T_VARIABLE));
  CheckHdf5(H5Tset_cset(type, H5T_CSET_UTF8));
  return type;
}

}  // namespace

void ThrowHdf5Problem() {
  Hdf5Problem problem{"the HDF5 library gives no reason"};
  H5Ewalk2(H5E_DEFAULT, H5E_WALK_UPWARD, TakeReason, &problem);
  throw problem;
}

Hdf5Silence::Hdf5Silence() {
  H5Eget_auto2(H5E_DEFAULT, &m_Print, &m_Data);
  H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
}

Hdf5Silence::~Hdf5Silence() { H5Eset_auto2(H5E_DEFAULT, m_Print, m_Data); }

Hdf5Handle MakeTextType() { return MakeUtf8Type(H5T_C_S1); }

Hdf5Handle MakeBytesType() { return Hdf5Handle(H5Tvlen_create(H5T_STD_U8LE)); }

Hdf5Handle OpenGroup(hid_t parent, const std::string& name) {
  if (!HasLink(parent, name)) throw Hdf5Problem{"there is no group " + name};
  return Hdf5Handle(H5Gopen2(parent, name.c_str(), H5P_DEFAULT));
}

// Attributes in the header of the group, where the library keeps no more than 8 unless it is told:
// a heap of their own costs far more than a small block.
Hdf5Handle MakeGroup(hid_t parent, const std::string& name) {
  constexpr unsigned kMostInHeader = 32;
  const Hdf5Handle creation(H5Pcreate(H5P_GROUP_CREATE));
  CheckHdf5(H5Pset_attr_phase_change(creation, kMostInHeader, kMostInHeader));
  return Hdf5Handle(H5Gcreate2(parent, name.c_str(), H5P_DEFAULT, creation, H5P_DEFAULT));
}

bool HasLink(hid_t parent, const std::string& name) {
  return CheckHdf5(H5Lexists(parent, name.c_str(), H5P_DEFAULT)) > 0;
}

}  // namespace qelta
