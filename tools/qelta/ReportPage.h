#pragma once

#include <FED_Database.h>
#include <QeltaBlockListing.h>
#include <QeltaMeshFields.h>
#include <QeltaOutputFile.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "ReportArrays.h"
#include "ReportField.h"
#include "ReportShapes.h"

namespace qelta {

struct ReportTexts {
  std::string title;
  std::string subtitle;
  std::string made;  ///< with what the page was made
};

/// A page about blocks of a database, complete in one file. It shows the meshes that are among the
/// blocks, and those that values among the blocks belong to.
///
/// Memory for what can be seen of the meshes, for the list of blocks and for one block at a time.
class ReportPage {
 public:
  /// The database must hold the blocks, their meshes and the values of their steps; it must
  /// outlive this object.
  ReportPage(const FED_Database& database, const std::vector<QeltaBlockInfo>& blocks,
             ReportTexts texts, bool showProgress);

  /// Leaves out steps, but for the first and the last, until the page has no more than `mostBytes`;
  /// fails as a wrong command line does when that is not enough. To be called once.
  void Write(QeltaOutputFile& file, std::uint64_t mostBytes);

  /// What a reader should know, such as what was left out; also in the page. Complete after Write.
  const std::vector<std::string>& GetNotes() const { return m_Notes; }

 private:
  void WriteMeshes(ReportArrays& arrays);
  void ChooseSteps(std::uint64_t used, std::uint64_t mostBytes);
  void WriteFields(ReportArrays& arrays);
  template <class Visit>
  void VisitFields(Visit visit) const;

  const FED_Database& m_Database;
  bool m_ShowProgress;
  QeltaMeshes m_Meshes;
  QeltaMeshFields m_Fields;
  std::vector<std::size_t> m_Shown;    // places of meshes
  std::vector<ReportShapes> m_Shapes;  // of the same
  std::vector<std::string> m_Notes;
  nlohmann::ordered_json m_Json;
};

}  // namespace qelta
