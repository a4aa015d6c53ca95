#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "FED_DataDescriptor.h"
#include "FED_OnfId.h"
#include "QeltaExport.h"

/// One descriptor for every block number from 0 to 10111, for programs that write many kinds of
/// block for the same situation: a field is set once for all kinds or for a chosen group, and the
/// ready descriptor of any kind is taken by its number.
///
/// In a new set, descriptor k specifies `ONF` = k and nothing else. Updates touch the numbers that
/// the catalogue knows and skip the others silently. A number outside 0 to 10111 is an error of the
/// caller that is not checked. Copies are independent.
class QELTA_EXPORT FED_OnfDescriptorSet {
 public:
  enum UpdateBehaviour : std::int32_t {
    UPDATE_ALWAYS = 0,
    UPDATE_IF_SPECIFIED = 1  ///< only descriptors that specify the field already
  };

  static constexpr std::size_t DESCRIPTOR_COUNT = 10112;

  FED_OnfDescriptorSet();
  FED_OnfDescriptorSet(const FED_OnfDescriptorSet& other);
  FED_OnfDescriptorSet& operator=(const FED_OnfDescriptorSet& other);
  ~FED_OnfDescriptorSet();

  FED_DataDescriptor& GetDescriptor(FED_OnfId onf) { return m_Descriptors[Index(onf)]; }
  const FED_DataDescriptor& GetDescriptor(FED_OnfId onf) const { return m_Descriptors[Index(onf)]; }

  using ResultIndex = FED_DataDescriptor::ResultIndex;

  // The first two forms update the listed kinds in list order, the others every kind of the
  // catalogue; any other behaviour number changes nothing.

  void UpdateDescriptors(const std::vector<FED_OnfId>& onfs, ResultIndex field,
                         const std::string& text, UpdateBehaviour behaviour);
  void UpdateDescriptors(const std::vector<FED_OnfId>& onfs, ResultIndex field, int value,
                         UpdateBehaviour behaviour);
  void UpdateDescriptors(ResultIndex field, const std::string& text, UpdateBehaviour behaviour);
  void UpdateDescriptors(ResultIndex field, int value, UpdateBehaviour behaviour);

 private:
  static std::size_t Index(int onf) { return static_cast<std::size_t>(onf); }
  template <class Set>
  void Update(int onf, ResultIndex field, UpdateBehaviour behaviour, Set set);

  std::vector<FED_DataDescriptor> m_Descriptors;
};
