#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "FileSystem.h"

namespace qelta {

class Catalogue;

/// The directory of a database: which files it holds, and what it is seen from outside.
class DatabaseDirectory {
 public:
  static constexpr const char* kCatalogue = "catalogue.sqlite";
  static constexpr const char* kLog = "catalogue.sqlite-wal";

  /// `path` in UTF-8.
  DatabaseDirectory(FileSystem& files, const std::string& path) : m_Files(files), m_Path(path) {}

  /// "payload-3.qd"
  static std::string NameOfPayload(std::uint64_t number);
  /// The number in such a name; 0 when it is none.
  static std::uint64_t NumberOfPayload(const std::string& name);

  enum class State {
    ABSENT,      ///< nothing stands under the path
    UNFINISHED,  ///< a creation was cut off, or it is empty; nothing was ever saved here
    THERE        ///< it holds a catalogue, or what is left of a database
  };

  /// Fails when the path is a file, or a directory that has no catalogue and holds other files.
  State Look() const;

  /// Fails when the directory holds anything that is not part of a database.
  void RequireNothingForeign() const;

  std::vector<std::string> ListPayloads() const;

  /// Renames it to the first of "NAME.damaged-1", ... that is free, and returns that.
  std::string MoveAside() const;

  /// For readers, who leave it as it is.
  std::unique_ptr<Catalogue> OpenCatalogueToRead() const;

  std::string PathOf(const std::string& name) const { return m_Path + "/" + name; }

 private:
  std::vector<std::string> ListForeign() const;
  bool WasEverSaved() const;
  bool HasLog() const;

  FileSystem& m_Files;
  std::string m_Path;
};

}  // namespace qelta
