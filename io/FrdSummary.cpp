#include "FrdSummary.h"

#include <algorithm>
#include <array>

#include "FrdBlocks.h"
#include "FrdColumns.h"
#include "FrdTableLines.h"

namespace qelta {
namespace {

class Summarizer : public FrdBlocks {
 public:
  Summarizer(QeltaBlockSink& sink, FrdFileSummary& summary) : FrdBlocks(sink), m_Out(summary) {}

  void OnModel(const std::string& name) override {
    FrdBlocks::OnModel(name);
    m_Out.model = name;
  }
  void OnUserHeader(const std::string& text) override;
  void OnMaterial(std::int32_t number, const std::string& name) override {
    FrdBlocks::OnMaterial(number, name);
    m_Out.materials.push_back(name);
  }
  void OnNodesBegin(const FrdTable& table) override {
    FrdBlocks::OnNodesBegin(table);
    m_Out.isBinary |= !IsFrdText(table.encoding);
  }
  void OnNodes(const FrdRecords& nodes) override {
    FrdBlocks::OnNodes(nodes);
    m_Out.nodes += CountNew(nodes);
  }
  void OnElement(const FrdElement& element) override {
    FrdBlocks::OnElement(element);
    if (element.index < m_NextElement) return;
    m_NextElement = element.index + 1;
    ++m_Out.elements[element.type->name];
  }
  void OnDatasetBegin(const FrdDataset& dataset) override {
    FrdBlocks::OnDatasetBegin(dataset);
    m_Out.isBinary |= !IsFrdText(dataset.table.encoding);
  }
  void OnDatasetEnd(const FrdDataset& dataset) override;
  void OnRecords(const FrdRecords& records) override {
    FrdBlocks::OnRecords(records);
    m_Out.nodesWithoutCoordinates += CountNew(records);
  }
  void OnEnd(bool complete) override {
    FrdBlocks::OnEnd(complete);
    m_Out.isComplete = complete;
  }

 private:
  std::uint64_t CountNew(const FrdRecords& records);
  FrdStepSummary& FindStep(const FrdFrame& frame);

  FrdFileSummary& m_Out;
  std::int32_t m_NextNode = 0;
  std::int32_t m_NextElement = 0;
};

// Indices are given in the order in which nodes are first seen.
std::uint64_t Summarizer::CountNew(const FrdRecords& records) {
  const std::int32_t before = m_NextNode;
  for (std::size_t i = 0; i < records.count; ++i) {
    m_NextNode = std::max(m_NextNode, records.indices[i] + 1);
  }
  return static_cast<std::uint64_t>(m_NextNode - before);
}

void Summarizer::OnUserHeader(const std::string& text) {
  constexpr std::array<const char*, 9> kKeys = {"USER",    "DATE",        "TIME", "HOST", "PGM",
                                                "VERSION", "COMPILETIME", "DIR",  "DBN"};
  FrdBlocks::OnUserHeader(text);
  const std::string key = text.substr(0, text.find(' '));
  if (std::find(kKeys.begin(), kKeys.end(), key) != kKeys.end()) {
    m_Out.headers[key] = FrdTrim(std::string_view(text).substr(key.size()));
  } else if (m_Out.heading.empty()) {
    m_Out.heading = text;
  }
}

void AddIfGiven(FED_IntSetIntvl<int>& set, std::optional<std::int32_t> value) {
  if (value) set.Insert(*value);
}

void Summarizer::OnDatasetEnd(const FrdDataset& dataset) {
  FrdBlocks::OnDatasetEnd(dataset);
  const FrdFrame& frame = dataset.frame;
  FrdStepSummary& step = FindStep(frame);
  AddIfGiven(step.frames, frame.number);
  AddIfGiven(step.increments, frame.increment);
  AddIfGiven(step.modes, frame.mode);
  step.lowestValue = std::min(step.lowestValue, frame.value.value_or(step.lowestValue));
  step.highestValue = std::max(step.highestValue, frame.value.value_or(step.highestValue));
}

FrdStepSummary& Summarizer::FindStep(const FrdFrame& frame) {
  const FrdAnalysis analysis = GetFrdAnalysis(frame);
  const auto known =
      std::find_if(m_Out.steps.begin(), m_Out.steps.end(), [&](const FrdStepSummary& step) {
        return step.step == frame.step && step.analysis == analysis;
      });
  if (known != m_Out.steps.end()) return *known;
  FrdStepSummary& step = m_Out.steps.emplace_back();
  step.step = frame.step;
  step.analysis = analysis;
  step.lowestValue = step.highestValue = frame.value.value_or(0.0);
  return step;
}

}  // namespace

FrdFileSummary SummarizeFrd(const std::filesystem::path& path, const FrdReadOptions& options) {
  FrdReader reader(path, options);
  FrdFileSummary summary;
  QeltaCountingSink sink;
  Summarizer summarizer(sink, summary);
  reader.Read(summarizer);
  summary.blocks = sink.GetBlocks();
  return summary;
}

}  // namespace qelta
