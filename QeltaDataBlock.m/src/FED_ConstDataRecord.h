#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "FED_BlockDataType.h"
#include "FED_DoubleArray.h"
#include "FED_IntArray.h"
#include "FED_IntSetIntvl.h"
#include "QeltaExport.h"
#include "QeltaMatrix.h"
#include "QeltaStrongType.h"

class FED_DataBlock;

using QeltaIdx = QeltaStrongType<int, struct QeltaIdxTag>;

/// A cursor that reads records of one block: the bytes of one record and typed access to them.
///
/// Made by `FED_DataBlock::CreateDataRecord`, filled by `GetRecord` of the block for any number of
/// indices, given back to `DeleteDataRecord` before the block goes. The layout never changes.
///
/// Fields are numbered from 1 and follow one another without padding. Numbers, vectors and tensors
/// live in the cursor; for strings, lists and sets it holds the block's handle and asks the block.
/// No operation checks the field number or the field's type: any accessor may be used on a field
/// whose size holds what it reads. Failures of the block pass to the caller.
class QELTA_EXPORT FED_ConstDataRecord {
 public:
  /// Cursors of both kinds that exist in the process.
  static std::uint64_t s_InstanceCounter;

  FED_ConstDataRecord(const FED_ConstDataRecord&) = delete;
  FED_ConstDataRecord& operator=(const FED_ConstDataRecord&) = delete;

  /// Number of fields.
  std::size_t Size() const { return static_cast<std::size_t>(m_FieldCount); }

  BlockDataType GetDataType(std::size_t i) const { return Entry(i).type; }

  /// Bytes of field i: 4, 8, 24 or 48.
  std::size_t GetDataTypeSize(std::size_t i) const {
    return static_cast<std::size_t>(Entry(i + 1).offset - Entry(i).offset);
  }

  int GetInteger(std::size_t i) const { return Read<std::int32_t>(i); }
  double GetDouble(std::size_t i) const { return Read<double>(i); }
  float GetFloat(std::size_t i) const { return Read<float>(i); }

  QeltaMatrix<3, 1, double> GetVector(std::size_t i) const;
  /// Writes three doubles.
  void GetVector(std::size_t i, double* out) const { Copy(i, out, 3); }
  /// Writes six doubles: xx, yy, zz, xy, yz, zx.
  void GetTensor(std::size_t i, double* out) const { Copy(i, out, 6); }

  std::string GetString(std::size_t i) const;
  void GetString(std::size_t i, std::string& out) const;

  // An integer list reads in stored order; every other field reads as a set, its members in
  // ascending order. Each read fetches the content from the block.

  std::uint64_t GetIntListLen(std::size_t i) const;
  void GetIntList(std::size_t i, FED_IntArray& out) const;
  /// `out` has room for `GetIntListLen(i)`; returns the number written.
  std::uint64_t GetIntList(std::size_t i, int* out) const;
  void GetIndexList(std::size_t i, std::vector<QeltaIdx>& out) const;
  /// The sorted, merged set, whatever the field's type.
  FED_IntSetIntvl<int> GetIntSet(std::size_t i) const;

  std::uint64_t GetDoubleListLen(std::size_t i) const;
  void GetDoubleList(std::size_t i, FED_DoubleArray& out) const;
  /// `out` has room for `GetDoubleListLen(i)`; returns the number written.
  std::uint64_t GetDoubleList(std::size_t i, double* out) const;

  /// Equal layouts and equal bytes; handles compare as numbers, not by what they denote.
  bool operator==(const FED_ConstDataRecord& other) const;
  bool operator!=(const FED_ConstDataRecord& other) const { return !(*this == other); }

 protected:
  /// Fails when `dataTypes` holds a value that is no field type.
  FED_ConstDataRecord(const FED_DataBlock& block, std::uint64_t recordSize,
                      const std::vector<BlockDataType>& dataTypes);
  virtual ~FED_ConstDataRecord();

  const unsigned char* GetDataPtr(std::size_t i) const { return m_Buffer.get() + Entry(i).offset; }
  unsigned char* GetDataPtr(std::size_t i) { return m_Buffer.get() + Entry(i).offset; }

 private:
  friend class FED_DataBlock;
  friend class FED_DataRecord;

  struct LayoutEntry {
    BlockDataType type;
    std::uint64_t offset;
  };

  // One entry more than there are fields: the last one closes the record.
  const LayoutEntry& Entry(std::size_t i) const { return m_Layout[i - 1]; }

  int GetAsInteger(std::size_t i) const { return GetInteger(i); }

  // Records are unaligned: fields are copied, never pointed at.
  template <class T>
  T Read(std::size_t i) const {
    T value;
    std::memcpy(&value, GetDataPtr(i), sizeof value);
    return value;
  }
  void Copy(std::size_t i, double* out, std::size_t count) const {
    std::memcpy(out, GetDataPtr(i), count * sizeof(double));
  }
  std::uint64_t Handle(std::size_t i) const {
    return static_cast<std::uint64_t>(std::int64_t{GetInteger(i)});
  }
  bool IsIntList(std::size_t i) const { return GetDataType(i) == BLOCK_DATA_INT_LIST; }

  std::uint64_t m_FieldCount;
  std::uint64_t m_RecordSize;
  const FED_DataBlock* m_Block;
  std::unique_ptr<unsigned char[]> m_Buffer;
  std::unique_ptr<LayoutEntry[]> m_Layout;
};
