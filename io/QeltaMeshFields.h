#pragma once

#include <FED_Database.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "QeltaMesh.h"
#include "QeltaSteps.h"

namespace qelta {

/// Values that can be drawn on a mesh: blocks of one name and kind at several steps.
struct QeltaMeshField {
  struct Block {
    FED_DataDescriptor key;
    std::optional<std::size_t> step;  ///< nothing when the block holds at every step
  };

  /// Whether the values say where the nodes move to, and with a size that means something.
  enum class Motion { None, Displacement, Shape };

  std::string name;  ///< that of no other field of the mesh
  std::string unit;  ///< physical quantity, empty when none is known
  bool isOnCells = false;
  Motion motion = Motion::None;
  std::vector<Block> blocks;  ///< in the order of their steps
};

struct QeltaMeshFields {
  std::vector<QeltaStep> steps;  ///< of all meshes
  /// For each mesh of QeltaMeshes::GetAll its fields, in the order of their first blocks.
  std::vector<std::vector<QeltaMeshField>> fields;
};

/// Which of the blocks of `keys` hold numbers of nodes or elements of a mesh.
QeltaMeshFields FindMeshFields(const FED_Database& database, const QeltaMeshes& meshes,
                               const std::vector<FED_DataDescriptor>& keys);

/// Leaves out all steps but these, which are ascending, and numbers the rest anew.
void KeepSteps(QeltaMeshFields& fields, const std::vector<std::size_t>& steps);

/// The numbers of a block, as NumbersOf lists them, for some nodes or cells of a mesh: one
/// component after another, each for all of `positions`, which are ascending. NaN where the block
/// has no record.
std::vector<float> ReadAtPositions(const FED_DataBlock& block, const QeltaPositions& all,
                                   const std::vector<std::uint32_t>& positions);

/// Which steps to keep when step i takes bytes[i] and `room` bytes are there: as many as fit,
/// spread evenly, the first and the last among them. Nothing when even these do not fit.
std::optional<std::vector<std::size_t>> ChooseSteps(const std::vector<std::uint64_t>& bytes,
                                                    std::uint64_t room);

}  // namespace qelta
