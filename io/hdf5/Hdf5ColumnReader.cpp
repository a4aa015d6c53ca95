#include "Hdf5ColumnReader.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace qelta {
namespace {

// More than the library's compression can achieve.
constexpr std::uint64_t kMostCompression = 1100;

constexpr std::size_t kTexts = 256;  // read ahead

Hdf5Handle OpenDataset(hid_t parent, const std::string& name, std::size_t bytes) {
  if (!HasLink(parent, name)) throw Hdf5Problem{"there is no dataset " + name};
  const Hdf5Handle access(H5Pcreate(H5P_DATASET_ACCESS));
  CheckHdf5(H5Pset_chunk_cache(access, H5D_CHUNK_CACHE_NSLOTS_DEFAULT, bytes,
                               H5D_CHUNK_CACHE_W0_DEFAULT));
  return Hdf5Handle(H5Dopen2(parent, name.c_str(), access));
}

bool IsBytesDataset(hid_t parent, const std::string& name) {
  const Hdf5Handle dataset = OpenDataset(parent, name, 0);
  const Hdf5Handle type(H5Dget_type(dataset));
  return H5Tget_class(type) == H5T_VLEN;
}

std::string TakeText(char* element) {
  std::string text = element == nullptr ? "" : element;
  H5free_memory(element);
  return text;
}

std::string TakeText(const hvl_t& element) {
  std::string text(static_cast<const char*>(element.p), element.len);
  H5free_memory(element.p);
  return text;
}

bool AreAlike(hid_t a, hid_t b) {
  const H5T_class_t kind = H5Tget_class(a);
  if (kind != H5Tget_class(b)) return false;
  if (kind == H5T_STRING) return H5Tis_variable_str(a) > 0;
  if (kind == H5T_VLEN) return AreAlike(Hdf5Handle(H5Tget_super(a)), Hdf5Handle(H5Tget_super(b)));
  const bool isInteger = kind == H5T_INTEGER;
  return H5Tget_size(a) == H5Tget_size(b) &&
         (isInteger ? H5Tget_sign(a) == H5Tget_sign(b) : kind == H5T_FLOAT);
}

}  // namespace

Hdf5ColumnReader::Hdf5ColumnReader(hid_t parent, const std::string& name, hid_t type,
                                   std::size_t width, std::size_t bytes)
    : m_Name(name),
      m_Type(H5Tcopy(type)),
      m_Width(width),
      m_RowBytes(width * H5Tget_size(type)),
      m_BufferRows(std::max<std::size_t>(bytes / m_RowBytes, 1)),
      m_Dataset(OpenDataset(parent, name, bytes)),
      m_Space(H5Dget_space(m_Dataset)) {
  RequireType();
  RequireShape();
  RequireStored();
}

std::size_t Hdf5ColumnReader::GetLeft() const {
  return m_Rows - m_Read + (m_Buffer.size() - m_Taken) / m_RowBytes;
}

void Hdf5ColumnReader::RequireRows(std::size_t rows) const {
  if (m_Rows == rows) return;
  Complain("has " + std::to_string(m_Rows) + " rows, not " + std::to_string(rows));
}

void Hdf5ColumnReader::Read(void* rows, std::size_t count) {
  auto* to = static_cast<unsigned char*>(rows);
  while (count > 0) {
    if (m_Taken == m_Buffer.size()) {
      const std::size_t next = std::min(m_BufferRows, m_Rows - m_Read);
      if (next == 0) Complain("ends too early");
      m_Buffer.resize(next * m_RowBytes);
      Load(m_Buffer.data(), next);
      m_Taken = 0;
    }
    const std::size_t share = std::min(count, (m_Buffer.size() - m_Taken) / m_RowBytes);
    std::memcpy(to, m_Buffer.data() + m_Taken, share * m_RowBytes);
    m_Taken += share * m_RowBytes;
    to += share * m_RowBytes;
    count -= share;
  }
}

void Hdf5ColumnReader::Complain(const std::string& cause) const {
  throw Hdf5Problem{"dataset " + m_Name + " " + cause};
}

void Hdf5ColumnReader::RequireType() const {
  const Hdf5Handle type(H5Dget_type(m_Dataset));
  if (!AreAlike(type, m_Type)) Complain("holds values of another type");
}

void Hdf5ColumnReader::RequireShape() {
  hsize_t extent[2] = {};
  const bool isList = m_Width == 1;
  const bool isFitting = H5Sget_simple_extent_ndims(m_Space) == (isList ? 1 : 2) &&
                         H5Sget_simple_extent_dims(m_Space, extent, nullptr) > 0 &&
                         (isList || extent[1] == m_Width);
  if (!isFitting) Complain("has another shape");
  m_Rows = static_cast<std::size_t>(extent[0]);
}

// What was never written would read as zeros, and a damaged length would ask for all memory.
void Hdf5ColumnReader::RequireStored() const {
  const Hdf5Handle creation(H5Dget_create_plist(m_Dataset));
  const Hdf5Handle type(H5Dget_type(m_Dataset));
  const bool isFiltered = CheckHdf5(H5Pget_nfilters(creation)) > 0;
  const std::uint64_t share = isFiltered ? kMostCompression : 1;
  const std::uint64_t stored = H5Dget_storage_size(m_Dataset);
  if (m_Rows / share > stored / (H5Tget_size(type) * m_Width) || (m_Rows > 0 && stored == 0)) {
    Complain("has fewer values than it promises");
  }
}

void Hdf5ColumnReader::Load(void* rows, std::size_t count) {
  const hsize_t start[2] = {m_Read, 0};
  const hsize_t extent[2] = {count, m_Width};
  const Hdf5Handle part(H5Screate_simple(m_Width == 1 ? 1 : 2, extent, nullptr));
  CheckHdf5(H5Sselect_hyperslab(m_Space, H5S_SELECT_SET, start, nullptr, extent, nullptr));
  CheckHdf5(H5Dread(m_Dataset, m_Type, part, m_Space, H5P_DEFAULT, rows));
  m_Read += count;
}

// The column has room for what is read ahead, so that the library's memory for all that it reads
// comes here.
Hdf5TextReader::Hdf5TextReader(hid_t parent, const std::string& name, std::size_t rows)
    : m_HasNul(IsBytesDataset(parent, name)),
      m_Column(parent, name, m_HasNul ? MakeBytesType() : MakeTextType(), 1,
               kTexts * (m_HasNul ? sizeof(hvl_t) : sizeof(char*))) {
  m_Column.RequireRows(rows);
}

std::string Hdf5TextReader::Read() {
  if (m_Texts.empty()) {
    if (m_HasNul) {
      Load<hvl_t>();
    } else {
      Load<char*>();
    }
  }
  std::string text = std::move(m_Texts.front());
  m_Texts.pop_front();
  return text;
}

template <class Element>
void Hdf5TextReader::Load() {
  std::vector<Element> elements(std::clamp<std::size_t>(m_Column.GetLeft(), 1, kTexts));
  m_Column.Read(elements.data(), elements.size());
  for (const Element& element : elements) m_Texts.push_back(TakeText(element));
}

}  // namespace qelta
