#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "FED_ConstIdDataRecord.h"
#include "FED_DataBlock.h"
#include "FED_IdMapsPool.h"
#include "FED_OnfMetaData.h"
#include "QeltaExport.h"

/// A view of one block that finds records by external id or by name.
///
/// The id map of the block's primary id type translates. Under id type 15 there is no map: ids are
/// the record indices themselves, widened with their sign; the operations that need a name ask the
/// map of type 15 all the same. A custom block has id type 15.
///
/// A view is a few references and owns nothing: it must not outlive the block or the pool. Nothing
/// is tested before it is asked for: an id or name that the map does not know is a failure of the
/// map (ask `HasRecord` first), an absent record one of the block.
class QELTA_EXPORT FED_ConstIdDataBlock {
 public:
  /// Views of both kinds that exist in the process.
  static std::uint64_t s_InstanceCounter;

  FED_ConstIdDataBlock(const FED_DataBlock& block, const FED_IdMapsPool& pool);
  FED_ConstIdDataBlock(const FED_ConstIdDataBlock& other);
  FED_ConstIdDataBlock& operator=(const FED_ConstIdDataBlock&) = delete;
  virtual ~FED_ConstIdDataBlock();

  const FED_DataBlock& GetDataBlock() const { return *m_DataBlock; }
  const FED_DataDescriptor& GetDescriptor() const { return m_DataBlock->GetDescriptor(); }

  /// The map of the primary id type, also of type 15.
  const FED_IdMap& GetIdMap() const;

  /// The id at a record index.
  int GetId(std::size_t index) const;
  /// The name at a record index.
  std::string GetName(std::size_t index) const;
  /// Whether the index has an id in a map; false under id type 15.
  bool HasId(std::size_t index) const;

  bool HasRecord(int id) const;
  bool HasRecord(const std::string& name) const;

  /// Loads the record into the cursor.
  void GetRecord(int id, FED_ConstIdDataRecord& record) const;
  void GetRecord(const std::string& name, FED_ConstIdDataRecord& record) const;

  void GetScalar(int id, double& value) const;
  /// Three doubles.
  void GetVector(int id, double* values) const;
  /// Six doubles: xx, yy, zz, xy, yz, zx.
  void GetTensor(int id, double* values) const;
  // The same by name.
  void GetScalar(const std::string& name, double& value) const;
  void GetVector(const std::string& name, double* values) const;
  void GetTensor(const std::string& name, double* values) const;

  /// A new cursor; the caller gives it back to `DeleteDataRecord`.
  FED_ConstIdDataRecord& CreateDataRecord() const;
  FED_ConstIdDataRecord& CreateIdDataRecord() const { return CreateDataRecord(); }
  /// Destroys a cursor of this view, of either kind; a reference to no object is ignored.
  void DeleteDataRecord(FED_ConstIdDataRecord& record) const;
  void DeleteIdDataRecord(FED_ConstIdDataRecord& record) const { DeleteDataRecord(record); }

 protected:
  FED_IdType GetRecordIdType() const { return m_OnfMetaData->idTypes.front(); }

  const FED_OnfMetaData* m_OnfMetaData;
  const FED_DataBlock* m_DataBlock;
  const FED_IdMapsPool* m_IdMapsPool;

 private:
  static const FED_OnfMetaData& FetchOnfMetaDataObject(const FED_DataBlock& block);
  std::size_t IndexOf(int id) const;
  std::size_t IndexOf(const std::string& name) const;
};
