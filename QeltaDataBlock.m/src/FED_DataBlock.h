#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "FED_BlockDataType.h"
#include "FED_ConstDataRecord.h"
#include "FED_DataDescriptor.h"
#include "FED_DataRecord.h"
#include "FED_DoubleArray.h"
#include "FED_IdType.h"
#include "FED_IntArray.h"
#include "FED_IntSetIntvl.h"
#include "QeltaExport.h"
#include "QeltaMatrix.h"

/// A data block: a table of records of one fixed layout, addressed by record indices from 0.
///
/// Any index may hold a record or none. A record is a run of fields, numbered from 1; the layout
/// comes from the catalogue for a block whose descriptor specifies `ONF`, else from the format
/// given to the constructor (a custom block). Strings, lists and sets are kept by the block beside
/// the records; a record holds the handle that the block gave out for them, a number below 2^31.
///
/// This class is abstract. A storage module derives from it and supplies how records, lists and
/// strings are kept; the comment of each virtual operation says what callers rely on. The
/// order of the virtual operations is part of the interface.
///
/// Blocks are made by their database, which registers them in its block set; the set owns and
/// destroys them. Record cursors made by `CreateDataRecord` belong to the caller until they are
/// given back to `DeleteDataRecord` of the same block, before the block goes.
///
/// No operation here checks an index or a handle, and none locks: a block with its cursors serves
/// one thread at a time.
class QELTA_EXPORT FED_DataBlock {
 public:
  /// Walks the indices that hold a record, in ascending order, up to the highest index at the
  /// start of the walk. A plain value; valid as long as the block. Costs one `HasRecord` for each
  /// index, so a sparse block costs its span.
  class QELTA_EXPORT IndexIterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = std::size_t;

    IndexIterator& operator++();
    std::size_t operator*() const { return static_cast<std::size_t>(m_Index); }

    /// Equal when they walk the same block and stand on the same index.
    bool operator==(const IndexIterator& other) const {
      return m_Block == other.m_Block && m_Index == other.m_Index;
    }
    bool operator!=(const IndexIterator& other) const { return !(*this == other); }

   private:
    friend class FED_DataBlock;
    IndexIterator(std::int64_t index, std::int64_t last, const FED_DataBlock* block)
        : m_Index(index), m_Last(last), m_Block(block) {}
    void SkipAbsent();

