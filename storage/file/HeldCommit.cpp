#include "HeldCommit.h"

#include <algorithm>
#include <utility>

#include "CatalogueRows.h"
#include "DatabaseDirectory.h"
#include "FED_Failure.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|HeldCommit";

FileSystem& RequireDatabase(FileSystem& files, const std::string& directory) {
  if (DatabaseDirectory(files, directory).Look() == DatabaseDirectory::State::THERE) return files;
  FED_Failure::Throw("220400000001", kLocation,
                     "There is no database %s. Give the name of a database that was saved.",
                     directory.c_str());
}

}  // namespace

Catalogue::Visitor CommitRows::Collect() {
  Catalogue::Visitor visitor;
  visitor.state = [this](const CatalogueState& found) { state = found; };
  visitor.block = [this](BlockRow&& row) { blocks.push_back(std::move(row)); };
  visitor.alias = [this](AliasRow&& row) { aliases.push_back(std::move(row)); };
  visitor.idMap = [this](IdMapRow&& row) { idMaps.push_back(std::move(row)); };
  return visitor;
}

std::uint64_t CommitRows::CountBytes() const {
  std::uint64_t bytes = 0;
  for (const OwnedChunk& owned : ListChunks()) bytes += owned.chunk.extent.length;
  return bytes;
}

std::vector<CommitRows::OwnedChunk> CommitRows::ListChunks() const {
  std::vector<OwnedChunk> all;
  std::vector<StoredChunk> chunks;
  std::size_t owner = 0;
  const auto add = [&](const std::string& packed) {
    UnpackChunks(packed, chunks);
    for (const StoredChunk& chunk : chunks) all.push_back({chunk, owner});
    ++owner;
  };
  for (const BlockRow& row : blocks) add(row.chunks);
  for (const IdMapRow& row : idMaps) add(row.chunks);
  std::sort(all.begin(), all.end(), [](const OwnedChunk& a, const OwnedChunk& b) {
    return a.chunk.extent.offset < b.chunk.extent.offset;
  });
  return all;
}

std::string CommitRows::TitleOf(std::size_t owner) const {
  if (owner < blocks.size()) return "Block " + DescribeKey(blocks[owner].key);
  return "Id map " + std::to_string(idMaps[owner - blocks.size()].type);
}

HeldCommit::HeldCommit(FileSystem& files, const std::string& directory)
    : m_Lock(RequireDatabase(files, directory), directory, false) {
  m_Lock.BeginRead();
  m_Catalogue = DatabaseDirectory(files, directory).OpenCatalogueToRead();
}

// A number that cannot be held is damage: then no writer can begin, and everything stays held.
void HeldCommit::Hold(std::uint64_t generation) {
  if (generation > DatabaseLock::kMaxGeneration) return;
  m_Lock.Hold(generation);
  m_Lock.EndRead();
}

}  // namespace qelta
