#include <QeltaBlockCopy.h>
#include <QeltaDatabaseDiff.h>
#include <QeltaHdf5.h>
#include <QeltaPatternText.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "FailureMatcher.h"
#include "Hdf5Fixture.h"
#include "OddDatabase.h"

#ifdef __linux__
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace qelta::test {
namespace {

namespace fs = std::filesystem;
using Key = FED_DataDescriptor;

std::string DifferenceOf(const FED_Database& a, const FED_Database& b) {
  const QeltaDatabaseDiff diff(a, b, {});
  std::string text;
  for (const auto& pair : QeltaDatabaseDiff::Match(a.FindBlocks({}), b.FindBlocks({}), {})) {
    const QeltaBlockDifference difference = diff.Compare(pair);
    if (difference.state == QeltaBlockDifference::SAME) continue;
    text += difference.key.ToString() + ": " + std::to_string(difference.state) + " " +
            difference.worst + "\n";
  }
  return text;
}

std::string TextOf(const FED_MemoryIdMap& map) {
  std::string text;
  for (const IdRun& run : map.ListRuns()) {
    for (std::uint32_t i = 0; i < run.length; ++i) {
      std::string name;
      if (map.HasNameAt(run.index + i)) map.NameOfIndex(run.index + i, name);
      text += std::to_string(run.index + i) + ":" + std::to_string(run.id + std::int64_t{i}) + name;
      text += ' ';
    }
  }
  return text;
}

// A comparison of numbers does not see the sign of a zero, nor the bits of what is no number.
std::vector<unsigned char> BitsIn(const FED_Database& database) {
  const FED_DataBlock& block = database.GetDataBlock(Labelled("BITS"));
  std::vector<unsigned char> bytes(5 * block.GetRecordSize());
  QeltaBulkAccess::ReadRun(block, 9, 5, bytes.data());
  return bytes;
}

TEST_F(Hdf5, BringsBackEverything) {
  Database source;
  FillAll(source);
  const char noBytes = 0;
  QeltaBulkAccess::WriteRun(source.FetchDataBlock(Labelled("NO FIELDS"), 0, 0, "I|"), 4, 1,
                            &noBytes);
  for (const int level : {0, 6}) {
    ExportHdf5(source, source.Keys(), path, {}, {level});
    Database target;
    ImportAll(path, target);
    EXPECT_EQ(DifferenceOf(source, target), "");
    EXPECT_EQ(BitsIn(source), BitsIn(target));
    for (int type = 0; type < 15; ++type) {
      EXPECT_EQ(TextOf(MapOf(source, static_cast<FED_IdType>(type))),
                TextOf(MapOf(target, static_cast<FED_IdType>(type))));
    }
    for (const Key& key : source.Keys()) {
      const FED_DataBlock& block = target.GetDataBlock(key.Duplicate());
      EXPECT_EQ(block.GetProperties(), source.GetDataBlock(key).GetProperties());
      EXPECT_TRUE(block.GetDescriptor().EqualTo(source.GetDataBlock(key).GetDescriptor()));
    }
  }
}

// The target numbers nodes and groups otherwise and knows more of them.
TEST_F(Hdf5, MovesRecordsToWhereTheirIdsAre) {
  Database source;
  AddMaps(source);
  AddMesh(source);
  ExportHdf5(source, source.Keys(), path);
  Database target;
  MapOf(target, ID_TYPE_NODE).AddConsecutive(500, 4, 0);
  MapOf(target, ID_TYPE_NODE).AddConsecutive(1000, 10, 10);
  MapOf(target, ID_TYPE_NODE_GROUP).Add(0, 1, "OTHER");
  MapOf(target, ID_TYPE_ELEMENT).Add(0, 34);
  MapOf(target, ID_TYPE_ELEMENT_GROUP).Add(0, 2, "X");
  const auto import = [&](FED_Database& database) { ImportAll(path, database); };
  // An element has a group that no map knows: it would become another one.
  EXPECT_THAT(CatchFailure([&] { import(target); }).GetMessageText(),
              testing::HasSubstr("element group"));
  source.DeleteDataBlock(Key(ONF_ELEMENT_ATTRIBUTES));
  Key byId = Labelled("BY ID");
  byId.SetInteger(Key::ID_TYPE, ID_TYPE_NODE);
  source.FetchDataBlock(byId, 0, 0, "I|i").SetInteger(42, 17);
  ExportHdf5(source, source.Keys(), path);
  for (int round = 0; round < 2; ++round) {
    Database other;
    MapOf(other, ID_TYPE_NODE).AddConsecutive(500, 4, 0);
    MapOf(other, ID_TYPE_NODE_GROUP).Add(0, 1, "OTHER");
    MapOf(other, ID_TYPE_ELEMENT).Add(0, 34);
    import(other);
    if (round > 0) import(other);
    EXPECT_EQ(DifferenceOf(source, other), "");
    const FED_IdMap& nodes = MapOf(other, ID_TYPE_NODE);
    EXPECT_NE(nodes.IndexOfId(1002), 42);
    EXPECT_EQ(other.GetDataBlock(byId).GetInteger(static_cast<std::size_t>(nodes.IndexOfId(1002))),
              17);
  }
}

TEST_F(Hdf5, SelectsAndChangesKeys) {
  Database source;
  FillAll(source);
  Key alias = Labelled("BEST");
  alias.SetInteger(Key::ITERATION, -1);
  // Asked for by its alias alone, a block comes with its own key.
  ExportHdf5(source, {alias, Labelled("EMPTY"), Labelled("BITS")}, path);
  const QeltaHdf5File file(path);
  EXPECT_EQ(file.GetKeys().size(), 4u);
  Database target;
  file.Import(QeltaPatternText({"LABEL=BEST,BITS"}).Select(file.GetKeys()),
              QeltaKeyChanges({"STATE=3"}), target);
  Key changed = alias.Duplicate();
  changed.SetInteger(Key::STATE, 3);
  EXPECT_EQ(target.Keys().size(), 2u);
  EXPECT_EQ(target.GetDataBlock(changed).GetMaxIndex(), 59999 + 59999 / 777);
  EXPECT_THAT(CatchFailure([&] {
                file.Import(file.GetKeys(), QeltaKeyChanges({"LABEL=X"}), target);
              }).GetMessageText(),
              testing::HasSubstr("would both become"));
  EXPECT_EQ(target.Keys().size(), 2u);
  EXPECT_EQ(FailureId([&] { file.Import({Labelled("NONE")}, {}, target); }), "310000000933");
  EXPECT_EQ(FailureId([&] {
              file.Import({Labelled("BITS")}, QeltaKeyChanges({"ONF=DISPLACEMENT"}), target);
            }),
            "310000000934");
  EXPECT_THROW(ExportHdf5(source, {Labelled("NONE")}, path), FED_Failure);
}

TEST_F(Hdf5, SecondImportReplacesTheFirst) {
  Database source;
  FillAll(source);
  ExportHdf5(source, source.Keys(), path);
  Database target;
  ImportAll(path, target);
  target.GetDataBlock(Labelled("LARGE")).SetVector(1, std::vector<double>(3, 9).data());
  target.DeleteDataBlock(Labelled("ODD"));
  // Somebody else's block stands under the name of an alias.
  Key second(3, ONF_NODE_COORDINATES);
  target.DeleteDataBlock(Key(ONF_NODE_COORDINATES));
  target.FetchDataBlock(second, std::size_t{0}).SetVector(1, std::vector<double>(3, 9).data());
  ImportAll(path, target);
  EXPECT_EQ(DifferenceOf(source, target), "");
}

// The same file whatever the order in which a program met its texts.
TEST_F(Hdf5, ExportsAreTheSameByteForByte) {
  const auto bytes = [this] {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  };
  std::string first;
  for (const bool isReversed : {false, true}) {
    Database source;
    for (int i = 0; i < 5; ++i) {
      source.FetchDataBlock(Labelled("SAME" + std::to_string(i)), 0, 0, "I|d").SetScalar(1, i);
    }
    std::vector<Key> keys = source.Keys();
    if (isReversed) std::reverse(keys.begin(), keys.end());
    ExportHdf5(source, keys, path);
    if (!isReversed) first = bytes();
  }
  EXPECT_EQ(first == bytes(), true);
}

struct Stopped {};

TEST_F(Hdf5, LeavesNothingOfAnExportThatFails) {
  Database source;
  FillAll(source);
  std::ofstream(path) << "before";
  std::uint64_t last = 0, calls = 0;
  ExportHdf5(source, source.Keys(), (folder / "whole.h5").string(),
             [&](std::uint64_t done, std::uint64_t total) {
               EXPECT_TRUE(last <= done && done <= total);
               last = done;
               ++calls;
             });
  EXPECT_GT(calls, 10u);
  fs::remove(folder / "whole.h5");
  EXPECT_THROW(ExportHdf5(source, source.Keys(), path,
                          [](std::uint64_t, std::uint64_t) { throw Stopped(); }),
               Stopped);
  for (const std::string& place : {folder.string(), (folder / "none" / "file.h5").string()}) {
    const FED_Failure failure = CatchFailure([&] { ExportHdf5(source, source.Keys(), place); });
    EXPECT_TRUE(IsHdf5DeviceFailure(failure)) << failure.what();
    EXPECT_THAT(failure.GetMessageText(), testing::HasSubstr(place));
  }
  EXPECT_EQ(fs::file_size(path), 6u);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
}

#ifdef __linux__
[[noreturn]] void ExportInto(const std::string& path, rlim_t room) {
  Database source;
  FillAll(source);
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{room, room};
  setrlimit(RLIMIT_FSIZE, &limit);
  try {
    ExportHdf5(source, source.Keys(), path);
  } catch (const FED_Failure& failure) {
    std::fputs(failure.what(), stderr);
    std::exit(IsHdf5DeviceFailure(failure) ? 4 : 1);
  }
  std::exit(0);
}

// Wherever the room ends. In a process of its own, which ends as programs do: the library has work
// of its own to do then.
TEST_F(Hdf5, FullDiskIsAFailure) {
  for (const rlim_t room :
       std::initializer_list<rlim_t>{1000, 3000, 70000, 200000, 1500000, 4000000}) {
    EXPECT_EXIT(ExportInto(path, room), testing::ExitedWithCode(4), "Cannot write.*File too large")
        << room;
    EXPECT_TRUE(fs::is_empty(folder)) << room;
  }
}
#endif

}  // namespace
}  // namespace qelta::test
