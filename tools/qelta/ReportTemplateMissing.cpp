#include "ReportTemplate.h"

namespace qelta {

std::string_view ReportTemplate() { return {}; }

}  // namespace qelta
