#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "FED_DataBlock.h"
#include "FED_RecordRuns.h"
#include "QeltaBulkAccess.h"
#include "QeltaStorageExport.h"

/// What the blocks of all storage modules have in common: everything that follows from runs and
/// columns of records, and the checks with their messages.
class QELTA_STORAGE_EXPORT FED_StorageBlock : public FED_DataBlock, public FED_RecordRuns {
 public:
  using FED_DataBlock::GetVector;

  FED_IntSetIntvl<int> GetRecordIndices() const override;
  void GetRecordIndices(FED_IntSetIntvl<int>& out) const override;
  void GetRecordIndices(std::vector<std::uint64_t>& out) const override;

  void SetInteger(std::size_t index, int value) override;
  int GetInteger(std::size_t index) const override;
  void SetScalar(std::size_t index, double value) override;
  double GetScalar(std::size_t index) const override;
  void SetVector(std::size_t index, const double* values) override;
  void GetVector(std::size_t index, double* values) const override;
  void SetTensor(std::size_t index, const double* values) override;
  void GetTensor(std::size_t index, double* values) const override;

  std::vector<double> GetFieldData() const override;

 protected:
  explicit FED_StorageBlock(const FED_DataDescriptor& descriptor);
  FED_StorageBlock(const FED_DataDescriptor& descriptor, const std::string& format);

  using FieldPlace = QeltaBulkAccess::FieldPlace;

  /// Fails when the block has no such field.
  FieldPlace PlaceOf(std::size_t field) const;

  void RequireRange(std::size_t first, std::size_t count) const {
    QeltaBulkAccess::RequireRange(*this, first, count);
  }
  [[noreturn]] void FailAbsent(std::size_t index) const;
  [[noreturn]] void FailHandle(std::uint64_t handle, const char* kind) const;

  /// Copies one record; sizes that are common are known to the compiler.
  static void CopyRecord(void* to, const void* from, std::size_t size) {
    switch (size) {
      case 4:
        std::memcpy(to, from, 4);
        break;
      case 8:
        std::memcpy(to, from, 8);
        break;
      case 12:
        std::memcpy(to, from, 12);
        break;
      case 24:
        std::memcpy(to, from, 24);
        break;
      case 48:
        std::memcpy(to, from, 48);
        break;
      case 100:
        std::memcpy(to, from, 100);
        break;
      default:
        std::memcpy(to, from, size);
    }
  }

  /// Copies `count` fields of `size` bytes, from places `fromStep` bytes apart to places `toStep`
  /// bytes apart.
  static void CopyStrided(unsigned char* to, std::size_t toStep, const unsigned char* from,
                          std::size_t fromStep, std::size_t size, std::size_t count);

 private:
  void LayOut();
  std::size_t FirstOf(std::initializer_list<BlockDataType> types) const;
  std::size_t Require(std::size_t field, const char* kind) const;

  std::vector<FieldPlace> m_Places;
  // The fields that the block-level values live in; 0 when there is none.
  std::size_t m_IntegerField = 0;
  std::size_t m_ScalarField = 0;
  std::size_t m_VectorField = 0;
  std::size_t m_TensorField = 0;
};
