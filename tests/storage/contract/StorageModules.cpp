#include "StorageModule.h"

#include "FED_MemoryDatabase.h"

namespace qelta::test {

std::vector<StorageModule> StorageModules() {
  const auto numbered = [count = 0]() mutable { return L"contract-" + std::to_wstring(++count); };
  return {DescribeModule<FED_MemoryDatabase>("Memory", false, numbered)};
}

}  // namespace qelta::test
