// Reads all that was saved, and says what is wrong with it.

#include <algorithm>
#include <utility>

#include "Damage.h"
#include "DatabaseDirectory.h"
#include "FileStore.h"
#include "HeldCommit.h"
#include "KeyCode.h"
#include "Maintenance.h"
#include "ProgressMeter.h"
#include "SavedBlock.h"

namespace qelta {
namespace {

constexpr const char* kRemedy =
    ". Salvage the database to copy what is intact, or restore a backup.";

class Verifier {
 public:
  Verifier(FileSystem& files, std::string directory, const FED_FileDatabase::Progress& progress)
      : m_Files(files), m_Directory(std::move(directory)), m_Meter(progress) {}

  FED_FileDatabase::Report Run() {
    try {
      HeldCommit held(m_Files, m_Directory);
      CheckCatalogue(held.GetCatalogue());
      m_Path = m_Directory + "/" + m_Rows.state.payload;
      m_Payload = std::make_unique<SavedPayload>(m_Files, m_Path);
      CheckHeader(held.GetCatalogue());
      held.Hold(m_Rows.state.generation);
      CheckContent();
    } catch (const Damage& damage) {
      m_Report.problems.push_back(damage.GetMessageText());
    }
    m_Report.isComplete = m_Meter.GoesOn();
    return std::move(m_Report);
  }

 private:
  void Add(const std::string& what) { m_Report.problems.push_back(what + kRemedy); }

  void CheckCatalogue(Catalogue& catalogue) {
    const auto damage = [this](const std::string& what) {
      Add("The catalogue of " + m_Directory + ": " + what);
    };
    catalogue.LoadIntact(m_Rows.Collect(), damage);
    catalogue.VerifyColumns(damage);
  }

  void CheckHeader(Catalogue& catalogue) {
    const CatalogueState& state = m_Rows.state;
    try {
      const std::uint64_t acknowledged =
          Payload(m_Files, m_Path, state.uuid, false).ReadAcknowledged();
      // A writer may have saved since the rows were read.
      if (acknowledged > state.generation && acknowledged > catalogue.ReadState().generation) {
        Add("The catalogue of " + m_Directory + " shows save " + std::to_string(state.generation) +
            ", but save " + std::to_string(acknowledged) + " was made");
      }
    } catch (const FED_Failure& failure) {
      m_Report.problems.push_back(failure.GetMessageText());
    }
    if (m_Files.GetKind(m_Path) != PathKind::FILE) return;
    if (Payload::CountBadSlots(*m_Files.Open(m_Path, OpenMode::READ)) > 0) {
      m_Report.problems.push_back("The header of " + m_Path +
                                  " is damaged where it counts the saves. Save twice, and it is "
                                  "written anew.");
    }
  }

  void CheckContent() {
    m_Meter.SetTotal(m_Rows.CountBytes());
    CheckExtents();
    std::size_t owner = 0;
    for (const BlockRow& row : m_Rows.blocks) {
      if (!m_Meter.GoesOn()) break;
      ++m_Report.blocks;
      CheckBlock(m_Rows.TitleOf(owner++), row);
    }
    for (const IdMapRow& row : m_Rows.idMaps) {
      if (!m_Meter.GoesOn()) break;
      const std::string title = m_Rows.TitleOf(owner++);
      if (CheckChunks(title, row.chunks) != row.bytes) {
        Add(title + ": its chunks do not have its length");
      }
    }
    m_Report.bytes = m_Payload->GetBytesRead();
  }

  void CheckExtents() {
    std::uint64_t end = Payload::kHeaderSize;
    std::size_t before = 0;  // who claims what lies before `end`
    for (const auto& [chunk, owner] : m_Rows.ListChunks()) {
      const std::uint64_t first = chunk.extent.offset;
      const std::uint64_t last = first + chunk.extent.length;
      const auto add = [&, &chunk = chunk, &owner = owner](const std::string& what) {
        Add(m_Rows.TitleOf(owner) + ": " + Describe(chunk, m_Path) + ": " + what);
      };
      if (first < Payload::kHeaderSize || last < first || last > m_Rows.state.payloadLength) {
        add("this is no place for content");
      } else if (first < end) {
        add("the same bytes are claimed by " + m_Rows.TitleOf(before));
      }
      if (last < end) continue;
      end = last;
      before = owner;
    }
  }

