#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace qelta {

// Manual pages in the language of man, made of what --help prints.

std::string ManualPage(const CLI::App& app);
std::string ManualPage(const CLI::App& app, const CLI::App& command);
std::string PatternManualPage();

}  // namespace qelta
