// Copies what is intact in a database that may be damaged anywhere.

#include <algorithm>
#include <cstring>
#include <utility>

#include "ContentKind.h"
#include "DatabaseDirectory.h"
#include "FED_Failure.h"
#include "FED_Message.h"
#include "HeldCommit.h"
#include "IdMapCode.h"
#include "KeyCode.h"
#include "Maintenance.h"
#include "ProgressMeter.h"
#include "QeltaBulkAccess.h"
#include "QeltaStringUtil.h"
#include "SavedBlock.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaFileStorage|Salvage";
constexpr std::uint64_t kSaveEvery = std::uint64_t{64} << 20;

using Problems = std::vector<std::string>;

std::string Range(std::uint64_t first, std::uint64_t last) {
  return std::to_string(first) + " to " + std::to_string(last);
}

template <class T>
std::vector<T> AsList(const std::vector<unsigned char>& bytes) {
  std::vector<T> list(bytes.size() / sizeof(T));
  if (!list.empty()) std::memcpy(list.data(), bytes.data(), list.size() * sizeof(T));
  return list;
}

// Copies one block. Handles stay as they are: what is lost is empty there, until it is dropped as
// nothing refers to it any more.
class BlockSalvage {
 public:
  /// Called between pieces of work; false when no more is wanted.
  using Step = std::function<bool()>;

  /// All that is passed by reference outlives this.

  BlockSalvage(SavedPayload& payload, const BlockRow& row, const FED_DataDescriptor& key,
               Problems& problems, Step step)
      : m_Row(row),
        m_Title("Block " + key.ToString()),
        m_Places(HandlePlaces(key, row.format)),
        m_Problems(problems),
        m_Step(std::move(step)),
        m_Payload(payload),
        m_Saved(payload, row, [this](const StoredChunk& chunk, const std::string& reason) {
          AddLoss(chunk, reason);
        }) {}

  /// False when nothing of the block can be told.
  bool Open() {
    const std::string problem = m_Saved.Open();
    if (!problem.empty()) Add("it is lost: " + problem);
    return problem.empty();
  }

  void CopyTo(FED_DataBlock& block) {
    m_IsLost.assign(static_cast<std::size_t>(m_Row.handles) + 1, false);
    m_Saved.VisitContents([&](std::uint64_t handle, const SavedBlock::Content& content) {
      CopyContent(block, handle, content);
      return m_Step();
    });
    m_Saved.VisitRuns(
        [&](std::size_t first, std::size_t count) { return CopyRecords(block, first, count); });
    if (m_Emptied > 0) {
      Add("the strings and lists of " + std::to_string(m_Emptied) +
          " fields are lost and empty now, the first one in record " +
          std::to_string(m_FirstEmptied));
    }
  }

 private:
  void Add(const std::string& what) { m_Problems.push_back(m_Title + ": " + what + "."); }

  void AddLoss(const StoredChunk& chunk, const std::string& reason) {
    Add(DescribeLoss(chunk) + ": " + Describe(chunk, m_Payload.GetPath()) + ": " + reason);
  }

  std::string DescribeLoss(const StoredChunk& chunk) const {
    const std::uint64_t number = chunk.number;
    switch (chunk.part) {
      case Part::RECORDS: {
        const std::uint64_t count = m_Saved.GetRecordsPerChunk();
        return "the records " + Last(number * count, count, m_Row.span) + " are lost";
      }
      case Part::PRESENCE: {
        const std::uint64_t count = kChunkBytes * 8;
        const std::uint64_t first = number == 0 ? 0 : number * count - 64;
        return "which of the records " + Last(first, count, m_Row.span) +
               " are there cannot be told from here; they are left out";
      }
      case Part::HANDLES: {
        const std::uint64_t count = kChunkBytes / kHandleEntry;
        return "its strings and lists " + Last(number * count + 1, count, m_Row.handles + 1) +
               " are lost";
      }
      default:
        return "some of its strings and lists are lost";
    }
  }

  static std::string Last(std::uint64_t first, std::uint64_t count, std::uint64_t end) {
    return Range(first, std::max(first + 1, std::min(first + count, end)) - 1);
  }

  void CopyContent(FED_DataBlock& block, std::uint64_t handle, const SavedBlock::Content& content) {
    const bool isThere =
        content.isKnown && content.kind != 0 && m_Saved.ReadContent(content, m_Buffer);
    const bool isStored = isThere && Store(block, static_cast<ContentKind>(content.kind));
    if (isStored) return;
    m_IsLost[static_cast<std::size_t>(handle)] = true;
    m_LosesAny = true;
    block.SetString("");
  }

