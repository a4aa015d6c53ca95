#include "OnfFormatStringTool.h"

#include <cstdint>
#include <limits>

#include "FED_Failure.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaOnfSpecification|OnfFormatStringTool";

struct FieldCharacter {
  char character;
  BlockDataType type;
};

constexpr FieldCharacter kFieldCharacters[] = {
    {'I', BLOCK_DATA_INTEGER}, {'d', BLOCK_DATA_DOUBLE},   {'f', BLOCK_DATA_FLOAT},
    {'S', BLOCK_DATA_STRING},  {'V', BLOCK_DATA_VECTOR},   {'T', BLOCK_DATA_TENSOR},
    {'O', BLOCK_DATA_INT_SET}, {'L', BLOCK_DATA_INT_LIST}, {'D', BLOCK_DATA_DOUBLE_LIST},
    {'i', BLOCK_DATA_INDEX},   {'t', BLOCK_DATA_TIME}};

BlockDataType TypeOf(char character, const char* format) {
  for (const FieldCharacter& entry : kFieldCharacters) {
    if (entry.character == character) return entry.type;
  }
  FED_Failure::Throw("120000000003", kLocation,
                     "The record format '%s' holds '%c', which is no field; fields are I d f S V T "
                     "O L D i t.",
                     format, character);
}

void RequireRecordCharacter(const char* format) {
  if (format != nullptr && (format[0] == 'I' || format[0] == 'S')) return;
  FED_Failure::Throw("120000000004", kLocation,
                     "The record format '%s' does not begin with a record character, I or S.",
                     format == nullptr ? "" : format);
}

}  // namespace

int OnfFormatStringTool::GetFormatSizeInformation(const char* format, int& size,
                                                  std::vector<BlockDataType>& types) {
  RequireRecordCharacter(format);
  std::int64_t bytes = 0;
  std::vector<BlockDataType> fields;
  for (const char* character = format + 1; *character != '\0'; ++character) {
    if (*character == '|' || *character == 'b') continue;
    fields.push_back(TypeOf(*character, format));
    bytes += GetFieldSize(fields.back());
  }
  if (bytes > std::numeric_limits<int>::max()) {
    FED_Failure::Throw("120000000005", kLocation, "A record of %Iu bytes is too large.",
                       static_cast<std::uint64_t>(bytes));
  }
  size = static_cast<int>(bytes);
  types = std::move(fields);
  return static_cast<int>(types.size());
}

FED_BlockDataType::FieldDim OnfFormatStringTool::DetermineFieldDim(
    const std::vector<BlockDataType>& types) {
  if (types.size() != 1) return FED_BlockDataType::DIM_NONE;
  switch (types.front()) {
    case BLOCK_DATA_DOUBLE:
      return FED_BlockDataType::DIM_SCALAR;
    case BLOCK_DATA_VECTOR:
      return FED_BlockDataType::DIM_VECTOR;
    case BLOCK_DATA_TENSOR:
      return FED_BlockDataType::DIM_TENSOR;
    default:
      return FED_BlockDataType::DIM_NONE;
  }
}

int OnfFormatStringTool::GetFieldSize(BlockDataType type) {
  switch (type) {
    case BLOCK_DATA_DOUBLE:
    case BLOCK_DATA_TIME:
      return 8;
    case BLOCK_DATA_VECTOR:
      return 24;
    case BLOCK_DATA_TENSOR:
      return 48;
    case BLOCK_DATA_INTEGER:
    case BLOCK_DATA_FLOAT:
    case BLOCK_DATA_STRING:
    case BLOCK_DATA_INT_SET:
    case BLOCK_DATA_INT_LIST:
    case BLOCK_DATA_DOUBLE_LIST:
    case BLOCK_DATA_INDEX:
      return 4;
  }
  return 0;
}
