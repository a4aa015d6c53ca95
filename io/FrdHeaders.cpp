#include "FrdHeaders.h"

#include <FED_Message.h>

#include <algorithm>
#include <array>

#include "FrdColumns.h"

namespace qelta {
namespace {

std::string Quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

[[noreturn]] void ThrowBadNumber(const FrdSource& source, const char* what, std::string_view text) {
  source.ThrowDamage("310000000101", std::string(what) + " " + Quoted(text) + " is not a number");
}

std::optional<std::int32_t> Integer(const FrdSource& source, std::string_view text,
                                    const char* what) {
  if (FrdIsBlank(text)) return std::nullopt;
  std::int32_t value = 0;
  if (!ParseFrdInteger(text, value)) ThrowBadNumber(source, what, text);
  return value;
}

std::optional<double> Double(const FrdSource& source, std::string_view text, const char* what) {
  if (FrdIsBlank(text)) return std::nullopt;
  double value = 0;
  if (!ParseFrdDouble(text, value)) ThrowBadNumber(source, what, text);
  return value;
}

FrdTable Table(const FrdSource& source, std::string_view line, const char* countName) {
  FrdTable table;
  table.count = Integer(source, FrdColumn(line, 25, 12), countName);
  const std::int32_t format = Integer(source, FrdColumn(line, 74, 2), "FORMAT").value_or(1);
  if (format < 0 || format > 3) {
    source.ThrowDamage("310000000102",
                       FED_MESSAGE("FORMAT %d is unknown (0 to 3 are known)", format));
  }
  if (table.count.value_or(0) < 0) {
    source.ThrowDamage("310000000103", FED_MESSAGE("%s %d is negative", countName, *table.count));
  }
  table.encoding = static_cast<FrdEncoding>(format);
  return table;
}

// The numbers of a -4 or -5 line stand in columns of five from column 14. Some writers put a tab
// among them; then what counts are the words (the last of which touches a name).
template <std::size_t N>
std::array<std::string_view, N> NumberColumns(std::string_view line) {
  std::array<std::string_view, N> columns;
  const bool byWords = line.find('\t') != std::string_view::npos;
  std::string_view rest = FrdColumn(line, 14, line.size());
  for (std::string_view& column : columns) {
    std::size_t width = 5;
    if (byWords) {
      rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
      width = rest.find_first_not_of("-0123456789");
    }
    column = rest.substr(0, width);
    rest.remove_prefix(column.size());
  }
  return columns;
}

std::string Name(const FrdSource& source, std::string_view line) {
  const std::string_view name = FrdTrim(FrdColumn(line, 6, 8));
  for (const char c : name) {
    if (static_cast<unsigned char>(c) < ' ') {
      source.ThrowDamage("310000000106", "the name holds bytes that are no text");
    }
  }
  return std::string(name);
}

}  // namespace

FrdTable ParseFrdTableHead(const FrdSource& source, std::string_view line) {
  return Table(source, line, line[4] == '2' ? "NUMNOD" : "NUMELEM");
}

void ParseFrdParameter(const FrdSource& source, std::string_view line, FrdFrame& frame) {
  const std::string_view key = FrdTrim(FrdColumn(line, 7, 18));
  const std::string_view value = FrdColumn(line, 25, 12);
  if (key == "STEP") {
    frame.increment = Integer(source, FrdColumn(line, 37, 12), "the increment");
    frame.step = Integer(source, FrdColumn(line, 49, 12), "the step");
  } else if (key == "MODE") {
    frame.mode = Integer(source, value, "the mode number");
  } else if (key == "GK") {
    frame.eigenvalue = Double(source, value, "the eigenvalue");
  } else if (key == "GM") {
    frame.generalisedMass = Double(source, value, "the generalised mass");
  }
}

FrdTable ParseFrdFrameHead(const FrdSource& source, std::string_view line, FrdFrame& frame) {
  frame.value = Double(source, FrdColumn(line, 13, 12), "VALUE");
  frame.type = Integer(source, FrdColumn(line, 57, 2), "ICTYPE").value_or(0);
  frame.number = Integer(source, FrdColumn(line, 59, 5), "NUMSTP");
  return Table(source, line, "NUMNOD");
}

FrdFieldHead ParseFrdFieldHead(const FrdSource& source, std::string_view line) {
  const auto columns = NumberColumns<1>(line);
  FrdFieldHead head{Name(source, line), 0};
  head.componentCount = Integer(source, columns[0], "NCOMPS").value_or(0);
  if (head.name.empty()) source.ThrowDamage("310000000104", "the field has no name");
  if (head.componentCount < 1) {
    source.ThrowDamage("310000000105", "the field " + head.name + " has no components");
  }
  return head;
}

std::optional<FrdComponent> ParseFrdComponent(const FrdSource& source, std::string_view line) {
  const auto columns = NumberColumns<5>(line);
  if (Integer(source, columns[4], "IEXIST") == 1) return std::nullopt;
  FrdComponent component;
  component.name = Name(source, line);
  component.type = Integer(source, columns[1], "ICTYPE").value_or(1);
  component.row = Integer(source, columns[2], "IND1").value_or(0);
  component.column = Integer(source, columns[3], "IND2").value_or(0);
  return component;
}

}  // namespace qelta
