#include <FED_Message.h>

#include <algorithm>
#include <map>

#include "Hdf5Attributes.h"
#include "Hdf5BlockWriter.h"
#include "Hdf5Failures.h"
#include "Hdf5IdMaps.h"
#include "Hdf5Names.h"
#include "Hdf5OutputFile.h"
#include "QeltaHdf5.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

struct NamedBlock {
  const FED_DataBlock* block;
  std::vector<Key> aliases;
};

// Texts in their own order: that of keys is the order of first use, which differs from one program
// to the next.
bool IsBefore(const Key& a, const Key& b) {
  for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
    const Key::ResultIndex field = Key::CastIndex(i);
    if (a.Has(field) != b.Has(field)) return b.Has(field);
    if (!a.Has(field) || a.GetInteger(field) == b.GetInteger(field)) continue;
    if (Key::RD_NAME_TYPE_ITEMS[i].type == Key::STRING_FIELD) {
      return a.GetString(field) < b.GetString(field);
    }
    return a.GetInteger(field) < b.GetInteger(field);
  }
  return false;
}

std::vector<NamedBlock> FindBlocks(const FED_Database& database, std::vector<Key> keys) {
  std::sort(keys.begin(), keys.end(), IsBefore);
  keys.erase(std::unique(keys.begin(), keys.end(),
                         [](const Key& a, const Key& b) { return a.EqualTo(b); }),
             keys.end());
  std::vector<NamedBlock> blocks;
  std::map<const FED_DataBlock*, std::size_t> places;
  for (const Key& key : keys) {
    const FED_DataBlock& block = database.GetDataBlock(key);
    const auto [place, isNew] = places.emplace(&block, blocks.size());
    if (isNew) blocks.push_back({&block, {}});
    if (!block.GetDescriptor().EqualTo(key)) blocks[place->second].aliases.push_back(key);
  }
  return blocks;
}

// "block_000012": names that sort as the numbers do.
std::string NameOf(const char* what, std::size_t number, std::size_t count) {
  const std::size_t digits = std::max<std::size_t>(std::to_string(count).size(), 6);
  const std::string text = std::to_string(number);
  return what + std::string(digits - text.size(), '0') + text;
}

class Export {
 public:
  Export(const FED_Database& database, std::vector<NamedBlock> blocks,
         const QeltaHdf5Progress& progress, const QeltaHdf5ExportOptions& options)
      : m_Database(database),
        m_Blocks(std::move(blocks)),
        m_Progress(progress),
        m_Options(options) {
    for (const NamedBlock& named : m_Blocks) m_Total += BytesOf(*named.block);
  }

  void Write(const Hdf5OutputFile& output) {
    const hid_t file = output.Get();
    WriteAttribute(file, hdf5::kFormat, hdf5::kFormatName);
    WriteAttribute(file, hdf5::kVersion, std::int64_t{hdf5::kNewestVersion});
    WriteIdMaps(MakeGroup(file, hdf5::kIdMaps), m_Database.GetIdMapsPool());
    const Hdf5Handle blocks = MakeGroup(file, hdf5::kBlocks);
    const Hdf5Handle aliases = MakeGroup(file, hdf5::kAliases);
    Hdf5RecordIds ids(file, m_Database.GetIdMapsPool());
    for (std::size_t i = 0; i < m_Blocks.size(); ++i) {
      const std::string name = NameOf("block_", i + 1, m_Blocks.size());
      WriteBlock(MakeGroup(blocks, name), m_Blocks[i], ids, output);
      WriteAliases(aliases, m_Blocks[i].aliases, name);
    }
  }

 private:
  static std::uint64_t BytesOf(const FED_DataBlock& block) {
    return block.GetNumRecords() * block.GetRecordSize();
  }

  void WriteBlock(hid_t group, const NamedBlock& named, Hdf5RecordIds& ids,
                  const Hdf5OutputFile& output) {
    WriteKey(group, named.block->GetDescriptor());
    const std::uint64_t begin = m_Done;
    const std::size_t size = named.block->GetRecordSize();
    WriteHdf5Block(group, *named.block, ids, m_Options.deflateLevel, [&](std::size_t count) {
      m_Done += count * size;
      output.Check();
      ShowProgress();
    });
    m_Done = begin + BytesOf(*named.block);
    ShowProgress();
  }

  void ShowProgress() const {
    if (m_Progress) m_Progress(m_Done, m_Total);
  }

  void WriteAliases(hid_t group, const std::vector<Key>& aliases, const std::string& block) {
    for (const Key& alias : aliases) {
      const Hdf5Handle one = MakeGroup(group, NameOf("alias_", ++m_AliasCount, 0));
      WriteKey(one, alias);
      WriteAttribute(one, hdf5::kAliasOf, block);
    }
  }

  const FED_Database& m_Database;
  std::vector<NamedBlock> m_Blocks;
  const QeltaHdf5Progress& m_Progress;
  QeltaHdf5ExportOptions m_Options;
  std::uint64_t m_Done = 0;
  std::uint64_t m_Total = 0;
  std::size_t m_AliasCount = 0;
};

}  // namespace

void ExportHdf5(const FED_Database& database, const std::vector<Key>& keys, const std::string& path,
                const QeltaHdf5Progress& progress, const QeltaHdf5ExportOptions& options) {
  const Hdf5Silence silence;
  Export work(database, FindBlocks(database, keys), progress, options);
  try {
    Hdf5OutputFile file(path);
    work.Write(file);
    file.Commit();
  } catch (const Hdf5Problem& problem) {
    ThrowWriteFailure(path, problem);
  }
}

}  // namespace qelta
