#pragma once

#include <string_view>

namespace qelta {

/// The page of a report without its data; kReportDataMark stands where these go. Empty when this
/// build has none.
std::string_view ReportTemplate();

constexpr std::string_view kReportDataMark = "<!--QELTA-DATA-->";

}  // namespace qelta
