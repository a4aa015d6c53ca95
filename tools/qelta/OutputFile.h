#pragma once

#include <string>

namespace qelta {

/// Writes a file under a temporary name beside it and renames it when it is whole: what stood there
/// is replaced or untouched. Failures carry kOutputFileErrorId.
void WriteOutputFile(const std::string& name, const std::string& content);

extern const char* const kOutputFileErrorId;

}  // namespace qelta
