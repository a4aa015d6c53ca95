#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "BlockContents.h"
#include "Catalogue.h"
#include "DatabaseDirectory.h"
#include "FED_FileDatabase.h"
#include "HeldCommit.h"
#include "IdMapCode.h"
#include "KeyCode.h"
#include "QeltaStringUtil.h"

namespace qelta::test {

inline std::unique_ptr<FED_FileDatabase> Open(
    const std::string& path, FED_DatabaseDefs::AccessMode mode = FED_DatabaseDefs::READ_ONLY,
    FileSystem& files = SystemFiles()) {
  auto database = std::make_unique<FED_FileDatabase>(files);
  std::wstring name;
  if (!QeltaStringUtil::ToWide(path, name)) throw std::runtime_error("no UTF-8: " + path);
  database->InitDb(FED_IdMapsPool(), mode, 0, name);
  return database;
}

inline void CopyFiles(const std::string& from, const std::string& to) {
  std::filesystem::remove_all(to);
  std::filesystem::copy(from, to);
}

inline std::string ReadFile(const std::string& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

inline void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

inline CommitRows RowsOf(const std::string& path) {
  CommitRows rows;
  Catalogue(SystemFiles(), path + "/catalogue.sqlite", Catalogue::Access::READ, false)
      .Load(rows.Collect());
  return rows;
}

inline BlockRow& RowOf(CommitRows& rows, const FED_DataDescriptor& key) {
  for (BlockRow& row : rows.blocks) {
    if (row.key == EncodeKey(key)) return row;
  }
  throw std::runtime_error("no such block");
}

/// Makes the catalogue say something else, with right checksums.
inline void Rewrite(const std::string& path, const std::function<void(CommitRows&)>& change) {
  CommitRows rows = RowsOf(path);
  change(rows);
  CatalogueChanges changes;
  changes.state = rows.state;
  for (const BlockRow& row : rows.blocks) changes.written.push_back(&row);
  changes.idMaps = rows.idMaps;
  Catalogue(SystemFiles(), path + "/catalogue.sqlite", Catalogue::Access::WRITE, false)
      .Commit(changes);
}

inline std::string PayloadOf(const std::string& path) {
  return path + "/" + RowsOf(path).state.payload;
}

inline void FlipByte(const std::string& file, std::uint64_t offset) {
  std::string bytes = ReadFile(file);
  bytes[offset] = static_cast<char>(bytes[offset] ^ 1);
  WriteFile(file, bytes);
}

inline StoredChunk ChunkOf(const std::string& path, const FED_DataDescriptor& key, Part part,
                           std::uint32_t number = 0) {
  CommitRows rows = RowsOf(path);
  std::vector<StoredChunk> chunks;
  UnpackChunks(RowOf(rows, key).chunks, chunks);
  for (const StoredChunk& chunk : chunks) {
    if (chunk.part == part && chunk.number == number) return chunk;
  }
  throw std::runtime_error("no such chunk");
}

inline void FlipChunk(const std::string& path, const FED_DataDescriptor& key, Part part,
                      std::uint32_t number = 0) {
  FlipByte(PayloadOf(path), ChunkOf(path, key, part, number).extent.offset);
}

/// Everything that a database holds.
inline std::string ContentOf(FED_FileDatabase& database) {
  std::string text;
  for (const FED_DataDescriptor& key : database.FindBlocks(FED_DataDescriptorPattern())) {
    if (!database.HasBlock(key)) continue;  // names of deleted blocks stay for a while
    text += key.ToString() + " is " + Describe(database.GetDataBlock(key)) + '\n';
  }
  for (int type = 0; type < 16; ++type) {
    std::uint64_t entities = 0;
    text += EncodeIdMap(database.GetIdMapsPool().GetMap(static_cast<FED_IdType>(type)), entities);
  }
  return text;
}
inline std::string ContentOf(const std::string& path) { return ContentOf(*Open(path)); }

}  // namespace qelta::test
