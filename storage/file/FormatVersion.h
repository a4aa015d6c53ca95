#pragma once

namespace qelta {

/// Stands in the catalogue and in each payload file; FORMAT.md tells what has changed since.
constexpr int kFormatVersion = 1;

}  // namespace qelta
