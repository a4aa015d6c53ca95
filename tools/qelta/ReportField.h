#pragma once

#include <FED_Database.h>
#include <QeltaMesh.h>
#include <QeltaMeshFields.h>

#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>

#include "ReportArrays.h"
#include "ReportShapes.h"

namespace qelta {

/// A field of a mesh on its way into a page.
class ReportField {
 public:
  /// All must outlive this object.
  ReportField(const FED_Database& database, const QeltaMesh& mesh, const ReportShapes& shapes,
              const QeltaMeshField& field)
      : m_Database(database), m_Mesh(mesh), m_Shapes(shapes), m_Field(field) {}

  /// What one of its blocks takes in the page at most.
  std::uint64_t MostBytesOfBlock() const;

  /// Writes its blocks one after another and gives what the page is told of the field. Calls
  /// `onBlock` before each.
  nlohmann::ordered_json Write(ReportArrays& arrays, const std::function<void()>& onBlock) const;

 private:
  const std::vector<std::uint32_t>& Seen() const {
    return m_Field.isOnCells ? m_Shapes.cells : m_Shapes.nodes;
  }
  nlohmann::ordered_json WriteBlock(const FED_DataDescriptor& key, ReportArrays& arrays,
                                    nlohmann::ordered_json& values) const;

  const FED_Database& m_Database;
  const QeltaMesh& m_Mesh;
  const ReportShapes& m_Shapes;
  const QeltaMeshField& m_Field;
};

}  // namespace qelta
