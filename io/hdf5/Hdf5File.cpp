#include <FED_Failure.h>
#include <QeltaComponents.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>

#include "Hdf5BlockReader.h"
#include "Hdf5Catalogue.h"
#include "Hdf5IdMaps.h"
#include "QeltaHdf5.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;
using Choice = Hdf5Catalogue::Choice;

constexpr const char* kLocation = "|%P|QeltaIoHdf5|QeltaHdf5File";

std::uint64_t BytesOf(const Hdf5Catalogue::Block& block) {
  return block.records * block.kind->recordSize;
}

// A block under its first key in the target, in place of those that stand there under any of them.
FED_DataBlock& MakeBlock(FED_Database& target, const Choice& choice, const std::vector<Key>& keys,
                         int properties) {
  for (const std::size_t i : choice.keys) {
    if (target.HasBlock(keys[i])) target.DeleteDataBlock(keys[i]);
  }
  const Key& own = keys[choice.keys.front()];
  const FED_OnfMetaData& kind = *choice.block->kind;
  if (!own.Has(Key::ONF)) {
    return target.CreateDataBlock(own, properties, static_cast<std::int64_t>(choice.block->records),
                                  kind.format);
  }
  FED_DataBlock& block = target.CreateDataBlock(own, choice.block->records);
  if (block.GetFormat() == kind.format) return block;
  FED_Failure::Throw("310000000934", kLocation,
                     "Block %s cannot become %s: its records have the format %s, not %s.",
                     choice.block->key.ToString().c_str(), own.ToString().c_str(),
                     kind.format.c_str(), block.GetFormat().c_str());
}

}  // namespace

struct QeltaHdf5File::Content {
  explicit Content(const std::string& path) : catalogue(path) {}

  Hdf5Catalogue catalogue;
};

bool QeltaHdf5File::IsOne(const std::string& path) {
  constexpr std::array<char, 8> kSignature = {'\x89', 'H', 'D', 'F', '\r', '\n', '\x1a', '\n'};
  const std::filesystem::path name = std::filesystem::u8path(path);
  std::error_code error;
  if (!std::filesystem::is_regular_file(name, error)) return false;
  std::ifstream file(name, std::ios::binary);
  std::array<char, 8> begin{};
  return file.read(begin.data(), begin.size()) && begin == kSignature;
}

QeltaHdf5File::QeltaHdf5File(const std::string& path) {
  const Hdf5Silence silence;
  m_Content = std::make_unique<Content>(path);
}

QeltaHdf5File::~QeltaHdf5File() {
  const Hdf5Silence silence;
  m_Content.reset();
}

std::vector<Key> QeltaHdf5File::GetKeys() const { return m_Content->catalogue.GetKeys(); }

void QeltaHdf5File::Import(const std::vector<Key>& keys, const QeltaKeyChanges& changes,
                           FED_Database& target, const QeltaHdf5Progress& progress) const {
  const Hdf5Silence silence;
  const Hdf5Catalogue& catalogue = m_Content->catalogue;
  std::vector<Key> changed = changes.ApplyToAll(keys);
  const std::vector<Choice> choices = catalogue.Choose(keys);
  Hdf5IdMaps maps = catalogue.Locate("", [&] { return Hdf5IdMaps(catalogue.OpenIdMaps()); });
  maps.TeachTo(target.GetIdMapsPool());
  std::uint64_t done = 0, total = 0;
  for (const Choice& choice : choices) total += BytesOf(*choice.block);
  for (const Choice& choice : choices) {
    catalogue.Locate(choice.block->name, [&] {
      const Hdf5Handle group = catalogue.OpenBlock(*choice.block);
      FED_DataBlock& block = MakeBlock(target, choice, changed, ReadHdf5Properties(group));
      ReadHdf5Block(group, *choice.block, maps, block, [&](std::size_t count) {
        done += count * block.GetRecordSize();
        if (progress) progress(done, total);
      });
    });
    for (std::size_t i = 1; i < choice.keys.size(); ++i) {
      target.CreateDataBlockAlias(changed[choice.keys.front()], changed[choice.keys[i]]);
    }
  }
}

}  // namespace qelta
