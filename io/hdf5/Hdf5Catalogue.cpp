#include "Hdf5Catalogue.h"

#include <FED_Failure.h>
#include <FED_OnfInfoPool.h>

#include "Hdf5Attributes.h"
#include "Hdf5Failures.h"
#include "Hdf5Names.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

herr_t TakeName(hid_t, const char* name, const H5L_info_t*, void* names) {
  static_cast<std::vector<std::string>*>(names)->emplace_back(name);
  return 0;
}

std::vector<std::string> NamesIn(hid_t group) {
  std::vector<std::string> names;
  CheckHdf5(H5Literate(group, H5_INDEX_NAME, H5_ITER_INC, nullptr, TakeName, &names));
  return names;
}

Hdf5Handle OpenFile(const std::string& path) {
  try {
    const Hdf5Handle access(H5Pcreate(H5P_FILE_ACCESS));
    CheckHdf5(H5Pset_fclose_degree(access, H5F_CLOSE_STRONG));
    return Hdf5Handle(H5Fopen(path.c_str(), H5F_ACC_RDONLY, access));
  } catch (const Hdf5Problem& problem) {
    if (problem.isSystem) ThrowOpenFailure(path, problem);
    throw;
  }
}

void RequireVersion(hid_t file) {
  if (ReadText(file, hdf5::kFormat) != hdf5::kFormatName) {
    throw Hdf5Problem{"attribute format is not " + std::string(hdf5::kFormatName)};
  }
  const std::int64_t version = ReadInteger(file, hdf5::kVersion);
  if (version < 1) throw Hdf5Problem{"attribute format_version is " + std::to_string(version)};
  if (version > hdf5::kNewestVersion) {
    throw Hdf5Problem{"its format has version " + std::to_string(version) +
                          ", and this program knows version " +
                          std::to_string(hdf5::kNewestVersion),
                      false, "A newer version wrote it; update the program."};
  }
}

const FED_OnfMetaData& KindOf(const Key& key, const std::string& format) {
  try {
    if (!key.Has(Key::ONF)) return FED_OnfInfoPool::FetchOnfInfo(format);
  } catch (const FED_Failure& failure) {
    throw Hdf5Problem{failure.what()};
  }
  const auto number = static_cast<FED_OnfId>(key.GetInteger(Key::ONF));
  const FED_OnfMetaData& kind = FED_OnfInfoPool::GetOnfInfo(number);
  if (kind.format == format) return kind;
  throw Hdf5Problem{"its records have the format " + format + ", those of " + kind.name + " have " +
                    kind.format};
}

}  // namespace

Hdf5Catalogue::Hdf5Catalogue(const std::string& path) : m_Path(path) {
  Hdf5Handle aliases;
  std::vector<std::string> blockNames, aliasNames;
  Locate("", [&] {
    m_File = OpenFile(path);
    RequireVersion(m_File);
    m_Group = OpenGroup(m_File, hdf5::kBlocks);
    aliases = OpenGroup(m_File, hdf5::kAliases);
    blockNames = NamesIn(m_Group);
    aliasNames = NamesIn(aliases);
  });
  for (const std::string& name : blockNames) Locate(name, [&] { AddBlock(name); });
  for (const std::string& name : aliasNames) Locate(name, [&] { AddAlias(aliases, name); });
}

std::vector<Hdf5Catalogue::Choice> Hdf5Catalogue::Choose(const std::vector<Key>& keys) const {
  std::vector<Choice> choices;
  std::map<std::size_t, std::size_t> places;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const auto found = m_KeyBlocks.find(keys[i]);
    if (found == m_KeyBlocks.end()) {
      FED_Failure::Throw("310000000933", "|%P|QeltaIoHdf5|Hdf5Catalogue",
                         "%s has no block %s; choose from those that it has.", m_Path.c_str(),
                         keys[i].ToString().c_str());
    }
    const Block& block = m_Blocks[found->second];
    const auto [place, isNew] = places.emplace(found->second, choices.size());
    if (isNew) choices.push_back({&block, {}});
    std::vector<std::size_t>& chosen = choices[place->second].keys;
    chosen.insert(block.key.EqualTo(keys[i]) ? chosen.begin() : chosen.end(), i);
  }
  return choices;
}

Hdf5Handle Hdf5Catalogue::OpenIdMaps() const { return OpenGroup(m_File, hdf5::kIdMaps); }

Hdf5Handle Hdf5Catalogue::OpenBlock(const Block& block) const {
  return OpenGroup(m_Group, block.name);
}

void Hdf5Catalogue::ThrowReadFailure(const std::string& place, const Hdf5Problem& problem) const {
  qelta::ThrowReadFailure(m_Path, place, problem);
}

void Hdf5Catalogue::AddBlock(const std::string& name) {
  const Hdf5Handle group = OpenGroup(m_Group, name);
  const Key key = ReadKey(group);
  const std::int64_t records = ReadInteger(group, hdf5::kRecords);
  if (records < 0) throw Hdf5Problem{"attribute records is " + std::to_string(records)};
  AddKey(key, m_Blocks.size());
  m_BlockNames.emplace(name, m_Blocks.size());
  m_Blocks.push_back({key, name, &KindOf(key, ReadText(group, hdf5::kRecordFormat)),
                      static_cast<std::uint64_t>(records)});
}

void Hdf5Catalogue::AddAlias(hid_t aliases, const std::string& name) {
  const Hdf5Handle group = OpenGroup(aliases, name);
  const std::string block = ReadText(group, hdf5::kAliasOf);
  const auto found = m_BlockNames.find(block);
  if (found == m_BlockNames.end()) throw Hdf5Problem{"there is no group " + block};
  AddKey(ReadKey(group), found->second);
}

void Hdf5Catalogue::AddKey(const Key& key, std::size_t block) {
  if (!m_KeyBlocks.emplace(key, block).second) {
    throw Hdf5Problem{"another block has the key " + key.ToString()};
  }
  m_Keys.push_back(key);
}

}  // namespace qelta
