#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "Hdf5Handle.h"

namespace qelta {

/// Reads a dataset from its first row to its last.
///
/// What does not look like a dataset of Hdf5Column, or promises more than is stored, is an
/// Hdf5Problem that names it.
class Hdf5ColumnReader {
 public:
  static constexpr std::size_t kDefaultBytes = std::size_t{256} * 1024;

  /// `type` is that of the values in memory; those in the file may have another byte order. About
  /// `bytes` of memory.
  Hdf5ColumnReader(hid_t parent, const std::string& name, hid_t type, std::size_t width = 1,
                   std::size_t bytes = kDefaultBytes);

  std::size_t GetRows() const { return m_Rows; }
  /// Rows that were not taken yet.
  std::size_t GetLeft() const;
  void RequireRows(std::size_t rows) const;

  /// Takes the next rows. Fails when there are no more.
  void Read(void* rows, std::size_t count);

  [[noreturn]] void Complain(const std::string& cause) const;

 private:
  void RequireShape();
  void RequireType() const;
  void RequireStored() const;
  void Load(void* rows, std::size_t count);

  std::string m_Name;
  Hdf5Handle m_Type;
  std::size_t m_Width;
  std::size_t m_RowBytes;
  std::size_t m_BufferRows;
  Hdf5Handle m_Dataset;
  Hdf5Handle m_Space;
  std::size_t m_Rows = 0;
  std::size_t m_Read = 0;
  std::vector<unsigned char> m_Buffer;
  std::size_t m_Taken = 0;  // bytes of the buffer
};

/// Reads a dataset of Hdf5TextColumn from its first row to its last.
class Hdf5TextReader {
 public:
  Hdf5TextReader(hid_t parent, const std::string& name, std::size_t rows);

  std::string Read();

 private:
  template <class Element>
  void Load();

  bool m_HasNul;
  Hdf5ColumnReader m_Column;
  std::deque<std::string> m_Texts;  // read ahead
};

}  // namespace qelta
