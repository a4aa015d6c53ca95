#include "CatalogueRows.h"

#include <algorithm>
#include <iterator>

#define XXH_INLINE_ALL
#include <xxhash.h>

#include "ByteCode.h"
#include "FED_OnfInfoPool.h"
#include "KeyCode.h"

namespace qelta {
namespace {

constexpr std::size_t kFields = FED_DataDescriptor::FIELD_COUNT;
static_assert(kReadableBlockColumns == kFields + 1);

bool IsKey(const std::string& key) {
  FED_DataDescriptor descriptor;
  return DecodeKey(key, descriptor);
}

bool AreChunks(const std::string& packed) {
  std::vector<StoredChunk> chunks;
  return UnpackChunks(packed, chunks);
}

bool ReadSum(const SqliteStatement& statement, int column, TableSum& sum) {
  return statement.Read(column, sum.rows) && statement.Read(column + 1, sum.sum);
}

bool ReadUuid(const SqliteStatement& statement, int column, CatalogueState& state) {
  std::string bytes;
  if (!statement.ReadBlob(column, bytes) || bytes.size() != state.uuid.size()) return false;
  std::copy(bytes.begin(), bytes.end(), state.uuid.begin());
  return true;
}

ReadableValue ReadableField(const FED_DataDescriptor& descriptor, std::size_t i) {
  const auto field = FED_DataDescriptor::CastIndex(i);
  if (!descriptor.Has(field)) return {};
  const bool isText =
      FED_DataDescriptor::RD_NAME_TYPE_ITEMS[i].type == FED_DataDescriptor::STRING_FIELD;
  if (isText) return descriptor.GetString(field);
  return std::int64_t{descriptor.GetInteger(field)};
}

ReadableValue KindName(const FED_DataDescriptor& descriptor) {
  if (!descriptor.Has(FED_DataDescriptor::ONF)) return {};
  const int onf = descriptor.GetInteger(FED_DataDescriptor::ONF);
  if (!FED_OnfInfoPool::ExistsOnfBlock(onf)) return {};
  return FED_OnfInfoPool::GetOnfInfo(static_cast<FED_OnfId>(onf)).name;
}

}  // namespace

RowHasher& RowHasher::Begin() {
  m_Bytes.clear();
  return *this;
}

RowHasher& RowHasher::Add(std::uint64_t value) {
  AppendNumber(m_Bytes, value);
  return *this;
}

RowHasher& RowHasher::Add(const std::string& bytes) {
  Add(std::uint64_t{bytes.size()});
  m_Bytes += bytes;
  return *this;
}

std::uint64_t RowHasher::Finish() const { return XXH3_64bits(m_Bytes.data(), m_Bytes.size()); }

std::uint64_t RowHasher::Hash(const MetaRow& row) {
  const CatalogueState& state = row.state;
  return Begin()
      .Add(std::uint64_t{kFormatVersion})
      .Add(std::string(state.uuid.begin(), state.uuid.end()))
      .Add(state.generation)
      .Add(state.payload)
      .Add(state.payloadLength)
      .Add(row.blocks)
      .Add(row.aliases)
      .Add(row.idMaps)
      .Finish();
}

std::uint64_t RowHasher::Hash(std::int64_t id, const BlockRow& row) {
  return Begin()
      .AddSigned(id)
      .Add(row.key)
      .Add(row.format)
      .AddSigned(row.properties)
      .Add(row.records)
      .Add(row.span)
      .Add(row.handles)
      .Add(row.contentBytes)
      .Add(row.chunks)
      .Finish();
}

std::uint64_t RowHasher::Hash(std::int64_t id, const AliasRow& row) {
  return Begin().AddSigned(id).Add(row.alias).Add(row.key).Finish();
}

std::uint64_t RowHasher::Hash(std::int64_t id, const IdMapRow& row) {
  return Begin().AddSigned(id).Add(row.entities).Add(row.bytes).Add(row.chunks).Finish();
}

const char* SelectOf(const MetaRow&) {
  return "SELECT id, format, uuid, generation, payload, payload_length, blocks, blocks_sum, "
         "aliases, aliases_sum, id_maps, id_maps_sum, hash FROM meta";
}

const char* SelectOf(const BlockRow&) {
  return "SELECT id, key, format, properties, records, span, handles, content_bytes, chunks, hash, "
         "iteration, onf, state, loadcase, substep, analysis, increment, objective_id, label, "
         "layer, microphone, id_type, direction, sub_level, kind FROM blocks";
}

const char* SelectOf(const AliasRow&) {
  return "SELECT id, alias, key, hash, alias_text, key_text FROM aliases";
}

const char* SelectOf(const IdMapRow&) {
  return "SELECT type, entities, bytes, chunks, hash, name FROM id_maps";
}

bool ReadRow(const SqliteStatement& statement, RowHasher& hasher, MetaRow& row) {
  CatalogueState& state = row.state;
  std::int64_t format = 0;
  std::uint64_t hash = 0;
  // All columns, so that a damaged one does not hide those behind it.
  bool fits = statement.Read(1, format) && format == kFormatVersion;
  fits &= ReadUuid(statement, 2, state);
  fits &= statement.Read(3, state.generation);
  fits &= statement.ReadText(4, state.payload);
  fits &= statement.Read(5, state.payloadLength);
  fits &= ReadSum(statement, 6, row.blocks);
  fits &= ReadSum(statement, 8, row.aliases);
  fits &= ReadSum(statement, 10, row.idMaps);
  return fits && statement.Read(12, hash) && hash == hasher.Hash(row);
}

bool ReadRow(const SqliteStatement& statement, RowHasher& hasher, BlockRow& row,
             std::uint64_t& hash) {
  return statement.ReadBlob(1, row.key) && statement.ReadText(2, row.format) &&
         statement.Read(3, row.properties) && statement.Read(4, row.records) &&
         statement.Read(5, row.span) && statement.Read(6, row.handles) &&
         statement.Read(7, row.contentBytes) && statement.ReadBlob(8, row.chunks) &&
         statement.Read(9, hash) && hash == hasher.Hash(statement.GetInteger(0), row);
}

bool ReadRow(const SqliteStatement& statement, RowHasher& hasher, AliasRow& row,
             std::uint64_t& hash) {
  return statement.ReadBlob(1, row.alias) && statement.ReadBlob(2, row.key) &&
         statement.Read(3, hash) && hash == hasher.Hash(statement.GetInteger(0), row);
}

bool ReadRow(const SqliteStatement& statement, RowHasher& hasher, IdMapRow& row,
             std::uint64_t& hash) {
  return statement.Read(0, row.type) && statement.Read(1, row.entities) &&
         statement.Read(2, row.bytes) && statement.ReadBlob(3, row.chunks) &&
         statement.Read(4, hash) && hash == hasher.Hash(statement.GetInteger(0), row);
}

bool IsEncoded(const BlockRow& row) { return IsKey(row.key) && AreChunks(row.chunks); }

bool IsEncoded(const AliasRow& row) { return IsKey(row.alias) && IsKey(row.key); }

bool IsEncoded(const IdMapRow& row) { return AreChunks(row.chunks); }

std::array<ReadableValue, kReadableBlockColumns> ReadableColumns(const BlockRow& row) {
  std::array<ReadableValue, kReadableBlockColumns> columns;
  FED_DataDescriptor descriptor;
  if (!DecodeKey(row.key, descriptor)) return columns;
  for (std::size_t i = 0; i < kFields; ++i) columns[i] = ReadableField(descriptor, i);
  columns[kFields] = KindName(descriptor);
  return columns;
}

std::array<ReadableValue, 2> ReadableColumns(const AliasRow& row) {
  return {DescribeKey(row.alias), DescribeKey(row.key)};
}

std::array<ReadableValue, 1> ReadableColumns(const IdMapRow& row) {
  const bool listed =
      row.type >= 0 && row.type < static_cast<std::int32_t>(std::size(FED_ID_TYPE_INFO));
  if (!listed) return {};
  return {FED_ID_TYPE_INFO[row.type].name};
}

std::string DescribeKey(const std::string& key) {
  FED_DataDescriptor descriptor;
  return DecodeKey(key, descriptor) ? descriptor.ToString() : "(no key)";
}

MetaRow ReadMeta(SqliteConnection& connection) {
  MetaRow row;
  RowHasher hasher;
  SqliteStatement statement(connection, SelectOf(row));
  if (!statement.Step()) connection.FailDamaged("the table meta is empty");
  if (!ReadRow(statement, hasher, row)) connection.FailDamaged("the row of the table meta is");
  if (statement.Step()) connection.FailDamaged("the table meta has more than one row");
  return row;
}

}  // namespace qelta
