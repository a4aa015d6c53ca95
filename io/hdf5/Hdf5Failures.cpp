#include "Hdf5Failures.h"

#include <FED_Failure.h>

#include "QeltaHdf5.h"

namespace qelta {
namespace {

constexpr const char* kLocation = "|%P|QeltaIoHdf5|QeltaHdf5";
constexpr const char* kWriteErrorId = "310000000930";
constexpr const char* kReadErrorId = "310000000931";

}  // namespace

void ThrowWriteFailure(const std::string& path, const Hdf5Problem& problem) {
  FED_Failure::Throw(kWriteErrorId, kLocation,
                     "Cannot write %s: %s. Check the path, the permissions and the room on the "
                     "device.",
                     path.c_str(), problem.text.c_str());
}

void ThrowOpenFailure(const std::string& path, const Hdf5Problem& problem) {
  FED_Failure::Throw("310000000935", kLocation,
                     "Cannot open %s: %s. Check the path and the permissions.", path.c_str(),
                     problem.text.c_str());
}

void ThrowReadFailure(const std::string& path, const std::string& place,
                      const Hdf5Problem& problem) {
  const std::string where = path + (place.empty() ? "" : ", " + place);
  if (problem.isSystem) {
    FED_Failure::Throw(kReadErrorId, kLocation, "Cannot read %s: %s. Check the device.",
                       where.c_str(), problem.text.c_str());
  }
  FED_Failure::Throw("310000000932", kLocation, "%s: %s. %s", where.c_str(), problem.text.c_str(),
                     problem.remedy.c_str());
}

bool IsHdf5DeviceFailure(const FED_Exception& failure) {
  return failure.GetMessageId() == kWriteErrorId || failure.GetMessageId() == kReadErrorId;
}

}  // namespace qelta
