#include "ReportPage.h"

#include <FED_Message.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string_view>

#include "JsonText.h"
#include "Progress.h"
#include "ReportFacts.h"
#include "ReportTemplate.h"
#include "TargetDatabase.h"

namespace qelta {
namespace {

using Key = FED_DataDescriptor;
using Json = nlohmann::ordered_json;

// What the page says of a step beside its key.
constexpr std::uint64_t kStepBytes = 60;

std::vector<Key> KeysOf(const std::vector<QeltaBlockInfo>& blocks) {
  std::vector<Key> keys;
  keys.reserve(blocks.size());
  for (const QeltaBlockInfo& block : blocks) keys.push_back(block.key);
  return keys;
}

// What all steps have in common says nothing about any of them.
Key CommonFields(const std::vector<QeltaStep>& steps) {
  Key common = steps.size() > 1 ? steps.front().key : Key();
  for (const QeltaStep& step : steps) {
    for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
      const Key::ResultIndex field = Key::CastIndex(i);
      const bool isSame = common.Has(field) && step.key.Has(field) &&
                          step.key.GetInteger(field) == common.GetInteger(field);
      if (!isSame) common.Unset(field);
    }
  }
  return common;
}

Json NamesOf(const std::vector<QeltaStep>& steps) {
  const Key common = CommonFields(steps);
  Json names = Json::array();
  for (const QeltaStep& step : steps) {
    Key key = step.key;
    for (std::size_t i = 0; i < Key::FIELD_COUNT; ++i) {
      if (common.Has(Key::CastIndex(i))) key.Unset(Key::CastIndex(i));
    }
    const std::string value =
        step.value ? FED_MESSAGE("%s %g, ", step.valueName.c_str(), *step.value) : "";
    names.push_back(value + key.ToString());
  }
  return names;
}

// A text in it must not end the element that it stands in.
std::string ToScript(const Json& json) {
  std::string text = ToLine(json);
  for (std::size_t at = 0; (at = text.find('<', at)) != std::string::npos;) {
    text.replace(at, 1, "\\u003c");
  }
  return "<script type=\"application/json\" id=\"report\">" + text + "</script>\n";
}

}  // namespace

ReportPage::ReportPage(const FED_Database& database, const std::vector<QeltaBlockInfo>& blocks,
                       ReportTexts texts, bool showProgress)
    : m_Database(database),
      m_ShowProgress(showProgress),
      m_Meshes(database),
      m_Fields(FindMeshFields(database, m_Meshes, KeysOf(blocks))) {
  const std::vector<Key> keys = KeysOf(blocks);
  for (std::size_t i = 0; i < m_Meshes.GetAll().size(); ++i) {
    const Key& mesh = m_Meshes.GetAll()[i].GetKey();
    const bool isChosen = std::find(keys.begin(), keys.end(), mesh) != keys.end();
    if (isChosen || !m_Fields.fields[i].empty()) m_Shown.push_back(i);
  }
  m_Json["title"] = std::move(texts.title);
  m_Json["subtitle"] = std::move(texts.subtitle);
  m_Json["made"] = std::move(texts.made);
  m_Json["catalogue"] = ReportCatalogue();
  m_Json["blocks"] = ReportBlocks(blocks);
  m_Json["overview"] = ReportOverview(blocks, database.GetIdMapsPool());
  m_Json["series"] = ReportSeries(database, blocks);
  m_Json["meshes"] = Json::array();
  m_Json["steps"] = Json::array();
}

void ReportPage::Write(QeltaOutputFile& file, std::uint64_t mostBytes) {
  const std::string page(ReportTemplate());
  const std::size_t mark = page.find(kReportDataMark);
  file.Write(page.substr(0, mark));
  ReportArrays arrays(file);
  WriteMeshes(arrays);
  ChooseSteps(file.GetPosition() + page.size() - mark + ToScript(m_Json).size(), mostBytes);
  WriteFields(arrays);
  m_Json["notes"] = m_Notes;
  file.Write(ToScript(m_Json));
  file.Write(page.substr(mark + kReportDataMark.size()));
}

void ReportPage::WriteMeshes(ReportArrays& arrays) {
  Progress progress("reducing the mesh", m_ShowProgress, "elements");
  for (const std::size_t mesh : m_Shown) {
    m_Shapes.push_back(WriteShapes(m_Meshes.GetAll()[mesh], m_Database.GetIdMapsPool(), arrays,
                                   [&](auto done, auto total) { progress.Show(done, total); }));
  }
}

// Calls `visit` with the place of its mesh among those shown, and with every field.
template <class Visit>
void ReportPage::VisitFields(Visit visit) const {
  for (std::size_t i = 0; i < m_Shown.size(); ++i) {
    const QeltaMesh& mesh = m_Meshes.GetAll()[m_Shown[i]];
    for (const QeltaMeshField& field : m_Fields.fields[m_Shown[i]]) {
      visit(i, field, ReportField(m_Database, mesh, m_Shapes[i], field));
    }
  }
}

void ReportPage::ChooseSteps(std::uint64_t used, std::uint64_t mostBytes) {
  std::vector<std::uint64_t> sizes;
  for (const QeltaStep& step : m_Fields.steps)
    sizes.push_back(step.key.ToString().size() + kStepBytes);
  VisitFields([&](std::size_t, const QeltaMeshField& field, const ReportField& written) {
    const std::uint64_t size = written.MostBytesOfBlock();
    for (const auto& block : field.blocks) (block.step ? sizes[*block.step] : used) += size;
  });
  const auto steps = qelta::ChooseSteps(sizes, mostBytes < used ? 0 : mostBytes - used);
  if (!steps || mostBytes < used) {
    throw CLI::ValidationError("--max-size",
                               "the meshes and even two steps have no room in " +
                                   BytesText(static_cast<double>(mostBytes)) +
                                   "; allow more, or choose fewer blocks with --where.");
  }
  if (steps->size() == sizes.size()) return;
  KeepSteps(m_Fields, *steps);
  m_Notes.push_back("Of " + CountText(sizes.size(), "step") + " " + std::to_string(steps->size()) +
                    " are in the page, evenly spread; --max-size and --where choose.");
}

void ReportPage::WriteFields(ReportArrays& arrays) {
  Progress progress("writing fields", m_ShowProgress, "blocks");
  std::uint64_t done = 0, total = 0;
  VisitFields([&total](std::size_t, const QeltaMeshField& field, const ReportField&) {
    total += field.blocks.size();
  });
  for (ReportShapes& shapes : m_Shapes) {
    shapes.json["fields"] = Json::array();
    m_Json["meshes"].push_back(std::move(shapes.json));
  }
  m_Json["steps"] = NamesOf(m_Fields.steps);
  VisitFields([&](std::size_t mesh, const QeltaMeshField&, const ReportField& field) {
    const auto onBlock = [&] { progress.Show(done++, total); };
    m_Json["meshes"][mesh]["fields"].push_back(field.Write(arrays, onBlock));
  });
}

}  // namespace qelta
