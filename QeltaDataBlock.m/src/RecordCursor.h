#pragma once

#include "FED_DataBlock.h"

namespace qelta {

/// A record cursor that is given back to its block whatever happens.
template <class Block, class Record>
class ScopedCursor {
 public:
  explicit ScopedCursor(Block& block) : m_Block(block), m_Record(block.CreateDataRecord()) {}
  ~ScopedCursor() { m_Block.DeleteDataRecord(m_Record); }
  ScopedCursor(const ScopedCursor&) = delete;
  ScopedCursor& operator=(const ScopedCursor&) = delete;

  Record& operator*() const { return m_Record; }
  Record* operator->() const { return &m_Record; }

 private:
  Block& m_Block;
  Record& m_Record;
};

using RecordReader = ScopedCursor<const FED_DataBlock, FED_ConstDataRecord>;
using RecordWriter = ScopedCursor<FED_DataBlock, FED_DataRecord>;

}  // namespace qelta
