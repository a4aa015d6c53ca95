#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "FED_ConstDataRecord.h"
#include "FED_IdMapsPool.h"
#include "FED_OnfMetaData.h"
#include "QeltaExport.h"

class FED_ConstIdDataBlock;

/// A cursor that reads records of an id view: fields that refer to other entities are given as
/// their ids and names instead of the indices that the block stores.
///
/// Made by a view, which also destroys it. A copy shares the plain cursor inside; the last one
/// hands it back to the block. Fields are numbered from 1; fields of id type 15, and all doubles,
/// double lists, vectors and tensors, are given as stored.
class QELTA_EXPORT FED_ConstIdDataRecord {
 public:
  FED_ConstIdDataRecord(const FED_ConstIdDataRecord& other);
  FED_ConstIdDataRecord& operator=(const FED_ConstIdDataRecord&) = delete;
  virtual ~FED_ConstIdDataRecord();

  int GetInteger(std::size_t field) const;
  void GetInteger(std::size_t field, int& value) const { value = GetInteger(field); }
  void GetIntList(std::size_t field, FED_IntArray& values) const;

  /// A name for a field that refers to an entity, else the stored text.
  std::string GetString(std::size_t field) const;
  void GetString(std::size_t field, std::string& value) const { value = GetString(field); }

  double GetDouble(std::size_t field) const { return m_DataRecord->GetDouble(field); }
  void GetDouble(std::size_t field, double& value) const { value = GetDouble(field); }
  void GetDoubleList(std::size_t field, FED_DoubleArray& values) const;
  /// Three doubles.
  void GetVector(std::size_t field, double* values) const {
    m_DataRecord->GetVector(field, values);
  }
  /// Six doubles: xx, yy, zz, xy, yz, zx.
  void GetTensor(std::size_t field, double* values) const {
    m_DataRecord->GetTensor(field, values);
  }

 protected:
  FED_ConstIdDataRecord(const FED_ConstIdDataBlock& view, const FED_IdMapsPool& pool,
                        const FED_OnfMetaData& metaData);
  /// Takes over the given cursor of the view's block.
  FED_ConstIdDataRecord(const FED_ConstIdDataBlock& view, FED_ConstDataRecord& record,
                        const FED_IdMapsPool& pool, const FED_OnfMetaData& metaData);

  FED_IdType GetIdType(std::size_t field) const { return m_OnfMetaData->idTypes[field]; }
  static bool IsTranslated(FED_IdType type) { return type != ID_TYPE_RECORD_INDEX; }

  const FED_ConstIdDataBlock* m_IdDataBlock;
  const FED_OnfMetaData* m_OnfMetaData;
  const FED_IdMapsPool* m_IdMapsPool;
  std::shared_ptr<FED_ConstDataRecord> m_DataRecord;

 private:
  friend class FED_ConstIdDataBlock;
  friend class FED_IdDataRecord;
};
