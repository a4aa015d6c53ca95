#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "Hdf5Handle.h"

namespace qelta {

/// How datasets are kept in the file.
struct Hdf5Layout {
  std::size_t chunkBytes = std::size_t{1} << 20;  ///< the rows that are in memory, as well
  int deflateLevel = 0;                           ///< 0: not compressed
};

/// A dataset that is written row by row: `width` values a row, or a list of numbers when that is 1.
///
/// What fits in one chunk lies in the file without chunks, which costs least; more than that is
/// written chunk by chunk. The dataset is whole after Close.
class Hdf5Column {
 public:
  /// The parent must outlive this object; `type` is that of the values in memory and in the file.
  Hdf5Column(hid_t parent, std::string name, hid_t type, const Hdf5Layout& layout,
             std::size_t width = 1);

  /// Adds `count` rows that stand `step` bytes apart.
  void Append(const void* rows, std::size_t count, std::size_t step);
  void Append(const void* rows, std::size_t count) { Append(rows, count, m_RowBytes); }

  /// Writes what is in memory; for values that refer to memory which is about to go.
  void Flush();

  /// Gives the dataset, for its attributes.
  Hdf5Handle Close();

 private:
  std::vector<hsize_t> Extent(hsize_t rows) const;
  Hdf5Handle MakeSpace(hsize_t rows, bool grows) const;
  void Make(hsize_t rows, bool grows);
  void Write(const void* values, hsize_t rows);

  hid_t m_Parent;
  std::string m_Name;
  Hdf5Handle m_Type;
  Hdf5Layout m_Layout;
  std::size_t m_Width;
  std::size_t m_RowBytes;
  std::size_t m_ChunkRows;
  std::vector<unsigned char> m_Buffer;
  hsize_t m_Written = 0;
  Hdf5Handle m_Dataset;
};

/// A column of texts.
class Hdf5TextColumn {
 public:
  /// Texts with a NUL in them are kept as lists of bytes: `hasNul` tells that there are some.
  Hdf5TextColumn(hid_t parent, const std::string& name, bool hasNul, const Hdf5Layout& layout);

  void Append(std::string text);
  Hdf5Handle Close() { return m_Column.Close(); }

 private:
  bool m_HasNul;
  std::deque<std::string> m_Texts;  // of which the column still has the addresses
  std::size_t m_Bytes = 0;
  Hdf5Column m_Column;
};

}  // namespace qelta
