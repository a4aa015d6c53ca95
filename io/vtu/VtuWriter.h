#pragma once

#include <QeltaOutputFile.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>

#include "VtuArray.h"

namespace qelta {

/// A text between the tags or quotes of XML. Control characters become '_', and so does every byte
/// beyond ASCII of a text that is not UTF-8.
std::string XmlText(const std::string& text);

/// Writes .vtu files (VTK XML, unstructured grid) with appended raw data and 64-bit sizes.
///
/// An array whose bytes an earlier file of this writer holds is copied from there; these files must
/// stay where they are. Memory for a few batches, and the places of such arrays.
class VtuWriter {
 public:
  /// `onBytes` is called with the bytes, before compression, that were written since its last call.
  VtuWriter(bool compresses, std::function<void(std::uint64_t)> onBytes)
      : m_Compresses(compresses), m_OnBytes(std::move(onBytes)) {}

  /// Writes the whole file and closes it.
  void Write(const VtuGrid& grid, QeltaOutputFile& file);

 private:
  struct Extent {
    std::filesystem::path file;
    std::uint64_t begin;
    std::uint64_t end;
  };

  std::string Head(const VtuGrid& grid, const std::vector<std::uint64_t>& offsets) const;
  void WriteArray(const VtuArray& array, QeltaOutputFile& file);
  void WritePlain(const VtuArray& array, QeltaOutputFile& file) const;
  void WriteCompressed(const VtuArray& array, QeltaOutputFile& file) const;
  void Copy(const VtuArray& array, const Extent& extent, QeltaOutputFile& file) const;

  bool m_Compresses;
  std::function<void(std::uint64_t)> m_OnBytes;
  std::map<VtuArray::Identity, Extent> m_Written;
};

}  // namespace qelta
