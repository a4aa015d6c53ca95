#include "RawFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <vector>

namespace qelta::bench {
namespace {

void Require(bool isDone) {
  if (!isDone) throw std::system_error(errno, std::generic_category(), "raw file");
}

class RawFile : public BlockStore {
 public:
  RawFile(const std::filesystem::path& path, Mode mode)
      : m_File(::open(path.c_str(), FlagsOf(mode), 0600)) {
    Require(m_File >= 0);
    if (mode != Mode::Create) LoadIndex();
  }
  ~RawFile() override { ::close(m_File); }

  void Add(const BlockKey& key, const void* bytes, std::size_t size) override {
    m_Places.push_back({key.Packed(), m_End});
    WriteAt(m_End, bytes, size);
    m_End += size;
  }
  void Replace(const BlockKey& key, const void* bytes, std::size_t size) override {
    WriteAt(Find(key), bytes, size);
  }
  void Commit() override {
    const std::size_t indexBytes = m_Places.size() * sizeof(Place);
    WriteAt(m_End, m_Places.data(), indexBytes);
    WriteAt(m_End + indexBytes, &m_End, sizeof m_End);
    Require(::fsync(m_File) == 0);
  }

  std::uint64_t List() override {
    std::uint64_t sum = 0;
    for (const Place& place : m_Places) sum += place.key >> 32;
    return sum;
  }
  void Read(const BlockKey& key, void* bytes, std::size_t size) override {
    ReadAt(Find(key), bytes, size);
  }

  void AddTable(const void* records, std::size_t count) override {
    Add(BlockKey{}, records, count * kRecordBytes);
  }
  void ReadRecord(std::size_t index, void* record) override {
    ReadAt(index * kRecordBytes, record, kRecordBytes);
  }

 private:
  struct Place {
    std::uint64_t key;
    std::uint64_t offset;
  };

  static int FlagsOf(Mode mode) {
    if (mode == Mode::Read) return O_RDONLY | O_CLOEXEC;
    return O_RDWR | O_CLOEXEC | (mode == Mode::Create ? O_CREAT | O_EXCL : 0);
  }

  void LoadIndex() {
    const off_t size = ::lseek(m_File, 0, SEEK_END);
    Require(size > 0);
    const std::uint64_t indexEnd = static_cast<std::uint64_t>(size) - sizeof m_End;
    ReadAt(indexEnd, &m_End, sizeof m_End);
    m_Places.resize((indexEnd - m_End) / sizeof(Place));
    ReadAt(m_End, m_Places.data(), m_Places.size() * sizeof(Place));
  }

  std::uint64_t Find(const BlockKey& key) const {
    const auto isLess = [](const Place& place, std::uint64_t packed) { return place.key < packed; };
    return std::lower_bound(m_Places.begin(), m_Places.end(), key.Packed(), isLess)->offset;
  }

  void WriteAt(std::uint64_t offset, const void* bytes, std::size_t size) const {
    Transfer(::pwrite, offset, static_cast<const char*>(bytes), size);
  }
  void ReadAt(std::uint64_t offset, void* bytes, std::size_t size) const {
    Transfer(::pread, offset, static_cast<char*>(bytes), size);
  }
  // The system may do less than it is asked to.
  template <class Call, class Byte>
  void Transfer(Call call, std::uint64_t offset, Byte* bytes, std::size_t size) const {
    while (size > 0) {
      const ssize_t done = call(m_File, bytes, size, static_cast<off_t>(offset));
      Require(done > 0);
      bytes += done;
      offset += static_cast<std::uint64_t>(done);
      size -= static_cast<std::size_t>(done);
    }
  }

  int m_File;
  std::uint64_t m_End = 0;  // of the blocks
  std::vector<Place> m_Places;
};

}  // namespace

std::unique_ptr<BlockStore> OpenRawFile(const std::filesystem::path& path, BlockStore::Mode mode) {
  return std::make_unique<RawFile>(path, mode);
}

}  // namespace qelta::bench
