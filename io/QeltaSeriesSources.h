#pragma once

#include <FED_DataDescriptor.h>
#include <FED_Database.h>
#include <FED_OnfMetaData.h>

#include <optional>
#include <string>
#include <vector>

#include "QeltaQuantities.h"
#include "QeltaSeriesAxis.h"

namespace qelta {

/// Blocks that give one series, by their places among the sources, and what tells them from the
/// other groups: "LOADCASE 2".
struct QeltaSeriesGroup {
  std::vector<std::size_t> members;  ///< in ascending order of their x
  std::string name;
};

/// The blocks of one kind and label that hold a quantity, and where each stands on the axis.
class QeltaSeriesSources {
 public:
  using Field = FED_DataDescriptor::ResultIndex;

  /// One entry for each kind and label among `keys` that holds the number `text`; a request that
  /// cannot be fulfilled when none does or when the text means several numbers of a block.
  static std::vector<QeltaSeriesSources> Find(const FED_Database& database,
                                              const std::vector<FED_DataDescriptor>& keys,
                                              const std::string& text);

  /// Gives every block its x; those without one are left out.
  void Locate(const FED_Database& database, const QeltaSeriesAxis& axis);

  bool IsEmpty() const { return m_Keys.empty(); }
  std::size_t Size() const { return m_Keys.size(); }
  /// The x differ.
  bool Varies() const;
  bool HasSeveralRecords(const FED_Database& database) const;

  /// No two blocks with the same values of these fields stand at the same x.
  bool IsSplitBy(const std::vector<Field>& fields) const;

  /// The groups by these fields, and by as many more as make IsSplitBy true.
  std::vector<QeltaSeriesGroup> Split(std::vector<Field> fields) const;

  const FED_DataDescriptor& GetKey(std::size_t i) const { return m_Keys[i]; }
  double GetX(std::size_t i) const { return m_X[i]; }
  const QeltaQuantities& GetQuantity() const { return m_Quantity; }

  /// "DISP.y", "OBJECTIVE_VALUE".
  const std::string& GetName() const { return m_Name; }
  const FED_OnfMetaData& GetKind() const { return *m_Kind; }

 private:
  QeltaSeriesSources(const FED_DataBlock& block, QeltaQuantities quantity);

  const FED_OnfMetaData* m_Kind;
  QeltaQuantities m_Quantity;
  std::string m_Name;
  std::vector<FED_DataDescriptor> m_Keys;
  std::vector<double> m_X;
};

/// A request that the blocks cannot fulfil.
[[noreturn]] void RefuseSeries(const std::string& text);

}  // namespace qelta
