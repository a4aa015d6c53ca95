#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "ForwardingFiles.h"

namespace qelta::test {

/// A file system that remembers every change below a directory, and can show what a crash of the
/// machine may leave of them.
///
/// What is there at first is taken to be durable. Memory that SQLite shares between processes is
/// not recorded. Outlives its files.
class CrashLog : public ForwardingFiles {
 public:
  /// `root` exists.
  CrashLog(FileSystem& real, const std::string& root);

  /// How many changes and syncs have been recorded.
  std::size_t GetSize() const { return m_Events.size() - m_First; }

  /// Writes, into the empty directory `target`, what may stand below `root` when the machine stops
  /// after the first `count` events.
  ///
  /// Changes of a file that a sync of it followed are there. Every other write is kept, dropped, or
  /// torn at multiples of 512 bytes, whatever became of those before it; but each 512 bytes are as
  /// they once were in memory. Truncations are kept or dropped, so are names that were made,
  /// renamed or removed, which the sync of their directory makes sure. Seed 0 drops whatever may be
  /// dropped, seed 1 keeps everything, others mix. Without `honoursSyncs` no sync makes anything
  /// sure.
  void BuildCrashState(std::size_t count, std::uint32_t seed, const std::string& target,
                       bool honoursSyncs = true) const;

  std::unique_ptr<File> Open(const std::string& path, OpenMode mode) override;
  std::unique_ptr<File> Adopt(const std::string& path, std::unique_ptr<File> file) override;
  void MakeDirectory(const std::string& path) override;
  void Rename(const std::string& from, const std::string& to) override;
  void Remove(const std::string& path) override;
  void RemoveDirectory(const std::string& path) override;
  void SyncDirectory(const std::string& path) override;

 private:
  class LoggedFile;
  class CrashState;

  // Files and directories are numbered, whatever they are called: they may be renamed.
  using Node = int;
  static constexpr Node kRoot = 0;
  static constexpr Node kNone = -1;

  struct Name {
    Node directory = kNone;
    std::string text;
  };
  struct Event {
    enum class Kind { LINK, UNLINK, RENAME, WRITE, TRUNCATE, SYNC };

    Event(Kind itsKind, Node itsNode) : kind(itsKind), node(itsNode) {}

    Kind kind;
    Node node;                 ///< linked, written, truncated or synced
    Name name;                 ///< linked, unlinked or renamed
    Name newName;              ///< renamed to
    bool isDirectory = false;  ///< what is linked
    std::uint64_t offset = 0;  ///< or the size after the truncation
    std::string data;
  };
  using Entries = std::map<std::string, Node>;
  using Tree = std::map<Node, Entries>;  ///< a directory is a node that is in here

  static bool ConcernsName(const Event& event);
  static void Apply(const Event& event, Tree& tree);
  void Record(Event event);
  Node RecordNew(const std::string& path, bool isDirectory);
  void RecordExisting();
  void RecordRemoved(const std::string& path);
  void RecordSync(Node node);
  Node Find(const std::string& path) const;
  Name FindName(const std::string& path) const;
  std::unique_ptr<File> Log(const std::string& path, std::unique_ptr<File> file, bool isAdopted);

  std::string m_Root;
  std::vector<Event> m_Events;
  std::size_t m_First = 0;
  Node m_LastNode = kRoot;
  Tree m_Tree{{kRoot, {}}};
};

}  // namespace qelta::test
