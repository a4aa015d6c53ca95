#pragma once

#include <FED_DataBlock.h>

#include <cstddef>
#include <string>
#include <vector>

#include "QeltaComponents.h"

namespace qelta {

/// The numbers in the records of a block and what follows from them: the magnitude of every vector
/// and, for kinds that hold stresses, the von Mises stress and the three principal values of every
/// tensor. Good for all blocks of the same kind or format.
class QeltaQuantities {
 public:
  explicit QeltaQuantities(const FED_DataBlock& block);

  /// "DISPLACEMENT.x", "DISPLACEMENT.magnitude", "STRESS.mises": in the order of the fields, what
  /// follows from a field behind its components.
  const std::vector<std::string>& GetTitles() const { return m_Titles; }

  /// The values of a record: one for each title.
  void Read(const unsigned char* record, double* values) const;

  /// These quantities without any but the one of this title, which must be one of them.
  QeltaQuantities Only(const std::string& title) const;

 private:
  // Numbers of a record and what is made of them, of which `count` values from `first` on count.
  struct Part {
    std::vector<QeltaComponent> inputs;
    std::size_t first;
    std::size_t count;
    void (*compute)(const double* inputs, double* values);
  };

  QeltaQuantities() = default;
  void AddPlain(const QeltaComponent& number);
  void AddDerived(std::vector<QeltaComponent> inputs, const std::string& name, BlockDataType type,
                  bool areStresses);

  std::vector<Part> m_Parts;
  std::vector<std::string> m_Titles;
};

}  // namespace qelta
