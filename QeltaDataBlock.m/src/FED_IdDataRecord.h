#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "FED_ConstIdDataRecord.h"
#include "FED_DataRecord.h"
#include "QeltaExport.h"

class FED_IdDataBlock;

/// A cursor that writes records of an id view: ids and names given for fields that refer to other
/// entities are stored as their indices.
///
/// Whether a new id or name is registered on the way follows from the block kind, field by field.
/// A failure leaves the field as it was.
class QELTA_EXPORT FED_IdDataRecord : public FED_ConstIdDataRecord {
 public:
  FED_IdDataRecord(const FED_IdDataRecord& other);
  ~FED_IdDataRecord() override;

  void SetInteger(std::size_t field, int value);
  void SetIntList(std::size_t field, const FED_IntArray& values);
  void SetIntList(std::size_t field, const std::vector<int>& values);
  void SetString(std::size_t field, const std::string& value);

  /// Stores the indices of names, which must all be known; reads back as a list of ids.
  void SetStringList(std::size_t field, const std::vector<std::string>& values);

  void SetDouble(std::size_t field, double value) { m_WritableDataRecord->SetDouble(field, value); }
  void SetDoubleList(std::size_t field, const FED_DoubleArray& values);
  void SetDoubleList(std::size_t field, const std::vector<double>& values);
  /// Three doubles.
  void SetVector(std::size_t field, const double* values) {
    m_WritableDataRecord->SetVector(field, values);
  }
  /// Six doubles: xx, yy, zz, xy, yz, zx.
  void SetTensor(std::size_t field, const double* values) {
    m_WritableDataRecord->SetTensor(field, values);
  }

  /// Copies all fields of a record of another view, whose maps may number differently: references
  /// travel as ids and names. Both must have this record's format. The record's own id is given by
  /// where it is stored. A failure leaves the fields before the failing one written.
  FED_IdDataRecord& operator=(const FED_ConstIdDataRecord& source);
  FED_IdDataRecord& operator=(const FED_IdDataRecord& source);

 private:
  friend class FED_IdDataBlock;

  FED_IdDataRecord(FED_IdDataBlock& view, FED_DataRecord& record, FED_IdMapsPool& pool,
                   const FED_OnfMetaData& metaData);
  FED_IdDataRecord(FED_IdDataBlock& view, FED_IdMapsPool& pool, const FED_OnfMetaData& metaData);

  FED_IdMap& MapOf(FED_IdType type) { return m_WritableIdMapsPool->GetMap(type); }
  int IndexOf(std::size_t field, int id);
  int IndexOf(std::size_t field, const std::string& name);
  void CopyField(char character, std::size_t field, const FED_ConstIdDataRecord& source);

  FED_IdMapsPool* m_WritableIdMapsPool;
  FED_DataRecord* m_WritableDataRecord;
};
