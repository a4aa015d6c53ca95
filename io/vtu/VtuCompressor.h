#pragma once

#include <QeltaOutputFile.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qelta {

/// Writes an array as VTK's zlib compressor does: a table of sizes, and compressed pieces of a
/// mebibyte each.
class VtuCompressor {
 public:
  /// Leaves room for the table. `bytes` is what will be written in all.
  VtuCompressor(std::uint64_t bytes, QeltaOutputFile& file);

  void Write(const void* data, std::size_t bytes);

  /// Must follow the last byte: fills in the table.
  void Finish();

 private:
  void Deflate();

  QeltaOutputFile& m_File;
  std::uint64_t m_TableAt;
  std::vector<std::uint64_t> m_Table;  // pieces, bytes of one, bytes of a last shorter one, sizes
  std::size_t m_PieceCount = 0;
  std::vector<unsigned char> m_Piece;
  std::vector<unsigned char> m_Deflated;
};

}  // namespace qelta
