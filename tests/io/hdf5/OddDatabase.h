#pragma once

#include <FED_MemoryDatabase.h>
#include <FED_MemoryIdMap.h>
#include <QeltaBulkAccess.h>
#include <RecordCursor.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace qelta::test {

struct Database : FED_MemoryDatabase {
  Database() { InitDb(FED_IdMapsPool(), FED_DatabaseDefs::CREATE, 0, L""); }

  std::vector<FED_DataDescriptor> Keys() const { return FindBlocks({}); }
};

inline FED_MemoryIdMap& MapOf(FED_Database& database, FED_IdType type) {
  return dynamic_cast<FED_MemoryIdMap&>(database.GetIdMapsPool().GetMap(type));
}

inline FED_DataBlock& BlockOf(FED_Database& database, FED_OnfId kind) {
  return database.FetchDataBlock(FED_DataDescriptor(kind), std::size_t{0});
}

inline FED_DataDescriptor Labelled(const std::string& label) {
  FED_DataDescriptor key;
  key.SetString(FED_DataDescriptor::LABEL, label);
  return key;
}

/// What a field of every type can hold, and what hardly anybody would put into it.
inline void FillOdd(FED_DataBlock& block, std::size_t index, int variant) {
  const double nan = std::nan("");
  const double infinity = std::numeric_limits<double>::infinity();
  const double numbers[6] = {nan, -infinity, -0.0, 5e-324, 1.0 / 3, -1.7e308};
  const std::vector<std::string> texts = {"",
                                          "plain",
                                          "Gr\xc3\xb6\xc3\x9f"
                                          "e",
                                          "not \xff UTF-8",
                                          std::string(3000000, 'x'),
                                          std::string("a\0b\0", 4)};
  const std::size_t texting = static_cast<std::size_t>(variant) % texts.size();
  const RecordWriter record(block);
  record->SetInteger(1, variant % 2 == 0 ? std::numeric_limits<int>::min() : -1);
  record->SetDouble(2, numbers[variant % 6]);
  record->SetFloat(3, variant % 2 == 0 ? std::nanf("") : -0.1f);
  record->SetString(4, texts[texting]);
  record->SetVector(5, numbers + variant % 3);
  record->SetTensor(6, numbers);
  FED_IntSetIntvl<int> set;
  set.Insert(variant, 3 * variant);
  set.Insert(std::numeric_limits<int>::max());
  if (variant > 0) record->SetIntSet(7, set);
  record->SetIntList(8, std::vector<int>(static_cast<std::size_t>(variant % 4), -variant));
  record->SetDoubleList(9, std::vector<double>(numbers, numbers + variant % 6));
  record->SetInteger(10, variant);
  record->SetDouble(11, numbers[5 - variant % 6]);
  block.SetRecord(index, *record);
}

inline void AddMaps(FED_Database& database) {
  MapOf(database, ID_TYPE_NODE).AddConsecutive(-5, 20, 0);
  MapOf(database, ID_TYPE_NODE).AddConsecutive(1000, 10, 40);
  MapOf(database, ID_TYPE_NODE).Add(50, 7777, "a named node");
  MapOf(database, ID_TYPE_ELEMENT).AddConsecutive(1, 100, 0);
  FED_MemoryIdMap& groups = MapOf(database, ID_TYPE_NODE_GROUP);
  groups.Add(0, 12, "FIX");
  groups.Add(3, 11, "\xe5\x8a\x9b");
  MapOf(database, ID_TYPE_MATERIAL).Add(2, 5, std::string("ST\0EEL", 6));
  MapOf(database, ID_TYPE_MATERIAL).Add(1, 6);
}

