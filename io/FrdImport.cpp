#include "FrdImport.h"

#include "FrdBlocks.h"
#include "QeltaDatabaseSink.h"

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

}  // namespace

bool ImportFrd(const std::filesystem::path& path, FED_Database& database,
               const FrdReadOptions& options) {
  FrdReader reader(path, options);
  QeltaDatabaseSink sink(database);
  Import import(sink);
  reader.Read(import);
  return import.IsComplete();
}

}  // namespace qelta
