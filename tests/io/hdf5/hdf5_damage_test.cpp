#include <gmock/gmock.h>
#include <hdf5.h>

#include <fstream>
#include <functional>

#include "FailureMatcher.h"
#include "Hdf5Fixture.h"
#include "OddDatabase.h"

namespace qelta::test {
namespace {

using Key = FED_DataDescriptor;

// A small change of a good file, and what is said about it.
struct Damage {
  const char* name;
  std::function<void(hid_t file)> harm;
  const char* place;
  const char* complaint;
};

hid_t Blocks(hid_t file, const char* name) {
  return H5Gopen2(file, (std::string("blocks/") + name).c_str(), H5P_DEFAULT);
}

void SetAttribute(hid_t object, const char* name, hid_t type, const void* value,
                  hsize_t count = 1) {
  if (H5Aexists(object, name) > 0) H5Adelete(object, name);
  const hid_t space = H5Screate_simple(1, &count, nullptr);
  const hid_t attribute = H5Acreate2(object, name, type, space, H5P_DEFAULT, H5P_DEFAULT);
  H5Awrite(attribute, type, value);
  H5Aclose(attribute);
}

void SetNumber(hid_t object, const char* name, std::int64_t value) {
  SetAttribute(object, name, H5T_NATIVE_INT64, &value);
}

// Puts another dataset in place of one; no values: they are never written.
void Replace(hid_t parent, const char* name, hid_t type, std::vector<hsize_t> extent,
             const void* values, bool isChunked = false) {
  H5Ldelete(parent, name, H5P_DEFAULT);
  const int rank = static_cast<int>(extent.size());
  const hid_t creation = H5Pcreate(H5P_DATASET_CREATE);
  const std::vector<hsize_t> chunk(extent.size(), 1);
  if (isChunked) H5Pset_chunk(creation, rank, chunk.data());
  const hid_t space = H5Screate_simple(rank, extent.data(), nullptr);
  const hid_t dataset = H5Dcreate2(parent, name, type, space, H5P_DEFAULT, creation, H5P_DEFAULT);
  if (values != nullptr) H5Dwrite(dataset, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values);
  H5Dclose(dataset);
}

// block_000001 has numbers, lists and texts at three indices, block_000002 coordinates of two
// nodes.
void FillSmall(FED_Database& database) {
  MapOf(database, ID_TYPE_NODE).AddConsecutive(1, 3, 0);
  FED_DataBlock& block = database.FetchDataBlock(Labelled("A"), 0, 0, "I|dLS");
  const RecordWriter record(block);
  for (const std::size_t index : {1u, 2u, 5u}) {
    record->SetIntList(2, std::vector<int>{1, 2});
    record->SetString(3, "text");
    block.SetRecord(index, *record);
  }
  for (const std::size_t index : {0u, 2u}) {
    BlockOf(database, ONF_NODE_COORDINATES).SetVector(index, std::vector<double>(3, 1).data());
  }
  Key alias = Labelled("B");
  database.CreateDataBlockAlias(Labelled("A"), alias);
}

const std::vector<Damage>& Damages() {
  static const double kDoubles[6] = {};
  static const std::int32_t kFalling[3] = {1, 5, 2}, kNegative[3] = {-1, 2, 5};
  static const std::uint64_t kJump[4] = {0, 2, 7, 6}, kBack[4] = {0, 4, 2, 6},
                             kLate[4] = {1, 2, 4, 6};
  static const std::int64_t kWide[3] = {1, 2, 1LL << 40};
  static const std::int32_t kSame[3] = {7, 7, 8};
  static const std::vector<Damage> kDamages = {
      {"no format", [](hid_t f) { H5Adelete(f, "format"); }, "", "no attribute format"},
      {"number as format", [](hid_t f) { SetNumber(f, "format", 1); }, "", "is no text"},
      {"foreign", [](hid_t f) { H5Adelete_by_name(f, ".", "format_version", H5P_DEFAULT); }, "",
       "no attribute format_version"},
      {"newer", [](hid_t f) { SetNumber(f, "format_version", 2); }, "", "has version 2"},
      {"version 0", [](hid_t f) { SetNumber(f, "format_version", 0); }, "", "is 0"},
      {"no blocks", [](hid_t f) { H5Ldelete(f, "blocks", H5P_DEFAULT); }, "", "no group blocks"},
      {"no maps", [](hid_t f) { H5Ldelete(f, "id_maps", H5P_DEFAULT); }, "", "no group id_maps"},
      {"no aliases", [](hid_t f) { H5Ldelete(f, "aliases", H5P_DEFAULT); }, "", "group aliases"},
      {"a dataset for a block",
       [](hid_t f) { Replace(Blocks(f, ""), "block_000001", H5T_NATIVE_INT, {1}, nullptr); },
       "block_000001", "the HDF5 library says"},
      {"alias of nothing", [](hid_t f) { H5Ldelete(f, "blocks/block_000001", H5P_DEFAULT); },
       "alias_000001", "no group block_000001"},
      {"negative records", [](hid_t f) { SetNumber(Blocks(f, "block_000001"), "records", -3); },
       "block_000001", "records is -3"},
      {"other records", [](hid_t f) { SetNumber(Blocks(f, "block_000001"), "records", 4); },
       "block_000001", "index has 3 rows, not 4"},
      {"two records",
       [](hid_t f) {
         SetAttribute(Blocks(f, "block_000001"), "records", H5T_NATIVE_INT64, kWide, 2);
       },
       "block_000001", "records is no integer"},
      {"records as double",
       [](hid_t f) {
         SetAttribute(Blocks(f, "block_000001"), "records", H5T_NATIVE_DOUBLE, kDoubles);
       },
       "block_000001", "records is no integer"},
      {"wide properties",
       [](hid_t f) { SetNumber(Blocks(f, "block_000001"), "properties", 1LL << 40); },
       "block_000001", "properties is 1099511627776"},
      {"no key", [](hid_t f) { H5Adelete(Blocks(f, "block_000001"), "LABEL"); }, "block_000001",
       ""},
      {"number as text", [](hid_t f) { SetNumber(Blocks(f, "block_000001"), "LABEL", 3); },
       "block_000001", "LABEL is no text"},
      {"unknown kind", [](hid_t f) { SetNumber(Blocks(f, "block_000002"), "ONF", 98); },
       "block_000002", "98"},
      {"another kind", [](hid_t f) { SetNumber(Blocks(f, "block_000002"), "ONF", ONF_TEXT_NOTE); },
       "block_000002", "the format I|V, those of TEXT_NOTE"},
      {"layer out of range", [](hid_t f) { SetNumber(Blocks(f, "block_000001"), "LAYER", 4); },
       "block_000001", "LAYER is 4"},
      {"no index", [](hid_t f) { H5Ldelete(Blocks(f, "block_000001"), "index", H5P_DEFAULT); },
       "block_000001", "no dataset index"},
      {"falling index",
       [](hid_t f) {
         Replace(Blocks(f, "block_000001"), "index", H5T_NATIVE_INT32, {3}, kFalling);
       },
       "block_000001", "index is not in ascending order"},
      {"negative index",
       [](hid_t f) {
         Replace(Blocks(f, "block_000001"), "index", H5T_NATIVE_INT32, {3}, kNegative);
       },
       "block_000001", "index is not in ascending order"},
      {"wide index",
       [](hid_t f) { Replace(Blocks(f, "block_000001"), "index", H5T_NATIVE_INT64, {3}, kWide); },
       "block_000001", "index holds values of another type"},
      {"no field", [](hid_t f) { H5Ldelete(Blocks(f, "block_000001"), "FIELD_1", H5P_DEFAULT); },
       "block_000001", "no dataset FIELD_1"},
      {"short field",
       [](hid_t f) {
         Replace(Blocks(f, "block_000001"), "FIELD_1", H5T_NATIVE_DOUBLE, {2}, kDoubles);
       },
       "block_000001", "FIELD_1 has 2 rows, not 3"},
      {"floats",
       [](hid_t f) {
         Replace(Blocks(f, "block_000001"), "FIELD_1", H5T_NATIVE_FLOAT, {3}, kDoubles);
       },
       "block_000001", "FIELD_1 holds values of another type"},
      {"not written",
       [](hid_t f) {
         Replace(Blocks(f, "block_000001"), "FIELD_1", H5T_NATIVE_DOUBLE, {3}, nullptr);
       },
       "block_000001", "fewer values than it promises"},
      {"too many to be true",
       [](hid_t f) {
         SetNumber(Blocks(f, "block_000001"), "records", 1LL << 50);
         Replace(Blocks(f, "block_000001"), "index", H5T_NATIVE_INT32, {1ULL << 50}, nullptr, true);
       },
       "block_000001", "fewer values than it promises"},
      {"a vector of two",
       [](hid_t f) {
         Replace(Blocks(f, "block_000002"), "COORDINATES", H5T_NATIVE_DOUBLE, {2, 2}, kDoubles);
       },
       "block_000002", "COORDINATES has another shape"},
      {"a flat vector",
       [](hid_t f) {
         Replace(Blocks(f, "block_000002"), "COORDINATES", H5T_NATIVE_DOUBLE, {6}, kDoubles);
       },
       "block_000002", "COORDINATES has another shape"},
      {"list beyond the values",
       [](hid_t f) {
         Replace(Blocks(f, "block_000001/FIELD_2"), "offsets", H5T_NATIVE_UINT64, {4}, kJump);
       },
       "block_000001", "offsets leads beyond the values"},
      {"list backwards",
       [](hid_t f) {
         Replace(Blocks(f, "block_000001/FIELD_2"), "offsets", H5T_NATIVE_UINT64, {4}, kBack);
       },
       "block_000001", "offsets leads beyond the values"},
      {"list from 1",
       [](hid_t f) {
         Replace(Blocks(f, "block_000001/FIELD_2"), "offsets", H5T_NATIVE_UINT64, {4}, kLate);
       },
       "block_000001", "offsets does not begin with 0"},
      {"numbers for texts",
       [](hid_t f) {
         Replace(Blocks(f, "block_000001"), "FIELD_3", H5T_NATIVE_DOUBLE, {3}, kDoubles);
       },
       "block_000001", "FIELD_3 holds values of another type"},
      {"ids twice",
       [](hid_t f) {
         const hid_t map = H5Gopen2(f, "id_maps/node", H5P_DEFAULT);
         Replace(map, "id", H5T_NATIVE_INT32, {3}, kSame);
       },
       "", "node"},
      {"fewer ids",
       [](hid_t f) {
         const hid_t map = H5Gopen2(f, "id_maps/node", H5P_DEFAULT);
         Replace(map, "id", H5T_NATIVE_INT32, {2}, kSame);
       },
       "", "id map node: dataset id has 2 rows, not 3"},
  };
  return kDamages;
}

TEST_F(Hdf5, DamageIsAFailureThatSaysWhere) {
  Database source;
  FillSmall(source);
  for (const Damage& damage : Damages()) {
    ExportHdf5(source, source.Keys(), path);
    const hid_t access = H5Pcreate(H5P_FILE_ACCESS);
    H5Pset_fclose_degree(access, H5F_CLOSE_STRONG);
    const hid_t file = H5Fopen(path.c_str(), H5F_ACC_RDWR, access);
    damage.harm(file);
    H5Fclose(file);
    Database target;
    const FED_Failure failure = CatchFailure([&] { ImportAll(path, target); });
    EXPECT_FALSE(IsHdf5DeviceFailure(failure)) << damage.name;
    EXPECT_THAT(failure.GetMessageText(),
                testing::AllOf(testing::StartsWith(path), testing::HasSubstr(damage.place),
                               testing::HasSubstr(damage.complaint)))
        << damage.name;
  }
}

// Cut off anywhere, and with bytes changed anywhere: a failure, or what can still be read.
TEST_F(Hdf5, DamagedBytesNeverDoHarm) {
  Database source;
  FillSmall(source);
  ExportHdf5(source, source.Keys(), path);
  std::ifstream file(path, std::ios::binary);
  const std::string whole(std::istreambuf_iterator<char>(file), {});
  const auto import = [&](const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
    Database target;
    ImportAll(path, target);
  };
  testing::internal::CaptureStderr();
  for (std::size_t size = 0; size < whole.size(); size += 1 + size / 40) {
    EXPECT_FALSE(IsHdf5DeviceFailure(CatchFailure([&] { import(whole.substr(0, size)); }))) << size;
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  std::ofstream(path) << "no HDF5 file";
  EXPECT_FALSE(QeltaHdf5File::IsOne(path));
  EXPECT_EQ(FailureId([&] { QeltaHdf5File{path}; }), "310000000932");
  EXPECT_EQ(FailureId([&] { QeltaHdf5File{folder.string() + "/none.h5"}; }), "310000000935");
}

}  // namespace
}  // namespace qelta::test
