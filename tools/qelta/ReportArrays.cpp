#include "ReportArrays.h"

#include <zlib.h>

#include <new>
#include <string>

namespace qelta {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::size_t kTagBytes = 80;

Bytes ToPlanes(const void* numbers, std::size_t size, std::size_t count) {
  const auto* const bytes = static_cast<const unsigned char*>(numbers);
  Bytes planes(size * count);
  for (std::size_t plane = 0; plane < size; ++plane) {
    for (std::size_t i = 0; i < count; ++i) planes[plane * count + i] = bytes[i * size + plane];
  }
  return planes;
}

Bytes Deflate(const Bytes& bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  Bytes deflated(size);
  const int state = compress2(deflated.data(), &size, bytes.data(),
                              static_cast<uLong>(bytes.size()), Z_DEFAULT_COMPRESSION);
  if (state != Z_OK) throw std::bad_alloc();
  deflated.resize(size);
  return deflated;
}

std::string ToBase64(Bytes bytes) {
  constexpr const char* kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const std::size_t missing = (3 - bytes.size() % 3) % 3;
  bytes.resize(bytes.size() + missing);
  std::string text;
  text.reserve(bytes.size() / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const unsigned three = static_cast<unsigned>(bytes[i] << 16 | bytes[i + 1] << 8 | bytes[i + 2]);
    for (const int shift : {18, 12, 6, 0}) text += kDigits[three >> shift & 63U];
  }
  text.replace(text.size() - missing, missing, missing, '=');
  return text;
}

}  // namespace

nlohmann::ordered_json ReportArrays::Write(const std::vector<float>& numbers) {
  return WriteBytes("f32", numbers.data(), sizeof(float), numbers.size());
}

nlohmann::ordered_json ReportArrays::Write(const std::vector<std::int32_t>& numbers) {
  return WriteBytes("i32", numbers.data(), sizeof(std::int32_t), numbers.size());
}

nlohmann::ordered_json ReportArrays::Write(const std::vector<std::uint32_t>& numbers) {
  return WriteBytes("u32", numbers.data(), sizeof(std::uint32_t), numbers.size());
}

nlohmann::ordered_json ReportArrays::Write(const std::vector<std::uint8_t>& numbers) {
  return WriteBytes("u8", numbers.data(), 1, numbers.size());
}

std::uint64_t ReportArrays::MostBytes(std::uint64_t bytes) {
  return (compressBound(static_cast<uLong>(bytes)) + 2) / 3 * 4 + kTagBytes;
}

nlohmann::ordered_json ReportArrays::WriteBytes(const char* type, const void* bytes,
                                                std::size_t size, std::size_t count) {
  const int id = m_Count++;
  m_File.Write("<script type=\"text/plain\" id=\"array-" + std::to_string(id) + "\">");
  m_File.Write(ToBase64(Deflate(ToPlanes(bytes, size, count))));
  m_File.Write("</script>\n");
  return {{"id", id}, {"type", type}, {"count", count}};
}

}  // namespace qelta
