#pragma once

#include <string>
#include <vector>

namespace qelta {

/// "A, B, C".
std::string Join(const std::vector<std::string>& texts);

/// Equal but for upper and lower case of the letters A to Z.
bool IsSameName(const std::string& a, const std::string& b);

/// " Did you mean X?" with the name that is most like the given one; empty when none is like it.
std::string SuggestLike(const std::string& name, const std::vector<std::string>& known);

/// The same; when no name is like it, a list of all of them if it is short.
std::string Suggest(const std::string& name, const std::vector<std::string>& known);

}  // namespace qelta
