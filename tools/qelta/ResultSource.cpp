#include "ResultSource.h"

#include <FED_MemoryDatabase.h>
#include <FrdImport.h>
#include <FrdSummary.h>

#include <filesystem>
#include <map>
#include <set>

#include "Databases.h"
#include "Progress.h"

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
    Progress progress("reading " + m_Name, m_ShowProgress);
    FrdReadOptions reading = m_Reading;
    reading.onProgress = [&progress](std::uint64_t done, std::uint64_t total) {
      progress.Show(done, total);
    };
    return read(reading);
  }

 public:
  FrdFile(std::string name, const SourceOptions& options)
      : m_Name(std::move(name)), m_ShowProgress(options.showProgress) {
    m_Reading.acceptRunningJob = options.acceptRunningJob;
    const FrdFileSummary summary = ReadWithProgress([this](const FrdReadOptions& reading) {
      return SummarizeFrd(std::filesystem::u8path(m_Name), reading);
    });
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
      return ImportFrd(std::filesystem::u8path(m_Name), m_Database, reading, choice);
    });
    return m_Database;
  }

 private:
  std::string m_Name;
  bool m_ShowProgress;
  FrdReadOptions m_Reading;
  std::vector<Key> m_Keys;
  std::map<Key, QeltaBlockInfo> m_Blocks;
  FED_MemoryDatabase m_Database;
};

}  // namespace

std::unique_ptr<ResultSource> ResultSource::Open(const std::string& name,
                                                 const SourceOptions& options) {
  if (IsDatabase(name)) return std::make_unique<DatabaseSource>(name);
  return std::make_unique<FrdFile>(name, options);
}

}  // namespace qelta
