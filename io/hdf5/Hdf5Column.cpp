#include "Hdf5Column.h"

#include <algorithm>
#include <cstring>

namespace qelta {
namespace {

constexpr std::size_t kTextBytes = std::size_t{1} << 20;
constexpr std::size_t kTexts = 4096;

template <std::size_t kSize>
void GatherRows(unsigned char* to, const unsigned char* from, std::size_t step, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) std::memcpy(to + i * kSize, from + i * step, kSize);
}

// The sizes of fields are known to the compiler.
void Gather(unsigned char* to, const unsigned char* from, std::size_t step, std::size_t size,
            std::size_t count) {
  if (size == 4) {
    GatherRows<4>(to, from, step, count);
  } else if (size == 8) {
    GatherRows<8>(to, from, step, count);
  } else if (size == 24) {
    GatherRows<24>(to, from, step, count);
  } else {
    for (std::size_t i = 0; i < count; ++i) std::memcpy(to + i * size, from + i * step, size);
  }
}

}  // namespace

Hdf5Column::Hdf5Column(hid_t parent, std::string name, hid_t type, const Hdf5Layout& layout,
                       std::size_t width)
    : m_Parent(parent),
      m_Name(std::move(name)),
      m_Type(H5Tcopy(type)),
      m_Layout(layout),
      m_Width(width),
      m_RowBytes(width * H5Tget_size(type)),
      m_ChunkRows(std::max<std::size_t>(layout.chunkBytes / m_RowBytes, 1)) {}

void Hdf5Column::Append(const void* rows, std::size_t count, std::size_t step) {
  const auto* from = static_cast<const unsigned char*>(rows);
  while (count > 0) {
    const std::size_t used = m_Buffer.size();
    const std::size_t share = std::min(count, m_ChunkRows - used / m_RowBytes);
    if (step == m_RowBytes && m_Dataset.IsOpen() && share == m_ChunkRows) {
      Write(from, share);
    } else if (step == m_RowBytes) {
      m_Buffer.insert(m_Buffer.end(), from, from + share * step);
    } else {
      m_Buffer.resize(used + share * m_RowBytes);
      Gather(m_Buffer.data() + used, from, step, m_RowBytes, share);
    }
    from += share * step;
    count -= share;
    // The first chunk that is full waits for the next row: it may remain the only one.
    if (count > 0 || (m_Dataset.IsOpen() && m_Buffer.size() == m_ChunkRows * m_RowBytes)) Flush();
  }
}

void Hdf5Column::Flush() {
  const hsize_t rows = m_Buffer.size() / m_RowBytes;
  if (rows == 0) return;
  if (!m_Dataset.IsOpen()) Make(m_ChunkRows, true);
  Write(m_Buffer.data(), rows);
  m_Buffer.clear();
}

void Hdf5Column::Write(const void* values, hsize_t rows) {
  const std::vector<hsize_t> end = Extent(m_Written + rows);
  CheckHdf5(H5Dset_extent(m_Dataset, end.data()));
  const Hdf5Handle space(H5Dget_space(m_Dataset));
  const Hdf5Handle part = MakeSpace(rows, false);
  const hsize_t start[2] = {m_Written, 0};
  const std::vector<hsize_t> extent = Extent(rows);
  CheckHdf5(H5Sselect_hyperslab(space, H5S_SELECT_SET, start, nullptr, extent.data(), nullptr));
  CheckHdf5(H5Dwrite(m_Dataset, m_Type, part, space, H5P_DEFAULT, values));
  m_Written += rows;
}

Hdf5Handle Hdf5Column::Close() {
  if (m_Dataset.IsOpen()) {
    Flush();
  } else {
    const hsize_t rows = m_Buffer.size() / m_RowBytes;
    Make(rows, false);
    if (rows > 0) {
      CheckHdf5(H5Dwrite(m_Dataset, m_Type, H5S_ALL, H5S_ALL, H5P_DEFAULT, m_Buffer.data()));
    }
  }
  m_Buffer = {};
  return std::move(m_Dataset);
}

std::vector<hsize_t> Hdf5Column::Extent(hsize_t rows) const {
  if (m_Width == 1) return {rows};
  return {rows, m_Width};
}

Hdf5Handle Hdf5Column::MakeSpace(hsize_t rows, bool grows) const {
  const std::vector<hsize_t> extent = Extent(rows);
  const std::vector<hsize_t> most = Extent(H5S_UNLIMITED);
  return Hdf5Handle(H5Screate_simple(static_cast<int>(extent.size()), extent.data(),
                                     grows ? most.data() : nullptr));
}

// What is written once and in order needs neither fill values nor the library's chunk cache.
void Hdf5Column::Make(hsize_t rows, bool grows) {
  const Hdf5Handle creation(H5Pcreate(H5P_DATASET_CREATE));
  const Hdf5Handle access(H5Pcreate(H5P_DATASET_ACCESS));
  CheckHdf5(H5Pset_obj_track_times(creation, false));
  const bool isCompressed = m_Layout.deflateLevel > 0 && rows > 0;
  if (grows || isCompressed) {
    const std::vector<hsize_t> chunk = Extent(rows);
    CheckHdf5(H5Pset_chunk(creation, static_cast<int>(chunk.size()), chunk.data()));
    CheckHdf5(
        H5Pset_chunk_cache(access, H5D_CHUNK_CACHE_NSLOTS_DEFAULT, 0, H5D_CHUNK_CACHE_W0_DEFAULT));
  }
  if (isCompressed) {
    CheckHdf5(H5Pset_shuffle(creation));
    CheckHdf5(H5Pset_deflate(creation, static_cast<unsigned>(m_Layout.deflateLevel)));
  }
  m_Dataset =
      Hdf5Handle(H5Dcreate2(m_Parent, m_Name.c_str(), m_Type, MakeSpace(grows ? 0 : rows, grows),
                            H5P_DEFAULT, creation, access));
}

Hdf5TextColumn::Hdf5TextColumn(hid_t parent, const std::string& name, bool hasNul,
                               const Hdf5Layout& layout)
    : m_HasNul(hasNul),
      m_Column(parent, name, hasNul ? MakeBytesType() : MakeTextType(),
               Hdf5Layout{layout.chunkBytes, 0}) {}

void Hdf5TextColumn::Append(std::string text) {
  m_Bytes += text.size();
  m_Texts.push_back(std::move(text));
  if (m_HasNul) {
    const hvl_t bytes = {m_Texts.back().size(), m_Texts.back().data()};
    m_Column.Append(&bytes, 1);
  } else {
    const char* const begin = m_Texts.back().c_str();
    m_Column.Append(&begin, 1);
  }
  if (m_Bytes < kTextBytes && m_Texts.size() < kTexts) return;
  m_Column.Flush();
  m_Texts.clear();
  m_Bytes = 0;
}

}  // namespace qelta
