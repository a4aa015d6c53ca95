#pragma once

#include <FED_DataDescriptorPattern.h>

#include <string>
#include <vector>

namespace qelta {

/// The pattern that selections in text form make together. Each selection names one field, no
/// field is named twice; upper and lower case of field and kind names do not matter.
///
///     LAYER=2        exactly this value          LABEL=DISP        exactly this text
///     STATE=5..      at least                    ONF=displacement  a kind by name or number
///     STATE=..9      at most                     ONF=@nodal        any kind of a category
///     INCREMENT=max  the highest (or min, the lowest) among all that pass the other tests
///     LAYER=?        present                     LAYER=!        missing
///
/// A text that is none of these is a failure that says what is wrong and what was perhaps meant.
FED_DataDescriptorPattern ParsePatternTexts(const std::vector<std::string>& texts);

}  // namespace qelta
