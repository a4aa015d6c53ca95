#include "Hdf5OutputDriver.h"

#if __has_include(<H5FDdevelop.h>)
#include <H5FDdevelop.h>
#endif

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <memory>
#include <system_error>

namespace qelta {
namespace {

namespace fs = std::filesystem;

// The library hands the address of the first member around.
struct OutputFile : H5FD_t {
  explicit OutputFile(int& errorCode) : H5FD_t{}, error(errorCode) {}

  bool MoveTo(haddr_t place) {
    const auto position = static_cast<std::streamoff>(place);
    return file.pubseekpos(position) == std::streampos(position);
  }

  // Remembers the first thing that fails; what comes after it is not done.
  template <class Work>
  void Try(Work work) {
    if (error != 0) return;
    errno = 0;
    if (!work()) error = errno != 0 ? errno : EIO;
  }

  int& error;
  fs::path path;
  std::filebuf file;
  haddr_t allocated = 0;
  haddr_t end = 0;
};

OutputFile& Cast(H5FD_t* file) { return *static_cast<OutputFile*>(file); }
const OutputFile& Cast(const H5FD_t* file) { return *static_cast<const OutputFile*>(file); }

// The library tries first whether there is such a file. To make it then, and to empty it in the
// next attempt, would have ext4 write all of it to the disk before it is closed.
H5FD_t* Open(const char* name, unsigned flags, hid_t access, haddr_t) {
  if ((flags & H5F_ACC_CREAT) == 0) return nullptr;
  int& error = **static_cast<int* const*>(H5Pget_driver_info(access));
  try {
    auto output = std::make_unique<OutputFile>(error);
    output->path = fs::u8path(name);
    output->Try([&output] {
      output->file.pubsetbuf(nullptr, 0);  // the library writes large pieces
      constexpr auto kMode = std::ios::in | std::ios::out | std::ios::binary | std::ios::trunc;
      return output->file.open(output->path, kMode) != nullptr;
    });
    return error == 0 ? output.release() : nullptr;
  } catch (const std::exception&) {
    error = ENOMEM;
    return nullptr;
  }
}

herr_t Close(H5FD_t* file) {
  OutputFile& output = Cast(file);
  output.Try([&output] { return output.file.close() != nullptr; });
  delete &output;
  return 0;
}

int Compare(const H5FD_t* a, const H5FD_t* b) { return a == b ? 0 : std::less<>()(a, b) ? -1 : 1; }

herr_t Query(const H5FD_t*, unsigned long* flags) {
  *flags = H5FD_FEAT_AGGREGATE_METADATA | H5FD_FEAT_ACCUMULATE_METADATA | H5FD_FEAT_DATA_SIEVE |
           H5FD_FEAT_AGGREGATE_SMALLDATA;
  return 0;
}

haddr_t GetAllocated(const H5FD_t* file, H5FD_mem_t) { return Cast(file).allocated; }

herr_t SetAllocated(H5FD_t* file, H5FD_mem_t, haddr_t end) {
  Cast(file).allocated = end;
  return 0;
}

haddr_t GetEnd(const H5FD_t* file, H5FD_mem_t) { return Cast(file).end; }

// Behind the end, and in what went nowhere, there are zeros.
herr_t Read(H5FD_t* file, H5FD_mem_t, hid_t, haddr_t place, size_t size, void* bytes) {
  OutputFile& output = Cast(file);
  std::memset(bytes, 0, size);
  if (place >= output.end) return 0;
  const auto count = static_cast<std::streamsize>(std::min<haddr_t>(size, output.end - place));
  output.Try([&] {
    return output.MoveTo(place) && output.file.sgetn(static_cast<char*>(bytes), count) == count;
  });
  return 0;
}

herr_t Write(H5FD_t* file, H5FD_mem_t, hid_t, haddr_t place, size_t size, const void* bytes) {
  OutputFile& output = Cast(file);
  const auto count = static_cast<std::streamsize>(size);
  output.Try([&] {
    return output.MoveTo(place) &&
           output.file.sputn(static_cast<const char*>(bytes), count) == count;
  });
  output.end = std::max(output.end, place + size);
  return 0;
}

// The file must end where the library says it does.
herr_t Truncate(H5FD_t* file, hid_t, hbool_t) {
  OutputFile& output = Cast(file);
  if (output.end == output.allocated) return 0;
  output.Try([&output] {
    std::error_code code;
    fs::resize_file(output.path, output.allocated, code);
    errno = code.value();
    return !code;
  });
  output.end = output.allocated;
  return 0;
}

H5FD_class_t MakeClass() {
  constexpr H5FD_mem_t kMap[] = H5FD_FLMAP_DICHOTOMY;
  H5FD_class_t driver{};
#ifdef H5FD_CLASS_VERSION
  driver.version = H5FD_CLASS_VERSION;
#endif
  driver.name = "qelta_output";
  driver.maxaddr = static_cast<haddr_t>(std::numeric_limits<std::int64_t>::max());
  driver.fc_degree = H5F_CLOSE_STRONG;
  driver.fapl_size = sizeof(int*);
  driver.open = Open;
  driver.close = Close;
  driver.cmp = Compare;
  driver.query = Query;
  driver.get_eoa = GetAllocated;
  driver.set_eoa = SetAllocated;
  driver.get_eof = GetEnd;
  driver.read = Read;
  driver.write = Write;
  driver.truncate = Truncate;
  std::copy(std::begin(kMap), std::end(kMap), std::begin(driver.fl_map));
  return driver;
}

}  // namespace

Hdf5Handle MakeOutputAccess(int& error) {
  static const H5FD_class_t kClass = MakeClass();
  const Hdf5Handle driver(H5FDregister(&kClass));
  int* const info = &error;
  Hdf5Handle access(H5Pcreate(H5P_FILE_ACCESS));
  CheckHdf5(H5Pset_driver(access, driver, &info));
  return access;
}

}  // namespace qelta