  bool Store(FED_DataBlock& block, ContentKind kind) {
    switch (kind) {
      case ContentKind::INT_LIST: {
        const std::vector<int> list = AsList<int>(m_Buffer);
        block.SetIntList(list.data(), list.size());
        return true;
      }
      case ContentKind::DOUBLE_LIST: {
        const std::vector<double> list = AsList<double>(m_Buffer);
        block.SetDoubleList(list.data(), list.size());
        return true;
      }
      case ContentKind::STRING:
        block.SetString(std::string(m_Buffer.begin(), m_Buffer.end()));
        return true;
    }
    return false;
  }

  bool CopyRecords(FED_DataBlock& block, std::size_t first, std::size_t count) {
    const std::size_t perChunk = m_Saved.GetRecordsPerChunk();
    while (count > 0) {
      const std::size_t share = std::min(count, perChunk - first % perChunk);
      CopyShare(block, first, share);
      if (!m_Step()) return false;
      first += share;
      count -= share;
    }
    return true;
  }

  // Records of one chunk.
  void CopyShare(FED_DataBlock& block, std::size_t first, std::size_t count) {
    const std::size_t size = m_Saved.GetRecordSize();
    const std::size_t perChunk = m_Saved.GetRecordsPerChunk();
    const auto number = static_cast<std::uint32_t>(first / perChunk);
    const SavedBlock::Bytes bytes = m_Saved.Load(Part::RECORDS, number);
    if (!bytes.isIntact) return;
    const std::size_t at = first % perChunk * size;
    if (at + count * size > bytes.size) {
      return Add("the records " + Range(first, first + count - 1) +
                 " are lost: they lie outside of its chunks");
    }
    m_Buffer.assign(bytes.data + at, bytes.data + at + count * size);
    m_Buffer.resize(std::max<std::size_t>(m_Buffer.size(), 1));
    if (m_LosesAny) EmptyLost(first, count);
    QeltaBulkAccess::WriteRun(block, first, count, m_Buffer.data());
  }

  void EmptyLost(std::size_t first, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      for (const std::size_t place : m_Places) {
        unsigned char* const field = &m_Buffer[i * m_Saved.GetRecordSize() + place];
        std::uint32_t handle = 0;
        std::memcpy(&handle, field, sizeof handle);
        if (handle >= m_IsLost.size() || !m_IsLost[handle]) continue;
        std::memset(field, 0, sizeof handle);
        if (m_Emptied++ == 0) m_FirstEmptied = first + i;
      }
    }
  }

  const BlockRow& m_Row;
  std::string m_Title;
  std::vector<std::size_t> m_Places;
  Problems& m_Problems;
  Step m_Step;
  SavedPayload& m_Payload;
  SavedBlock m_Saved;
  std::vector<bool> m_IsLost;  // by handle
  bool m_LosesAny = false;
  std::uint64_t m_Emptied = 0;
  std::size_t m_FirstEmptied = 0;
  std::vector<unsigned char> m_Buffer;
};

class DatabaseSalvage {
 public:
  DatabaseSalvage(FileSystem& files, const std::string& directory,
                  const FED_FileDatabase::Progress& progress)
      : m_Files(files), m_Directory(directory), m_Held(files, directory), m_Meter(progress) {
    m_Held.GetCatalogue().LoadIntact(m_Rows.Collect(), [this](const std::string& what) {
      m_Report.problems.push_back("The catalogue of " + m_Directory + ": " + what + ".");
    });
    m_Payload = std::make_unique<SavedPayload>(files, directory + "/" + FindPayload());
    m_Held.Hold(m_Rows.state.generation);
    m_Meter.SetTotal(m_Rows.CountBytes());
  }

