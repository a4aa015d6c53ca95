// Random operations on a database and on a map from keys to contents.

#include <random>

#include "StorageContract.h"

namespace qelta::test {
namespace {

constexpr const char* kWithText = "I|SdI";

class RandomHistory : public StorageContract {
 protected:
  struct Content {
    FED_DataDescriptor primary;
    std::map<std::size_t, double> values;
    std::map<std::size_t, std::string> texts;  // by the record that refers to them
  };
  struct Name {
    FED_DataDescriptor key;  // with what it remembers
    std::shared_ptr<Content> content;
  };

  RandomHistory() {
    for (int i = 0; i < 4; ++i) {
      m_Names.push_back({CustomKey(i), nullptr});
      m_Names.push_back({FED_DataDescriptor(i, ONF_TEMPERATURE), nullptr});
      m_Names.push_back({LabelKey("label " + std::to_string(i)), nullptr});
    }
  }

  std::size_t Below(std::size_t end) { return m_Random() % end; }
  Name& Any() { return m_Names[Below(m_Names.size())]; }

  void Create(Name& name) {
    const auto create = [&]() -> FED_DataBlock& {
      const bool catalogued = name.key.Has(FED_DataDescriptor::ONF);
      return catalogued ? Db().CreateDataBlock(name.key, 5) : Make(name.key, kWithText);
    };
    if (name.content != nullptr) {
      EXPECT_THROW(create(), FED_Failure);
    } else {
      name.content = std::make_shared<Content>(Content{create().GetDescriptor(), {}, {}});
    }
  }

  void CreateAlias(Name& existing, Name& alias) {
    const bool possible = existing.content != nullptr && alias.content == nullptr;
    EXPECT_EQ(Db().CreateDataBlockAlias(existing.key, alias.key), possible);
    if (possible) alias.content = existing.content;
  }

  void Write(Name& name) {
    if (name.content == nullptr) return;
    FED_DataBlock& block = Db().GetDataBlock(name.key);
    const std::size_t index = Below(4) == 0 ? Below(5000) : Below(20);
    block.SetScalar(index, name.content->values[index] = static_cast<double>(m_Random()));
    if (block.GetFormat() != kWithText) return;
    const std::string text(Below(100), static_cast<char>(m_Random() % 256));
    const auto handle = static_cast<int>(block.SetString(text));
    RunsOf(block).WriteColumn(1, index, 1, &handle);
    name.content->texts[index] = text;
  }

  void Delete(Name& name) {
    Db().DeleteDataBlock(name.key);
    Forget(name.content);
  }

  void DeleteLabels() {
    FED_DataDescriptorPattern pattern;
    pattern.SetMatchIfPresent(FED_DataDescriptor::LABEL, true);
    Db().DeleteDataBlocks(pattern);
    for (const Name& name : m_Names) {
      if (name.key.Has(FED_DataDescriptor::LABEL)) Forget(name.content);
    }
  }

  void Forget(const std::shared_ptr<Content> content) {
    for (Name& name : m_Names) {
      if (name.content == content) name.content = nullptr;
    }
  }

  void SaveSomehow() {
    const auto ways = WaysToSave();
    const WayToSave& way = ways[Below(ways.size())];
    way.run();
    for (Name& name : m_Names) {
      if (!way.keepsPositions) name.key = name.key.Duplicate();
    }
  }

  void Step() {
    const std::size_t kind = Below(100);
    if (kind < 20) return Create(Any());
    if (kind < 35) return CreateAlias(Any(), Any());
    if (kind < 45) return Delete(Any());
    if (kind < 55) return SaveSomehow();
    if (kind < 56) return DeleteLabels();
    Write(Any());
  }

  void Check(const FED_DataDescriptor& key, const Content* content) {
    ASSERT_EQ(Db().HasBlock(key), content != nullptr) << key.ToString();
    if (content == nullptr) return;
    FED_DataBlock& block = Db().GetDataBlock(key);
    EXPECT_TRUE(block.GetDescriptor().EqualTo(content->primary)) << key.ToString();
    std::map<std::size_t, double> values;
    for (const std::size_t index : block) values[index] = block.GetScalar(index);
    EXPECT_EQ(values, content->values) << key.ToString();
    for (const auto& [index, text] : content->texts) {
      int handle = 0;
      RunsOf(block).ReadColumn(1, index, 1, &handle);
      std::string stored;
      block.GetString(static_cast<std::uint64_t>(handle), stored);
      EXPECT_EQ(stored, text) << key.ToString();
    }
  }

  void CheckAll() {
    std::map<const Content*, const FED_DataBlock*> blocks;
    std::ptrdiff_t present = 0;
    for (const Name& name : m_Names) {
      Check(name.key, name.content.get());
      Check(name.key.Duplicate(), name.content.get());
      if (name.content == nullptr || HasFatalFailure()) continue;
      const FED_DataBlock* const block = &Get(name.key);
      EXPECT_EQ(blocks.try_emplace(name.content.get(), block).first->second, block);
      ++present;
    }
    // Names of deleted blocks may stay for a while.
    const Keys found = All();
    const auto hasBlock = [this](const FED_DataDescriptor& key) { return Has(key); };
    EXPECT_EQ(std::count_if(found.begin(), found.end(), hasBlock), present);
  }

  std::mt19937 m_Random;
  std::vector<Name> m_Names;
};

INSTANTIATE_TEST_SUITE_P(Modules, RandomHistory, testing::ValuesIn(StorageModules()),
                         testing::PrintToStringParamName());

TEST_P(RandomHistory, IsWhatAMapMakesOfIt) {
  for (int step = 1; step <= 4000 && !HasFailure(); ++step) {
    SCOPED_TRACE(step);
    Step();
    if (step % 20 == 0) CheckAll();
  }
}

}  // namespace
}  // namespace qelta::test
