#include "FrdTableLines.h"

#include <FED_Message.h>

#include "FrdColumns.h"

namespace qelta {
namespace {

bool StartsWith(std::string_view line, std::string_view key) {
  return line.substr(0, key.size()) == key;
}

}  // namespace

std::string_view RequireFrdLine(FrdSource& source, std::string_view key) {
  std::string_view line;
  if (!source.GetLine(line) || !source.IsLineComplete()) throw FrdCut();
  if (!StartsWith(line, key)) {
    source.ThrowDamage("310000000201", "a line that begins with '" + std::string(key) +
                                           "' is due, not '" + std::string(line.substr(0, 40)) +
                                           "'");
  }
  return line;
}

bool NextFrdTableLine(FrdSource& source, std::string_view& line) {
  if (!source.GetLine(line)) throw FrdCut();
  if (StartsWith(line, " -3") && FrdIsBlank(line.substr(3))) return false;
  if (!source.IsLineComplete()) throw FrdCut();
  if (!StartsWith(line, " -1")) {
    source.ThrowDamage("310000000202", "a record (' -1') or the table's end (' -3') is due, not '" +
                                           std::string(line.substr(0, 40)) + "'");
  }
  return true;
}

const char* RequireFrdBytes(FrdSource& source, std::size_t count) {
  const char* const bytes = source.GetBytes(count);
  if (bytes == nullptr) throw FrdCut();
  return bytes;
}

std::size_t RequireFrdCount(const FrdSource& source, const FrdTable& table) {
  if (!table.count) {
    source.ThrowDamage("310000000203", "a binary table does not say how many entries it has");
  }
  return static_cast<std::size_t>(*table.count);
}

std::int32_t RequireFrdId(const FrdSource& source, std::string_view column) {
  std::int32_t id = 0;
  if (!ParseFrdInteger(column, id)) {
    source.ThrowDamage("310000000204", "the number '" + std::string(column) + "' is not readable");
  }
  return RequireFrdId(source, id);
}

std::int32_t RequireFrdId(const FrdSource& source, std::int32_t id) {
  if (id < 1) source.ThrowDamage("310000000205", FED_MESSAGE("the number %d is not positive", id));
  return id;
}

void RequireFrdLineEnd(const FrdSource& source, std::string_view line, std::size_t last) {
  if (line.size() > last && !FrdIsBlank(line.substr(last))) {
    source.ThrowDamage("310000000206", FED_MESSAGE("the line goes on behind column %Iu",
                                                   static_cast<std::uint64_t>(last)));
  }
}

}  // namespace qelta
