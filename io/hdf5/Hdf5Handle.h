#pragma once

#include <hdf5.h>

#include <string>
#include <utility>

namespace qelta {

/// Thrown by what works on HDF5 objects; whoever knows the file turns it into a failure.
struct Hdf5Problem {
  std::string text;       ///< "dataset index has 3 rows, not 4"
  bool isSystem = false;  ///< the operating system refused to read or write
  /// What may help against it.
  std::string remedy = "The file is damaged or no export of a database; export it again.";
};

/// Throws the reason that the library remembers.
[[noreturn]] void ThrowHdf5Problem();

/// What the library returns, when it is no failure.
template <class Result>
Result CheckHdf5(Result result) {
  if (result < 0) ThrowHdf5Problem();
  return result;
}

/// An object of the library, given back at the end.
class Hdf5Handle {
 public:
  Hdf5Handle() = default;
  explicit Hdf5Handle(hid_t id) : m_Id(CheckHdf5(id)) {}
  ~Hdf5Handle() {
    if (m_Id >= 0) H5Idec_ref(m_Id);
  }
  Hdf5Handle(Hdf5Handle&& other) noexcept : Hdf5Handle() { *this = std::move(other); }
  Hdf5Handle& operator=(Hdf5Handle&& other) noexcept {
    std::swap(m_Id, other.m_Id);
    return *this;
  }

  operator hid_t() const { return m_Id; }
  bool IsOpen() const { return m_Id >= 0; }
  /// The caller gives it back.
  hid_t Release() { return std::exchange(m_Id, -1); }

 private:
  hid_t m_Id = -1;
};

/// While it lives, the library prints nothing about failures.
class Hdf5Silence {
 public:
  Hdf5Silence();
  ~Hdf5Silence();
  Hdf5Silence(const Hdf5Silence&) = delete;
  Hdf5Silence& operator=(const Hdf5Silence&) = delete;

 private:
  H5E_auto2_t m_Print = nullptr;
  void* m_Data = nullptr;
};

/// Strings of any length in UTF-8.
Hdf5Handle MakeTextType();
/// Byte strings of any length, for texts with a NUL in them.
Hdf5Handle MakeBytesType();

Hdf5Handle OpenGroup(hid_t parent, const std::string& name);
Hdf5Handle MakeGroup(hid_t parent, const std::string& name);
bool HasLink(hid_t parent, const std::string& name);

}  // namespace qelta
