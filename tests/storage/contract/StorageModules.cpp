#include "StorageModule.h"

#include "FED_FileDatabase.h"
#include "FED_MemoryDatabase.h"
#include "FaultyFiles.h"
#include "QeltaStringUtil.h"
#include "TemporaryDirectory.h"
#include "durability/UnsyncedFiles.h"

namespace qelta::test {
namespace {

std::wstring NumberedName() {
  static int s_Count = 0;
  return L"contract-" + std::to_wstring(++s_Count);
}

// Goes with the program.
std::wstring NameInTemporaryDirectory() {
  static const TemporaryDirectory s_Directory;
  std::wstring path;
  QeltaStringUtil::ToWide(s_Directory.GetPath(), path);
  return path + L"/" + NumberedName();
}

FaultyFiles& FullDisk() {
  static UnsyncedFiles s_Files;
  static FaultyFiles s_FullDisk(s_Files);
  return s_FullDisk;
}

class FullDiskDatabase : public FED_FileDatabase {
 public:
  FullDiskDatabase() : FED_FileDatabase(FullDisk()) {}

  /// Fails at the first write, then at the second, and so on until there are no more.
  void Save() {
    for (std::uint64_t writes = 0; !TrySave(writes); ++writes) {
    }
  }

 private:
  bool TrySave(std::uint64_t writes) {
    const std::uint64_t failures = FullDisk().GetFailures();
    FullDisk().SetFault({writes, IoProblem::NO_SPACE, false, {FileOperation::WRITE}});
    try {
      FED_FileDatabase::Save();
    } catch (...) {
      FullDisk().ClearFault();
      if (FullDisk().GetFailures() == failures) throw;
      return false;
    }
    FullDisk().ClearFault();
    return true;
  }
};

}  // namespace

std::vector<StorageModule> StorageModules() {
  return {DescribeModule<FED_MemoryDatabase>("Memory", false, NumberedName),
          DescribeModule<FED_FileDatabase>("File", true, NameInTemporaryDirectory),
          DescribeModule<FullDiskDatabase>("FileOnFullDisk", true, NameInTemporaryDirectory)};
}

}  // namespace qelta::test
