#include <algorithm>
#include <string>
#include <vector>

#include "Families.h"
#include "RatioReporter.h"

namespace {

bool StartsLikeStorage(const std::string& argument) { return argument.rfind("storage", 0) == 0; }

// A bare word selects cases; what the caller says comes last and wins over our defaults. Cases of
// storage come one after another, in rounds of their own.
std::vector<std::string> MakeArguments(int argc, char** argv, bool isStorage) {
  std::vector<std::string> arguments = {argv[0], "--benchmark_repetitions=7",
                                        "--benchmark_min_time=0.08"};
  if (!isStorage) arguments.emplace_back("--benchmark_enable_random_interleaving=true");
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    arguments.push_back(argument[0] == '-' ? argument : "--benchmark_filter=" + argument);
  }
  return arguments;
}

void AddInMemory(qelta::bench::Suite& suite) {
  qelta::bench::AddLookup(suite);
  qelta::bench::AddPattern(suite);
  qelta::bench::AddRecords(suite);
  qelta::bench::AddFieldData(suite);
  qelta::bench::AddIdMaps(suite);
  qelta::bench::AddEntryPoints(suite);
  qelta::bench::AddCopies(suite);
  qelta::bench::AddFrd(suite);
}

// Takes minutes and gigabytes, so only when it is asked for.
void AddStorage(qelta::bench::Suite& suite) {
  qelta::bench::AddStorageWrites(suite);
  qelta::bench::AddStorageReads(suite);
}

}  // namespace

int main(int argc, char** argv) {
  const bool isStorage = std::any_of(argv + 1, argv + argc, StartsLikeStorage);
  std::vector<std::string> arguments = MakeArguments(argc, argv, isStorage);
  std::vector<char*> pointers(arguments.size());
  std::transform(arguments.begin(), arguments.end(), pointers.begin(),
                 [](std::string& argument) { return argument.data(); });
  int count = static_cast<int>(pointers.size());
  benchmark::Initialize(&count, pointers.data());
  if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) return 2;

  qelta::bench::Suite suite;
  isStorage ? AddStorage(suite) : AddInMemory(suite);
  qelta::bench::RatioReporter reporter(suite);
  return benchmark::RunSpecifiedBenchmarks(&reporter) > 0 ? 0 : 1;
}
