#pragma once

#include "FED_ConstDataRecord.h"

/// A cursor that also writes: fields into its own bytes, and strings, lists and sets into its
/// block. `FED_DataBlock::SetRecord` stores it at an index.
///
/// Content that a field denoted before it is written anew is left to the block. When a write fails
/// in the block, the field keeps what it held.
class QELTA_EXPORT FED_DataRecord : public FED_ConstDataRecord {
 public:
  void SetInteger(std::size_t i, int value) { Write(i, std::int32_t{value}); }
  void SetDouble(std::size_t i, double value) { Write(i, value); }
  void SetFloat(std::size_t i, float value) { Write(i, value); }
  /// Takes three doubles.
  void SetVector(std::size_t i, const double* values) { WriteDoubles(i, values, 3); }
  /// Takes six doubles: xx, yy, zz, xy, yz, zx.
  void SetTensor(std::size_t i, const double* values) { WriteDoubles(i, values, 6); }

  void SetString(std::size_t i, const std::string& text);

  // An integer list keeps order and repeats; any other field stores the set of the values.

  void SetIntList(std::size_t i, const FED_IntArray& list);
  void SetIntList(std::size_t i, const std::vector<int>& list);
  void SetIntList(std::size_t i, const int* values, std::size_t count);

  void SetDoubleList(std::size_t i, const FED_DoubleArray& list);
  void SetDoubleList(std::size_t i, const std::vector<double>& list);
  void SetDoubleList(std::size_t i, const double* values, std::size_t count);

  /// Stores the set, whatever the field's type.
  void SetIntSet(std::size_t i, const FED_IntSetIntvl<int>& set);

  /// Copies the bytes of field i. A handle is copied as a number, so this serves records of the
  /// same block.
  void CopyBulkItemFrom(const FED_ConstDataRecord& source, std::size_t i);

  /// Copies field by field; strings, lists and sets are stored anew in this cursor's block, so
  /// that the content moves between blocks and databases. Each field is read as its type here
  /// demands. Changes nothing when the field counts differ.
  FED_DataRecord& operator=(const FED_ConstDataRecord& source);
  FED_DataRecord& operator=(const FED_DataRecord& source);

 private:
  friend class FED_DataBlock;

  FED_DataRecord(FED_DataBlock& block, std::uint64_t recordSize,
                 const std::vector<BlockDataType>& dataTypes);
  ~FED_DataRecord() override;

  void StoreInteger(std::size_t i, int value) { SetInteger(i, value); }

  template <class T>
  void Write(std::size_t i, T value) {
    std::memcpy(GetDataPtr(i), &value, sizeof value);
  }
  void WriteDoubles(std::size_t i, const double* values, std::size_t count) {
    std::memcpy(GetDataPtr(i), values, count * sizeof(double));
  }
  void WriteHandle(std::size_t i, std::uint64_t handle) {
    Write(i, static_cast<std::uint32_t>(handle));
  }
  void CopyField(const FED_ConstDataRecord& source, std::size_t i);

  FED_DataBlock* m_WritableBlock;
};
