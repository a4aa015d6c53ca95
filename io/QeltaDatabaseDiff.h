#pragma once

#include <FED_Database.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace qelta {

/// Two numbers are the same when they are equal, or both no numbers, or differ by no more than the
/// absolute tolerance or the relative one times the greater of their magnitudes.
struct QeltaTolerances {
  double absolute = 0;
  double relative = 0;
  std::map<std::string, double> relativeOfLabel;  ///< in place of `relative`, by LABEL

  bool AreSame(double a, double b) const;
};

/// What distinguishes two blocks, or that one of them is missing.
struct QeltaBlockDifference {
  enum State { SAME, DIFFERENT, ONLY_IN_FIRST, ONLY_IN_SECOND };

  FED_DataDescriptor key;  ///< in the database that has it, the first one if both have
  State state = SAME;
  std::uint64_t records = 0;  ///< that both have
  std::uint64_t onlyInFirst = 0;
  std::uint64_t onlyInSecond = 0;
  std::uint64_t values = 0;     ///< that differ
  double greatest = 0;          ///< difference of two numbers that differ; infinite with a NaN
  double greatestRelative = 0;  ///< likewise, relative to the greater magnitude
  std::string worst;  ///< "node 17, DISPLACEMENT.x: 0.25 and 0.26"; what is wrong if no number is
};

/// Compares the records of two blocks by external id or name, references in them likewise.
QeltaBlockDifference CompareBlocks(const FED_DataBlock& a, const FED_IdMapsPool& mapsOfA,
                                   const FED_DataBlock& b, const FED_IdMapsPool& mapsOfB,
                                   const QeltaTolerances& tolerances);

/// Blocks of two databases, matched by their keys.
class QeltaDatabaseDiff {
 public:
  /// A pair of keys of the same block; one of them is empty where only one database has it.
  struct Pair {
    FED_DataDescriptor first;
    FED_DataDescriptor second;
  };

  /// Pairs up keys that agree in all fields but the ignored ones. Where several then agree, the
  /// n-th belongs to the n-th. First come the keys of the first list in their order, then what is
  /// left of the second.
  static std::vector<Pair> Match(const std::vector<FED_DataDescriptor>& first,
                                 const std::vector<FED_DataDescriptor>& second,
                                 const std::vector<FED_DataDescriptor::ResultIndex>& ignored);

  /// Both databases must outlive this object.
  QeltaDatabaseDiff(const FED_Database& first, const FED_Database& second,
                    QeltaTolerances tolerances)
      : m_First(first), m_Second(second), m_Tolerances(std::move(tolerances)) {}

  QeltaBlockDifference Compare(const Pair& pair) const;

 private:
  const FED_Database& m_First;
  const FED_Database& m_Second;
  QeltaTolerances m_Tolerances;
};

}  // namespace qelta
