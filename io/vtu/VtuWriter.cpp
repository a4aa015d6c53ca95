#include "VtuWriter.h"

#include <FED_Failure.h>
#include <QeltaStringUtil.h>

#include <algorithm>
#include <cstring>
#include <fstream>

#include "VtuCompressor.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaVtu|VtuWriter";
constexpr std::size_t kCopyBytes = std::size_t{1} << 20;
constexpr std::size_t kOffsetDigits = 20;

const char* ByteOrder() {
  const std::uint16_t one = 1;
  unsigned char first = 0;
  std::memcpy(&first, &one, 1);
  return first == 1 ? "LittleEndian" : "BigEndian";
}

bool IsUtf8(const std::string& text) {
  std::wstring ignored;
  return QeltaStringUtil::ToWide(text, ignored);
}

std::string Escape(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    default:
      return std::string(1, c);
  }
}

std::string Attribute(const std::string& name, const std::string& value) {
  return " " + name + "=\"" + XmlText(value) + "\"";
}

// The offset has always as many digits, so that it can be filled in later.
std::string Element(const VtuArray& array, std::uint64_t offset) {
  const bool isText = std::strcmp(array.type, "String") == 0;
  std::string text = isText ? "<Array" : "<DataArray";
  text += Attribute("type", array.type) + Attribute("Name", array.name);
  if (array.areIds) text += Attribute("IdType", "1");
  if (array.components.size() > 1) {
    text += Attribute("NumberOfComponents", std::to_string(array.components.size()));
  }
  for (std::size_t i = 0; i < array.components.size(); ++i) {
    if (array.components[i].empty()) continue;
    text += Attribute("ComponentName" + std::to_string(i), array.components[i]);
  }
  if (array.section == VtuSection::FieldData) {
    text += Attribute("NumberOfTuples", std::to_string(array.tuples));
  }
  const std::string digits = std::to_string(offset);
  return text + " format=\"appended\" offset=\"" + std::string(kOffsetDigits - digits.size(), '0') +
         digits + "\"/>\n";
}

std::string Section(const char* name, VtuSection section, const VtuGrid& grid,
                    const std::vector<std::uint64_t>& offsets) {
  std::string ids;
  std::string elements;
  for (std::size_t i = 0; i < grid.arrays.size(); ++i) {
    const VtuArray& array = grid.arrays[i];
    if (array.section != section) continue;
    if (array.areIds) ids = Attribute("GlobalIds", array.name);
    elements += Element(array, offsets[i]);
  }
  return std::string("<") + name + ids + ">\n" + elements + "</" + name + ">\n";
}

}  // namespace

std::uint64_t VtuGrid::GetBytes() const {
  std::uint64_t bytes = 0;
  for (const VtuArray& array : arrays) bytes += array.bytes;
  return bytes;
}

std::string XmlText(const std::string& text) {
  const bool isUtf8 = IsUtf8(text);
  std::string escaped;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isStray = byte < ' ' || byte == 0x7f || (byte > 0x7f && !isUtf8);
    escaped += Escape(isStray ? '_' : c);
  }
  return escaped;
}

void VtuWriter::Write(const VtuGrid& grid, QeltaOutputFile& file) {
  std::vector<std::uint64_t> offsets(grid.arrays.size(), 0);
  file.Write(Head(grid, offsets));
  const std::uint64_t begin = file.GetPosition();
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    offsets[i] = file.GetPosition() - begin;
    WriteArray(grid.arrays[i], file);
  }
  file.Write("\n</AppendedData>\n</VTKFile>\n");
  file.Seek(0);
  file.Write(Head(grid, offsets));
  file.Close();
}

std::string VtuWriter::Head(const VtuGrid& grid, const std::vector<std::uint64_t>& offsets) const {
  const auto section = [&](const char* name, VtuSection which) {
    return Section(name, which, grid, offsets);
  };
  return std::string("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n") +
         "<VTKFile type=\"UnstructuredGrid\" version=\"1.0\"" +
         Attribute("byte_order", ByteOrder()) + " header_type=\"UInt64\"" +
         (m_Compresses ? " compressor=\"vtkZLibDataCompressor\"" : "") + ">\n<UnstructuredGrid>\n" +
         section("FieldData", VtuSection::FieldData) + "<Piece" +
         Attribute("NumberOfPoints", std::to_string(grid.points)) +
         Attribute("NumberOfCells", std::to_string(grid.cells)) + ">\n" +
         section("PointData", VtuSection::PointData) + section("CellData", VtuSection::CellData) +
         section("Points", VtuSection::Points) + section("Cells", VtuSection::Cells) +
         "</Piece>\n</UnstructuredGrid>\n<AppendedData encoding=\"raw\">\n_";
}

void VtuWriter::WriteArray(const VtuArray& array, QeltaOutputFile& file) {
  const auto known = m_Written.find(array.identity);
  if (known != m_Written.end()) {
    Copy(array, known->second, file);
    return;
  }
  const std::uint64_t begin = file.GetPosition();
  if (m_Compresses) {
    WriteCompressed(array, file);
  } else {
    WritePlain(array, file);
  }
  if (array.identity.first == nullptr) return;
  m_Written[array.identity] = {file.GetTemporaryPath(), begin, file.GetPosition()};
}

void VtuWriter::WritePlain(const VtuArray& array, QeltaOutputFile& file) const {
  file.Write(&array.bytes, sizeof array.bytes);
  array.write([&](const void* data, std::size_t bytes) {
    file.Write(data, bytes);
    m_OnBytes(bytes);
  });
}

void VtuWriter::WriteCompressed(const VtuArray& array, QeltaOutputFile& file) const {
  VtuCompressor compressor(array.bytes, file);
  array.write([&](const void* data, std::size_t bytes) {
    compressor.Write(data, bytes);
    m_OnBytes(bytes);
  });
  compressor.Finish();
}

void VtuWriter::Copy(const VtuArray& array, const Extent& extent, QeltaOutputFile& file) const {
  std::ifstream source(extent.file, std::ios::binary);
  source.seekg(static_cast<std::streamoff>(extent.begin));
  std::vector<char> batch(kCopyBytes);
  const std::uint64_t total = std::max<std::uint64_t>(extent.end - extent.begin, 1);
  for (std::uint64_t left = extent.end - extent.begin; left > 0;) {
    const std::size_t bytes = std::min<std::uint64_t>(left, batch.size());
    if (!source.read(batch.data(), static_cast<std::streamsize>(bytes))) {
      FED_Failure::Throw("310000000901", kLocation,
                         "Cannot read %s, which this export has written before. Export again.",
                         extent.file.u8string().c_str());
    }
    file.Write(batch.data(), bytes);
    left -= bytes;
    m_OnBytes(array.bytes * bytes / total);
  }
}

}  // namespace qelta
