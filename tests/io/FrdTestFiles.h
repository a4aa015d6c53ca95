#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "FrdEvents.h"
#include "FrdReader.h"

namespace qelta::test {

inline std::filesystem::path DataFile(const std::string& name) {
  return std::filesystem::path(QELTA_TEST_DATA) / name;
}

inline std::filesystem::path ExampleFile(const std::string& name) {
  return std::filesystem::path(QELTA_EXAMPLE_DATA) / name;
}

inline std::string Slurp(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// A file in the temporary folder that goes with this object.
class TempFile {
 public:
  explicit TempFile(const std::string& content) {
    static const unsigned process = std::random_device()();
    static int number = 0;
    m_Path = std::filesystem::temp_directory_path() /
             ("qelta_io_" + std::to_string(process) + "_" + std::to_string(++number) + ".frd");
    std::ofstream(m_Path, std::ios::binary) << content;
  }
  ~TempFile() { std::filesystem::remove(m_Path); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  const std::filesystem::path& Path() const { return m_Path; }

 private:
  std::filesystem::path m_Path;
};

/// Writes down what it receives, one line for each table head and each record.
class EventLog : public FrdVisitor {
 public:
  std::string text;

  void OnModel(const std::string& name) override { text += "model " + name + "\n"; }
  void OnUserHeader(const std::string& line) override { text += "header " + line + "\n"; }
  void OnMaterial(std::int32_t number, const std::string& name) override {
    text += "material " + std::to_string(number) + " " + name + "\n";
  }
  void OnNodesBegin(const FrdTable&) override { text += "nodes\n"; }
  void OnNodes(const FrdRecords& nodes) override { Add(nodes); }
  void OnNodesEnd() override { text += "end\n"; }
  void OnElementsBegin(const FrdTable&) override { text += "elements\n"; }
  void OnElement(const FrdElement& element) override;
  void OnElementsEnd() override { text += "end\n"; }
  void OnDatasetBegin(const FrdDataset& dataset) override;
  void OnRecords(const FrdRecords& records) override { Add(records); }
  void OnDatasetEnd(const FrdDataset&) override { text += "end\n"; }
  void OnTableCut() override { text += "cut\n"; }
  void OnEnd(bool complete) override { text += complete ? "complete\n" : "incomplete\n"; }

 private:
  static std::string Number(double value) {
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, " %.9g", value);
    return buffer;
  }
  template <class T>
  static std::string Optional(const char* name, const std::optional<T>& value) {
    return value ? std::string(" ") + name + Number(static_cast<double>(*value)) : std::string();
  }
  void Add(const FrdRecords& records);
};

inline void EventLog::Add(const FrdRecords& records) {
  for (std::size_t i = 0; i < records.count; ++i) {
    text += std::to_string(records.ids[i]) + "@" + std::to_string(records.indices[i]);
    for (std::size_t j = 0; j < records.valueCount; ++j) {
      text += Number(records.values[i * records.valueCount + j]);
    }
    text += "\n";
  }
}

inline void EventLog::OnElement(const FrdElement& element) {
  text += std::to_string(element.id) + "@" + std::to_string(element.index) + " " +
          element.type->name + " group " + std::to_string(element.group) + " material " +
          std::to_string(element.material) + element.materialName + ":";
  for (int i = 0; i < element.type->nodeCount; ++i) {
    text += " " + std::to_string(element.nodeIndices[i]);
  }
  text += "\n";
}

inline void EventLog::OnDatasetBegin(const FrdDataset& dataset) {
  const FrdFrame& frame = dataset.frame;
  text += dataset.name + " type " + std::to_string(frame.type) + Optional("step", frame.step) +
          Optional("increment", frame.increment) + Optional("frame", frame.number) +
          Optional("mode", frame.mode) + Optional("value", frame.value) +
          Optional("eigenvalue", frame.eigenvalue) + Optional("mass", frame.generalisedMass) + ":";
  for (const FrdComponent& component : dataset.components) text += " " + component.name;
  text += "\n";
}

inline std::string ReadEvents(const std::filesystem::path& path,
                              const FrdReadOptions& options = {}) {
  EventLog log;
  FrdReader(path, options).Read(log);
  return log.text;
}

inline std::string ReadEventsOf(const std::string& content, const FrdReadOptions& options = {}) {
  return ReadEvents(TempFile(content).Path(), options);
}

}  // namespace qelta::test
