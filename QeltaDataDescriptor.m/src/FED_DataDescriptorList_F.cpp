#include "FED_DataDescriptorList_F.h"

#include "FED_DataDescriptorList.h"
#include "QeltaEntryPoint.h"

namespace {

constexpr const char* kLocation = "|%P|QeltaDataDescriptor|FED_DataDescriptorList";

}  // namespace

void DataDescriptorList_Resize_F(FED_DataDescriptorList* list, const std::uint64_t* size) noexcept {
  const qelta::EntryPoint entry(kLocation);
  qelta::RequireArguments(entry, list, size);
  const auto work = [&] { list->Resize(static_cast<std::size_t>(*size)); };
  if (qelta::Capture(entry, work) == STATUS_OK) return;
  qelta::EndProcess(entry, "status != STATUS_OK",
                    "Failed to resize a data descriptor list to size %Iu", *size);
}

void DataDescriptorList_Deallocate_F(FED_DataDescriptorList* list) noexcept {
  const qelta::EntryPoint entry(kLocation);
  qelta::RequireArguments(entry, list);
  if (qelta::Capture(entry, [&] { list->Deallocate(); }) == STATUS_OK) return;
  FED_LogMacros::log_msg(FED_LogMacros::LOG_CONTINUED, entry.file, entry.line, entry.location,
                         "Failed to delete a data descriptor list - continuing anyways");
}
