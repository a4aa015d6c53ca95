#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "FED_Database.h"

namespace qelta::test {

using Bytes = std::vector<unsigned char>;
using Keys = std::vector<FED_DataDescriptor>;

/// A cursor of a block, of the kind that the constness of the block asks for.
template <class Block>
class Cursor {
 public:
  explicit Cursor(Block& block) : m_Block(block), m_Record(block.CreateDataRecord()) {}
  ~Cursor() { m_Block.DeleteDataRecord(m_Record); }
  Cursor(const Cursor&) = delete;
  Cursor& operator=(const Cursor&) = delete;

  auto& operator*() const { return m_Record; }
  auto* operator->() const { return &m_Record; }

 private:
  Block& m_Block;
  decltype(std::declval<Block&>().CreateDataRecord()) m_Record;
};

// Records one by one, as their bytes.
Bytes ReadRecord(const FED_DataBlock& block, std::size_t index);
void WriteRecord(FED_DataBlock& block, std::size_t index, const Bytes& bytes);

/// Bytes that depend on `seed` and are not all alike.
Bytes SomeBytes(std::size_t count, unsigned seed);

/// Writes records with content in every field, which depends on `seed`.
void Fill(FED_DataBlock& block, std::initializer_list<std::size_t> indices, unsigned seed);

/// Everything that a block holds: blocks with the same content give the same text.
std::string Describe(const FED_DataBlock& block);

FED_DataDescriptor CustomKey(int iteration);
FED_DataDescriptor LabelKey(const std::string& label);

/// Six blocks of many kinds with all kinds of content, and three further names: the last three
/// keys, two of them for the first block, one for the third.
Keys MakeWorld(FED_Database& database);

/// What the keys lead to; "none" for a key that leads to no block.
std::vector<std::string> DescribeAll(FED_Database& database, const Keys& keys);

}  // namespace qelta::test
