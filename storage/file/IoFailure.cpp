#include "IoFailure.h"

#include <algorithm>
#include <iterator>

namespace qelta {
namespace {

struct Advice {
  IoProblem problem;
  const char* id;
  const char* remedy;
};

constexpr Advice kAdvice[] = {
    {IoProblem::NOT_FOUND, "220100000001", "Check the name."},
    {IoProblem::EXISTS, "220100000002", "Choose another name, or remove what stands there."},
    {IoProblem::DENIED, "220100000003",
     "Check the permissions, and whether the disk is read-only."},
    {IoProblem::NO_SPACE, "220100000004", "Make room on the disk, and try again."},
    {IoProblem::LOCKED, "220100000005", "Close it in the program that uses it."},
    {IoProblem::OTHER, "220100000006", "Check the disk, or the connection to it."},
};

}  // namespace

void IoFailure::Throw(IoProblem problem, const std::string& action, const std::string& path,
                      const std::string& reason) {
  const Advice& advice =
      *std::find_if(std::begin(kAdvice), std::end(kAdvice) - 1,
                    [problem](const Advice& row) { return row.problem == problem; });
  throw IoFailure(problem, advice.id,
                  "Cannot " + action + " '" + path + "': " + reason + ". " + advice.remedy);
}

}  // namespace qelta