  // Bytes of the chunks.
  std::uint64_t CheckChunks(const std::string& title, const std::string& packed) {
    std::uint64_t bytes = 0;
    std::vector<StoredChunk> chunks;
    UnpackChunks(packed, chunks);
    std::vector<unsigned char> buffer;
    for (const StoredChunk& chunk : chunks) {
      if (!m_Meter.Reach(m_Payload->GetBytesRead())) break;
      const std::string reason = m_Payload->Read(chunk.extent, buffer);
      if (!reason.empty()) AddLoss(title, chunk, reason);
    }
    for (const StoredChunk& chunk : chunks) bytes += chunk.extent.length;
    return bytes;
  }

  void AddLoss(const std::string& title, const StoredChunk& chunk, const std::string& reason) {
    Add(title + ": " + Describe(chunk, m_Path) + ": " + reason);
  }

  void CheckBlock(const std::string& title, const BlockRow& row) {
    FED_DataDescriptor descriptor;
    DecodeKey(row.key, descriptor);
    if (!IsKnownHere(descriptor, row.format)) {
      m_Report.problems.push_back(title + ": its kind, of format '" + row.format +
                                  "', is not known here or has another format. This is no damage; "
                                  "use the program that wrote it.");
      CheckChunks(title, row.chunks);
      return;
    }
    bool isIntact = true;
    SavedBlock saved(*m_Payload, row, [&](const StoredChunk& chunk, const std::string& reason) {
      isIntact = false;
      AddLoss(title, chunk, reason);
    });
    const std::string problem = saved.Open();
    if (!problem.empty()) return Add("The catalogue's entry of " + title + ": " + problem);
    const SavedBlock::GoOn goOn = [this] { return m_Meter.Reach(m_Payload->GetBytesRead()); };
    CheckRecords(title, row, saved, isIntact);
    CheckContents(title, row, saved, goOn);
    saved.LoadRest(goOn);
    goOn();
  }

  void CheckRecords(const std::string& title, const BlockRow& row, SavedBlock& saved,
                    const bool& isIntact) {
    std::uint64_t records = 0;
    bool isCovered = true;
    saved.VisitRuns([&](std::size_t first, std::size_t count) {
      const std::size_t size = saved.GetRecordSize();
      records += count;
      isCovered &= saved.Covers(Part::RECORDS, first * size, count * size);
      return true;
    });
    if (!isCovered) Add(title + ": some of its records lie outside of its chunks");
    if (isIntact && records != row.records) {
      Add(title + ": it has " + std::to_string(records) + " records, but the catalogue says " +
          std::to_string(row.records));
    }
  }

  void CheckContents(const std::string& title, const BlockRow& row, SavedBlock& saved,
                     const SavedBlock::GoOn& goOn) {
    saved.VisitContents([&](std::uint64_t handle, const SavedBlock::Content& content) {
      if (handle % 1024 == 0 && !goOn()) return false;
      const bool isInside = content.offset <= row.contentBytes &&
                            content.bytes <= row.contentBytes - content.offset &&
                            saved.Covers(Part::CONTENTS, content.offset, content.bytes);
      if (!content.isKnown || content.kind == 0 || (isInside && content.kind <= 3)) return true;
      Add(title + ": its string or list " + std::to_string(handle) + ", and maybe more, is " +
          (isInside ? "of no kind" : "outside of its chunks"));
      return false;
    });
  }

  FileSystem& m_Files;
  std::string m_Directory;
  ProgressMeter m_Meter;
  CommitRows m_Rows;
  std::string m_Path;
  std::unique_ptr<SavedPayload> m_Payload;
  FED_FileDatabase::Report m_Report;
};

}  // namespace

FED_FileDatabase::Report Verify(FileStore& store, const FED_FileDatabase::Progress& progress) {
  store.RequireUsable();
  return Verifier(store.GetFiles(), store.GetDirectory(), progress).Run();
}

}  // namespace qelta
