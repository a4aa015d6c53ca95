#pragma once

#include <FED_DataBlock.h>
#include <FED_DataDescriptor.h>

#include <optional>
#include <string>
#include <vector>

namespace qelta {

/// Names one number in the records of blocks, as people write it: "DISP.y", "NODAL_STRESS.mises",
/// "HISTORY.FIELD_2", "OBJECTIVE_VALUE".
///
/// It begins with the label of a block, the name of its kind or of a field, then comes the
/// component or what QeltaQuantities adds to them. The end may be missing where a block has one
/// number, the beginning where any block will do ("mises"). Upper and lower case do not matter;
/// "von_mises" is "mises".
class QeltaQuantityText {
 public:
  explicit QeltaQuantityText(const std::string& text);

  const std::string& GetText() const { return m_Text; }

  /// False only when no block of this key has the number.
  bool MayFit(const FED_DataDescriptor& key) const;

  /// Those of the titles of a block's QeltaQuantities that are named; all of them when the text
  /// names the block alone.
  std::vector<std::string> Choose(const FED_DataBlock& block,
                                  const std::vector<std::string>& titles) const;

 private:
  // The text is one of the names, a dot, and the rest.
  bool IsBehindAny(const std::vector<std::string>& names, const std::string& rest) const;

  std::string m_Text;
};

/// "DISP"; the name of the kind when the key has no label; empty when there is neither.
std::string BlockNameOf(const FED_DataDescriptor& key);

}  // namespace qelta
