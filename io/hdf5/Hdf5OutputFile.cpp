#include "Hdf5OutputFile.h"

#include <random>
#include <system_error>

#include "Hdf5OutputDriver.h"

namespace qelta {
namespace {

namespace fs = std::filesystem;

constexpr hsize_t kMetadataBlock = hsize_t{64} * 1024;

// Readable by every program that reads HDF5 at all, and with checksums over the metadata.
Hdf5Handle MakeAccess(int& error) {
  Hdf5Handle access = MakeOutputAccess(error);
  CheckHdf5(H5Pset_libver_bounds(access, H5F_LIBVER_V18, H5F_LIBVER_V18));
  CheckHdf5(H5Pset_fclose_degree(access, H5F_CLOSE_STRONG));
  CheckHdf5(H5Pset_meta_block_size(access, kMetadataBlock));
  return access;
}

}  // namespace

Hdf5OutputFile::Hdf5OutputFile(const std::string& path)
    : m_Path(fs::u8path(path)),
      m_Temporary(fs::u8path(path + "." + std::to_string(std::random_device()()) + ".part")) {
  std::error_code error;
  const fs::file_status status = fs::status(m_Path, error);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    throw Hdf5Problem{"something that is no plain file has this name", true};
  }
  const Hdf5Handle access = MakeAccess(m_Error);
  m_File = H5Fcreate(m_Temporary.u8string().c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, access);
  Check();
  CheckHdf5(m_File);
}

Hdf5OutputFile::~Hdf5OutputFile() {
  if (m_File >= 0) H5Fclose(m_File);
  std::error_code ignored;
  if (!m_IsWhole) fs::remove(m_Temporary, ignored);
}

void Hdf5OutputFile::Check() const {
  if (m_Error != 0) throw Hdf5Problem{std::generic_category().message(m_Error), true};
}

void Hdf5OutputFile::Commit() {
  const hid_t file = std::exchange(m_File, -1);
  CheckHdf5(H5Fclose(file));
  Check();
  std::error_code error;
  fs::rename(m_Temporary, m_Path, error);
  if (error) throw Hdf5Problem{error.message(), true};
  m_IsWhole = true;
}

}  // namespace qelta
