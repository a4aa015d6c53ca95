#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

#include "FED_OnfId.h"
#include "QeltaExport.h"
#include "QeltaStringsPool.h"

namespace qelta {
class KeyDigest;
}

/// The key of a data block: fourteen metadata fields, each of which is specified or not.
///
/// A descriptor is a plain value of 80 bytes with a fixed layout that Fortran programs share: they
/// hold descriptors, and arrays of them, in memory of their own. Twelve fields hold integers, two
/// (`OBJECTIVE_ID` and `LABEL`) hold texts, kept as ids of a pool that lives as long as the
/// process; such an id means nothing to another process.
///
/// Beside the key a descriptor remembers where the block set that last resolved it keeps its
/// block, so that a lookup repeated with the same object costs one array access. Every change of
/// the key through the operations below forgets that position. A descriptor that was used with one
/// database is handed to another one as `Duplicate()`.
///
/// Field arguments must lie in 0 to 13; none is checked. No operation locks.
class QELTA_EXPORT FED_DataDescriptor {
 public:
  enum ResultIndex : std::int32_t {
    ITERATION,
    ONF,  ///< number of the block kind; blocks without it have a custom format
    STATE,
    LOADCASE,
    SUBSTEP,
    ANALYSIS,
    INCREMENT,
    OBJECTIVE_ID,  ///< text
    LABEL,         ///< text
    LAYER,
    MICROPHONE,
    ID_TYPE,
    DIRECTION,
    SUB_LEVEL
  };

  static constexpr std::size_t FIELD_COUNT = 14;

  enum FieldType : std::int32_t { INTEGER_FIELD = 0, STRING_FIELD = 1 };

  struct NameAndType {
    std::string name;
    std::int32_t type;     ///< a `FieldType`
    std::int32_t lowest;   ///< lowest valid value of an integer field
    std::int32_t highest;  ///< highest valid value of an integer field
  };

  /// Name, type and valid range of each field; entry i describes field i.
  static const NameAndType RD_NAME_TYPE_ITEMS[FIELD_COUNT];

  /// Calls of `operator<` since the library was loaded; exact while one thread compares.
  static std::uint64_t s_ComparisonCounter;

  /// Keeps the low 32 bits of `index`, unchecked.
  static ResultIndex CastIndex(std::size_t index) {
    return static_cast<ResultIndex>(static_cast<std::int32_t>(index));
  }

  /// Nothing specified.
  FED_DataDescriptor() { Init(); }
  // The following check no range; see CheckValidity.
  explicit FED_DataDescriptor(FED_OnfId onf);
  FED_DataDescriptor(int iteration, FED_OnfId onf);
  FED_DataDescriptor(int iteration, FED_OnfId onf, int state);
  FED_DataDescriptor(int iteration, FED_OnfId onf, int loadcase, int substep);

  /// Back to the state of a default-constructed descriptor.
  void Init();

  /// The same key without any remembered position.
  FED_DataDescriptor Duplicate() const;

  bool Has(ResultIndex i) const { return (m_Mask & Bit(i)) != 0; }

  /// True when field i and no other field is specified.
  bool HasOnly(ResultIndex i) const { return m_Mask == Bit(i); }

  // The setters and getters do not look at the field's type; the caller takes the fitting one.

  void SetInteger(ResultIndex i, int value) { SetSlot(i, value); }
  void SetString(ResultIndex i, const std::string& text);

  /// Makes field i unspecified.
  void Unset(ResultIndex i);

  /// Fails when field i is not specified. Gives the pool id of a text field.
  int GetInteger(ResultIndex i) const;

  /// Fails when field i is not specified.
  std::string GetString(ResultIndex i) const;

  /// Takes over every field that `other` specifies; the remaining fields keep their state.
  void AssignSpecifiedValues(const FED_DataDescriptor& other);

  /// The order of the block set: first the masks of specified fields as unsigned numbers, then the
  /// specified fields in order. Text fields compare by pool id, that is by first use of the text.
  bool operator<(const FED_DataDescriptor& other) const;

  /// Same fields specified, with the same values; counts one or two comparisons.
  bool operator==(const FED_DataDescriptor& other) const;
  bool operator!=(const FED_DataDescriptor& other) const;

  /// What `operator==` gives, without counting.
  bool EqualTo(const FED_DataDescriptor& other) const;

  /// A mix of all fourteen slots, unspecified ones included: equal descriptors may differ here.
  int Hash() const;

  /// Fails when ONF is specified and not in the catalogue, when an integer field is outside its
  /// range, or when no field is specified; in this order, for the first that applies.
  void CheckValidity() const;

  /// "ITERATION=3/ONF=12/LABEL=top"; "(empty)" when nothing is specified.
  std::string ToString() const;

 private:
  friend class FED_DataBlockSet;
  friend class FED_DataDescriptorPattern;
  friend class qelta::KeyDigest;

  static constexpr std::int32_t kUnknownPosition = -1;
  static constexpr std::int32_t kAbsent = -2;

  static std::uint32_t Bit(ResultIndex i) { return std::uint32_t{1} << static_cast<unsigned>(i); }

  // Programs in Fortran write the mask themselves; what lies beyond the fields counts for nothing.
  std::uint32_t SpecifiedBits() const { return m_Mask & ((std::uint32_t{1} << FIELD_COUNT) - 1); }

  void SetSlot(ResultIndex i, std::int32_t value) {
    m_Slots[i] = value;
    m_Mask |= Bit(i);
    ForgetPosition();
  }
  void ForgetPosition() { m_TableID = m_BlockID = kUnknownPosition; }

  // The cache belongs to the block set and is no part of the key, hence const.
  int GetTableID() const { return m_TableID; }
  int GetBlockID() const { return m_BlockID; }
  void SetTableID(int id) const { m_TableID = id; }
  void SetBlockID(int id) const { m_BlockID = id; }

  static QeltaStringsPool s_StrPool;

  std::int32_t m_Slots[FIELD_COUNT];
  std::uint32_t m_Mask;
  mutable std::int32_t m_TableID;
  mutable std::int32_t m_BlockID;
  mutable std::uint64_t m_MissStamp;

  friend struct FED_DataDescriptorLayout;
};

static_assert(sizeof(FED_DataDescriptor) == 80 && alignof(FED_DataDescriptor) == 8);
static_assert(std::is_trivially_copyable_v<FED_DataDescriptor>);
static_assert(std::is_standard_layout_v<FED_DataDescriptor>);
