#include "RowOutput.h"

#include <map>

#include "Console.h"
#include "JsonText.h"
#include "OptionChecks.h"

namespace qelta {
namespace {

constexpr int kFewestDigits = 4;

class TableOutput : public RowOutput {
 public:
  explicit TableOutput(std::optional<int> digits) : m_Digits(digits) {}

  void Begin(std::vector<OutputColumn> columns, const std::string& caption) override {
    Finish();
    if (m_HasBegun) Console::Print("\n");
    m_HasBegun = true;
    if (!caption.empty()) Console::PrintBold(caption + "\n");
    m_Columns = std::move(columns);
  }

  void Add(std::vector<OutputCell> cells) override { m_Rows.push_back(std::move(cells)); }

  void End() override { Finish(); }

 private:
  void Finish() {
    if (m_Columns.empty()) return;
    int digits = m_Digits.value_or(kTableDigits);
    Table table = MakeTable(digits);
    while (!m_Digits && digits > kFewestDigits && Console::IsOutputTerminal() &&
           table.GetWidth() > Console::GetWidth()) {
      table = MakeTable(--digits);
    }
    while (Console::IsOutputTerminal() && table.GetLeastWidth() > Console::GetWidth() &&
           DropColumn()) {
      table = MakeTable(digits);
    }
    table.Print();
    m_Columns.clear();
    m_Rows.clear();
  }

  // The last one that is dispensable; false when there is none.
  bool DropColumn() {
    for (std::size_t i = m_Columns.size(); i-- > 0;) {
      if (!m_Columns[i].isDispensable) continue;
      const auto place = static_cast<std::ptrdiff_t>(i);
      m_Columns.erase(m_Columns.begin() + place);
      for (auto& row : m_Rows) row.erase(row.begin() + place);
      return true;
    }
    return false;
  }

  Table MakeTable(int digits) const {
    std::vector<Table::Align> aligns;
    std::vector<std::string> titles;
    for (const OutputColumn& column : m_Columns) {
      aligns.push_back(column.align);
      titles.push_back(column.name);
    }
    Table table(std::move(aligns));
    for (const std::vector<OutputCell>& row : m_Rows) {
      std::vector<std::string> texts;
      texts.reserve(row.size());
      for (const OutputCell& cell : row) texts.push_back(cell ? ToText(*cell, digits) : "");
      table.Add(std::move(texts));
    }
    table.AddTitles(std::move(titles));
    return table;
  }

  std::optional<int> m_Digits;
  bool m_HasBegun = false;
  std::vector<OutputColumn> m_Columns;
  std::vector<std::vector<OutputCell>> m_Rows;
};

// A text in quotes where it needs them.
std::string CsvText(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

class CsvOutput : public RowOutput {
 public:
  explicit CsvOutput(Printer print) : m_Print(std::move(print)) {}

  void Begin(std::vector<OutputColumn> columns, const std::string& /*caption*/) override {
    if (m_HasBegun) m_Print("\n");
    m_HasBegun = true;
    std::string line;
    for (const OutputColumn& column : columns) {
      line += (line.empty() ? "" : ",") + CsvText(column.name);
    }
    m_Print(line + "\n");
  }

  void Add(std::vector<OutputCell> cells) override {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (i > 0) line += ',';
      if (cells[i]) line += CsvText(ToText(*cells[i], kAllDigits));
    }
    m_Print(line + "\n");
  }

  void End() override {}

 private:
  Printer m_Print;
  bool m_HasBegun = false;
};

class JsonOutput : public RowOutput {
 public:
  JsonOutput(bool isArray, Printer print) : m_IsArray(isArray), m_Print(std::move(print)) {}

  void Begin(std::vector<OutputColumn> columns, const std::string& /*caption*/) override {
    m_Columns = std::move(columns);
  }

  void Add(std::vector<OutputCell> cells) override {
    nlohmann::ordered_json row = nlohmann::ordered_json::object();
    for (std::size_t i = 0; i < cells.size(); ++i) {
      row[m_Columns[i].name] = cells[i] ? ToJson(*cells[i]) : nlohmann::ordered_json();
    }
    const char* const before = !m_IsArray ? "" : m_HasRows ? ",\n" : "[\n";
    m_Print(before + ToLine(row) + (m_IsArray ? "" : "\n"));
    m_HasRows = true;
  }

  void End() override {
    if (m_IsArray) m_Print(m_HasRows ? "\n]\n" : "[]\n");
  }

 private:
  bool m_IsArray;
  Printer m_Print;
  bool m_HasRows = false;
  std::vector<OutputColumn> m_Columns;
};

void PrintToConsole(const std::string& text) { Console::Print(text); }

}  // namespace

void RowOutput::AddFormatOption(CLI::App& command, OutputFormat& format) {
  static const std::map<std::string, OutputFormat> kFormats = {{"table", OutputFormat::Table},
                                                               {"csv", OutputFormat::Csv},
                                                               {"json", OutputFormat::Json},
                                                               {"jsonl", OutputFormat::JsonLines}};
  command.add_option("--format", format, "table, csv, json or jsonl (an object a line)")
      ->transform(Choice(kFormats))
      ->type_name("FORMAT");
}

std::unique_ptr<RowOutput> RowOutput::Make(OutputFormat format, std::optional<int> digits) {
  switch (format) {
    case OutputFormat::Csv:
      return MakeCsv(PrintToConsole);
    case OutputFormat::Json:
      return std::make_unique<JsonOutput>(true, PrintToConsole);
    case OutputFormat::JsonLines:
      return MakeJsonLines(PrintToConsole);
    case OutputFormat::Table:
      break;
  }
  return std::make_unique<TableOutput>(digits);
}

std::unique_ptr<RowOutput> RowOutput::MakeCsv(Printer print) {
  return std::make_unique<CsvOutput>(std::move(print));
}

std::unique_ptr<RowOutput> RowOutput::MakeJsonLines(Printer print) {
  return std::make_unique<JsonOutput>(false, std::move(print));
}

void PrintLines(const std::string& column, const std::vector<std::string>& texts,
                OutputFormat format) {
  if (format == OutputFormat::Table) {
    for (const std::string& text : texts) Console::Print(text + "\n");
    return;
  }
  const auto output = RowOutput::Make(format);
  output->Begin({{column}});
  for (const std::string& text : texts) output->Add({text});
  output->End();
}

}  // namespace qelta
