#include "FrdImport.h"

#include "FrdBlocks.h"
#include "QeltaDatabaseSink.h"
#include "QeltaSelectingSink.h"

namespace qelta {
namespace {

class Import : public FrdBlocks {
 public:
  Import(QeltaBlockSink& sink, const FrdImportChoice& choice) : FrdBlocks(sink), m_Choice(choice) {}

  void OnNodesBegin(const FrdTable& table) override {
    TellOfTable(true);
    FrdBlocks::OnNodesBegin(table);
  }
  void OnNodesEnd() override {
    FrdBlocks::OnNodesEnd();
    TellOfTable(false);
  }
  void OnElementsBegin(const FrdTable& table) override {
    TellOfTable(true);
    FrdBlocks::OnElementsBegin(table);
  }
  void OnElementsEnd() override {
    FrdBlocks::OnElementsEnd();
    TellOfTable(false);
  }
  void OnDatasetBegin(const FrdDataset& dataset) override {
    TellOfTable(true);
    FrdBlocks::OnDatasetBegin(dataset);
  }
  void OnDatasetEnd(const FrdDataset& dataset) override {
    FrdBlocks::OnDatasetEnd(dataset);
    TellOfTable(false);
  }
  void OnEnd(bool complete) override {
    FrdBlocks::OnEnd(complete);
    m_IsComplete = complete;
  }
  bool IsComplete() const { return m_IsComplete; }

 private:
  void TellOfTable(bool isOpen) const {
    if (m_Choice.onTable) m_Choice.onTable(isOpen);
  }

  const FrdImportChoice& m_Choice;
  bool m_IsComplete = false;
};

}  // namespace

bool ImportFrd(const std::filesystem::path& path, FED_Database& database,
               const FrdReadOptions& options, const FrdImportChoice& choice) {
  QeltaDatabaseSink sink(database);
  QeltaSelectingSink selecting(sink, choice.accepts, choice.changes);
  FrdReader reader(path, options);
  Import import(selecting, choice);
  reader.Read(import);
  return import.IsComplete();
}

}  // namespace qelta
