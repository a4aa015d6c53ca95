#include "CsvTable.h"

#include <FED_Failure.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaIo|CsvTable";

class Parser {
 public:
  Parser(std::istream& text, const std::string& name)
      : m_Text(std::istreambuf_iterator<char>(text), {}), m_Name(name) {
    constexpr const char* kByteOrderMark = "\xef\xbb\xbf";
    if (m_Text.rfind(kByteOrderMark, 0) == 0) m_Place = 3;
  }

  std::size_t GetLine() const { return m_Line; }
  bool IsAtEnd() const { return m_Place >= m_Text.size(); }

  std::vector<std::string> TakeRow() {
    std::vector<std::string> row;
    do {
      row.push_back(Next() == '"' ? TakeQuoted() : TakePlain());
    } while (Skip(','));
    Skip('\r');
    if (!Skip('\n') && !IsAtEnd()) Complain("310000000802", "something stands behind a quote");
    ++m_Line;
    return row;
  }

  [[noreturn]] void Complain(const char* messageId, const std::string& cause) const {
    FED_Failure::Throw(messageId, kLocation, "%s, line %Iu: %s.", m_Name.c_str(),
                       static_cast<std::uint64_t>(m_Line), cause.c_str());
  }

 private:
  char Next() const { return IsAtEnd() ? '\0' : m_Text[m_Place]; }

  bool Skip(char c) {
    const bool isNext = !IsAtEnd() && Next() == c;
    m_Place += isNext ? 1 : 0;
    return isNext;
  }

  std::string TakePlain() {
    const std::size_t end = std::min(m_Text.find_first_of(",\r\n", m_Place), m_Text.size());
    std::string value = m_Text.substr(m_Place, end - m_Place);
    m_Place = end;
    return value;
  }

  std::string TakeQuoted() {
    std::string value;
    for (++m_Place;;) {
      const std::size_t quote = m_Text.find('"', m_Place);
      if (quote == std::string::npos) Complain("310000000801", "a quote is not closed");
      for (; m_Place < quote; ++m_Place) {
        if (m_Text[m_Place] == '\n') ++m_Line;
        value += m_Text[m_Place];
      }
      ++m_Place;
      if (!Skip('"')) return value;
      value += '"';
    }
  }

  std::string m_Text;
  const std::string& m_Name;
  std::size_t m_Place = 0;
  std::size_t m_Line = 1;
};

}  // namespace

CsvTable CsvTable::Read(std::istream& text, const std::string& name) {
  CsvTable table;
  Parser parser(text, name);
  if (parser.IsAtEnd()) parser.Complain("310000000803", "there is no header line");
  table.titles = parser.TakeRow();
  while (!parser.IsAtEnd()) {
    const std::size_t line = parser.GetLine();
    std::vector<std::string> row = parser.TakeRow();
    const bool isBlank = row.size() == 1 && row[0].empty();
    if (isBlank && table.titles.size() > 1) continue;
    if (row.size() != table.titles.size()) {
      FED_Failure::Throw("310000000804", kLocation, "%s, line %Iu: %Iu values under %Iu titles.",
                         name.c_str(), static_cast<std::uint64_t>(line),
                         static_cast<std::uint64_t>(row.size()),
                         static_cast<std::uint64_t>(table.titles.size()));
    }
    table.rows.push_back(std::move(row));
    table.lines.push_back(line);
  }
  return table;
}

}  // namespace qelta