// Records with references, one of them to an entity that no map knows.
inline void AddMesh(FED_Database& database) {
  FED_DataBlock& nodes = BlockOf(database, ONF_NODE_COORDINATES);
  for (const std::size_t index : {0u, 3u, 19u, 40u, 50u}) {
    const double place[3] = {static_cast<double>(index), -1, 0};
    nodes.SetVector(index, place);
  }
  FED_DataBlock& elements = BlockOf(database, ONF_ELEMENT_TOPOLOGY);
  const RecordWriter element(elements);
  for (int i = 0; i < 100; i += 3) {
    element->SetInteger(1, 5 + i % 2);
    element->SetIntList(2, std::vector<int>{i % 20, 50, 40});
    elements.SetRecord(static_cast<std::size_t>(i), *element);
  }
  FED_DataBlock& groups = BlockOf(database, ONF_NODE_GROUP);
  const RecordWriter group(groups);
  group->SetIntList(1, std::vector<int>{50, 1, 2, 2, 45});
  groups.SetRecord(3, *group);
  FED_DataBlock& attributes = BlockOf(database, ONF_ELEMENT_ATTRIBUTES);
  const RecordWriter attribute(attributes);
  attribute->SetInteger(1, 4711);
  attribute->SetInteger(2, 2);
  attributes.SetRecord(8, *attribute);
}

/// Everything that a block can hold, in blocks of all forms, with aliases and id maps.
inline void FillAll(FED_Database& database) {
  using Key = FED_DataDescriptor;
  AddMaps(database);
  AddMesh(database);
  FED_DataBlock& odd = database.FetchDataBlock(Labelled("ODD"), 77, 0, "S|bIdfSV|TOLDit");
  for (int i = 0; i < 12; ++i) FillOdd(odd, static_cast<std::size_t>(i * i * 100), i);
  FillOdd(odd, std::numeric_limits<int>::max(), 4);
  FED_DataBlock& plain = database.FetchDataBlock(Labelled("a/b=c"), -1, 0, "I|SS");
  const RecordWriter record(plain);
  for (std::size_t i = 0; i < 20000; ++i) {
    record->SetString(1, std::string(i % 100, static_cast<char>('a' + i % 26)));
    plain.SetRecord(i + i / 1000, *record);
  }
  // More than one chunk of each kind of column.
  FED_DataBlock& large = database.FetchDataBlock(Labelled("LARGE"), 0, 0, "I|VLfD");
  const RecordWriter one(large);
  for (int i = 0; i < 60000; ++i) {
    const double place[3] = {i * 1.0, std::sqrt(i), 0};
    one->SetVector(1, place);
    one->SetIntList(2, std::vector<int>(static_cast<std::size_t>(i % 13), i));
    one->SetFloat(3, 0.5f * static_cast<float>(i));
    one->SetDoubleList(4, std::vector<double>(i == 100 ? 300000 : 3, i));
    large.SetRecord(static_cast<std::size_t>(i + i / 777), *one);
  }
  FED_DataBlock& bits = database.FetchDataBlock(Labelled("BITS"), 0, 0, "I|tTii");
  std::vector<unsigned char> pattern(5 * bits.GetRecordSize());
  for (std::size_t i = 0; i < pattern.size(); ++i) pattern[i] = static_cast<unsigned char>(i * 37);
  QeltaBulkAccess::WriteRun(bits, 9, 5, pattern.data());
  database.FetchDataBlock(Labelled("EMPTY"), 0, 0, "I|dD");
  database.FetchDataBlock(Key(7, ONF_DISPLACEMENT), std::size_t{0});
  Key byId = Labelled("BY ID");
  byId.SetInteger(Key::ID_TYPE, ID_TYPE_NODE);
  FED_DataBlock& custom = database.FetchDataBlock(byId, 0, 0, "I|i");
  for (const std::size_t index : {1u, 42u, 30u}) custom.SetInteger(index, static_cast<int>(index));
  Key alias = Labelled("BEST");
  alias.SetInteger(Key::ITERATION, -1);
  database.CreateDataBlockAlias(Labelled("LARGE"), alias);
  Key second(3, ONF_NODE_COORDINATES);
  database.CreateDataBlockAlias(Key(ONF_NODE_COORDINATES), second);
}

}  // namespace qelta::test