  FED_FileDatabase::Report CopyTo(const std::wstring& target) {
    FED_FileDatabase copy(m_Files);
    copy.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, target);
    for (const BlockRow& row : m_Rows.blocks) {
      if (!m_Meter.GoesOn()) break;
      CopyBlock(row, copy);
      Step(copy);
    }
    for (const IdMapRow& row : m_Rows.idMaps) CopyIdMap(row, copy);
    for (const AliasRow& row : m_Rows.aliases) CopyAlias(row, copy);
    copy.Save();
    copy.CloseDb();
    m_Report.isComplete = m_Meter.Reach(m_Payload->GetBytesRead());
    m_Report.bytes = m_Payload->GetBytesRead();
    return std::move(m_Report);
  }

 private:
  void Add(const std::string& what) { m_Report.problems.push_back(what + "."); }

  // What the catalogue names, or else the newest one that is there.
  std::string FindPayload() const {
    const DatabaseDirectory place(m_Files, m_Directory);
    std::uint64_t newest = 1;
    for (const std::string& name : place.ListPayloads()) {
      if (name == m_Rows.state.payload) return name;
      newest = std::max(newest, DatabaseDirectory::NumberOfPayload(name));
    }
    return DatabaseDirectory::NameOfPayload(newest);
  }

  // Saves now and then; false when no more is wanted.
  bool Step(FED_FileDatabase& copy) {
    const std::uint64_t done = m_Payload->GetBytesRead();
    if (done - m_Saved >= kSaveEvery) {
      copy.Save();
      m_Saved = done;
    }
    if (done != m_Reached) m_Meter.Reach(m_Reached = done);
    return m_Meter.GoesOn();
  }

  void CopyBlock(const BlockRow& row, FED_FileDatabase& copy) {
    FED_DataDescriptor key;
    DecodeKey(row.key, key);
    ++m_Report.blocks;
    if (!IsKnownHere(key, row.format)) {
      return Add("Block " + key.ToString() + ": its kind, of format '" + row.format +
                 "', is not known here or has another format; it is left out");
    }
    BlockSalvage block(*m_Payload, row, key, m_Report.problems, [&] { return Step(copy); });
    if (!block.Open()) return;
    const bool isCatalogued = key.Has(FED_DataDescriptor::ONF);
    block.CopyTo(isCatalogued ? copy.CreateDataBlock(key, 0)
                              : copy.CreateDataBlock(key, row.properties, 0, row.format));
  }

  void CopyIdMap(const IdMapRow& row, FED_FileDatabase& copy) {
    const std::string title = "Id map " + std::to_string(row.type);
    if (row.type < 0 || row.type > ID_TYPE_RECORD_INDEX) {
      return Add(title + " is not known here; it is left out");
    }
    std::vector<StoredChunk> chunks;
    UnpackChunks(row.chunks, chunks);
    std::string all;
    std::vector<unsigned char> bytes;
    for (const StoredChunk& chunk : chunks) {
      const std::string reason = m_Payload->Read(chunk.extent, bytes);
      if (!reason.empty()) {
        return Add(FED_MESSAGE("%s is lost: %s: %s", title.c_str(),
                               Describe(chunk.extent, m_Payload->GetPath()).c_str(),
                               reason.c_str()));
      }
      all.append(bytes.begin(), bytes.end());
    }
    const auto type = static_cast<FED_IdType>(row.type);
    try {
      MergeIdMap(type, all, copy.GetIdMapsPool().GetMap(type));
    } catch (const FED_Failure& failure) {
      Add(title + " is lost: " + failure.GetMessageText());
    }
  }

  void CopyAlias(const AliasRow& row, FED_FileDatabase& copy) {
    FED_DataDescriptor key;
    FED_DataDescriptor alias;
    DecodeKey(row.key, key);
    DecodeKey(row.alias, alias);
    if (copy.HasBlock(key)) {
      copy.CreateDataBlockAlias(key, alias);
    } else if (m_Meter.GoesOn()) {
      Add("The name " + alias.ToString() + " is left out: its block is not there");
    }
  }

  FileSystem& m_Files;
  std::string m_Directory;
  HeldCommit m_Held;
  ProgressMeter m_Meter;
  CommitRows m_Rows;
  std::unique_ptr<SavedPayload> m_Payload;
  FED_FileDatabase::Report m_Report;
  std::uint64_t m_Saved = 0;
  std::uint64_t m_Reached = 0;
};

}  // namespace

FED_FileDatabase::Report Salvage(FileSystem& files, const std::string& directory,
                                 const std::wstring& target,
                                 const FED_FileDatabase::Progress& progress) {
  std::string path;
  QeltaStringUtil::ToUtf8(target, path);
  if (files.GetKind(path) != PathKind::NOTHING) {
    FED_Failure::Throw("220400000031", kLocation,
                       "The database cannot be salvaged to %s, which exists. Choose another name.",
                       path.c_str());
  }
  return DatabaseSalvage(files, directory, progress).CopyTo(target);
}

}  // namespace qelta
