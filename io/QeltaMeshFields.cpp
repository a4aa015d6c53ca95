#include "QeltaMeshFields.h"

#include <BlockMetaData.h>

#include <algorithm>
#include <limits>
#include <map>
#include <numeric>
#include <tuple>

#include "QeltaComponents.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;

bool IsKind(const Key& key, FED_OnfId kind) {
  return key.Has(Key::ONF) && key.GetInteger(Key::ONF) == kind;
}

QeltaMeshField::Motion MotionOf(const Key& key) {
  using Motion = QeltaMeshField::Motion;
  if (IsKind(key, ONF_DISPLACEMENT)) return Motion::Displacement;
  return IsKind(key, ONF_MODE_SHAPE) ? Motion::Shape : Motion::None;
}

// What can be drawn and belongs to this mesh: the mesh itself is not.
bool IsDrawable(const FED_DataBlock& block) {
  const FED_IdType type = RecordIdTypeOf(block);
  const Key& key = block.GetDescriptor();
  return (type == ID_TYPE_NODE || type == ID_TYPE_ELEMENT) && !IsKind(key, ONF_NODE_COORDINATES) &&
         !IsKind(key, ONF_ELEMENT_TOPOLOGY) && !NumbersOf(block).empty();
}

class Collector {
 public:
  Collector(const FED_Database& database, const QeltaMeshes& meshes, const std::vector<Key>& keys)
      : m_Database(database), m_Meshes(meshes) {
    const std::vector<std::string> names = NameBlocks(keys);
    for (std::size_t i = 0; i < keys.size(); ++i) m_Names.emplace(keys[i], names[i]);
    m_Result.fields.resize(meshes.GetAll().size());
  }

  void Add(const std::vector<Key>& keys, std::optional<std::size_t> step) {
    for (const Key& key : keys) AddBlock(key, m_Names.at(key), step);
  }

  QeltaMeshFields Finish(std::vector<QeltaStep> steps) {
    m_Result.steps = std::move(steps);
    return std::move(m_Result);
  }

 private:
  void AddBlock(const Key& key, const std::string& name, std::optional<std::size_t> step) {
    const FED_DataBlock& block = m_Database.GetDataBlock(key);
    const FED_OnfMetaData& kind = MetaDataOf(block);
    const auto mesh = static_cast<std::size_t>(m_Meshes.Find(key) - m_Meshes.GetAll().data());
    std::vector<QeltaMeshField>& fields = m_Result.fields[mesh];
    const auto [place, isNew] = m_Places.emplace(std::tuple(mesh, name, &kind), fields.size());
    if (isNew) {
      fields.push_back({UniqueName(fields, name, kind.name),
                        kind.unit,
                        RecordIdTypeOf(block) == ID_TYPE_ELEMENT,
                        MotionOf(key),
                        {}});
    }
    fields[place->second].blocks.push_back({key, step});
  }

  static std::string UniqueName(const std::vector<QeltaMeshField>& fields, const std::string& name,
                                const std::string& kind) {
    const auto isTaken = [&fields](const std::string& text) {
      return std::any_of(fields.begin(), fields.end(),
                         [&text](const QeltaMeshField& field) { return field.name == text; });
    };
    if (!isTaken(name)) return name;
    const std::string longer = name + " " + kind;
    std::string unique = longer;
    for (int i = 2; isTaken(unique); ++i) unique = longer + " " + std::to_string(i);
    return unique;
  }

  const FED_Database& m_Database;
  const QeltaMeshes& m_Meshes;
  std::map<Key, std::string> m_Names;
  std::map<std::tuple<std::size_t, std::string, const FED_OnfMetaData*>, std::size_t> m_Places;
  QeltaMeshFields m_Result;
};

// Steps have new places; those without one are left out, and fields that then have no block.
void KeepSteps(std::vector<QeltaMeshField>& fields,
               const std::vector<std::optional<std::size_t>>& places) {
  using Block = QeltaMeshField::Block;
  for (QeltaMeshField& field : fields) {
    const auto isGone = [&places](const Block& block) {
      return block.step && !places[*block.step];
    };
    auto& blocks = field.blocks;
    blocks.erase(std::remove_if(blocks.begin(), blocks.end(), isGone), blocks.end());
    for (Block& block : blocks) {
      if (block.step) block.step = places[*block.step];
    }
  }
  const auto isEmpty = [](const QeltaMeshField& field) { return field.blocks.empty(); };
  fields.erase(std::remove_if(fields.begin(), fields.end(), isEmpty), fields.end());
}

// Some evenly spread places among `count`, the first and the last among them.
std::vector<std::size_t> Spread(std::size_t kept, std::size_t count) {
  std::vector<std::size_t> places(kept, count - 1);
  for (std::size_t i = 0; i + 1 < kept; ++i) {
    places[i] = (2 * i * (count - 1) + kept - 1) / (2 * (kept - 1));
  }
  return places;
}

}  // namespace

QeltaMeshFields FindMeshFields(const FED_Database& database, const QeltaMeshes& meshes,
                               const std::vector<Key>& keys) {
  std::vector<Key> drawable;
  for (const Key& key : keys) {
    if (meshes.Find(key) != nullptr && IsDrawable(database.GetDataBlock(key))) {
      drawable.push_back(key);
    }
  }
  QeltaSteps steps = FindSteps(database, drawable);
  Collector collector(database, meshes, drawable);
  collector.Add(steps.constant, std::nullopt);
  for (std::size_t i = 0; i < steps.steps.size(); ++i) collector.Add(steps.steps[i].blocks, i);
  return collector.Finish(std::move(steps.steps));
}

void KeepSteps(QeltaMeshFields& fields, const std::vector<std::size_t>& steps) {
  std::vector<std::optional<std::size_t>> places(fields.steps.size());
  std::vector<QeltaStep> kept;
  for (const std::size_t step : steps) {
    places[step] = kept.size();
    kept.push_back(std::move(fields.steps[step]));
  }
  fields.steps = std::move(kept);
  for (std::vector<QeltaMeshField>& ofMesh : fields.fields) KeepSteps(ofMesh, places);
}

std::vector<float> ReadAtPositions(const FED_DataBlock& block, const QeltaPositions& all,
                                   const std::vector<std::uint32_t>& positions) {
  const std::vector<QeltaComponent> numbers = NumbersOf(block);
  const std::size_t count = positions.size();
  std::vector<float> values(numbers.size() * count, std::numeric_limits<float>::quiet_NaN());
  std::size_t next = 0;
  VisitRecords(block, [&](std::size_t first, std::size_t records, const unsigned char* bytes) {
    for (; next < count; ++next) {
      const std::size_t index = all.IndexAt(positions[next]);
      if (index >= first + records) return;
      if (index < first) continue;
      const unsigned char* const record = bytes + (index - first) * block.GetRecordSize();
      for (std::size_t k = 0; k < numbers.size(); ++k) {
        values[k * count + next] = static_cast<float>(numbers[k].Read(record));
      }
    }
  });
  return values;
}

std::optional<std::vector<std::size_t>> ChooseSteps(const std::vector<std::uint64_t>& bytes,
                                                    std::uint64_t room) {
  const std::size_t least = std::min<std::size_t>(bytes.size(), 2);
  for (std::size_t kept = bytes.size();; --kept) {
    std::vector<std::size_t> places = Spread(kept, bytes.size());
    const auto sum = std::accumulate(
        places.begin(), places.end(), std::uint64_t{0},
        [&bytes](std::uint64_t total, std::size_t place) { return total + bytes[place]; });
    if (sum <= room) return places;
    if (kept <= least) return std::nullopt;
  }
}

}  // namespace qelta
