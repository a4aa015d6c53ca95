#include "VtuCompressor.h"

#include <zlib.h>

#include <algorithm>
#include <new>

namespace qelta {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{1} << 20;
constexpr std::size_t kHeadLength = 3;

}  // namespace

VtuCompressor::VtuCompressor(std::uint64_t bytes, QeltaOutputFile& file)
    : m_File(file), m_TableAt(file.GetPosition()) {
  const std::uint64_t last = bytes % kPieceBytes;
  const std::uint64_t count = bytes / kPieceBytes + (last > 0 ? 1 : 0);
  m_Table = {count, kPieceBytes, last};
  m_Table.resize(kHeadLength + static_cast<std::size_t>(count));
  m_File.Write(m_Table.data(), m_Table.size() * sizeof m_Table[0]);
  m_Piece.reserve(kPieceBytes);
  m_Deflated.resize(compressBound(kPieceBytes));
}

void VtuCompressor::Write(const void* data, std::size_t bytes) {
  const auto* from = static_cast<const unsigned char*>(data);
  while (bytes > 0) {
    const std::size_t share = std::min(bytes, kPieceBytes - m_Piece.size());
    m_Piece.insert(m_Piece.end(), from, from + share);
    from += share;
    bytes -= share;
    if (m_Piece.size() == kPieceBytes) Deflate();
  }
}

void VtuCompressor::Finish() {
  if (!m_Piece.empty()) Deflate();
  const std::uint64_t end = m_File.GetPosition();
  m_File.Seek(m_TableAt);
  m_File.Write(m_Table.data(), m_Table.size() * sizeof m_Table[0]);
  m_File.Seek(end);
}

// Numbers of a solver are hardly smaller at a higher level, which takes several times as long.
void VtuCompressor::Deflate() {
  auto size = static_cast<uLongf>(m_Deflated.size());
  if (compress2(m_Deflated.data(), &size, m_Piece.data(), static_cast<uLong>(m_Piece.size()),
                Z_BEST_SPEED) != Z_OK) {
    throw std::bad_alloc();
  }
  m_Table.at(kHeadLength + m_PieceCount++) = size;
  m_File.Write(m_Deflated.data(), size);
  m_Piece.clear();
}

}  // namespace qelta
