#pragma once

#include <string>

#include "FED_ConstIdDataBlock.h"
#include "FED_IdDataRecord.h"
#include "QeltaExport.h"

/// A view of one block that also writes records by external id or by name.
///
/// Where the block kind says so (`FED_OnfMetaData::writeLookup`), an id or name that is new is
/// registered in its map on the way; otherwise it must be known. The view never owns its block, but
/// may be told to have it flushed (`FlushDestroy`) when the view is destroyed.
class QELTA_EXPORT FED_IdDataBlock : public FED_ConstIdDataBlock {
 public:
  FED_IdDataBlock(FED_DataBlock& block, FED_IdMapsPool& pool, bool flushDestroyBlock);
  FED_IdDataBlock(const FED_IdDataBlock& other);
  ~FED_IdDataBlock() override;

  using FED_ConstIdDataBlock::GetDataBlock;
  FED_DataBlock& GetDataBlock() { return *m_WritableDataBlock; }

  void SetFlushDestroyBlock(bool flushDestroyBlock) { m_FlushDestroyBlock = flushDestroyBlock; }

  /// A new cursor; the caller gives it back to `DeleteDataRecord`.
  using FED_ConstIdDataBlock::CreateDataRecord;
  using FED_ConstIdDataBlock::CreateIdDataRecord;
  FED_IdDataRecord& CreateDataRecord();
  FED_IdDataRecord& CreateIdDataRecord() { return CreateDataRecord(); }

  void SetRecord(int id, const FED_IdDataRecord& record);
  void SetRecord(const std::string& name, const FED_IdDataRecord& record);

  void SetScalar(int id, const double& value);
  /// Three doubles.
  void SetVector(int id, const double* values);
  /// Six doubles: xx, yy, zz, xy, yz, zx.
  void SetTensor(int id, const double* values);
  // The same by name.
  void SetScalar(const std::string& name, const double& value);
  void SetVector(const std::string& name, const double* values);
  void SetTensor(const std::string& name, const double* values);

 private:
  std::size_t WriteIndexOf(int id);
  std::size_t WriteIndexOf(const std::string& name);

  FED_DataBlock* m_WritableDataBlock;
  FED_IdMapsPool* m_WritableIdMapsPool;
  bool m_FlushDestroyBlock;
};
