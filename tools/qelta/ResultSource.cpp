#include "ResultSource.h"

#include <FED_MemoryDatabase.h>
#include <FrdImport.h>
#include <FrdSummary.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <map>
#include <set>

#include "Databases.h"
#include "Progress.h"
#include "Terminal.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

class DatabaseSource : public ResultSource {
 public:
  explicit DatabaseSource(const std::string& name)
      : m_Database(OpenDatabase(name, FED_DatabaseDefs::READ_ONLY)) {}

  std::vector<Key> GetKeys() override { return m_Database->FindBlocks({}); }

  std::vector<QeltaBlockInfo> Describe(const std::vector<Key>& keys) override {
    return DescribeBlocks(*m_Database, keys);
  }

  const FED_Database& Load(const std::vector<Key>& /*keys*/) override { return *m_Database; }

 private:
  std::unique_ptr<FED_Database> m_Database;
};

// Reads the file once for its keys and once more for records.
class FrdFile : public ResultSource {
  template <class Read>
  auto ReadWithProgress(Read read) const {
    Progress progress("reading " + m_Path.u8string(), m_ShowProgress);
    FrdReadOptions reading = m_Reading;
    reading.onProgress = [&progress](std::uint64_t done, std::uint64_t total) {
      progress.Show(done, total);
    };
    return read(reading);
  }

 public:
  FrdFile(std::filesystem::path path, const SourceOptions& options)
      : m_Path(std::move(path)), m_ShowProgress(options.showProgress) {
    m_Reading.acceptRunningJob = options.acceptRunningJob;
    const FrdFileSummary summary = ReadWithProgress(
        [this](const FrdReadOptions& reading) { return SummarizeFrd(m_Path, reading); });
    for (const QeltaCountingSink::Block& block : summary.blocks) {
      m_Keys.push_back(block.key);
      m_Blocks.emplace(block.key, DescribeBlock(block));
    }
  }

  std::vector<Key> GetKeys() override { return m_Keys; }

  std::vector<QeltaBlockInfo> Describe(const std::vector<Key>& keys) override {
    std::vector<QeltaBlockInfo> blocks;
    blocks.reserve(keys.size());
    for (const Key& key : keys) blocks.push_back(m_Blocks.at(key));
    return blocks;
  }

  const FED_Database& Load(const std::vector<Key>& keys) override {
    if (!m_Database.IsInitialized()) {
      m_Database.InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L"");
    }
    const std::set<Key> wanted(keys.begin(), keys.end());
    FrdImportChoice choice;
    choice.accepts = [&wanted](const Key& key) { return wanted.count(key) > 0; };
    ReadWithProgress([&](const FrdReadOptions& reading) {
      return ImportFrd(m_Path, m_Database, reading, choice);
    });
    return m_Database;
  }

 private:
  std::filesystem::path m_Path;
  bool m_ShowProgress;
  FrdReadOptions m_Reading;
  std::vector<Key> m_Keys;
  std::map<Key, QeltaBlockInfo> m_Blocks;
  FED_MemoryDatabase m_Database;
};

}  // namespace

std::filesystem::path PathOfSource(const std::string& name) {
  if (name != "-") return std::filesystem::u8path(name);
  if (Terminal::kInputFile != nullptr) return Terminal::kInputFile;
  throw CLI::ValidationError(
      "On this system results are not read from the standard input; save them in a file and name "
      "that.");
}

void ThrowReadOnce() {
  throw CLI::ValidationError(
      "The standard input can be read only once, which is not enough for this; save it in a file "
      "and name that.");
}

std::unique_ptr<ResultSource> ResultSource::Open(const std::string& name,
                                                 const SourceOptions& options) {
  if (IsDatabase(name)) return std::make_unique<DatabaseSource>(name);
  if (name == "-" && options.needsRecords) ThrowReadOnce();
  return std::make_unique<FrdFile>(PathOfSource(name), options);
}

}  // namespace qelta
