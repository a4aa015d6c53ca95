#include "CrashLog.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace qelta::test {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kSector = 512;

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string ReadAll(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace

class CrashLog::LoggedFile final : public ForwardingFile {
 public:
  LoggedFile(CrashLog& log, std::unique_ptr<File> real, Node node, Node syncedDirectory)
      : ForwardingFile(std::move(real)),
        m_Log(log),
        m_Node(node),
        m_SyncedDirectory(syncedDirectory) {}

  // Recorded first: a write that fails may have written something.
  void WriteAt(std::uint64_t offset, const void* data, std::size_t size) override {
    Event event(Event::Kind::WRITE, m_Node);
    event.offset = offset;
    event.data.assign(static_cast<const char*>(data), size);
    m_Log.Record(std::move(event));
    GetReal().WriteAt(offset, data, size);
  }

  void Truncate(std::uint64_t size) override {
    Event event(Event::Kind::TRUNCATE, m_Node);
    event.offset = size;
    m_Log.Record(std::move(event));
    GetReal().Truncate(size);
  }

  void Sync() override {
    GetReal().Sync();
    m_Log.RecordSync(m_Node);
    m_Log.RecordSync(m_SyncedDirectory);
    m_SyncedDirectory = kNone;
  }

 private:
  CrashLog& m_Log;
  Node m_Node;
  Node m_SyncedDirectory;  // with the first sync
};

class CrashLog::CrashState {
 public:
  CrashState(const CrashLog& log, std::size_t count, std::uint32_t seed, bool honoursSyncs)
      : m_Log(log), m_End(log.m_First + count), m_Seed(seed), m_Random(seed) {
    for (std::size_t i = 0; honoursSyncs && i < m_End; ++i) {
      const Event& event = log.m_Events[i];
      if (event.kind == Event::Kind::SYNC) m_Synced[event.node] = i;
    }
  }

  void Write(const std::string& target) {
    Tree tree{{kRoot, {}}};
    for (std::size_t i = 0; i < m_End; ++i) {
      const Event& event = m_Log.m_Events[i];
      if (ConcernsName(event) && (IsNameSure(event, i) || Choose() != Fate::DROP)) {
        Apply(event, tree);
      }
    }
    WriteDirectory(tree, kRoot, target);
  }

 private:
  enum class Fate { DROP, KEEP, TEAR };

  bool IsSure(Node node, std::size_t index) const {
    const auto synced = m_Synced.find(node);
    return index < m_Log.m_First || (synced != m_Synced.end() && index < synced->second);
  }

  bool IsNameSure(const Event& event, std::size_t index) const {
    return IsSure(event.name.directory, index) &&
           (event.kind != Event::Kind::RENAME || IsSure(event.newName.directory, index));
  }

  Fate Choose() { return static_cast<Fate>(m_Seed < 2 ? m_Seed : m_Random() % 3); }

  void WriteDirectory(const Tree& tree, Node node, const fs::path& target) {
    for (const auto& [name, child] : tree.at(node)) {
      if (tree.count(child) == 0) {
        const std::string content = MakeContent(child);
        std::ofstream(target / name, std::ios::binary) << content;
      } else {
        fs::create_directory(target / name);
        WriteDirectory(tree, child, target / name);
      }
    }
  }

  std::string MakeContent(Node node) {
    std::string content;
    std::vector<const Event*> unsure;
    for (std::size_t i = 0; i < m_End; ++i) {
      const Event& event = m_Log.m_Events[i];
      if (event.node != node || ConcernsName(event) || event.kind == Event::Kind::SYNC) continue;
      if (!IsSure(node, i)) {
        unsure.push_back(&event);
      } else if (event.kind == Event::Kind::TRUNCATE) {
        content.resize(event.offset);
      } else {
        Put(event, event.offset, event.offset + event.data.size(), content);
      }
    }
    ApplySome(unsure, content);
    return content;
  }

  // A sector that is written has what came before in it, too.
  void ApplySome(const std::vector<const Event*>& events, std::string& content) {
    std::vector<Fate> fates(events.size());
    std::map<std::uint64_t, std::size_t> last;
    for (std::size_t i = 0; i < events.size(); ++i) {
      fates[i] = Choose();
      ForEachSector(*events[i], [&](std::uint64_t sector, std::uint64_t, std::uint64_t) {
        const bool isKept = fates[i] == Fate::TEAR ? m_Random() % 2 == 0 : fates[i] == Fate::KEEP;
        if (isKept) last[sector] = i;
      });
    }
    for (std::size_t i = 0; i < events.size(); ++i) {
      if (events[i]->kind == Event::Kind::TRUNCATE) {
        if (fates[i] != Fate::DROP) content.resize(events[i]->offset);
        continue;
      }
      ForEachSector(*events[i], [&](std::uint64_t sector, std::uint64_t from, std::uint64_t to) {
        const auto found = last.find(sector);
        if (found != last.end() && i <= found->second) Put(*events[i], from, to, content);
      });
    }
  }

  /// `visit(sector, from, to)` for the bytes that the event writes; a truncation writes none.
  template <class Visit>
  static void ForEachSector(const Event& event, Visit visit) {
    const std::uint64_t end = event.offset + event.data.size();
    for (std::uint64_t from = event.offset; from < end;) {
      const std::uint64_t to = std::min(end, (from / kSector + 1) * kSector);
      visit(from / kSector, from, to);
      from = to;
    }
  }

  static void Put(const Event& event, std::uint64_t from, std::uint64_t to, std::string& content) {
    if (content.size() < to) content.resize(to);
    content.replace(from, to - from, event.data, from - event.offset, to - from);
  }

  const CrashLog& m_Log;
  std::size_t m_End;
  std::uint32_t m_Seed;
  std::mt19937 m_Random;
  std::map<Node, std::size_t> m_Synced;  // the last sync of each
};

CrashLog::CrashLog(FileSystem& real, const std::string& root)
    : ForwardingFiles(real), m_Root(fs::canonical(root).string()) {
  RecordExisting();
  m_First = m_Events.size();
}

void CrashLog::BuildCrashState(std::size_t count, std::uint32_t seed, const std::string& target,
                               bool honoursSyncs) const {
  CrashState(*this, count, seed, honoursSyncs).Write(target);
}

std::unique_ptr<File> CrashLog::Open(const std::string& path, OpenMode mode) {
  return Log(path, m_Real.Open(path, mode), false);
}

std::unique_ptr<File> CrashLog::Adopt(const std::string& path, std::unique_ptr<File> file) {
  return Log(path, m_Real.Adopt(path, std::move(file)), true);
}

// SQLite syncs the directory of a journal itself when it syncs the journal for the first time.
std::unique_ptr<File> CrashLog::Log(const std::string& path, std::unique_ptr<File> file,
                                    bool isAdopted) {
  const Name name = path.empty() ? Name{} : FindName(path);
  if (name.directory == kNone)
    return std::make_unique<LoggedFile>(*this, std::move(file), kNone, kNone);
  const Node found = Find(path);
  const Node node = found == kNone ? RecordNew(path, false) : found;
  const bool isJournal = isAdopted && (EndsWith(path, "-journal") || EndsWith(path, "-wal"));
  return std::make_unique<LoggedFile>(*this, std::move(file), node,
                                      isJournal ? name.directory : kNone);
}

void CrashLog::MakeDirectory(const std::string& path) {
  m_Real.MakeDirectory(path);
  RecordNew(path, true);
}

void CrashLog::Rename(const std::string& from, const std::string& to) {
  const Node node = Find(from);
  m_Real.Rename(from, to);
  if (node == kNone) return;
  Event event(Event::Kind::RENAME, node);
  event.name = FindName(from);
  event.newName = FindName(to);
  Record(std::move(event));
}

void CrashLog::Remove(const std::string& path) {
  m_Real.Remove(path);
  RecordRemoved(path);
}

void CrashLog::RemoveDirectory(const std::string& path) {
  m_Real.RemoveDirectory(path);
  RecordRemoved(path);
}

void CrashLog::SyncDirectory(const std::string& path) {
  m_Real.SyncDirectory(path);
  RecordSync(Find(path));
}

bool CrashLog::ConcernsName(const Event& event) {
  return event.kind == Event::Kind::LINK || event.kind == Event::Kind::UNLINK ||
         event.kind == Event::Kind::RENAME;
}

// What cannot happen, because something before it was dropped, does not.
void CrashLog::Apply(const Event& event, Tree& tree) {
  const auto directory = tree.find(event.name.directory);
  if (directory == tree.end()) return;
  Entries& entries = directory->second;
  if (event.kind == Event::Kind::LINK) {
    entries[event.name.text] = event.node;
    if (event.isDirectory) tree[event.node];
    return;
  }
  const auto entry = entries.find(event.name.text);
  const bool renames = event.kind == Event::Kind::RENAME;
  if (entry == entries.end() || entry->second != event.node) return;
  if (renames && tree.count(event.newName.directory) == 0) return;
  entries.erase(entry);
  if (renames) tree[event.newName.directory][event.newName.text] = event.node;
}

// What happens outside is not recorded.
void CrashLog::Record(Event event) {
  if (event.node == kNone) return;
  if (ConcernsName(event)) Apply(event, m_Tree);
  m_Events.push_back(std::move(event));
}

CrashLog::Node CrashLog::RecordNew(const std::string& path, bool isDirectory) {
  Event event(Event::Kind::LINK, ++m_LastNode);
  event.name = FindName(path);
  event.isDirectory = isDirectory;
  if (event.name.directory == kNone) return kNone;
  Record(std::move(event));
  return m_LastNode;
}

void CrashLog::RecordExisting() {
  for (const auto& entry : fs::recursive_directory_iterator(m_Root)) {
    const Node node = RecordNew(entry.path().string(), entry.is_directory());
    if (entry.is_directory()) continue;
    Event event(Event::Kind::WRITE, node);
    event.data = ReadAll(entry.path());
    Record(std::move(event));
  }
}

void CrashLog::RecordRemoved(const std::string& path) {
  Event event(Event::Kind::UNLINK, Find(path));
  if (event.node == kNone) return;
  event.name = FindName(path);
  Record(std::move(event));
}

void CrashLog::RecordSync(Node node) { Record(Event(Event::Kind::SYNC, node)); }

CrashLog::Node CrashLog::Find(const std::string& path) const {
  const fs::path relative = fs::weakly_canonical(path).lexically_relative(m_Root);
  Node node = kRoot;
  for (const fs::path& part : relative) {
    if (part == ".") continue;
    const auto directory = m_Tree.find(node);
    if (directory == m_Tree.end()) return kNone;
    const auto entry = directory->second.find(part.string());
    if (entry == directory->second.end()) return kNone;
    node = entry->second;
  }
  return node;
}

CrashLog::Name CrashLog::FindName(const std::string& path) const {
  const fs::path whole = fs::weakly_canonical(path);
  return {Find(whole.parent_path().string()), whole.filename().string()};
}

}  // namespace qelta::test
