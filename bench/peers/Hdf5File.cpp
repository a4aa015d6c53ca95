#include "Hdf5File.h"

#include <hdf5.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace qelta::bench {
namespace {

constexpr hsize_t kMetadataBlock = 1 << 20;

// What the library returns, when it is no failure.
template <class Result>
Result Require(Result result) {
  if (result < 0) throw std::runtime_error("HDF5 failed, see above");
  return result;
}

// An object of the library, closed by the function that fits.
class Handle {
 public:
  Handle() = default;
  Handle(hid_t id, herr_t (*close)(hid_t)) : m_Id(Require(id)), m_Close(close) {}
  ~Handle() {
    if (m_Id >= 0) m_Close(m_Id);
  }
  Handle(Handle&& other) noexcept : Handle() { *this = std::move(other); }
  Handle& operator=(Handle&& other) noexcept {
    std::swap(m_Id, other.m_Id);
    std::swap(m_Close, other.m_Close);
    return *this;
  }
  operator hid_t() const { return m_Id; }

 private:
  hid_t m_Id = -1;
  herr_t (*m_Close)(hid_t) = nullptr;
};

herr_t SumIterations(hid_t, const char* name, const H5L_info_t*, void* sum) {
  *static_cast<std::uint64_t*>(sum) += std::strtoull(name, nullptr, 16) >> 32;
  return 0;
}

herr_t VisitGroup(hid_t file, const char* name, const H5L_info_t*, void* sum) {
  const Handle group(H5Gopen2(file, name, H5P_DEFAULT), H5Gclose);
  return H5Literate(group, H5_INDEX_NAME, H5_ITER_NATIVE, nullptr, SumIterations, sum);
}

class Hdf5File : public BlockStore {
 public:
  Hdf5File(const std::filesystem::path& path, Mode mode)
      : m_File(OpenFile(path.c_str(), mode)),
        m_Creation(H5Pcreate(H5P_DATASET_CREATE), H5Pclose),
        m_OneRecord(SpaceOf(kRecordBytes)) {
    Require(H5Pset_layout(m_Creation, H5D_CONTIGUOUS));
    Require(H5Pset_fill_time(m_Creation, H5D_FILL_TIME_NEVER));
    Require(H5Pset_obj_track_times(m_Creation, false));
  }

  void Add(const BlockKey& key, const void* bytes, std::size_t size) override {
    if (key.iteration != m_Iteration) {
      m_Group =
          Handle(H5Gcreate2(m_File, GroupOf(key).c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                 H5Gclose);
      m_Iteration = key.iteration;
    }
    Write(MakeDataset(m_Group, NameOf(key), size), bytes);
  }
  void Replace(const BlockKey& key, const void* bytes, std::size_t) override {
    Write(OpenDataset(key), bytes);
  }
  void Commit() override {
    Require(H5Fflush(m_File, H5F_SCOPE_GLOBAL));
    void* descriptor = nullptr;
    Require(H5Fget_vfd_handle(m_File, H5P_DEFAULT, &descriptor));
    Require(::fsync(*static_cast<int*>(descriptor)));
  }

  std::uint64_t List() override {
    std::uint64_t sum = 0;
    Require(H5Literate(m_File, H5_INDEX_NAME, H5_ITER_NATIVE, nullptr, VisitGroup, &sum));
    return sum;
  }
  void Read(const BlockKey& key, void* bytes, std::size_t) override {
    Require(H5Dread(OpenDataset(key), H5T_NATIVE_UCHAR, H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes));
  }

  void AddTable(const void* records, std::size_t count) override {
    Write(MakeDataset(m_File, "records", count * kRecordBytes), records);
  }
  void ReadRecord(std::size_t index, void* record) override {
    if (m_Records < 0) {
      m_Records = Handle(H5Dopen2(m_File, "records", H5P_DEFAULT), H5Dclose);
      m_Selection = Handle(H5Dget_space(m_Records), H5Sclose);
    }
    const hsize_t start = index * kRecordBytes;
    const hsize_t count = kRecordBytes;
    Require(H5Sselect_hyperslab(m_Selection, H5S_SELECT_SET, &start, nullptr, &count, nullptr));
    Require(H5Dread(m_Records, H5T_NATIVE_UCHAR, m_OneRecord, m_Selection, H5P_DEFAULT, record));
  }

 private:
  static Handle OpenFile(const char* path, Mode mode) {
    const Handle access(H5Pcreate(H5P_FILE_ACCESS), H5Pclose);
    Require(H5Pset_libver_bounds(access, H5F_LIBVER_LATEST, H5F_LIBVER_LATEST));
    Require(H5Pset_meta_block_size(access, kMetadataBlock));
    if (mode == Mode::Create) {
      return Handle(H5Fcreate(path, H5F_ACC_EXCL, H5P_DEFAULT, access), H5Fclose);
    }
    const unsigned flags = mode == Mode::Read ? H5F_ACC_RDONLY : H5F_ACC_RDWR;
    return Handle(H5Fopen(path, flags, access), H5Fclose);
  }

  static Handle SpaceOf(std::size_t bytes) {
    const hsize_t extent = bytes;
    return Handle(H5Screate_simple(1, &extent, nullptr), H5Sclose);
  }
  static std::string GroupOf(const BlockKey& key) { return std::to_string(key.iteration); }
  static std::string NameOf(const BlockKey& key) {
    char name[20];
    std::snprintf(name, sizeof name, "%llx", static_cast<unsigned long long>(key.Packed()));
    return name;
  }

  Handle MakeDataset(hid_t parent, const std::string& name, std::size_t bytes) const {
    return Handle(H5Dcreate2(parent, name.c_str(), H5T_NATIVE_UCHAR, SpaceOf(bytes), H5P_DEFAULT,
                             m_Creation, H5P_DEFAULT),
                  H5Dclose);
  }
  Handle OpenDataset(const BlockKey& key) {
    if (key.iteration != m_Iteration) {
      m_Group = Handle(H5Gopen2(m_File, GroupOf(key).c_str(), H5P_DEFAULT), H5Gclose);
      m_Iteration = key.iteration;
    }
    return Handle(H5Dopen2(m_Group, NameOf(key).c_str(), H5P_DEFAULT), H5Dclose);
  }
  static void Write(const Handle& dataset, const void* bytes) {
    Require(H5Dwrite(dataset, H5T_NATIVE_UCHAR, H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes));
  }

  Handle m_File;
  Handle m_Creation;
  Handle m_OneRecord;
  Handle m_Group;  // of the iteration
  std::int32_t m_Iteration = -1;
  Handle m_Records;
  Handle m_Selection;
};

}  // namespace

std::unique_ptr<BlockStore> OpenHdf5File(const std::filesystem::path& path, BlockStore::Mode mode) {
  return std::make_unique<Hdf5File>(path, mode);
}

}  // namespace qelta::bench
