#pragma once

#include <FED_DataBlock.h>
#include <FED_IdMapsPool.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "QeltaComponents.h"
#include "QeltaDatabaseDiff.h"
#include "QeltaRecordRows.h"

namespace qelta {

/// The comparison of two blocks; used once.
class BlockComparison {
 public:
  BlockComparison(const FED_DataBlock& a, const FED_IdMapsPool& mapsOfA, const FED_DataBlock& b,
                  const FED_IdMapsPool& mapsOfB, const QeltaTolerances& tolerances);

  QeltaBlockDifference Compare();

 private:
  std::optional<std::size_t> PartnerOf(std::size_t index) const;
  void CompareRecords(std::size_t first, std::size_t count, const unsigned char* records);
  void CompareNumbers(std::size_t index, const unsigned char* a, const unsigned char* b);
  void CompareOthers(std::size_t index, std::size_t partner);
  bool AreSame(const QeltaCell& a, const QeltaCell& b) const;
  void Note(std::size_t index, const std::string& title, const QeltaCell& a, const QeltaCell& b);

  const FED_DataBlock& m_A;
  const FED_DataBlock& m_B;
  const QeltaTolerances& m_Tolerances;
  FED_IdType m_IdType;
  const FED_IdMap& m_MapOfA;
  const FED_IdMap& m_MapOfB;
  QeltaRecordRows m_RowsOfA;
  QeltaRecordRows m_RowsOfB;
  std::vector<std::string> m_Titles;
  std::vector<QeltaComponent> m_Numbers;
  std::vector<std::size_t> m_Others;  // cells that are no numbers
  std::vector<unsigned char> m_Record;
  QeltaBlockDifference m_Result;
};

}  // namespace qelta
