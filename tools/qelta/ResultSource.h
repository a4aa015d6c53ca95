#pragma once

#include <FED_Database.h>
#include <QeltaBlockListing.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace qelta {

struct SourceOptions {
  bool acceptRunningJob = false;
  bool showProgress = true;
  bool needsRecords = true;  ///< Load will be called: the source is read twice
};

/// The path of a source: the standard input if its name is "-".
std::filesystem::path PathOfSource(const std::string& name);

/// Fails as a wrong command line does, because the standard input should be read twice.
[[noreturn]] void ThrowReadOnce();

/// What a command reads from: a database on disk, or a result file (.frd).
class ResultSource {
 public:
  /// Opens what has this name; "-" is a result file on the standard input.
  static std::unique_ptr<ResultSource> Open(const std::string& name, const SourceOptions& options);

  virtual ~ResultSource() = default;
  ResultSource(const ResultSource&) = delete;
  ResultSource& operator=(const ResultSource&) = delete;

  /// The keys of all blocks, in the order of the source.
  virtual std::vector<FED_DataDescriptor> GetKeys() = 0;

  /// One entry for each of the keys, which are some of GetKeys, in their order.
  virtual std::vector<QeltaBlockInfo> Describe(const std::vector<FED_DataDescriptor>& keys) = 0;

  /// A database that holds at least the blocks of these keys, and the id maps. It belongs to this
  /// object; a result file is read into memory as far as it is asked for.
  virtual const FED_Database& Load(const std::vector<FED_DataDescriptor>& keys) = 0;

 protected:
  ResultSource() = default;
};

}  // namespace qelta
