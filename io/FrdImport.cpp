#include "FrdImport.h"

#include "FrdBlocks.h"
#include "QeltaDatabaseSink.h"
#include "QeltaSelectingSink.h"

namespace qelta {
namespace {

class Import : public FrdBlocks {
 public:
  using FrdBlocks::FrdBlocks;

  void OnEnd(bool complete) override {
    FrdBlocks::OnEnd(complete);
    m_IsComplete = complete;
  }
  bool IsComplete() const { return m_IsComplete; }

 private:
  bool m_IsComplete = false;
};

bool ImportInto(QeltaBlockSink& sink, const std::filesystem::path& path,
                const FrdReadOptions& options) {
  FrdReader reader(path, options);
  Import import(sink);
  reader.Read(import);
  return import.IsComplete();
}

}  // namespace

bool ImportFrd(const std::filesystem::path& path, FED_Database& database,
               const FrdReadOptions& options) {
  QeltaDatabaseSink sink(database);
  return ImportInto(sink, path, options);
}

bool ImportFrdBlocks(const std::filesystem::path& path, FED_Database& database,
                     const std::vector<FED_DataDescriptor>& keys, const FrdReadOptions& options) {
  QeltaDatabaseSink sink(database);
  QeltaSelectingSink selecting(sink, keys);
  return ImportInto(selecting, path, options);
}

}  // namespace qelta
