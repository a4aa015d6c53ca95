#pragma once

#include <array>
#include <string>
#include <variant>

#include "Catalogue.h"
#include "SqliteConnection.h"

namespace qelta {

constexpr int kFormatVersion = 1;

/// The rows of a table, and the sum of their hashes modulo 2^64.
struct TableSum {
  std::uint64_t rows = 0;
  std::uint64_t sum = 0;

  void Add(std::uint64_t hash) {
    ++rows;
    sum += hash;
  }
  void Remove(std::uint64_t hash) {
    --rows;
    sum -= hash;
  }
  bool operator!=(const TableSum& other) const { return rows != other.rows || sum != other.sum; }
};

/// The one row of the table `meta`.
struct MetaRow {
  CatalogueState state;
  TableSum blocks;
  TableSum aliases;
  TableSum idMaps;
};

/// XXH3-64 of rows in canonical form: the columns that Load reads in their order, integers in 8
/// bytes, texts and blobs as their length in 8 bytes and their bytes. Little-endian.
class RowHasher {
 public:
  std::uint64_t Hash(const MetaRow& row);
  std::uint64_t Hash(std::int64_t id, const BlockRow& row);
  std::uint64_t Hash(std::int64_t id, const AliasRow& row);
  std::uint64_t Hash(std::int64_t id, const IdMapRow& row);

 private:
  RowHasher& Begin();
  RowHasher& Add(std::uint64_t value);
  RowHasher& AddSigned(std::int64_t value) { return Add(static_cast<std::uint64_t>(value)); }
  RowHasher& Add(const std::string& bytes);
  RowHasher& Add(const TableSum& sum) { return Add(sum.rows).Add(sum.sum); }
  std::uint64_t Finish() const;

  std::string m_Bytes;
};

// What the statement of each row's table selects; its id is column 0.
const char* SelectOf(const MetaRow& row);
const char* SelectOf(const BlockRow& row);
const char* SelectOf(const AliasRow& row);
const char* SelectOf(const IdMapRow& row);

// Read a row, column by column as far as they have the right types, and its hash. False when any
// has not, or when the hash is not that of the row.
bool ReadRow(const SqliteStatement& statement, RowHasher& hasher, MetaRow& row);
bool ReadRow(const SqliteStatement& statement, RowHasher& hasher, BlockRow& row,
             std::uint64_t& hash);
bool ReadRow(const SqliteStatement& statement, RowHasher& hasher, AliasRow& row,
             std::uint64_t& hash);
bool ReadRow(const SqliteStatement& statement, RowHasher& hasher, IdMapRow& row,
             std::uint64_t& hash);

// Whether keys and chunks can be decoded.
bool IsEncoded(const BlockRow& row);
bool IsEncoded(const AliasRow& row);
bool IsEncoded(const IdMapRow& row);

/// The value of a column that is there for people: nothing, a number, or a text.
using ReadableValue = std::variant<std::monostate, std::int64_t, std::string>;

/// The descriptor's fields and the name of the block kind.
constexpr std::size_t kReadableBlockColumns = 15;
std::array<ReadableValue, kReadableBlockColumns> ReadableColumns(const BlockRow& row);
/// Both keys as texts.
std::array<ReadableValue, 2> ReadableColumns(const AliasRow& row);
/// The name of the id type.
std::array<ReadableValue, 1> ReadableColumns(const IdMapRow& row);

/// A key as a text for people.
std::string DescribeKey(const std::string& key);

/// The meta row; a damaged or absent one is a failure.
MetaRow ReadMeta(SqliteConnection& connection);

}  // namespace qelta