    std::int64_t m_Index;
    std::int64_t m_Last;
    const FED_DataBlock* m_Block;
  };

  FED_DataBlock(const FED_DataBlock&) = delete;
  FED_DataBlock& operator=(const FED_DataBlock&) = delete;

  const FED_DataDescriptor& GetDescriptor() const { return m_Descriptor; }

  /// The record format, in the grammar of `OnfFormatStringTool`.
  const std::string& GetFormat() const { return m_Format; }

  /// The field types in order; field i is entry i - 1.
  const std::vector<BlockDataType>& GetDataTypes() const { return m_DataTypes; }

  /// Doubles that one record contributes to `GetFieldData`: 1, 3 or 6, or 0 for a block without
  /// field data.
  FED_BlockDataType::FieldDim GetFieldDim() const { return m_FieldDim; }

  /// What the records belong to; 15 for a custom block, whose ids are the record indices.
  FED_IdType GetPrimaryIdType() const { return m_PrimaryIdType; }

  /// Bytes of one record.
  std::size_t GetRecordSize() const { return static_cast<std::size_t>(m_RecordSize); }

  /// A word for the storage module; 0 unless it says otherwise.
  int GetProperties() const { return m_Properties; }

  IndexIterator Begin() const;
  IndexIterator begin() const { return Begin(); }
  const IndexIterator& End() const { return *m_EndIterator; }
  const IndexIterator& end() const { return *m_EndIterator; }

  /// The vector of the record at `index`.
  QeltaMatrix<3, 1, double> GetVector(std::size_t index) const;

  virtual bool HasRecord(std::size_t index) const = 0;

  /// Stores the cursor's bytes as the record at `index`.
  virtual void SetRecord(std::size_t index, const FED_DataRecord& record) = 0;

  /// Fills the cursor with the record at `index`.
  virtual void GetRecord(std::size_t index, FED_ConstDataRecord& record) const = 0;

  /// The highest index that may hold a record; -1 for an empty block.
  virtual std::int64_t GetMaxIndex() const = 0;

  /// `GetMaxIndex() + 1`: index positions, gaps included.
  virtual std::uint64_t GetNumRecords() const;

  /// The indices that hold a record: as a set, as a set replacing `out`, and as a list in
  /// ascending order replacing `out`.
  virtual FED_IntSetIntvl<int> GetRecordIndices() const;
  virtual void GetRecordIndices(FED_IntSetIntvl<int>& out) const;
  virtual void GetRecordIndices(std::vector<std::uint64_t>& out) const;

  /// Prepares room for `count` records.
  virtual void Reserve(std::size_t count) = 0;

  // The block-level values: one integer, scalar, vector (3) or tensor (6) of the record at `index`.
  virtual void SetInteger(std::size_t index, int value) = 0;
  virtual int GetInteger(std::size_t index) const = 0;
  virtual void SetScalar(std::size_t index, double value) = 0;
  virtual double GetScalar(std::size_t index) const = 0;
  virtual void SetVector(std::size_t index, const double* values) = 0;
  virtual void GetVector(std::size_t index, double* values) const = 0;
  virtual void SetTensor(std::size_t index, const double* values) = 0;
  virtual void GetTensor(std::size_t index, double* values) const = 0;

  /// The values of all existing records one after another, in ascending index order: field
  /// dimension times number of existing records doubles; empty for a block without field data.
  virtual std::vector<double> GetFieldData() const;

  /// A new cursor laid out for this block, all bytes 0. The caller gives it back to
  /// `DeleteDataRecord`. Fails when the layout holds a type that is no field type.
  virtual FED_DataRecord& CreateDataRecord();
  virtual FED_ConstDataRecord& CreateDataRecord() const;

  /// Destroys a cursor of this block, of either kind; a reference to no object is ignored. Must not
  /// throw: cursors are given back on the way out of failures.
  virtual void DeleteDataRecord(FED_ConstDataRecord& record) const;

  /// Writes what can be written; called on the way out of a writable id view.
  virtual void FlushDestroy() = 0;

 protected:
  /// Blocks are destroyed by the block set alone.
  virtual ~FED_DataBlock();

  /// A set is stored as the integer list of its members in ascending order. A stored list reads as
  /// a set whatever its order and repeats.
  virtual FED_IntSetIntvl<int> RetrieveIntSet(std::uint64_t handle) const;
  virtual std::uint64_t StoreIntSet(const FED_IntSetIntvl<int>& set);

 public:
  // Lists and strings. A stored one reads back as it was under its handle; the array forms resize
  // `out`, the pointer forms need room for the stored length and return it.
  virtual std::uint64_t GetIntListLen(std::uint64_t handle) const = 0;
  virtual void GetIntList(std::uint64_t handle, FED_IntArray& out) const = 0;
  virtual std::uint64_t GetIntList(std::uint64_t handle, int* out) const = 0;

 protected:
  virtual std::uint64_t SetIntList(const FED_IntArray& list);

 public:
  virtual std::uint64_t SetIntList(const int* values, std::size_t count) = 0;
  virtual std::uint64_t GetDoubleListLen(std::uint64_t handle) const = 0;
  virtual void GetDoubleList(std::uint64_t handle, FED_DoubleArray& out) const = 0;
  virtual std::uint64_t GetDoubleList(std::uint64_t handle, double* out) const = 0;

 protected:
  virtual std::uint64_t SetDoubleList(const FED_DoubleArray& list);

 public:
  virtual std::uint64_t SetDoubleList(const double* values, std::size_t count) = 0;
  virtual void GetString(std::uint64_t handle, std::string& out) const = 0;
  virtual std::uint64_t SetString(const std::string& text) = 0;

  /// The block is being deleted from its database; its destruction follows.
  virtual void DeleteData() = 0;

  /// Asked for by a flush of the block set (once for each descriptor of the block) and once before
  /// a save destroys the block.
  virtual void FlushToDisk() = 0;

 protected:
  /// A block of a catalogued kind. Fails when `descriptor` does not specify ONF or the catalogue
  /// lacks the number.
  explicit FED_DataBlock(const FED_DataDescriptor& descriptor);

  /// A custom block. Fails when `descriptor` specifies ONF or `format` is no record format.
  FED_DataBlock(const FED_DataDescriptor& descriptor, const std::string& format);

  void SetProperties(int properties) { m_Properties = properties; }

  /// The bytes of a cursor, `GetRecordSize()` of them; where a derived block copies records to.
  static unsigned char* RecordBuffer(FED_ConstDataRecord& record) { return record.m_Buffer.get(); }
  static const unsigned char* RecordBuffer(const FED_ConstDataRecord& record) {
    return record.m_Buffer.get();
  }

 private:
  friend class FED_DataBlockSet;
  friend class FED_ConstDataRecord;
  friend class FED_DataRecord;
  friend class QeltaBulkAccess;

  FED_DataDescriptor m_Descriptor;
  std::string m_Format;
  std::vector<BlockDataType> m_DataTypes;
  FED_BlockDataType::FieldDim m_FieldDim = FED_BlockDataType::DIM_NONE;
  FED_IdType m_PrimaryIdType = ID_TYPE_RECORD_INDEX;
  std::uint64_t m_RecordSize = 0;
  int m_Properties = 0;
  std::unique_ptr<IndexIterator> m_EndIterator;
};
