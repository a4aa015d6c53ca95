#include "LmdbTable.h"

#include <lmdb.h>

#include <cstring>
#include <stdexcept>

namespace qelta::bench {
namespace {

constexpr std::size_t kLargestFile = std::size_t{1} << 36;

void Require(int result) {
  if (result != 0) throw std::runtime_error(std::string("LMDB: ") + mdb_strerror(result));
}

class LmdbTable : public BlockStore {
 public:
  LmdbTable(const std::filesystem::path& path, Mode mode) : m_IsReader(mode == Mode::Read) {
    Require(mdb_env_create(&m_Environment));
    Require(mdb_env_set_mapsize(m_Environment, kLargestFile));
    const unsigned flags = MDB_NOSUBDIR | (m_IsReader ? MDB_RDONLY : 0);
    Require(mdb_env_open(m_Environment, path.c_str(), flags, 0600));
    Begin();
    Require(mdb_dbi_open(m_Transaction, nullptr, MDB_INTEGERKEY | (m_IsReader ? 0 : MDB_CREATE),
                         &m_Table));
  }
  ~LmdbTable() override {
    mdb_txn_abort(m_Transaction);
    mdb_env_close(m_Environment);
  }

  void Add(const BlockKey& key, const void* bytes, std::size_t size) override {
    Put(key.Packed(), bytes, size, MDB_APPEND);
  }
  void Replace(const BlockKey& key, const void* bytes, std::size_t size) override {
    Put(key.Packed(), bytes, size, 0);
  }
  void Commit() override {
    MDB_txn* const transaction = m_Transaction;
    m_Transaction = nullptr;
    Require(mdb_txn_commit(transaction));
    Begin();
  }

  std::uint64_t List() override {
    MDB_cursor* cursor = nullptr;
    Require(mdb_cursor_open(m_Transaction, m_Table, &cursor));
    std::uint64_t sum = 0;
    MDB_val key;
    MDB_val value;
    while (mdb_cursor_get(cursor, &key, &value, MDB_NEXT) == 0) {
      std::uint64_t packed;
      std::memcpy(&packed, key.mv_data, sizeof packed);
      sum += packed >> 32;
    }
    mdb_cursor_close(cursor);
    return sum;
  }
  void Read(const BlockKey& key, void* bytes, std::size_t size) override {
    std::uint64_t packed = key.Packed();
    MDB_val id{sizeof packed, &packed};
    MDB_val value;
    Require(mdb_get(m_Transaction, m_Table, &id, &value));
    std::memcpy(bytes, value.mv_data, size);
  }

 private:
  void Begin() {
    Require(mdb_txn_begin(m_Environment, nullptr, m_IsReader ? MDB_RDONLY : 0, &m_Transaction));
  }
  void Put(std::uint64_t packed, const void* bytes, std::size_t size, unsigned flags) {
    MDB_val key{sizeof packed, &packed};
    MDB_val value{size, nullptr};
    Require(mdb_put(m_Transaction, m_Table, &key, &value, flags | MDB_RESERVE));
    std::memcpy(value.mv_data, bytes, size);
  }

  bool m_IsReader;
  MDB_env* m_Environment = nullptr;
  MDB_txn* m_Transaction = nullptr;
  MDB_dbi m_Table = 0;
};

}  // namespace

std::unique_ptr<BlockStore> OpenLmdbTable(const std::filesystem::path& path,
                                          BlockStore::Mode mode) {
  return std::make_unique<LmdbTable>(path, mode);
}

}  // namespace qelta::bench
