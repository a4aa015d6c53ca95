#pragma once

#include <FED_DataDescriptor.h>
#include <FED_IntSetIntvl.h>

#include <string>
#include <vector>

namespace qelta {

/// "1..4, 7"; empty for an empty set.
std::string ToText(const FED_IntSetIntvl<int>& set);

/// The values that a field takes in some keys, "1..4, 7" or "DISP, STRESS"; empty when no key
/// specifies it. Texts stand in the order of their first use.
std::string DescribeValues(const std::vector<FED_DataDescriptor>& keys,
                           FED_DataDescriptor::ResultIndex field);

}  // namespace qelta
