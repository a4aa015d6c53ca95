#pragma once

#include <optional>
#include <string_view>

#include "FrdEvents.h"
#include "FrdSource.h"

namespace qelta {

/// The header lines of a result file. What cannot be read in them is damage that names the line of
/// `source`.

/// "    2C" and "    3C".
FrdTable ParseFrdTableHead(const FrdSource& source, std::string_view line);

/// "    1PSTEP", "    1PMODE" ...: adds what it says to the frame; unknown keys say nothing.
void ParseFrdParameter(const FrdSource& source, std::string_view line, FrdFrame& frame);

/// "  100C": completes the frame.
FrdTable ParseFrdFrameHead(const FrdSource& source, std::string_view line, FrdFrame& frame);

struct FrdFieldHead {
  std::string name;
  std::int32_t componentCount;  ///< number of component lines that follow
};

/// " -4".
FrdFieldHead ParseFrdFieldHead(const FrdSource& source, std::string_view line);

/// " -5"; nothing for a component that is not stored.
std::optional<FrdComponent> ParseFrdComponent(const FrdSource& source, std::string_view line);

}  // namespace qelta
