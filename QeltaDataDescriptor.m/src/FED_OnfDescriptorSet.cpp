#include "FED_OnfDescriptorSet.h"

#include "FED_OnfInfoPool.h"

namespace {

constexpr int kCount = static_cast<int>(FED_OnfDescriptorSet::DESCRIPTOR_COUNT);

}  // namespace

FED_OnfDescriptorSet::FED_OnfDescriptorSet() : m_Descriptors(DESCRIPTOR_COUNT) {
  for (int onf = 0; onf < kCount; ++onf) {
    m_Descriptors[Index(onf)].SetInteger(FED_DataDescriptor::ONF, onf);
  }
}

FED_OnfDescriptorSet::FED_OnfDescriptorSet(const FED_OnfDescriptorSet& other) = default;

FED_OnfDescriptorSet& FED_OnfDescriptorSet::operator=(const FED_OnfDescriptorSet& other) = default;

FED_OnfDescriptorSet::~FED_OnfDescriptorSet() = default;

template <class Set>
void FED_OnfDescriptorSet::Update(int onf, ResultIndex field, UpdateBehaviour behaviour, Set set) {
  if (!FED_OnfInfoPool::ExistsOnfBlock(onf)) return;
  FED_DataDescriptor& descriptor = m_Descriptors[Index(onf)];
  const bool touched =
      behaviour == UPDATE_ALWAYS || (behaviour == UPDATE_IF_SPECIFIED && descriptor.Has(field));
  if (touched) set(descriptor);
}

void FED_OnfDescriptorSet::UpdateDescriptors(const std::vector<FED_OnfId>& onfs, ResultIndex field,
                                             const std::string& text, UpdateBehaviour behaviour) {
  for (const FED_OnfId onf : onfs) {
    Update(onf, field, behaviour, [&](FED_DataDescriptor& d) { d.SetString(field, text); });
  }
}

void FED_OnfDescriptorSet::UpdateDescriptors(const std::vector<FED_OnfId>& onfs, ResultIndex field,
                                             int value, UpdateBehaviour behaviour) {
  for (const FED_OnfId onf : onfs) {
    Update(onf, field, behaviour, [&](FED_DataDescriptor& d) { d.SetInteger(field, value); });
  }
}

void FED_OnfDescriptorSet::UpdateDescriptors(ResultIndex field, const std::string& text,
                                             UpdateBehaviour behaviour) {
  for (int onf = 0; onf < kCount; ++onf) {
    Update(onf, field, behaviour, [&](FED_DataDescriptor& d) { d.SetString(field, text); });
  }
}

void FED_OnfDescriptorSet::UpdateDescriptors(ResultIndex field, int value,
                                             UpdateBehaviour behaviour) {
  for (int onf = 0; onf < kCount; ++onf) {
    Update(onf, field, behaviour, [&](FED_DataDescriptor& d) { d.SetInteger(field, value); });
  }
}
