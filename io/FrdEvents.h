#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "FrdElementType.h"

namespace qelta {

/// How the records of a table are written.
enum class FrdEncoding { ShortText = 0, LongText = 1, BinaryFloat = 2, BinaryDouble = 3 };

/// The head of a node, element or result table.
struct FrdTable {
  std::optional<std::int32_t> count;  ///< as the file says: a hint that may be wrong or absurd
  FrdEncoding encoding = FrdEncoding::LongText;
};

/// One field component that is stored in the file.
struct FrdComponent {
  std::string name;       ///< "SXX"
  std::int32_t type = 1;  ///< 1 scalar, 2 vector, 4 tensor, 12 and 14 amplitudes and phases
  std::int32_t row = 0;   ///< place in the vector or tensor, from 1; 0 when there is none
  std::int32_t column = 0;
};

/// One state of the model: a point in time, a mode, a frequency. What the file leaves blank, or
/// does not tell for this kind of analysis, has no value.
struct FrdFrame {
  std::optional<std::int32_t> step;
  std::optional<std::int32_t> increment;
  std::optional<std::int32_t> number;  ///< counts frames over all steps
  std::optional<std::int32_t> mode;
  std::optional<double> value;  ///< time, frequency in Hz, or buckling factor
  std::optional<double> eigenvalue;
  std::optional<double> generalisedMass;
  std::int32_t type = 0;  ///< 0 static, 1 time step or steady state, 2 modal, 3 other, 4 buckling
};

/// The head of one field in one frame.
struct FrdDataset {
  std::string name;  ///< "DISP", without blanks at its ends
  FrdFrame frame;
  FrdTable table;
  std::vector<FrdComponent> components;  ///< at least one
};

/// Some records of a node or result table, in the order of the file.
///
/// Record i has the id ids[i], the index indices[i] and the values
/// values[i * valueCount] ... values[(i + 1) * valueCount - 1].
struct FrdRecords {
  std::size_t count;
  std::size_t valueCount;
  const std::int32_t* ids;
  const std::int32_t* indices;
  const double* values;
};

struct FrdElement {
  std::int32_t id;
  std::int32_t index;
  const FrdElementType* type;
  std::int32_t group;
  std::int32_t material;            ///< 0 when the file has a name in its place
  std::string materialName;         ///< the first five characters of a name, or empty
  const std::int32_t* nodeIndices;  ///< type->nodeCount, in the order of the file
};

/// Receives what a reader finds, in the order of the file.
///
/// Every node and element has an index: its place in the order in which ids are first seen. For the
/// first node table of a file that is the position in the table. A later table (a new mesh) keeps
/// the index of every known id. A result may belong to a node that no table lists: that node's
/// index is new. Pointers and references hold during the call only.
class FrdVisitor {
 public:
  virtual ~FrdVisitor() = default;

  virtual void OnModel(const std::string& /*name*/) {}
  /// A line of the user header without its key, "DATE              22.november.2026".
  virtual void OnUserHeader(const std::string& /*text*/) {}
  virtual void OnMaterial(std::int32_t /*number*/, const std::string& /*name*/) {}

  virtual void OnNodesBegin(const FrdTable& /*table*/) {}
  /// Three coordinates for each node.
  virtual void OnNodes(const FrdRecords& /*nodes*/) {}
  virtual void OnNodesEnd() {}

  virtual void OnElementsBegin(const FrdTable& /*table*/) {}
  virtual void OnElement(const FrdElement& /*element*/) {}
  virtual void OnElementsEnd() {}

  virtual void OnDatasetBegin(const FrdDataset& /*dataset*/) {}
  /// One value for each component.
  virtual void OnRecords(const FrdRecords& /*records*/) {}
  /// The dataset that was begun last is whole.
  virtual void OnDatasetEnd(const FrdDataset& /*dataset*/) {}

  /// The table that was begun last is cut short and does not end: forget it. Only called where a
  /// running job is accepted.
  virtual void OnTableCut() {}
  /// The last call. `complete` is false when the end record is missing: the solver is still
  /// running, or was stopped.
  virtual void OnEnd(bool /*complete*/) {}

 protected:
  FrdVisitor() = default;
  FrdVisitor(const FrdVisitor&) = default;
  FrdVisitor& operator=(const FrdVisitor&) = default;
};

}  // namespace qelta
